#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> struct FormOf : ::testing::Test {};
TYPED_TEST_SUITE(FormOf, Precisions);

TYPED_TEST(FormOf, ExactResults) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), least = T(-0.0);
  const T pi = static_cast<T>(kPi), c = std::cos(T(0.5)), s = std::sin(T(0.5));
  const std::vector<T> any = {1, least, nan, inf};
  // clang-format off
  check<T>({{TWIN_ROW(i, real), kReal, any, any},
            {TWIN_ROW(i, imag), kReal, any, {0, 0, 0, 0}},
            {TWIN_ROW(i, conj), kReal, any, any},
            {TWIN_ROW(i, rtop), kReal, any, any},
            {TWIN_ROW(i, ptor), kReal, any, any},
            {TWIN_ROW(i, rtoc), kToComplex, any, {1, 0, least, 0, nan, 0, inf, 0}},
            {TWIN_ROW(i, mag), kReal, {-2, least, -inf, nan}, {2, 0, inf, nan}},
            {TWIN_ROW(i, magsq), kReal, {-3, -huge, over, -inf, nan}, {9, huge * huge, huge, huge, huge}},
            {TWIN_ROW(i, phase), kReal, {-3, least, 0, 2, -inf, inf, nan}, {pi, 0, 0, 0, pi, 0, 0}},
            {TWIN_ROW(i, real), kToReal, any, {1, nan}},
            {TWIN_ROW(i, imag), kToReal, any, {least, inf}},
            {TWIN_ROW(i, conj), kComplex, any, {1, 0, nan, -inf}},
            {TWIN_ROW(i, rtoc), kComplex, any, any},
            {TWIN_ROW(i, mag), kToReal, {3, -4, 0, least, nan, -inf, nan, 1, 0, 3 * over}, {5, 0, inf, nan, 3 * over}},
            {TWIN_ROW(i, magsq), kToReal, {3, -4, huge, huge, over, 1, 1, -over, nan, 0, 0, inf},
             {25, 2 * (huge * huge), huge, huge, huge, huge}},
            {TWIN_ROW(i, phase), kToReal, {0, least, least, least, least, 1, -1, 0, -1, least, nan, 1, inf, inf},
             {0, 0, pi / 2, pi, -pi, nan, pi / 4}},
            // beyond the bound a part counts as the bound, NaN as the lower one
            {TWIN_ROW(i, rtop), kComplex, {3, -4, least, least, 0, inf, -inf, 0, nan, 1},
             {5, std::atan2(T(-4), T(3)), 0, 0, huge, pi / 2, huge, pi, huge, std::atan2(T(1), -huge)}},
            {TWIN_ROW(i, ptor), kComplex, {2, 0, 0, 7, T(-1.5), T(0.5)}, {2, 0, 0, 0, T(-1.5) * c, T(-1.5) * s}}});
  // clang-format on
}

}  // namespace
}  // namespace sigvex_test
