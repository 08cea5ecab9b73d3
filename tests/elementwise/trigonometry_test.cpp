#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

TWIN(i, acos);
TWIN(i, asin);
TWIN(i, atan);
TWIN(i, cos);
TWIN(i, sin);
TWIN(i, tan);
TWIN(i, cosh);
TWIN(i, sinh);
TWIN(i, tanh);
TWIN(i, sinc);

template <class T> struct Trigonometry : ::testing::Test {};
TYPED_TEST_SUITE(Trigonometry, Precisions);

TYPED_TEST(Trigonometry, Edges) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, half_pi = static_cast<T>(kPi / 2), pi = static_cast<T>(kPi), over = 1 + kEps<T>;
  const T zero = T(-0.0), denormal = std::numeric_limits<T>::denorm_min();
  check_edges<T>(
      {{"acos", acos.of<T>(), {1, -1, 0, over, -over, inf, -inf, nan}, {0, pi, half_pi, 0, 0, 0, 0, nan}},
       {"asin", asin.of<T>(), {1, -1, zero, over, -over, inf, -inf, nan}, {half_pi, -half_pi, zero, 0, 0, 0, 0, nan}},
       {"atan", atan.of<T>(), {zero, inf, -inf, nan}, {zero, half_pi, -half_pi, nan}},
       {"cos", cos.of<T>(), {0, inf, nan}, {1, nan, nan}},
       {"sin", sin.of<T>(), {zero, denormal, inf, nan}, {zero, denormal, nan, nan}},
       {"tan", tan.of<T>(), {zero, inf, nan}, {zero, nan, nan}},
       {"cosh", cosh.of<T>(), {0, -2000, inf, nan}, {1, inf, inf, nan}},
       {"sinh", sinh.of<T>(), {zero, -2000, inf, nan}, {zero, -inf, inf, nan}},
       {"tanh", tanh.of<T>(), {zero, -2000, inf, nan}, {zero, -1, 1, nan}},
       {"sinc", sinc.of<T>(), {0, zero, denormal, nan}, {1, 1, 1, nan}}});
}

// The C library is within two ulps; sinc adds its division.
TYPED_TEST(Trigonometry, ValuesAreAccurate) {
  using T = TypeParam;
  using L = long double;
  struct Row {
    const char* name;
    InPlace<T> operation;
    L (*reference)(L);
    double low, high;
  };
  const Row rows[] = {{"acos", acos.of<T>(), [](L x) { return std::acos(x); }, -1, 1},
                      {"asin", asin.of<T>(), [](L x) { return std::asin(x); }, -1, 1},
                      {"atan", atan.of<T>(), [](L x) { return std::atan(x); }, -50, 50},
                      {"cos", cos.of<T>(), [](L x) { return std::cos(x); }, -1e4, 1e4},
                      {"sin", sin.of<T>(), [](L x) { return std::sin(x); }, -1e4, 1e4},
                      {"tan", tan.of<T>(), [](L x) { return std::tan(x); }, -1e4, 1e4},
                      {"cosh", cosh.of<T>(), [](L x) { return std::cosh(x); }, -30, 30},
                      {"sinh", sinh.of<T>(), [](L x) { return std::sinh(x); }, -30, 30},
                      {"tanh", tanh.of<T>(), [](L x) { return std::tanh(x); }, -3, 3},
                      {"sinc", sinc.of<T>(), [](L x) { return std::sin(x) / x; }, -1e4, 1e4}};
  for (const Row& row : rows) EXPECT_LE(max_ulp<T>(row.operation, row.reference, row.low, row.high), 2.5) << row.name;
}

TYPED_TEST(Trigonometry, EveryMemberRefusesComplex) {
  using T = TypeParam;
  check_refuses_complex<T>({acos.of<T>(), asin.of<T>(), atan.of<T>(), cos.of<T>(), sin.of<T>(), tan.of<T>(),
                            cosh.of<T>(), sinh.of<T>(), tanh.of<T>(), sinc.of<T>()});
}

}  // namespace
}  // namespace sigvex_test
