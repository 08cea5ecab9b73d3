// dsp_window_metric against closed forms, published figures, and the spectra of the windows that dspi_window
// applies.
#include "support/twin.h"

namespace sigvex_test::window_figures_test {

TWIN(, window_metric);
TWIN(i, window);

SUITE_OF_BOTH(WindowFigures);

template <class T> double metric(uint32_t type, int32_t n, uint32_t which) {
  T result = kNaN<T>;
  EXPECT_EQ(window_metric(type, n, which, &result), 0) << type << ' ' << n << ' ' << which;
  return static_cast<double>(result);
}

// Six digits and more, where the figure has a closed form: sums over the frame, or the Dirichlet kernel sin(pi f) /
// (n sin(pi f / n)); to 1e-4 the figures that G. Heinzel, A. Ruediger and R. Schilling (2002) print for type 28.
TEST_BOTH(WindowFigures, MatchClosedForms) {
  const struct {
    uint32_t type;
    int32_t n;
    uint32_t which;
    double expected, tolerance = 2e-7;
    // clang-format off
  } rows[] = {{DSP_WINDOW_TRIANGULAR, 21, DSP_WINMETRIC_MAIN_LOBE, 4 * 21.0 / 22},         // nulls at 2n / (n + 1)
              {DSP_WINDOW_UNIFORM, 3, DSP_WINMETRIC_SIDE_LOBE, 20 * std::log10(1.0 / 3)},  // its top at half the bins
              {DSP_WINDOW_BLACKMAN, 64, DSP_WINMETRIC_MAIN_LOBE, 6},  // nulls at 3, and soon after it
              {DSP_WINDOW_FLAT7, 999, DSP_WINMETRIC_MAIN_LOBE, 14},
              {DSP_WINDOW_UNIFORM, 1 << 16, DSP_WINMETRIC_SIDE_LOBE, -13.261459},
              {DSP_WINDOW_UNIFORM, 1 << 16, DSP_WINMETRIC_WIDTH_3DB, 0.8858929},
              {DSP_WINDOW_NUTTALL, 4096, DSP_WINMETRIC_ENBW, 1.9761, 1e-4},
              {DSP_WINDOW_NUTTALL, 4096, DSP_WINMETRIC_SCALLOPING_LOSS, 0.8506, 1e-4},
              {DSP_WINDOW_NUTTALL, 4096, DSP_WINMETRIC_SIDE_LOBE, -98.1, 1e-3},
              {DSP_WINDOW_ORIG_BLACKMAN_HARRIS4, 4096, DSP_WINMETRIC_ROLL_OFF, -20 * std::log10(2.0)},  // Harris, 1978
              // Where n is 0, at any length.
              {DSP_WINDOW_UNIFORM, 0, DSP_WINMETRIC_MAIN_LOBE, 2}, {DSP_WINDOW_HANN, 0, DSP_WINMETRIC_ENBW, 1.5},
              {DSP_WINDOW_HANN, 0, DSP_WINMETRIC_WIDTH_6DB, 2},
              {DSP_WINDOW_FLAT4, 0, DSP_WINMETRIC_COHERENT_GAIN, 0.239523981482822}};
  // clang-format on
  const auto expect = [](uint32_t type, int32_t n, uint32_t which, double expected, double tolerance) {
    EXPECT_NEAR(metric<T>(type, n, which), expected, tolerance * std::max(1.0, std::abs(expected)))
        << type << ' ' << n << ' ' << which;
  };
  for (const int32_t n : {20, 21, 1000, 1 << 24}) {
    const double half = 1 / (std::min(n, 1 << 20) * std::sin(M_PI / (2 * std::min(n, 1 << 20))));
    expect(DSP_WINDOW_UNIFORM, n, DSP_WINMETRIC_SCALLOPING_LOSS, -20 * std::log10(half), 2e-7);
    for (const auto& row : rows) expect(row.type, row.n > 0 ? row.n : n, row.which, row.expected, row.tolerance);
  }
}

// 20 lg |W(f) / W(0)| of an applied window of n points, f in bins.
struct Level {
  Vec<double> w;

