#include "support/failing_storage.h"
#include "support/twin.h"

namespace sigvex_test::averaging_test {

TWIN(h, avg);
constexpr Twin spectrum{&dsph_fft, &dspfh_fft};
constexpr Twin spectrum_too{&dsph_dft, &dspfh_dft};
constexpr Twin window{&dspi_window, &dspfi_window};
constexpr Twin swap_halves2{&dspi_swap_halves2, &dspfi_swap_halves2};

SUITE_OF_BOTH(Averaging);

template <class T> Record<T>* const kNone = nullptr;

TEST_BOTH(Averaging, EveryModeTakesTheFrameInItsWay) {
  struct Row {
    uint32_t flags;
    int32_t count;
    T weight, length;
    std::vector<double> expected;  // from c = (2, 8), A = (4, 2)
  };
  const Row rows[] = {{0, 2, -1, 0, {2, 8}},
                      {DSP_AVG_MEAN, 2, -1, 0, {3, 5}},
                      {DSP_AVG_MEAN, 2, T(0.25), 0, {3.5, 3.5}},
                      {DSP_AVG_MEAN | 16, 4, -1, 2, {3, 5}},
                      {DSP_AVG_MEAN | 16, 4, -1, 5, {3.5, 3.5}},
                      {DSP_AVG_MEAN | 16, 4, 0, 2, {4, 2}},
                      {DSP_AVG_MEAN, 2, kNaN<T>, 0, {3, 5}},
                      {DSP_AVG_MAX, 2, -1, 0, {4, 8}},
                      {DSP_AVG_MIN, 2, -1, 0, {2, 2}},
                      {DSP_AVG_HARMONIC, 2, -1, 0, {8.0 / 3, 3.2}},
                      {DSP_AVG_GEOMETRIC, 2, -1, 0, {std::sqrt(8), 4}},
                      {DSP_AVG_SYNCHRONOUS, 2, -1, 0, {3, 5}},
                      {7, 2, -1, 0, {4, 2}},
                      {7, 1, -1, 0, {2, 8}},
                      {DSP_AVG_HARMONIC, 0, -1, 0, {2, 8}},
                      {DSP_AVG_MEAN | DSP_AVG_POWER, 2, -1, 0, {4, 33}},
                      {DSP_AVG_MEAN | DSP_AVG_POWER | DSP_AVG_LOG, 1, -1, 0, {std::log(4), std::log(64)}},
                      {DSP_AVG_MAX | DSP_AVG_MAGNITUDE, 2, -1, 0, {4, 8}}};
  for (const Row& row : rows) {
    for (const int placement : {0, 1, 2, 3}) {
      SCOPED_TRACE(::testing::Message() << row.flags << ' ' << row.count << ' ' << placement);
      Vec<T> c{2, 8}, a{4, 2}, own;
      c->delta = 3;
      Record<T>* const work[] = {nullptr, own, c, a};
      ASSERT_EQ(avg(c.get(), a.get(), work[placement], row.flags, row.count, 0, row.weight, row.length), 0);
      EXPECT_TRUE(close(a, row.expected, 4 * static_cast<double>(kEps<T>)));
      EXPECT_TRUE(exactly(c, {2, 8}));
      const bool kept = row.count > 1 && (row.flags & 15) > 6, taken = row.count <= 1 || row.flags == 0;
      EXPECT_EQ(a->delta, kept ? 1 : taken ? 3 : 2);
    }
  }
}

TEST_BOTH(Averaging, SynchronousFramesAddUpInPhase) {
  using C = std::complex<T>;
  for (const int32_t reference : {1, -1}) {
    Vec<T> a;
    for (int n = 1; n <= 8; ++n) {  // one line turns with the reference; another, at times stronger, does not
      const C turn = std::polar(T(1), T(n)), other = std::polar(T(n % 4 == 2 ? 4 : 1), T(M_PI / 4) * T(n)) * turn;
      Vec<T> c(std::vector<C>{C(0, 2) * turn, C(3, 0) * turn, other});
      ASSERT_EQ(avg(c.get(), a.get(), kNone<T>, uint32_t{DSP_AVG_SYNCHRONOUS}, n, reference, T(-1), T(0)), 0);
    }
    const double x = std::cos(1), y = std::sin(1);  // the first frame's phase
    EXPECT_TRUE(close(a, std::vector<double>{-2 * y, 2 * x, 3 * x, 3 * y, 0, 0}, 40 * static_cast<double>(kEps<T>), 3));
  }
}

TEST_BOTH(Averaging, RefusalsLeaveTheAccumulator) {
  Vec<T> c{2, 8, 1}, a{4, 2}, wide{1, 3, 5};
  for (uint32_t mode = 1; mode <= 6; ++mode) {
    EXPECT_EQ(avg(c.get(), a.get(), kNone<T>, mode, 2, 0, T(-1), T(0)), -1);
    EXPECT_EQ(avg(a.get(), wide.get(), kNone<T>, mode, 2, 0, T(-1), T(0)), -1);
  }
  EXPECT_EQ(avg(c.get(), wide.get(), kNone<T>, 6U, 2, 3, T(-1), T(0)), -1);
  EXPECT_TRUE(exactly(a, {4, 2}));
  const FailingStorage<T> none(0);
  for (const uint32_t mode : {4U, 5U, 6U}) {
    EXPECT_EQ(avg(c.get(), wide.get(), kNone<T>, mode, 2, 0, T(0), T(0)), -1);
    EXPECT_TRUE(exactly(wide, {1, 3, 5}));
  }
}

// Bin f of the frame's transform, as a plain sum.
template <class T> std::complex<double> bin(const Vec<T>& x, int f) {
  std::complex<double> sum = 0;
  for (int k = 0; k < x->points; ++k) {
    const std::complex<double> z = x->complex ? std::complex<double>(x.at(k)) : std::complex<double>(x[k]);
    sum += z * std::polar(1.0, -2 * M_PI * f * k / x->points);
  }
  return sum;
}

TEST_BOTH(Averaging, TheFrameIsWindowedScaledAndTransformedAsItsFlagsSay) {
  for (const int n : {8, 9}) {
    for (const uint32_t type : {uint32_t{DSP_WINDOW_UNIFORM}, uint32_t{DSP_WINDOW_HANN}}) {
      for (const bool complex : {false, true}) {
        for (uint32_t flags = 0; flags < 256; flags += 2) {
          SCOPED_TRACE(::testing::Message() << n << ' ' << type << ' ' << complex << ' ' << flags);
          Vec<T> x = Vec<T>::over(nullptr, n, complex), y;
          ASSERT_EQ((Twin{&dspc_rand, &dspfc_rand})(x.get(), 0), 0);
          x->delta = T(0.5);
          Vec<T> frame = x;
          const bool raw = flags & 128, sum = flags & 4, two_sided = raw || complex || flags & 2;
          if (flags & 8 && !raw && (type || flags & 20)) swap_halves2(frame.get());
          if (!(flags & 8) && !raw) window(frame.get(), type, flags & 20 ? 16U : 0U);
          const double scale = raw ? 1.0 / n : sum ? 1 : (flags & 2 ? 1.0 : 2.0) / n;
          const int first = raw || !two_sided ? 0 : -(n / 2), bins = two_sided ? n : n / 2 + 1;
          std::vector<double> expected;
          for (int k = 0; k < bins; ++k) {
            const std::complex<double> z = bin(frame, first + k) * scale;
            expected.insert(expected.end(), {z.real(), z.imag()});
          }
          ASSERT_EQ(spectrum(x.get(), y.get(), kNone<T>, kNone<T>, type, flags), 0);
          EXPECT_TRUE(close(y, expected, 40 * static_cast<double>(kEps<T>), 4));
          EXPECT_EQ(y->delta, T(1) / (static_cast<T>(n) * T(0.5)));
          ASSERT_EQ(spectrum_too(x.get(), x.get(), kNone<T>, kNone<T>, type, flags), 0);
          EXPECT_TRUE(exactly(x, y.samples()));
        }
      }
    }
  }
}

TEST_BOTH(Averaging, FramesAreCountedAndAveraged) {
  const uint32_t flags =
      DSP_SPECTRUM_AVERAGE | DSP_SPECTRUM_AVG_FACTOR * (DSP_AVG_MEAN | DSP_AVG_POWER | DSP_AVG_EXPONENTIAL);
  Vec<T> a, y, state = Vec<T>::pairs({{0, 5}, {4, 0}, {7, 7}}), x{1, 2}, longer{1, 2, 3, 4};
  double mean = 0;
  for (int n = 1; n <= 9; ++n) {
    x[0] = T(n);
    mean += ((n + 2.0) * (n + 2) - mean) / std::min(n, 4);  // of the doubled bin 0, squared
    ASSERT_EQ(spectrum(x.get(), (n % 2 ? y : a).get(), a.get(), state.get(), 0U, flags), 0);
    EXPECT_NEAR(a[0], mean, 40 * static_cast<double>(kEps<T>) * mean);
    EXPECT_TRUE(n % 2 == 0 || exactly(y, a.samples()));
    EXPECT_TRUE(!state->complex && exactly(state, {T(n), 4}));
  }
  const Vec<T> before = a;
  EXPECT_EQ(spectrum(longer.get(), y.get(), a.get(), state.get(), 0U, flags), -1);
  EXPECT_EQ(spectrum(x.get(), y.get(), kNone<T>, state.get(), 0U, flags), -1);
  EXPECT_EQ(spectrum(x.get(), y.get(), a.get(), kNone<T>, 0U, flags), -1);
  EXPECT_EQ(spectrum(x.get(), state.get(), a.get(), state.get(), 0U, flags), -1);
  EXPECT_TRUE(exactly(a, before.samples()) && exactly(state, {9, 4}));
}

}  // namespace sigvex_test::averaging_test
