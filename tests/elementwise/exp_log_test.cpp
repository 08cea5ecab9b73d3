#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

TWIN(i, exp);
TWIN(i, exp10);
TWIN(i, log);
TWIN(i, log10);
TWIN(i, db);
TWIN(i, sqrt);

template <class T> struct ExpLog : ::testing::Test {};
TYPED_TEST_SUITE(ExpLog, Precisions);

constexpr long double kLn10 = 2.302585092994045684017991454684364208L;
template <class T> constexpr T kTiny = std::numeric_limits<T>::min();
template <class T> const T kLnTiny = static_cast<T>(std::log(static_cast<long double>(kTiny<T>)));
template <class T> const T kLog10Tiny = static_cast<T>(std::log10(static_cast<long double>(kTiny<T>)));
template <class T> const auto kDb20 = [](Record<T>* v) { return db(v, T(20)); };

TEST(ExpLogDouble, FloorsAndLimitsAreTheStatedNumbers) {
  Vec<double> v{0.0, -1.0};
  EXPECT_EQ(dspi_log(v), 0);
  EXPECT_TRUE(exactly(v, {-708.3964185322641, -708.3964185322641}));
  Vec<double> w{0.0, -1.0};
  EXPECT_EQ(dspi_db(w, 20), 0);
  EXPECT_TRUE(exactly(w, {20 * -307.6526555685888, 20 * -307.6526555685888}));
  const double ln_huge = 230.25850929940458;
  Vec<double> x{1000, std::nextafter(ln_huge, 1e3), ln_huge};
  EXPECT_EQ(dspi_exp(x), 0);
  EXPECT_TRUE(exactly(x, {1e100, 1e100, std::exp(ln_huge)}));
}

TYPED_TEST(ExpLog, EdgesOfRealSamples) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, tiny = kTiny<T>, under = std::nextafter(tiny, T(0));
  const T floor = kLnTiny<T>, floor10 = kLog10Tiny<T>, top = std::is_same_v<T, double> ? T(100) : T(15);
  check_edges<T>({{"log",
                   log.of<T>(),
                   {1, tiny, under, 0, T(-0.0), -1, -inf, nan, inf},
                   {0, std::log(tiny), floor, floor, floor, floor, floor, floor, inf}},
                  {"log10",
                   log10.of<T>(),
                   {1, 1000, tiny, under, T(-0.0), -1, nan, inf},
                   {0, 3, std::log10(tiny), floor10, floor10, floor10, floor10, inf}},
                  {"db", kDb20<T>, {10, under, -1, nan}, {20, 20 * floor10, 20 * floor10, 20 * floor10}},
                  {"exp", exp.of<T>(), {0, T(-0.0), inf, 1000, -inf, -1000, nan}, {1, 1, huge, huge, 0, 0, nan}},
                  {"exp10",
                   exp10.of<T>(),
                   {0, std::nextafter(top, inf), inf, top, -huge, -inf, nan},
                   {1, huge, huge, std::exp(top * static_cast<T>(kLn10)), 0, huge, huge}},
                  {"sqrt", sqrt.of<T>(), {4, 0, T(-0.0), -4, -inf, nan, inf}, {2, 0, T(-0.0), 0, 0, 0, inf}}});
}

