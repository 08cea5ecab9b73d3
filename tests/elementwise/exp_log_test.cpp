#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> struct ExpLog : ::testing::Test {};
TYPED_TEST_SUITE(ExpLog, Precisions);

constexpr long double kLn10 = 2.302585092994045684017991454684364208L;

TYPED_TEST(ExpLog, ExactResults) {
  using T = TypeParam;
  const bool single = std::is_same_v<T, float>;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), least = T(-0.0);
  const T tiny = kTiny<T>, under = std::nextafter(tiny, T(0)), small = std::sqrt(tiny) / 2, pi = static_cast<T>(kPi);
  const T floor = single ? std::log(tiny) : T(-708.3964185322641),
          floor10 = single ? std::log10(tiny) : T(-307.6526555685888);
  const T ln_huge = single ? std::log(huge) : T(230.25850929940458), log10_huge = single ? 15 : 100;
  const T ln10 = static_cast<T>(kLn10), log10e = static_cast<T>(0.4342944819032518);
  const T half = T(0.5), square = huge * huge, e = std::exp(T(1)), hundred = std::exp(2 * ln10);
  const T root = std::sqrt(huge), eighth = std::atan2(inf, inf) / 2;
  const InPlace<T> db20 = [](auto* v) { return TWIN_OF(i, db)(v, T(20)); };
  // clang-format off
  check<T>({{TWIN_ROW(i, log), kReal, {1, tiny, under, 0, least, -1, -inf, nan, inf},
             {0, std::log(tiny), floor, floor, floor, floor, floor, floor, inf}},
            {TWIN_ROW(i, log10), kReal, {1, 1000, tiny, under, least, -1, nan, inf},
             {0, 3, std::log10(tiny), floor10, floor10, floor10, floor10, inf}},
            {"db", db20, kReal, {10, under, -1, nan}, {20, 20 * floor10, 20 * floor10, 20 * floor10}},
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
            {"db", db20, kComplex, {0, 10, 0, 0}, {20, 20 * log10e * std::atan2(T(10), T(0)), 20 * floor10, 0}},
            {TWIN_ROW(i, exp), kComplex, {0, 0, 1000, 0, 1, -2, -inf, 1},
             {1, 0, huge, 0, e * std::cos(T(-2)), e * std::sin(T(-2)), 0, 0}},
            {TWIN_ROW(i, exp10), kComplex, {0, 0, 1000, 0, nan, 0, 2, 3},
             {1, 0, huge, 0, huge, 0, hundred * std::cos(3 * ln10), hundred * std::sin(3 * ln10)}},
            // out of range the root of the magnitude huge, towards half the angle
            {TWIN_ROW(i, sqrt), kComplex, {4, 0, 0, 0, over, 0, inf, inf, 0, nan},
             {2, 0, 0, 0, root, 0, root * std::cos(eighth), root * std::sin(eighth), nan, nan}}});
  // clang-format on
}

// The C library promises an ulp; exp10 scales its argument first, whose rounding the power magnifies by |x ln 10|.
TYPED_TEST(ExpLog, RealValuesAreAccurate) {
  using T = TypeParam;
  const double power = std::is_same_v<T, double> ? 90 : 14;
  check<T>({{TWIN_ROW(i, log), [](long double x) { return std::log(x); }, 1e-9, 1e9, 1},
            {TWIN_ROW(i, log10), [](long double x) { return std::log10(x); }, 1e-9, 1e9, 2},
            {TWIN_ROW(i, exp), [](long double x) { return std::exp(x); }, -30, 30, 1},
            {TWIN_ROW(i, exp10), [](long double x) { return std::exp(x * kLn10); }, -power, power, 3.5 * power},
            {TWIN_ROW(i, sqrt), [](long double x) { return std::sqrt(x); }, 0, 1e12, 0.5}});
}

TYPED_TEST(ExpLog, ComplexFunctionsAreInverse) {
  using T = TypeParam;
  std::vector<std::complex<T>> z;
  for (int k = 1; k < 200; ++k)
    z.push_back(std::polar(std::exp(T(0.1) * static_cast<T>(k - 100)), T(0.7) * static_cast<T>(k)));
  Vec<T> natural(z), decimal(z), root(z);
  EXPECT_EQ(TWIN_OF(i, log)(natural) + TWIN_OF(i, exp)(natural) + TWIN_OF(i, sqrt)(root), 0);
  EXPECT_EQ(TWIN_OF(i, log10)(decimal) + TWIN_OF(i, exp10)(decimal), 0);
  for (size_t k = 0; k < z.size(); ++k) {
    // an exponent up to 10 and an angle up to pi, each off by two ulps of itself, move the result by as much
    EXPECT_LE(std::abs(natural.at(k) - z[k]), 26 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_LE(std::abs(decimal.at(k) - z[k]), 26 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_LE(std::abs(root.at(k) * root.at(k) - z[k]), 12 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_GE(root.at(k).real(), 0) << k;  // the principal root
  }
}

}  // namespace
}  // namespace sigvex_test
