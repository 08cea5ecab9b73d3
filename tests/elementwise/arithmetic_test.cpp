#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

TWIN(i, abs);
TWIN(i, neg);
TWIN(i, scale);
TWIN(i, offset);
TWIN(i, cscale);
TWIN(i, timesi);
TWIN(i, limit);
TWIN(i, recip);
TWIN(i, square);

template <class T> struct Arithmetic : ::testing::Test {};
TYPED_TEST_SUITE(Arithmetic, Precisions);

template <class T> const auto kScale = [](Record<T>* v) { return scale(v, T(-2.5)); };
template <class T> const auto kOffset = [](Record<T>* v) { return offset(v, T(3)); };
template <class T> const auto kCscale = [](Record<T>* v) { return cscale(v, T(2), T(-3)); };

TYPED_TEST(Arithmetic, EdgesOfRealSamples) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, max = std::numeric_limits<T>::max();
  check_edges<T>({{"abs", abs.of<T>(), {-2, T(-0.0), -inf, -nan, 3}, {2, 0, inf, nan, 3}},
                  {"neg", neg.of<T>(), {-2, T(-0.0), 0, inf, nan}, {2, 0, T(-0.0), -inf, nan}},
                  {"scale", kScale<T>, {2, T(-0.0), inf, nan, max}, {-5, 0, -inf, nan, -inf}},
                  {"offset", kOffset<T>, {2, -3, inf, nan}, {5, 0, inf, nan}},
                  {"recip", recip.of<T>(), {4, 0, T(-0.0), -inf, inf, nan}, {T(0.25), 0, T(-0.0), T(-0.0), 0, nan}},
                  {"square", square.of<T>(), {-3, T(-0.0), -inf, nan}, {9, 0, inf, nan}},
                  {"recip of the bound", recip.of<T>(), {huge}, {1 / huge}}});
}

TYPED_TEST(Arithmetic, EdgesOfComplexPoints) {
  using T = TypeParam;
  const T inf = kInf<T>, nan = kNaN<T>, huge = kHuge<T>, over = std::nextafter(huge, inf), k = 1 / huge;
  check_edges<T>({{"neg", neg.of<T>(), {1, T(-0.0)}, {-1, 0}, Form::kComplex},
                  {"scale", kScale<T>, {2, -4}, {-5, 10}, Form::kComplex},
                  {"offset", kOffset<T>, {2, -4, nan, nan}, {5, -4, nan, nan}, Form::kComplex},
                  {"cscale", kCscale<T>, {1, 2, nan, 0}, {8, 1, nan, nan}, Form::kComplex},
                  {"timesi", timesi.of<T>(), {1, 2, 0, T(-0.0)}, {-2, 1, 0, 0}, Form::kComplex},
                  {"square", square.of<T>(), {3, 2, 0, -1}, {5, 12, -1, T(-0.0)}, Form::kComplex},
                  // in range 1/|z|^2; at the origin huge; out of range 1/huge
                  {"recip",
                   recip.of<T>(),
                   {3, -4, 0, T(-0.0), -1, 0},
                   {3 * (1 / T(25)), 4 * (1 / T(25)), 0, 0, -1, T(-0.0)},
                   Form::kComplex},
                  {"recip out of range",
                   recip.of<T>(),
                   {over, 2, nan, -inf, huge, 0},
                   {over * k, -2 * k, nan, inf, huge * (1 / (huge * huge)), T(-0.0)},
                   Form::kComplex}});
}

TYPED_TEST(Arithmetic, PromotionOfRealSamples) {
  using T = TypeParam;
  check_edges<T>({{"cscale", kCscale<T>, {1, -2, 0}, {2, -3, -4, 6, 0, T(-0.0)}, Form::kReal, Form::kComplex},
                  {"timesi", timesi.of<T>(), {1, T(-0.0), 3}, {0, 1, 0, T(-0.0), 0, 3}, Form::kReal, Form::kComplex}});
}

