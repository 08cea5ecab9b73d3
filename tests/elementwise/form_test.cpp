#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

TWIN(i, rtoc);
TWIN(i, real);
TWIN(i, imag);
TWIN(i, conj);
TWIN(i, mag);
TWIN(i, magsq);
TWIN(i, phase);
TWIN(i, rtop);
TWIN(i, ptor);

template <class T> struct FormOf : ::testing::Test {};
TYPED_TEST_SUITE(FormOf, Precisions);

TYPED_TEST(FormOf, EdgesOfRealSamples) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), pi = static_cast<T>(kPi);
  const std::vector<T> any = {1, T(-0.0), inf, nan};
  check_edges<T>({{"real", real.of<T>(), any, any},
                  {"imag", imag.of<T>(), any, {0, 0, 0, 0}},
                  {"conj", conj.of<T>(), any, any},
                  {"rtop", rtop.of<T>(), any, any},
                  {"ptor", ptor.of<T>(), any, any},
                  {"rtoc", rtoc.of<T>(), any, {1, 0, T(-0.0), 0, inf, 0, nan, 0}, Form::kReal, Form::kComplex},
                  {"mag", mag.of<T>(), {-2, T(-0.0), -inf, nan}, {2, 0, inf, nan}},
                  {"magsq", magsq.of<T>(), {-3, -huge, over, -inf, nan}, {9, huge * huge, huge, huge, huge}},
                  {"phase", phase.of<T>(), {-3, T(-0.0), 0, 2, -inf, inf, nan}, {pi, 0, 0, 0, pi, 0, 0}}});
}

TYPED_TEST(FormOf, EdgesOfComplexPoints) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), pi = static_cast<T>(kPi);
  const std::vector<T> any = {1, T(-0.0), nan, inf};
  constexpr Form kReal = Form::kReal, kComplex = Form::kComplex;
  check_edges<T>({{"real", real.of<T>(), any, {1, nan}, kComplex, kReal},
                  {"imag", imag.of<T>(), any, {T(-0.0), inf}, kComplex, kReal},
                  {"conj", conj.of<T>(), any, {1, 0, nan, -inf}, kComplex},
                  {"rtoc", rtoc.of<T>(), any, any, kComplex},
                  {"mag",
                   mag.of<T>(),
                   {3, -4, 0, T(-0.0), nan, -inf, nan, 1, 3 * over, 4 * over},
                   {5, 0, inf, nan, std::hypot(3 * over, 4 * over)},
                   kComplex,
                   kReal},
                  {"magsq",
                   magsq.of<T>(),
                   {3, -4, huge, huge, over, 1, 1, -over, nan, 0, 0, inf},
                   {25, 2 * (huge * huge), huge, huge, huge, huge},
                   kComplex,
                   kReal},
                  {"phase",
                   phase.of<T>(),
                   {0, T(-0.0), T(-0.0), T(-0.0), T(-0.0), 1, -1, 0, -1, T(-0.0), nan, 1, inf, inf},
                   {0, 0, pi / 2, pi, -pi, nan, pi / 4},
                   kComplex,
                   kReal},
                  // beyond the bound a part counts as the bound, NaN as the lower one
                  {"rtop",
                   rtop.of<T>(),
                   {3, -4, T(-0.0), T(-0.0), 0, inf, -inf, 0, nan, 1},
                   {5, std::atan2(T(-4), T(3)), 0, 0, huge, pi / 2, huge, pi, huge, std::atan2(T(1), -huge)},
                   kComplex},
                  {"ptor",
                   ptor.of<T>(),
                   {2, 0, 0, 7, T(-1.5), T(0.5)},
                   {2, 0, 0, 0, T(-1.5) * std::cos(T(0.5)), T(-1.5) * std::sin(T(0.5))},
                   kComplex}});
}

TYPED_TEST(FormOf, PolarFormGoesThereAndBack) {
  using T = TypeParam;
  std::vector<std::complex<T>> z;
  for (int k = 0; k < 100; ++k) z.push_back(std::polar(T(0.01) * static_cast<T>(k * k), T(0.7) * static_cast<T>(k)));
  Vec<T> v(z), magnitude(z), angle(z);
  EXPECT_EQ(rtop(v.get()), 0);
  EXPECT_EQ(mag(magnitude.get()), 0);
  EXPECT_EQ(phase(angle.get()), 0);
  for (size_t k = 0; k < z.size(); ++k) EXPECT_EQ(v.at(k), std::complex<T>(magnitude[k], angle[k])) << k;
  EXPECT_EQ(ptor(v.get()), 0);
  // half an ulp of pi in the angle, one each of magnitude, cosine and product
  for (size_t k = 0; k < z.size(); ++k) EXPECT_LE(std::abs(v.at(k) - z[k]), 4 * kEps<T> * std::abs(z[k])) << k;
}

TYPED_TEST(FormOf, ClearingTheFormKeepsTheCapacity) {
  using T = TypeParam;
  for (const auto operation : {real.of<T>(), imag.of<T>(), mag.of<T>(), magsq.of<T>(), phase.of<T>()}) {
    Vec<T> v = Vec<T>::pairs({{1, 2}, {3, 4}, {5, 6}});
    const T* const data = v->data;
    EXPECT_EQ(operation(v), 0);
    EXPECT_EQ(v->allocated, 6);
    EXPECT_EQ(v->data, data);
    EXPECT_EQ(rtoc(v.get()), 0);  // fits where it came from
    EXPECT_EQ(v->data, data);
  }
}

}  // namespace
}  // namespace sigvex_test
