// Arithmetic with constants, and changes between real, complex and polar form.
#include "elementwise/inplace.h"

namespace sigvex_test::arithmetic_test {

SUITE_OF_BOTH(Arithmetic);

TEST_BOTH(Arithmetic, ExactResults) {
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), least = T(-0.0);
  const T max = std::numeric_limits<T>::max(), k = 1 / T(25);
  // clang-format off
  check<T>({{TWIN_ROW(i, abs), kRealOnly, {-2, least, -inf, nan, 3}, {2, 0, inf, nan, 3}},
            {TWIN_ROW(i, neg), kReal, {-2, least, 0, inf, nan}, {2, 0, least, -inf, nan}},
            {TWIN_ROW(i, neg), kComplex, {1, least}, {-1, 0}},
            {"scale", WITH(i, scale, T(-2.5)), kReal, {2, least, inf, nan, max}, {-5, 0, -inf, nan, -inf}},
            {"scale", WITH(i, scale, T(-2.5)), kComplex, {2, -4}, {-5, 10}},
            {"offset", WITH(i, offset, 3), kReal, {2, -3, inf, nan}, {5, 0, inf, nan}},
            {"offset", WITH(i, offset, 3), kComplex, {2, -4, nan, nan}, {5, -4, nan, nan}},
            {"cscale", WITH(i, cscale, 2, -3), kToComplex, {1, -2, 0}, {2, -3, -4, 6, 0, least}},
            {"cscale", WITH(i, cscale, 2, -3), kComplex, {1, 2, nan, 0}, {8, 1, nan, nan}},
            {TWIN_ROW(i, timesi), kToComplex, {1, least, 3}, {0, 1, 0, least, 0, 3}},
            {TWIN_ROW(i, timesi), kComplex, {1, 2, 0, least}, {-2, 1, 0, 0}},
            {TWIN_ROW(i, square), kReal, {-3, least, -inf, nan}, {9, 0, inf, nan}},
            {TWIN_ROW(i, square), kComplex, {3, 2, 0, -1}, {5, 12, -1, least}},
            {TWIN_ROW(i, recip), kReal, {4, 0, least, -inf, inf, nan}, {T(0.25), 0, least, least, 0, nan}},
            {TWIN_ROW(i, recip), kComplex, {3, -4, 0, least, -1, 0}, {3 * k, 4 * k, 0, 0, -1, least}},
            {TWIN_ROW(i, recip), kComplex, {over, 2, nan, -inf, huge, 0},
             {over * (1 / huge), -2 * (1 / huge), nan, inf, huge * (1 / (huge * huge)), least}}});
  // clang-format on
}

TEST_BOTH(Arithmetic, ResultsOfChangesOfForm) {
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
            {TWIN_ROW(i, ptor), kComplex, {2, 0, 0, 7, T(-1.5), T(0.5)}, {2, 0, 0, 0, T(-1.5) * c, T(-1.5) * s}}},
           kRoundings);
  // clang-format on
}

TEST_BOTH(Arithmetic, AbsKeepsTheBitsOfNaN) {
  std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t> bits = 0;
  Vec<T> v{0};
  std::memset(v->data, 0xFF, sizeof(T));
  EXPECT_EQ(TWIN_OF(i, abs)(v), 0);
  std::memcpy(&bits, v->data, sizeof bits);
  EXPECT_EQ(bits, ~decltype(bits){0} >> 1);
}

TEST_BOTH(Arithmetic, LimitClipsBothPartsAndReports) {
  const T inf = kInf<T>, nan = kNaN<T>, least = T(-0.0);
  const auto limit = TWIN_OF(i, limit);
  const struct {
    T a, b;
    std::vector<T> in, out;
    int32_t clipped;
  } rows[] = {{5, -5, {-6, -5, least, 6}, {-5, -5, least, 5}, 1},
              {-5, 5, {-5, 5}, {-5, 5}, 0},
              {-1, 1, {0, nan}, {0, -1}, 1},
              {-inf, inf, {inf, -inf}, {inf, -inf}, 0}};
  for (const auto& row : rows) {
    int32_t clipped = 9;
    const InPlace<T> call = [&](auto* v) { return limit(v, 77, row.a, row.b, &clipped); };
    check<T>({{"limit", call, kReal, row.in, row.out}, {"limit", call, kComplex, row.in, row.out}});
    EXPECT_EQ(clipped, row.clipped);
  }
  Vec<T> v{-6, 0};
  int32_t clipped = 9;
  EXPECT_EQ(limit(v, 0, nan, 1, &clipped) + limit(v, 0, 1, nan, &clipped), -2);
  EXPECT_TRUE(clipped == 9 && exactly(v, {-6, 0}));
  EXPECT_EQ(limit(v, 0, -5, 5, nullptr), 0);
  EXPECT_TRUE(exactly(v, {-5, 0}));
}

}  // namespace sigvex_test::arithmetic_test
