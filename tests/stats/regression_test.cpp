// dsps_lin_regres2 against the certified values of a reference data set, exact small cases and what must not matter.
#include <numeric>

#include "support/twin.h"

namespace sigvex_test::regression_test {

SUITE_OF_BOTH(Regression);

template <class T> Vec<T> line(const Record<T>* x, const Vec<T>& y) {
  Vec<T> result{7};
  result->delta = 9;
  EXPECT_EQ(TWIN_OF(s, lin_regres2)(x, y, result), 0);
  EXPECT_TRUE(result->points == 20 && result->complex == 0 && result->delta == 9);
  return result;
}

// The data set Norris of the Statistical Reference Datasets (NIST), certified to 15 digits. Its sums of squares round
// to some 1e-15, s^2 being 1e-7 of them; the float data are rounded, which moves s itself.
TEST_BOTH(Regression, MatchesCertifiedValues) {
  const std::vector<double> x = {0.2, 337.4, 118.2, 884.6, 10.1,  226.5, 666.3, 996.3, 448.6, 777.0, 558.2, 0.4,
                                 0.6, 775.5, 666.9, 338.0, 447.5, 11.6,  556.0, 228.1, 995.8, 887.6, 120.2, 0.3,
                                 0.3, 556.8, 339.1, 887.2, 999.0, 779.0, 11.1,  118.3, 229.2, 669.1, 448.9, 0.5};
  const std::vector<double> y = {0.1, 338.8, 118.1, 888.0, 9.2,   228.1, 668.5, 998.5, 449.1, 778.9, 559.2, 0.3,
                                 0.1, 778.1, 668.8, 339.3, 448.9, 10.8,  557.7, 228.3, 998.0, 888.8, 119.6, 0.3,
                                 0.6, 557.6, 339.3, 888.0, 998.5, 778.9, 10.2,  117.6, 228.9, 668.4, 449.2, 0.2};
  const double a = -0.262323073774029, b = 1.00211681802045, sa = 0.232818234301152, sb = 0.429796848199937e-03;
  const double r2 = 0.999993745883712, t = 2.032244509317718;  // of 34 degrees of freedom
  const std::vector<double> certified = {
      a, b, sa, sb, std::sqrt(r2), r2, 0.884796396144373, a / sa, b / sb, 5436385.54079785};
  const Vec<T> result = line<T>(Vec<T>({x.begin(), x.end()}, false), Vec<T>({y.begin(), y.end()}, false));
  const double tolerance = sizeof(T) == 8 ? 1e-11 : 4e-5;
  for (size_t k = 0; k < certified.size(); ++k)
    EXPECT_NEAR(static_cast<double>(result[k]), certified[k], tolerance * std::abs(certified[k])) << k;
  const double bounds[] = {a - t * sa, a + t * sa, b - t * sb, b + t * sb};
  for (size_t k = 0; k < 4; ++k)
    EXPECT_NEAR(static_cast<double>(result[15 + k]), bounds[k], tolerance * std::abs(bounds[k])) << k;
  EXPECT_EQ(result[19], 36);
}

// Small integers, whose sums are exact.
TEST_BOTH(Regression, SmallCasesAreExact) {
  constexpr T huge = kHuge<T>;
  const T third = T(1) / 3, root = std::sqrt(T(2)) / 2, tail = T(12.706204736174706);  // t of 1 degree of freedom
  const T sb = T(std::sqrt(1.0 / 12)), sa = T(std::sqrt(5.0 / 36)), s = T(std::sqrt(1.0 / 6));
  const struct {
    Vec<T> x, y;
    std::vector<T> expected;
  } rows[] = {
      {{0, 1, 2}, {1, 1, 2}, {5 * third / 2, T(0.5), sa, sb, T(std::sqrt(0.75)), T(0.75), s}},
      {{1, 3}, {5, 1}, {7, -2, huge,     huge,     -1, 1,     huge, 0,     0,    0,
                        2, 3,  2 * root, 4 * root, -4, -huge, huge, -huge, huge, 2}},
      {{0, 1, 2}, {1, 3, 5}, {1, 2, 0, 0, 1, 1, 0, huge, huge, huge, 1, 3, 1, 2, 2, 1, 1, 2, 2, 3}},
      {{0, 1, 2}, {-4, -4, -4}, {-4, 0, 0, 0, 0, 0, 0, -huge, 0, 0, 1, -4, 1, 0, 0, -4, -4, 0, 0, 3}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    for (const bool grid : {false, true}) {
      if (grid && row.x[0] != 0) continue;
      Vec<T> result = line<T>(grid ? nullptr : row.x.operator const Record<T>*(), row.y), first{9};
      EXPECT_EQ(TWIN_OF(s, lin_regres)(row.x, row.y, first), 0);
      EXPECT_TRUE(exactly(first, {result[0], result[1]}));
      result->points = static_cast<int32_t>(row.expected.size());
      EXPECT_TRUE(close(result, row.expected, 4 * kEps<T>));  // each follows from exact sums in a few roundings
    }
  }
  const Vec<T> result = line<T>(nullptr, rows[0].y);
  EXPECT_NEAR(result[18], T(0.5) + tail * sb, 1e-14 * (kEps<T> / kEps<double>));
  EXPECT_NEAR(result[15], 5 * third / 2 - tail * sa, 1e-14 * (kEps<T> / kEps<double>));
}

// The bounds over the standard errors are Student's t, to the digits of the published tables, on both sides of the
// change of method too.
TEST_BOTH(Regression, BoundsFollowStudentsDistribution) {
  const std::pair<size_t, double> quantiles[] = {
      {1, 12.706204736174706},  {2, 4.302652729749462},    {3, 3.182446305283708},   {10, 2.228138851986274},
      {100, 1.983971518523552}, {1000, 1.962339080826408}, {1001, 1.962336705280880}};
  for (const auto& [freedom, quantile] : quantiles) {
    std::vector<T> y(freedom + 2);
    for (size_t k = 0; k < y.size(); ++k) y[k] = static_cast<T>(k * k * 7919 % 101);
    const Vec<T> result = line<T>(nullptr, Vec<T>(y));
    const double bound = static_cast<double>(result[18] - result[17]) / 2 / static_cast<double>(result[3]);
    EXPECT_NEAR(bound, quantile, quantile * std::max(1e-13, 64.0 * kEps<T>)) << freedom;
  }
}

// A large offset of either variable, and many points, cost no more than the rounding of the data themselves.
TEST_BOTH(Regression, OffsetsDoNotCancel) {
  const T far = T(0.25) / kEps<T>;  // integers up to it and 4096 beyond are exact
  std::vector<T> x, y, far_x, far_y;
  for (int k = 0; k < 5000; ++k) {
    x.push_back(static_cast<T>(k % 64));
    y.push_back(static_cast<T>(3 * (k % 64) + k * 7919 % 17));
    far_x.push_back(far + x.back());
    far_y.push_back(y.back() - far);
  }
  const Vec<T> near = line<T>(Vec<T>(x), Vec<T>(y)), shifted = line<T>(Vec<T>(far_x), Vec<T>(far_y));
  for (const size_t k : {1, 3, 4, 5, 6, 8, 9, 12, 13, 14, 17, 18})
    EXPECT_NEAR(shifted[k], near[k], (sizeof(T) == 8 ? 1e-12 : 4e-7) * std::abs(near[k])) << k;
}

TEST_BOTH(Regression, RefusesWhatHasNoLine) {
  const Vec<T> two{1, 2}, one{1}, none, alike{T(0.1), T(0.1)}, complex = Vec<T>::pairs({{1, 2}, {3, 4}});
  Vec<T> result{7}, still{1, 2, 3};
  still->delta = 0;
  const std::pair<const Record<T>*, const Record<T>*> refused[] = {{two, one},     {one, one},      {none, none},
                                                                   {nullptr, one}, {alike, two},    {complex, two},
                                                                   {two, complex}, {nullptr, still}};
  for (const auto& [x, y] : refused) {
    EXPECT_EQ(TWIN_OF(s, lin_regres2)(x, y, result), -1) << &x - &refused[0].first;
    EXPECT_EQ(TWIN_OF(s, lin_regres)(x, y, result), -1);
  }
  EXPECT_TRUE(exactly(result, {7}));
  Vec<T> x{1, 3}, y{5, 1}, gap{1, kNaN<T>, 2};
  EXPECT_EQ(TWIN_OF(s, lin_regres)(x, y, x) + TWIN_OF(s, lin_regres)(nullptr, y, y), 0);  // into the inputs
  EXPECT_TRUE(exactly(x, {7, -2}) && exactly(y, {5, -4}));
  EXPECT_EQ(TWIN_OF(s, lin_regres)(nullptr, gap, result), 0);
  EXPECT_TRUE(exactly(result, {kNaN<T>, kNaN<T>}));
}

}  // namespace sigvex_test::regression_test
