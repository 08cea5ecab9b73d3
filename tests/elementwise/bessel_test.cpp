#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> struct Bessel : ::testing::Test {};
TYPED_TEST_SUITE(Bessel, Precisions);

TYPED_TEST(Bessel, ExactResults) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, least = T(-0.0);
  const T over = std::nextafter(static_cast<T>(std::log(static_cast<long double>(huge))), inf);
  // clang-format off
  check<T>({{TWIN_ROW(i, besi0), kRealOnly, {0, least, over, -over, inf, -inf, nan}, {1, 1, huge, huge, huge, huge, huge}},
            {TWIN_ROW(i, besj0), kRealOnly, {0, inf, nan}, {1, 0, nan}},
            {TWIN_ROW(i, besj1), kRealOnly, {0, inf, nan}, {0, 0, nan}},
            {TWIN_ROW(i, besy0), kRealOnly, {0, inf, nan}, {-inf, 0, nan}},
            {TWIN_ROW(i, besy1), kRealOnly, {0, inf, nan}, {-inf, 0, nan}}});
  // clang-format on
}

// The power series, whose terms are all positive, to its end.
long double i0(long double x) {
  long double sum = 0, term = 1;
  for (int k = 1; term > sum * 1e-22L; ++k) {
    sum += term;
    term *= x / 2 / k * (x / 2 / k);
  }
  return sum;
}

// Up to 20 the argument of the series, (x/2)^2, is off by half an epsilon, which the function magnifies up to ten times
// (by x/2 times the ratio of I1 and I0), and the Horner steps round as often; an ulp may be half an epsilon. Above 20
// an exponential, a root and three products round once each, and the series stops within an epsilon. Single precision
// is computed in double.
TYPED_TEST(Bessel, ModifiedIsAccurateUpToTheLimit) {
  using T = TypeParam;
  const bool single = std::is_same_v<T, float>;
  const double end = single ? 34.53877 : 230.2585;
  check<T>({{TWIN_ROW(i, besi0), i0, 0, 20, single ? 0.51 : 16},
            {TWIN_ROW(i, besi0), i0, -end, std::nextafter(T(-20), T(-21)), single ? 0.51 : 6}});
}

// (1/pi) integral of cos(n t - x sin t) over 0..pi. The integrand is periodic and smooth, so that the trapezoidal rule
// is exact once its points outnumber the argument.
long double integral(int n, long double x) {
  long double sum = 0;
  for (int k = 0; k < 200; ++k) sum += std::cos(n * 2 * kPi * k / 200 - x * std::sin(2 * kPi * k / 200)) / 200;
  return sum;
}

TYPED_TEST(Bessel, FirstKindMatchesItsIntegralAndTheSecondTheWronskian) {
  using T = TypeParam;
  std::vector<T> x;
  for (int k = 1; k <= 400; ++k) x.push_back(T(0.1) * static_cast<T>(k));
  Vec<T> j0(x), j1(x), y0(x), y1(x);
  EXPECT_EQ(TWIN_OF(i, besj0)(j0) + TWIN_OF(i, besj1)(j1) + TWIN_OF(i, besy0)(y0) + TWIN_OF(i, besy1)(y1), 0);
  for (size_t k = 0; k < x.size(); ++k) {  // absolute: the functions cross zero
    EXPECT_NEAR(j0[k], static_cast<double>(integral(0, x[k])), kEps<T>) << x[k];
    EXPECT_NEAR(j1[k], static_cast<double>(integral(1, x[k])), kEps<T>) << x[k];
    const long double wronskian = static_cast<long double>(j1[k]) * y0[k] - static_cast<long double>(j0[k]) * y1[k];
    EXPECT_NEAR(static_cast<double>(wronskian * kPi * x[k] / 2), 1, 8 * static_cast<double>(kEps<T>)) << x[k];
  }
  EXPECT_NEAR(y0[9], 0.08825696421567695798, kEps<T>);  // at 1, the constant the Wronskian leaves open
}

TYPED_TEST(Bessel, WhatIsNotProvidedTouchesNothing) {
  using T = TypeParam;
  for (const auto operation : {TWIN_OF(i, erf), TWIN_OF(i, erfc), TWIN_OF(i, gamma), TWIN_OF(i, lgamma)}) {
    Vec<T> v{T(0.5), -2};
    EXPECT_EQ(operation(v) + operation(nullptr), -2);
    EXPECT_TRUE(exactly(v, {T(0.5), -2}));
  }
}

}  // namespace
}  // namespace sigvex_test
