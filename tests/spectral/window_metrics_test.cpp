#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, window2);
TWIN(, window_scale);
TWIN(, window2_scale);
TWIN(, window_enbw);
TWIN(, window2_enbw);

template <class T> struct WindowMetrics : ::testing::Test {};
TYPED_TEST_SUITE(WindowMetrics, Precisions);

template <class T> Vec<T> weights(size_t n, uint32_t type, uint32_t flags, T parameter) {
  Vec<T> v(std::vector<T>(n, T(1)));
  EXPECT_EQ(window2(v.get(), type, flags | DSP_WINFLAG_CENTRED, parameter), 0);
  return v;
}

TYPED_TEST(WindowMetrics, ScaleIsWhatTheWindowApplies) {
  using T = TypeParam;
  for (uint32_t type = 0; type < 32; ++type) {
    for (const uint32_t given : {0U, uint32_t{DSP_WINFLAG_PARAMETER}}) {
      if (given && type == DSP_WINDOW_TRIANGULAR) continue;
      for (const size_t n : {64, 65, 5001}) {
        const bool width = type < DSP_WINDOW_GAUSS60 || (type >= DSP_WINDOW_COS_LOBE && type < DSP_WINDOW_GAUSS73);
        const T parameter = width ? T(40) : T(0.875);
        const Vec<T> peak = weights<T>(n, type, given | DSP_WINFLAG_PEAK, parameter);
        for (const uint32_t mode : {0, 1, 2}) {
          T scale = 0;
          EXPECT_EQ(window2_scale(&scale, type, given | mode, static_cast<int32_t>(n), parameter), 0);
          const Vec<T> w = weights<T>(n, type, given | mode, parameter);
          // 1e-6: to that many digits the coefficients of each set are printed at the least.
          EXPECT_NEAR(w[n / 2], scale * peak[n / 2], scale * (8 * kEps<T> + (given ? 0 : 1e-6)))
              << type << ' ' << n << ' ' << mode;
          T plain = 0;
          EXPECT_EQ(window_scale(&plain, type, given | mode, static_cast<int32_t>(n)), given ? -1 : 0);
          EXPECT_EQ(plain, given ? 0 : scale);
        }
      }
    }
  }
}

TYPED_TEST(WindowMetrics, HannAndUniformAreKnownForAnyLength) {
  using T = TypeParam;
  for (const int32_t n : {-1, 0, 1, 4096}) {
    T mean = 0, rms = 0, hann = 0, uniform = 0;
    EXPECT_EQ(window_scale(&mean, uint32_t{DSP_WINDOW_HANN}, 0U, n), 0);
    EXPECT_EQ(window_scale(&rms, uint32_t{DSP_WINDOW_HANN}, 1U, n), 0);
    EXPECT_EQ(mean, T(2));
    EXPECT_EQ(rms, T(1.632993161855452));
    EXPECT_EQ(window_enbw(&hann, uint32_t{DSP_WINDOW_HANN}, n), 0);
    EXPECT_EQ(window_enbw(&uniform, uint32_t{DSP_WINDOW_UNIFORM}, n), 0);
    EXPECT_NEAR(hann, 1.5, 1.5 * (4 * kEps<double> + kEps<T> / 2));
    EXPECT_EQ(uniform, T(1));
  }
}

TYPED_TEST(WindowMetrics, NoiseBandwidthsOfTheClassicalWindows) {
  using T = TypeParam;
  struct Row {
    uint32_t type;
    double enbw;  // mean square over squared mean, in the limit of many points
  };
  const double pi = static_cast<double>(kPi), si_pi = 1.851937051982466, si_2pi = 1.418151576132628, p = 0.1583722;
  const Row rows[] = {{DSP_WINDOW_TRIANGULAR, 4.0 / 3},
                      {DSP_WINDOW_HAMMING, 1 + 0.5 * std::pow(0.46 / 0.54, 2)},
                      {DSP_WINDOW_BLACKMAN, 1 + 0.5 * (0.25 + 0.0064) / 0.1764},
                      {DSP_WINDOW_COS_LOBE, pi * pi / 8},
                      {DSP_WINDOW_RIEMANN, si_2pi * pi / (si_pi * si_pi)},
                      {DSP_WINDOW_TUKEY25, (1 - 0.625 * 0.25) / std::pow(1 - 0.125, 2)},
                      {DSP_WINDOW_GAUSS60, std::erf(0.5 / p) / (2 * std::sqrt(pi) * p *
                                                                std::pow(std::erf(0.5 / (p * std::sqrt(2.0))), 2))}};
  for (const Row& row : rows) {
    T enbw = 0;
    EXPECT_EQ(window_enbw(&enbw, row.type, 1 << 16), 0);
    // Sum and integral differ by 1/N^2 at most.
    EXPECT_NEAR(enbw, row.enbw, kEps<T> + 1e-8) << row.type;
  }
  T half = 0;
  EXPECT_EQ(window2_enbw(&half, uint32_t{DSP_WINDOW_BLACKMAN}, 1 << 16, T(1 << 15)), 0);
  EXPECT_NEAR(half, 2 * (1 + 0.5 * (0.25 + 0.0064) / 0.1764), 4 * kEps<T> + 1e-8);  // half as long, twice as wide
}

TYPED_TEST(WindowMetrics, RefusalsDoNotWrite) {
  using T = TypeParam;
  T untouched = 7;
  T* const none = nullptr;
  constexpr uint32_t hann = DSP_WINDOW_HANN, triangle = DSP_WINDOW_TRIANGULAR, gauss = DSP_WINDOW_GAUSS60;
  EXPECT_EQ(window_scale(&untouched, hann, 3U, 8), -1);
  EXPECT_EQ(window_scale(&untouched, hann, 8U, 8), -1);
  EXPECT_EQ(window_scale(&untouched, hann, 4U, 8), -1);
  EXPECT_EQ(window_scale(&untouched, 32U, 2U, 8), -1);
  EXPECT_EQ(window_scale(&untouched, gauss, 0U, 0), -1);
  EXPECT_EQ(window_scale(&untouched, triangle, 1U, -4), -1);
  EXPECT_EQ(window2_scale(&untouched, triangle, 8U, 8, T(4)), -1);
  EXPECT_EQ(window2_scale(&untouched, gauss, 8U, 8, kNaN<T>), -1);
  EXPECT_EQ(window_enbw(&untouched, 32U, 8), -1);
  EXPECT_EQ(window_enbw(&untouched, gauss, 0), -1);
  EXPECT_EQ(window2_enbw(&untouched, triangle, 8, T(4)), -1);
  EXPECT_EQ(untouched, T(7));
  EXPECT_EQ(window_scale(none, hann, 0U, 8), -1);
  EXPECT_EQ(window2_scale(none, hann, 0U, 8, T(0)), -1);
  EXPECT_EQ(window_enbw(none, hann, 8), -1);
  EXPECT_EQ(window2_enbw(none, hann, 8, T(8)), -1);
}

}  // namespace
}  // namespace sigvex_test
