// Exponentials, logarithms and roots, trigonometry, Bessel functions.
#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++

#include "elementwise/inplace.h"
#include "support/cpu_targets.h"

namespace sigvex_test::functions_test {

SUITE_OF_BOTH(Functions);

TEST_BOTH(Functions, ExponentialsLogarithmsAndRoots) {
  const bool single = std::is_same_v<T, float>;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), least = T(-0.0);
  const T tiny = kTiny<T>, under = std::nextafter(tiny, T(0)), small = std::sqrt(tiny) / 2, pi = static_cast<T>(kPi);
  const T floor = single ? std::log(tiny) : T(-708.3964185322641),
          floor10 = single ? std::log10(tiny) : T(-307.6526555685888);
  const T ln_huge = single ? std::log(huge) : T(230.25850929940458), log10_huge = single ? 15 : 100;
  const T ln10 = static_cast<T>(2.302585092994045684L), log10e = static_cast<T>(0.4342944819032518);
  const T half = T(0.5), square = huge * huge, e = std::exp(T(1)), hundred = std::exp(2 * ln10);
  const T root = std::sqrt(huge), eighth = std::atan2(inf, inf) / 2;
  // clang-format off
  check<T>({{TWIN_ROW(i, log), kReal, {1, tiny, under, 0, least, -1, -inf, nan, inf},
             {0, std::log(tiny), floor, floor, floor, floor, floor, floor, inf}},
            {TWIN_ROW(i, log10), kReal, {1, 1000, tiny, under, least, -1, nan, inf},
             {0, 3, std::log10(tiny), floor10, floor10, floor10, floor10, inf}},
            {"db", WITH(i, db, 20), kReal, {10, under, -1, nan}, {20, 20 * floor10, 20 * floor10, 20 * floor10}},
            {TWIN_ROW(i, exp), kReal, {0, least, ln_huge, std::nextafter(ln_huge, inf), 1000, inf, -1000, -inf, nan},
             {1, 1, std::exp(ln_huge), huge, huge, huge, 0, 0, nan}},
            {TWIN_ROW(i, exp10), kReal, {0, std::nextafter(log10_huge, inf), inf, log10_huge, -huge, -inf, nan},
             {1, huge, huge, std::exp(log10_huge * ln10), 0, huge, huge}},
            {TWIN_ROW(i, sqrt), kReal, {4, 0, least, -4, -inf, nan, inf}, {2, 0, least, 0, 0, 0, inf}},
            // capped: |z|^2 counts as huge itself
            {TWIN_ROW(i, log), kComplex, {0, 1, -1, 0, 0, 0, small, small, huge, 0, over, 0, -inf, -inf, 1, nan},
             {0, pi / 2, 0, pi, floor, 0, floor, 0, half * std::log(square), 0, half * std::log(huge), 0,
              half * std::log(huge), -3 * pi / 4, half * std::log(huge), std::atan2(-huge, T(1))}},
            // clamped: |z|^2 is taken of the parts at the bound
            {TWIN_ROW(i, log10), kComplex, {10, 0, 0, 0, small, small, inf, over, nan, 0},
             {1, 0, floor10, 0, floor10, 0, half * std::log10(square + square), log10e * std::atan2(huge, huge),
              half * std::log10(square), log10e * pi}},
            {"db", WITH(i, db, 20), kComplex, {0, 10, 0, 0}, {20, 20 * log10e * std::atan2(T(10), T(0)), 20 * floor10, 0}},
            {TWIN_ROW(i, exp), kComplex, {0, 0, 1000, 0, 1, -2, -inf, 1},
             {1, 0, huge, 0, e * std::cos(T(-2)), e * std::sin(T(-2)), 0, 0}},
            // the angle is a number of the precision, however far it is
            {TWIN_ROW(i, exp10), kComplex, {0, 0, 1000, 0, nan, 0, 2, 3, 0, 1000},
             {1, 0, huge, 0, huge, 0, hundred * std::cos(3 * ln10), hundred * std::sin(3 * ln10), std::cos(1000 * ln10),
              std::sin(1000 * ln10)}},
            // out of range the root of the magnitude huge, towards half the angle
            // and where the squares vanish, 0
            {TWIN_ROW(i, sqrt), kComplex, {4, 0, 0, 0, over, 0, inf, inf, 0, nan, tiny, -tiny, least, -tiny},
             {2, 0, 0, 0, root, 0, root * std::cos(eighth), root * std::sin(eighth), nan, nan, 0, 0, 0, 0}}},
           kRoundings);
  // clang-format on
}

