#include <array>
#include <random>

#include "stats/statistics.h"

namespace sigvex_test {
namespace {

template <class T> struct Moments : ::testing::Test {};
TYPED_TEST_SUITE(Moments, Precisions);

// Against the central moments in long double. With deviations of at most R from the shift point, the mean of their p-th
// powers is off by at most g R^p, g being epsilon times the longest chain of additions and some products; the factors
// count the means that enter. An offset costs nothing where it cancels before anything is squared. The excess is
// measured without one, as its deviations are from a rounded mean; R^2 / var bounds a kurtosis.
TYPED_TEST(Moments, AgreeWithExtendedPrecisionWhateverTheOffset) {
  using T = TypeParam;
  constexpr size_t n = 5000;
  for (T offset : {T(0), T(4096), T(-4096)}) {
    std::minstd_rand random(1);
    std::vector<T> x(2 * n);
    for (T& sample : x) sample = offset + std::exp2(static_cast<T>(random() % 1024) / 512);
    const auto moments = [&x](size_t first, size_t step) {
      long double mean = 0;
      std::array<long double, 5> m{};
      for (size_t k = 0; k < n; ++k) mean += x[first + step * k] / static_cast<long double>(n);
      for (size_t k = 0; k < n; ++k) {
        for (size_t p = 2; p <= 4; ++p) m[p] += std::pow(x[first + step * k] - mean, static_cast<int>(p)) / n;
      }
      return m;
    };
    const Vec<T> v(std::vector<T>(x.begin(), x.begin() + n));
    Vec<T> z(x);
    z->complex = 1;
    z->points = n;
    const double g = (2048 + 3 + 8) * double{kEps<T>}, R = 3, sample = n / (n - 1.0);
    const auto m = moments(0, 1);
    const double var = static_cast<double>(m[2]), var_z = static_cast<double>(moments(0, 2)[2] + moments(1, 2)[2]);
    const double sigma = std::sqrt(var), skew = static_cast<double>(m[3]) / (var * sigma);
    EXPECT_NEAR(result_of("pop_var", v)[0], var, 3 * g * R * R);
    EXPECT_NEAR(result_of("pop_var", z)[0], var_z, 6 * g * R * R);
    EXPECT_NEAR(result_of("samp_var", v)[0], var * sample, 4 * g * R * R);
    EXPECT_NEAR(result_of("pop_stddev", v)[0], sigma, 3 * g * R * R / sigma);
    EXPECT_NEAR(result_of("samp_stddev", v)[0], sigma * std::sqrt(sample), 4 * g * R * R / sigma);
    EXPECT_NEAR(result_of("skew", v)[0], skew, g * (13 * R * R * R / (var * sigma) + 5 * R * R / var));
    if (offset == 0) {
      EXPECT_NEAR(result_of("excess", v)[0], static_cast<double>(m[4]) / (var * var) - 3, 16 * g * R * R / var);
    }
  }
}

}  // namespace
}  // namespace sigvex_test
