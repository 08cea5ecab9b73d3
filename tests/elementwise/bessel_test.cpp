#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

TWIN(i, besi0);
TWIN(i, besj0);
TWIN(i, besj1);
TWIN(i, besy0);
TWIN(i, besy1);
TWIN(i, erf);
TWIN(i, erfc);
TWIN(i, gamma);
TWIN(i, lgamma);

template <class T> struct Bessel : ::testing::Test {};
TYPED_TEST_SUITE(Bessel, Precisions);

// The power series, whose terms are all positive, to its end.
long double i0(long double x) {
  long double sum = 0, term = 1;
  for (int k = 1; term > sum * 1e-22L; ++k) {
    sum += term;
    term *= x / 2 / k * (x / 2 / k);
  }
  return sum;
}

// (1/pi) integral of cos(n t - x sin t) over 0..pi. The integrand is periodic and smooth, so that the trapezoidal rule
// is exact once its points outnumber the argument.
long double jn(int n, long double x) {
  constexpr int kPoints = 200;
  long double sum = 0;
  for (int k = 0; k < kPoints; ++k) {
    const long double t = 2 * kPi * k / kPoints;
    sum += std::cos(n * t - x * std::sin(t));
  }
  return sum / kPoints;
}

TYPED_TEST(Bessel, Edges) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>;
  const T limit = static_cast<T>(std::log(static_cast<long double>(huge))), over = std::nextafter(limit, inf);
  check_edges<T>(
      {{"besi0", besi0.of<T>(), {0, T(-0.0), over, -over, inf, -inf, nan}, {1, 1, huge, huge, huge, huge, huge}},
       {"besj0", besj0.of<T>(), {0, inf, nan}, {1, 0, nan}},
       {"besj1", besj1.of<T>(), {0, inf, nan}, {0, 0, nan}},
       {"besy0", besy0.of<T>(), {0, inf, nan}, {-inf, 0, nan}},
       {"besy1", besy1.of<T>(), {0, inf, nan}, {-inf, 0, nan}}});
  Vec<T> v{limit, -limit};
  EXPECT_EQ(besi0(v.get()), 0);
  EXPECT_EQ(v[0], v[1]);
  EXPECT_LT(v[0], huge / 10);  // still the function: I0 is far below the exponential there
}

// Up to 20 the argument of the series, (x/2)^2, is off by half an epsilon, which the function magnifies up to ten times
// (by x/2 times the ratio of I1 and I0), and the Horner steps round as often; an ulp may be half an epsilon. Above 20
// an exponential, a root and three products round once each, and the series stops within an epsilon. Single precision
// is computed in double.
TYPED_TEST(Bessel, ModifiedIsAccurateOnBothSidesOfTheSeam) {
  using T = TypeParam;
  const bool single = std::is_same_v<T, float>;
  const double end = single ? 34.5 : 230.2;
  EXPECT_LE(max_ulp<T>(besi0.of<T>(), i0, 0, 20), single ? 0.51 : 20);
  EXPECT_LE(max_ulp<T>(besi0.of<T>(), i0, -end, std::nextafter(T(-20), T(-21))), single ? 0.51 : 6);
}

TYPED_TEST(Bessel, FirstKindMatchesItsIntegral) {
  using T = TypeParam;
  std::vector<T> x;
  for (int k = -400; k <= 400; ++k) x.push_back(T(0.1) * static_cast<T>(k));
  Vec<T> zero(x), one(x);
  EXPECT_EQ(besj0(zero.get()), 0);
  EXPECT_EQ(besj1(one.get()), 0);
  for (size_t k = 0; k < x.size(); ++k) {  // absolute: the functions cross zero
    EXPECT_NEAR(zero[k], static_cast<double>(jn(0, x[k])), kEps<T>) << x[k];
    EXPECT_NEAR(one[k], static_cast<double>(jn(1, x[k])), kEps<T>) << x[k];
  }
}

TYPED_TEST(Bessel, SecondKindFollowsFromTheWronskian) {
  using T = TypeParam;
  std::vector<T> x;
  for (int k = 1; k <= 400; ++k) x.push_back(T(0.1) * static_cast<T>(k));
  Vec<T> j0(x), j1(x), y0(x), y1(x), one{1}, also_one{1};
  EXPECT_EQ(besj0(j0.get()) + besj1(j1.get()) + besy0(y0.get()) + besy1(y1.get()), 0);
  for (size_t k = 0; k < x.size(); ++k) {
    const double w = static_cast<double>(j1[k]) * static_cast<double>(y0[k]) -
                     static_cast<double>(j0[k]) * static_cast<double>(y1[k]);
    const double exact = static_cast<double>(2 / (kPi * static_cast<long double>(x[k])));
    EXPECT_NEAR(w / exact, 1, 8 * static_cast<double>(kEps<T>)) << x[k];
  }
  EXPECT_EQ(besy0(one.get()), 0);
  EXPECT_EQ(besy1(also_one.get()), 0);
  EXPECT_NEAR(one[0], 0.08825696421567695798, kEps<T> / 8);
  EXPECT_NEAR(also_one[0], -0.78121282130028871655, kEps<T>);
}

TYPED_TEST(Bessel, EveryMemberRefusesComplex) {
  using T = TypeParam;
  check_refuses_complex<T>({besi0.of<T>(), besj0.of<T>(), besj1.of<T>(), besy0.of<T>(), besy1.of<T>()});
}

TYPED_TEST(Bessel, WhatIsNotProvidedTouchesNothing) {
  using T = TypeParam;
  for (const auto operation : {erf.of<T>(), erfc.of<T>(), gamma.of<T>(), lgamma.of<T>()}) {
    Vec<T> v{T(0.5), -2};
    EXPECT_EQ(operation(v), -1);
    EXPECT_TRUE(exactly(v, {T(0.5), -2}));
    EXPECT_EQ(operation(nullptr), -1);
  }
}

}  // namespace
}  // namespace sigvex_test
