#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> struct Trigonometry : ::testing::Test {};
TYPED_TEST_SUITE(Trigonometry, Precisions);

TYPED_TEST(Trigonometry, ExactResults) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, pi = static_cast<T>(kPi), over = 1 + kEps<T>, least = T(-0.0);
  const T denormal = std::numeric_limits<T>::denorm_min();
  // clang-format off
  check<T>({{TWIN_ROW(i, acos), kRealOnly, {1, -1, 0, over, -over, inf, -inf, nan}, {0, pi, pi / 2, 0, 0, 0, 0, nan}},
            {TWIN_ROW(i, asin), kRealOnly, {1, -1, least, over, -inf, nan}, {pi / 2, -pi / 2, least, 0, 0, nan}},
            {TWIN_ROW(i, atan), kRealOnly, {least, inf, -inf, nan}, {least, pi / 2, -pi / 2, nan}},
            {TWIN_ROW(i, cos), kRealOnly, {0, inf, nan}, {1, nan, nan}},
            {TWIN_ROW(i, sin), kRealOnly, {least, denormal, inf, nan}, {least, denormal, nan, nan}},
            {TWIN_ROW(i, tan), kRealOnly, {least, inf, nan}, {least, nan, nan}},
            {TWIN_ROW(i, cosh), kRealOnly, {0, -2000, inf, nan}, {1, inf, inf, nan}},
            {TWIN_ROW(i, sinh), kRealOnly, {least, -2000, inf, nan}, {least, -inf, inf, nan}},
            {TWIN_ROW(i, tanh), kRealOnly, {least, -2000, inf, nan}, {least, -1, 1, nan}},
            {TWIN_ROW(i, sinc), kRealOnly, {0, least, denormal, nan}, {1, 1, 1, nan}}});
  // clang-format on
}

// The C library is within two ulps; sinc adds its division.
TYPED_TEST(Trigonometry, ValuesAreAccurate) {
  using T = TypeParam;
  using L = long double;
  check<T>({{TWIN_ROW(i, acos), [](L x) { return std::acos(x); }, -1, 1, 2},
            {TWIN_ROW(i, asin), [](L x) { return std::asin(x); }, -1, 1, 2},
            {TWIN_ROW(i, atan), [](L x) { return std::atan(x); }, -50, 50, 2},
            {TWIN_ROW(i, cos), [](L x) { return std::cos(x); }, -1e4, 1e4, 2},
            {TWIN_ROW(i, sin), [](L x) { return std::sin(x); }, -1e4, 1e4, 2},
            {TWIN_ROW(i, tan), [](L x) { return std::tan(x); }, -1e4, 1e4, 2},
            {TWIN_ROW(i, cosh), [](L x) { return std::cosh(x); }, -30, 30, 2},
            {TWIN_ROW(i, sinh), [](L x) { return std::sinh(x); }, -30, 30, 2},
            {TWIN_ROW(i, tanh), [](L x) { return std::tanh(x); }, -3, 3, 2},
            {TWIN_ROW(i, sinc), [](L x) { return std::sin(x) / x; }, -1e4, 1e4, 2.5}});
}

}  // namespace
}  // namespace sigvex_test