  Level(uint32_t type, int32_t n) : w(std::vector<double>(static_cast<size_t>(n), 1.0)) {
    EXPECT_EQ(window(w, type, DSP_WINFLAG_PEAK | DSP_WINFLAG_CENTRED), 0);
  }
  double operator()(double f) const {
    std::complex<long double> sum = 0, whole = 0;
    for (int32_t j = 0; j < w->points; ++j) {
      sum += static_cast<long double>(w->data[j]) * std::polar(1.0L, -2 * kPi * f * j / w->points);
      whole += w->data[j];
    }
    return static_cast<double>(20 * std::log10(std::abs(sum / whole)));
  }
  double highest(double from, double to) const {
    double top = -1000;
    for (double f = from; f <= to; f += 0.05) top = std::max(top, (*this)(f));
    return top;
  }
};

// Every type at even and odd n, against plain sums over the window that is applied: the widths are where the response
// says, the main lobe falls to its edge and nothing beyond rises above the side lobe. 2e-7: the result's own rounding.
TEST_BOTH(WindowFigures, AreTheSpectrumsOwn) {
  for (uint32_t type = 0; type < 32; ++type) {
    for (const int32_t n : {32, 50, 49}) {
      const Level level(type, n);
      double sum = 0, square = 0, apart_half = 0, apart_quarter = 0;
      for (int32_t j = 0; j < n; ++j) {
        const double* const w = level.w->data + j;
        sum += *w;
        square += *w * *w;
        if (const int32_t half = (n + 1) / 2; j + half < n) apart_half += *w * w[half];
        if (const int32_t quarter = (n + 2) / 4; j + quarter < n) apart_quarter += *w * w[quarter];
      }
      const double enbw = n * square / (sum * sum), loss = 10 * std::log10(enbw), scalloping = -level(0.5);
      for (const auto& [which, expected] : {std::pair(DSP_WINMETRIC_COHERENT_GAIN, sum / n),
                                            {DSP_WINMETRIC_ENBW, enbw},
                                            {DSP_WINMETRIC_PROCESSING_LOSS, loss},
                                            {DSP_WINMETRIC_SCALLOPING_LOSS, scalloping},
                                            {DSP_WINMETRIC_WORST_CASE_LOSS, scalloping + loss},
                                            {DSP_WINMETRIC_OVERLAP_50, apart_half / square},
                                            {DSP_WINMETRIC_OVERLAP_75, apart_quarter / square}}) {
        EXPECT_NEAR(metric<T>(type, n, which), expected, 2e-7 * std::max(1.0, expected))
            << type << ' ' << n << ' ' << which;
      }
      const double lobe = metric<T>(type, n, DSP_WINMETRIC_SIDE_LOBE);
      const double edge = metric<T>(type, n, DSP_WINMETRIC_MAIN_LOBE) / 2;
      const double wide = 1e-4 * std::abs(lobe);
      EXPECT_NEAR(level(metric<T>(type, n, DSP_WINMETRIC_WIDTH_3DB) / 2), 10 * std::log10(0.5), 1e-5) << type;
      EXPECT_NEAR(level(metric<T>(type, n, DSP_WINMETRIC_WIDTH_6DB) / 2), 20 * std::log10(0.5), 1e-5) << type;
      EXPECT_LT(level(edge), std::min(level(edge - 0.02), level(edge + 0.02))) << type << ' ' << n;
      double last = level(edge / 2);
      for (double f = edge / 2; f < edge - 0.01; f += 0.03) EXPECT_LE(level(f), std::exchange(last, level(f))) << type;
      const double top = level.highest(edge, n / 2.0);
      EXPECT_TRUE(top <= lobe + wide && top > lobe - 0.2) << type << ' ' << n << ": " << top << ' ' << lobe;
    }
  }
}

// An octave far out, among them the types whose ends meet only in their digits. 0.2 dB: what the steps miss, and
// aliases.
TEST_BOTH(WindowFigures, FallAlongTheRollOff) {
  for (const uint32_t type :
       {DSP_WINDOW_BLACKMAN_HARRIS4, DSP_WINDOW_FLAT6, DSP_WINDOW_FLATTOP, DSP_WINDOW_KAISER70, DSP_WINDOW_COS_LOBE,
        DSP_WINDOW_GAUSS60, DSP_WINDOW_UNIFORM, DSP_WINDOW_TRIANGULAR, DSP_WINDOW_HANN, DSP_WINDOW_HAMMING,
        DSP_WINDOW_RIEMANN, DSP_WINDOW_TUKEY25, DSP_WINDOW_BLACKMAN}) {
    const Level level(type, 4096);
    EXPECT_NEAR(metric<T>(type, 4096, DSP_WINMETRIC_ROLL_OFF), level.highest(160, 161) - level.highest(80, 81), 0.2)
        << type;
  }
}

TEST_BOTH(WindowFigures, RefuseWhatHasNone) {
  T result = 7;
  const auto refused = [&](uint32_t type, int32_t n, uint32_t which, T* into) {
    EXPECT_TRUE(window_metric.template of<T>()(type, n, which, into) == -1 && result == 7)
        << type << ' ' << n << ' ' << which;
  };
  refused(32, 64, 0, &result);
  refused(DSP_WINDOW_HANN, 64, 12, &result);
  refused(DSP_WINDOW_HANN, 64, 0, nullptr);
  for (const int32_t n : {1, 0, -5, std::numeric_limits<int32_t>::min()}) refused(DSP_WINDOW_HANN, n, 0, &result);
  refused(DSP_WINDOW_HANN, 2, DSP_WINMETRIC_WIDTH_3DB, &result);  // one weight is left: a flat response
  refused(DSP_WINDOW_HANN, 4, DSP_WINMETRIC_SIDE_LOBE, &result);  // the null is at half the bins
}

}  // namespace sigvex_test::window_figures_test