TYPED_TEST(ExpLog, EdgesOfComplexPoints) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf);
  const T floor = kLnTiny<T>, floor10 = kLog10Tiny<T>, small = std::sqrt(kTiny<T>) / 2;
  const T capped = T(0.5) * std::log(huge), pi = static_cast<T>(kPi), root = std::sqrt(huge);
  const T log10e = static_cast<T>(1 / kLn10), both = std::log10(huge * huge + huge * huge);
  constexpr Form kComplex = Form::kComplex;
  check_edges<T>(
      {// capped: |z|^2 counts as huge itself
       {"log",
        log.of<T>(),
        {0, 1, -1, 0, 0, 0, small, small, huge, 0, over, 0, -inf, -inf, 1, nan},
        {0, pi / 2, 0, pi, floor, 0, floor, 0, T(0.5) * std::log(huge * huge), 0, capped, 0, capped, -3 * pi / 4,
         capped, std::atan2(-huge, T(1))},
        kComplex},
       // clamped: |z|^2 is taken of the parts at the bound
       {"log10",
        log10.of<T>(),
        {10, 0, 0, 0, small, small, inf, over, nan, 0},
        {1, 0, floor10, 0, floor10, 0, T(0.5) * both, log10e * std::atan2(huge, huge), T(0.5) * std::log10(huge * huge),
         log10e * pi},
        kComplex},
       {"db", kDb20<T>, {0, 10, 0, 0}, {20, 20 * log10e * std::atan2(T(10), T(0)), 20 * floor10, 0}, kComplex},
       {"exp",
        exp.of<T>(),
        {0, 0, 1000, 0, 1, -2, -inf, 1},
        {1, 0, huge, 0, std::exp(T(1)) * std::cos(T(-2)), std::exp(T(1)) * std::sin(T(-2)), 0, 0},
        kComplex},
       {"exp10",
        exp10.of<T>(),
        {0, 0, 1000, 0, nan, 0, 2, 3},
        {1, 0, huge, 0, huge, 0, std::exp(2 * static_cast<T>(kLn10)) * std::cos(3 * static_cast<T>(kLn10)),
         std::exp(2 * static_cast<T>(kLn10)) * std::sin(3 * static_cast<T>(kLn10))},
        kComplex},
       // out of range the root of the magnitude huge, towards half the angle
       {"sqrt",
        sqrt.of<T>(),
        {4, 0, 0, 0, over, 0, inf, inf, 0, nan},
        {2, 0, 0, 0, root, 0, root * std::cos(std::atan2(inf, inf) / 2), root * std::sin(std::atan2(inf, inf) / 2), nan,
         nan},
        kComplex}});
}

TYPED_TEST(ExpLog, RealValuesAreAccurate) {
  using T = TypeParam;
  using L = long double;
  struct Row {
    const char* name;
    InPlace<T> operation;
    std::function<L(L)> reference;
    double low, high;
    double ulp;
  };
  // The C library promises an ulp; exp10 scales its argument first, whose rounding the power magnifies by |x ln 10|,
  // and db multiplies by its factor afterwards.
  const double power = std::is_same_v<T, double> ? 90 : 14;
  const Row rows[] = {
      {"log", log.of<T>(), [](L x) { return std::log(x); }, 1e-9, 1e9, 1},
      {"log10", log10.of<T>(), [](L x) { return std::log10(x); }, 1e-9, 1e9, 2},
      {"db", kDb20<T>, [](L x) { return 20 * std::log10(x); }, 1e-9, 1e9, 3},
      {"exp", exp.of<T>(), [](L x) { return std::exp(x); }, -30, 30, 1},
      {"exp10", exp10.of<T>(), [](L x) { return std::exp(x * kLn10); }, -power, power, 1 + 1.5 * power * 2.31},
      {"sqrt", sqrt.of<T>(), [](L x) { return std::sqrt(x); }, 0, 1e12, 0.5}};
  for (const Row& row : rows)
    EXPECT_LE((max_ulp<T>(row.operation, row.reference, row.low, row.high)), row.ulp) << row.name;
}

TYPED_TEST(ExpLog, ComplexLogarithmAndExponentialAreInverse) {
  using T = TypeParam;
  std::vector<std::complex<T>> z;
  for (int k = 1; k < 200; ++k)
    z.push_back(std::polar(std::exp(T(0.1) * static_cast<T>(k - 100)), T(0.7) * static_cast<T>(k)));
  Vec<T> v(z), root(z), scaled(z), plain(z);
  EXPECT_EQ(log(v.get()), 0);
  EXPECT_EQ(exp(v.get()), 0);
  EXPECT_EQ(sqrt(root.get()), 0);
  EXPECT_EQ(db(scaled.get(), T(1)), 0);
  EXPECT_EQ(log10(plain.get()), 0);
  EXPECT_TRUE(exactly(plain, scaled.samples()));
  EXPECT_EQ(exp10(plain.get()), 0);
  for (size_t k = 0; k < z.size(); ++k) {
    // an exponent up to 10 and an angle up to pi, each off by an ulp of itself, move the result by that much
    EXPECT_LE(std::abs(v.at(k) - z[k]), 16 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_LE(std::abs(plain.at(k) - z[k]), 32 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_LE(std::abs(root.at(k) * root.at(k) - z[k]), 12 * kEps<T> * std::abs(z[k])) << k;
    EXPECT_GE(root.at(k).real(), 0) << k;  // the principal root
  }
}

TYPED_TEST(ExpLog, EverySizeAgreesWithTheScalarRule) {
  using T = TypeParam;
  check_sizes<T>("sqrt", sqrt.of<T>(), [](T x) { return x >= 0 ? std::sqrt(x) : T(0); });
  check_sizes<T>("exp", exp.of<T>(), [](T x) { return std::exp(x); });
}

}  // namespace
}  // namespace sigvex_test