TYPED_TEST(Arithmetic, AbsKeepsTheBitsOfNaN) {
  using T = TypeParam;
  Vec<T> v{std::copysign(std::nan("123"), T(-1)), T(1)};
  using Bits = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;
  Bits before, after;
  std::memcpy(&before, v->data, sizeof before);
  EXPECT_EQ(abs(v.get()), 0);
  std::memcpy(&after, v->data, sizeof after);
  EXPECT_EQ(after, before & ~(Bits(1) << (8 * sizeof(T) - 1)));
}

TYPED_TEST(Arithmetic, LimitClipsBothPartsAndReports) {
  using T = TypeParam;
  struct Row {
    T a, b;
    std::vector<T> in, out;
    int32_t clipped;
  };
  const T inf = kInf<T>;
  const Row rows[] = {{5, -5, {-6, -5, T(-0.0), 5, 6}, {-5, -5, T(-0.0), 5, 5}, 1},
                      {-5, 5, {-5, 0, 5}, {-5, 0, 5}, 0},
                      {-1, 1, {kNaN<T>}, {-1}, 1},
                      {2, 2, {2, 3}, {2, 2}, 1},
                      {-inf, inf, {inf, -inf, 0}, {inf, -inf, 0}, 0},
                      {-inf, 1, {kNaN<T>, 2}, {-inf, 1}, 1}};
  for (const Row& row : rows) {
    for (const bool complex : {false, true}) {
      Vec<T> v = complex ? Vec<T>::pairs({}) : Vec<T>(row.in);
      if (complex) {
        std::vector<std::complex<T>> points;
        for (const T x : row.in) points.emplace_back(x, x);
        v = Vec<T>(points);
      }
      std::vector<T> expected;
      for (const T y : row.out) expected.insert(expected.end(), complex ? 2 : 1, y);
      int32_t clipped = 9;
      EXPECT_EQ(limit(v.get(), 77, row.a, row.b, &clipped), 0);
      EXPECT_TRUE(exactly(v, expected));
      EXPECT_EQ(clipped, row.clipped);
      EXPECT_EQ(limit(v.get(), 0, row.a, row.b, static_cast<int32_t*>(nullptr)), 0);
    }
  }
  Vec<T> v{1, 2}, none;
  int32_t clipped = 9;
  EXPECT_EQ(limit(v.get(), 0, kNaN<T>, T(1), &clipped), -1);
  EXPECT_EQ(limit(v.get(), 0, T(1), kNaN<T>, &clipped), -1);
  EXPECT_EQ(clipped, 9);
  EXPECT_TRUE(exactly(v, {1, 2}));
  EXPECT_EQ(limit(none.get(), 0, T(0), T(1), &clipped), 0);
  EXPECT_EQ(clipped, 0);
}

TYPED_TEST(Arithmetic, EverySizeAgreesWithTheScalarRule) {
  using T = TypeParam;
  check_sizes<T>("neg", neg.of<T>(), [](T x) { return -x; });
  check_sizes<T>("scale", kScale<T>, [](T x) { return x * T(-2.5); });
  check_sizes<T>("square", square.of<T>(), [](T x) { return x * x; });
  check_sizes<T>("recip", recip.of<T>(), [](T x) { return 1 / x; });
  check_sizes<T>(
      "limit", [](Record<T>* v) { return limit(v, 0, T(-3), T(2), static_cast<int32_t*>(nullptr)); },
      [](T x) { return std::min(std::max(x, T(-3)), T(2)); });
}

TYPED_TEST(Arithmetic, PromotionThatCannotGrowLeavesNoStorage) {
  using T = TypeParam;
  for (const auto operation :
       {+[](Record<T>* v) { return cscale(v, T(1), T(1)); }, +[](Record<T>* v) { return timesi(v); }}) {
    T sample = 1;
    Vec<T> v;
    v->data = &sample;  // a view of more points than a complex vector can have
    v->points = INT32_MAX;
    EXPECT_EQ(operation(v), -1);
    EXPECT_EQ(v->data, nullptr);
    EXPECT_EQ(v->points, 0);
    EXPECT_EQ(v->allocated, 0);
    EXPECT_EQ(sample, 1);
  }
}

TYPED_TEST(Arithmetic, RealOnlyMembersRefuseComplex) { check_refuses_complex<TypeParam>({abs.of<TypeParam>()}); }

}  // namespace
}  // namespace sigvex_test