TEST_BOTH(Functions, OfComplexPointsAreInverse) {
  std::vector<std::complex<T>> z;
  for (int k = 1; k < 200; ++k) z.push_back(std::polar(std::exp(T(0.1) * T(k - 100)), T(0.7) * T(k)));
  Vec<T> natural(z), decimal(z), root(z);
  EXPECT_EQ(TWIN_OF(i, log)(natural) + TWIN_OF(i, exp)(natural) + TWIN_OF(i, sqrt)(root), 0);
  EXPECT_EQ(TWIN_OF(i, log10)(decimal) + TWIN_OF(i, exp10)(decimal), 0);
  for (size_t k = 0; k < z.size(); ++k) {
    // an exponent up to 10 and an angle up to pi, each off by two ulps of itself, move the result by as much
    for (const Vec<T>* v : {&natural, &decimal}) EXPECT_LE(std::abs(v->at(k) - z[k]), 26 * kEps<T> * std::abs(z[k]));
    EXPECT_LE(std::abs(root.at(k) * root.at(k) - z[k]), 12 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_GE(root.at(k).real(), 0) << k;  // the principal root
  }
}

TEST_BOTH(Functions, TrigonometryAndBesselAtTheirEdges) {
  const T inf = kInf<T>, nan = kNaN<T>, pi = static_cast<T>(kPi), over = 1 + kEps<T>, least = T(-0.0), huge = kHuge<T>;
  const T denormal = std::numeric_limits<T>::denorm_min(), half = Vec<T>{T(0.5)}[0];  // at run time, as in the library
  const T above = std::nextafter(static_cast<T>(std::log(static_cast<long double>(huge))), inf);
  // clang-format off
  check<T>({{TWIN_ROW(i, acos), kRealOnly, {1, -1, half, over, -over, inf, -inf, nan},
             {0, pi, std::acos(half), 0, 0, 0, 0, nan}},
            {TWIN_ROW(i, asin), kRealOnly, {1, half, least, over, -inf, nan}, {pi / 2, std::asin(half), least, 0, 0, nan}},
            {TWIN_ROW(i, atan), kRealOnly, {least, half, inf, nan}, {least, std::atan(half), pi / 2, nan}},
            {TWIN_ROW(i, cos), kRealOnly, {0, half, inf, nan}, {1, std::cos(half), nan, nan}},
            {TWIN_ROW(i, sin), kRealOnly, {least, half, denormal, inf, nan}, {least, std::sin(half), denormal, nan, nan}},
            {TWIN_ROW(i, tan), kRealOnly, {least, half, inf, nan}, {least, std::tan(half), nan, nan}},
            {TWIN_ROW(i, cosh), kRealOnly, {half, -2000, inf, nan}, {std::cosh(half), inf, inf, nan}},
            {TWIN_ROW(i, sinh), kRealOnly, {least, half, -2000, inf, nan}, {least, std::sinh(half), -inf, inf, nan}},
            {TWIN_ROW(i, tanh), kRealOnly, {least, half, -2000, inf, nan}, {least, std::tanh(half), -1, 1, nan}},
            {TWIN_ROW(i, sinc), kRealOnly, {0, least, half, denormal, nan}, {1, 1, std::sin(half) / half, 1, nan}},
            {TWIN_ROW(i, besi0), kRealOnly, {0, least, above, -above, inf, -inf, nan}, {1, 1, huge, huge, huge, huge, huge}},
            {TWIN_ROW(i, besj0), kRealOnly, {0, inf, nan}, {1, 0, nan}},
            {TWIN_ROW(i, besj1), kRealOnly, {0, inf, nan}, {0, 0, nan}},
            {TWIN_ROW(i, besy0), kRealOnly, {0, inf, nan}, {-inf, 0, nan}},
            {TWIN_ROW(i, besy1), kRealOnly, {0, inf, nan}, {-inf, 0, nan}}},
           kRoundings);
  // clang-format on
  for (const auto missing : {TWIN_OF(i, erf), TWIN_OF(i, erfc), TWIN_OF(i, gamma), TWIN_OF(i, lgamma)}) {
    Vec<T> v{half, -2};
    EXPECT_EQ(missing(v) + missing(nullptr), -2);
    EXPECT_EQ(reinterpret_cast<void*>(missing), reinterpret_cast<void*>(dspi_erf));  // one function in either precision
    EXPECT_TRUE(exactly(v, {half, -2}));
  }
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
TEST_BOTH(Functions, ModifiedBesselIsAccurateUpToTheLimit) {
  const bool single = std::is_same_v<T, float>;
  const double end = single ? 34.53877 : 230.2585;
  std::vector<T> x;
  for (double at = -end; at <= end; at += 0.03) x.push_back(static_cast<T>(at));
  for_each_cpu_target([&](const char* target) {
    Vec<T> v(x);
    EXPECT_EQ(TWIN_OF(i, besi0)(v), 0);
    for (size_t k = 0; k < x.size(); ++k) {
      const long double exact = i0(x[k]), ulps = single ? 0.51 : std::abs(x[k]) <= 20 ? 16 : 6;
      const long double ulp = std::ldexp(static_cast<long double>(kEps<T>), std::ilogb(exact));
      ASSERT_LE(std::abs(v[k] - exact), ulps * ulp) << x[k] << target;
    }
  });
}

// Below, at and above the edges of the kernels, 2^-1000, 2, 2^19 and 2^40, and at the zeros. In double the C library's own
// error is up to 4 units in the last place of the amplitude, ours up to 3; single precision is that, rounded.
TEST_BOTH(Functions, BesselOfBothKindsMatchTheCLibrary) {
  struct Row {
    InPlace<T> operation;
    double (*exact)(double);
  };
  std::vector<T> x = {0, T(-0.0), kInf<T>, -kInf<T>, kNaN<T>, kTiny<T> / 4, T(1e-302), 2, std::nextafter(T(2), T(0)),
                      -1};
  for (int k = 0; k < 2000; ++k) x.push_back(T(0.02) * static_cast<T>(k)), x.push_back(-x.back());
  for (int k = 0; k < 900; ++k) x.push_back(std::exp(T(0.1) * static_cast<T>(k % 2 ? k - 850 : k - 80)));
  for_each_cpu_target([&](const char* target) {
    for (const Row& row : {Row{TWIN_OF(i, besj0), ::j0},
                           {TWIN_OF(i, besj1), ::j1},
                           {TWIN_OF(i, besy0), ::y0},
                           {TWIN_OF(i, besy1), ::y1}}) {
      Vec<T> v(x);
      EXPECT_EQ(row.operation(v), 0);
      for (size_t k = 0; k < x.size(); ++k) {
        const double at = std::abs(static_cast<double>(x[k])), exact = row.exact(static_cast<double>(x[k]));
        if (!(at > 0x1p-1000 && at < 0x1p40 && std::isfinite(exact))) {
          ASSERT_TRUE(identical(v[k], static_cast<T>(exact))) << x[k] << target;
          continue;
        }
        const double amplitude = at < 0.5 ? 0 : 0.8 / std::sqrt(std::max(at, 1.0)), size = std::abs(exact);
        const double rounding =
            std::is_same_v<T, float> ? kEps<T> / 2 * size + std::numeric_limits<T>::denorm_min() : 0;
        ASSERT_NEAR(v[k], exact, rounding + 8 * kEps<double> * std::max(size, amplitude)) << x[k] << target;
      }
    }
  });
}

}  // namespace sigvex_test::functions_test
