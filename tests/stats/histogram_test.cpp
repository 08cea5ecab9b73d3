#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(s, hist);

template <class T> struct Histogram : ::testing::Test {};
TYPED_TEST_SUITE(Histogram, Precisions);

TYPED_TEST(Histogram, CountsByBinWithAnInclusiveTopEdge) {
  using T = TypeParam;
  const T top = 4 * (1 + 10 * kEps<T>);
  struct Row {
    Vec<T> input;
    double lo, width;
    int32_t bins;
    std::vector<T> expected;
  };
  const Row rows[] = {
      {{0, T(0.5), 1, T(3.9), 4, T(4.5), T(-0.1), T(-0.0)}, 0, 1, 4, {3, 1, 0, 2}},
      {{std::nextafter(top, T(0)), top, std::nextafter(T(4), T(0))}, 0, 1, 4, {0, 0, 0, 2}},
      {{kNaN<T>, kInf<T>, -kInf<T>, kHuge<T>}, 0, 1, 2, {0, 0}},
      {{5, 5, 6, 4, kNaN<T>}, 5, 0, 2, {2, 0}},
      {{3, 1, T(0.5), 0}, 3, -1, 3, {1, 0, 3}},
      {Vec<T>::pairs({{3, 4}, {0, -1}, {kNaN<T>, 0}, {0, kInf<T>}}), 0, 1, 6, {0, 1, 0, 0, 0, 1}},
      {Vec<T>::pairs({{kNaN<T>, 0}, {0, -2 * kHuge<T>}}), 0, double(kHuge<T>), 2, {0, 2}},
      {{1, 2}, 0, 1, 0, {}},
      {{1, 2}, 0, 1, -5, {}},
      {{}, 0, 1, 2, {0, 0}},
  };
  for (size_t k = 0; k < std::size(rows); ++k) {
    const auto& [input, lo, width, bins, expected] = rows[k];
    Vec<T> result{9, 9}, itself(input), owner(input), reader;
    result->complex = 1;
    EXPECT_EQ(hist(input.operator->(), result.get(), lo, width, bins), 0) << k;
    EXPECT_EQ(hist(itself.get(), itself.get(), lo, width, bins), 0) << k;
    reader->data = owner->data;
    reader->points = owner->points;
    reader->complex = owner->complex;
    EXPECT_EQ(hist(reader.get(), owner.get(), lo, width, bins), 0) << k;
    for (const Vec<T>* v : {&result, &itself, &owner}) {
      EXPECT_TRUE(exactly(*v, expected)) << k;
      EXPECT_EQ((*v)->complex, 0) << k;
      EXPECT_EQ((*v)->delta, static_cast<T>(width)) << k;
    }
  }
}

// In single precision the tolerance of the top edge spans whole bins here: they must not be counted behind the last.
TYPED_TEST(Histogram, TheTopEdgeOfManyBinsStaysInside) {
  using T = TypeParam;
  constexpr int32_t bins = 2000000;
  Vec<T> v{static_cast<T>(bins), static_cast<T>(bins) * (1 + 9 * kEps<T>)}, result;
  EXPECT_EQ(hist(v.get(), result.get(), 0.0, 1.0, bins), 0);
  EXPECT_EQ(result[bins - 1], T(2));
}

}  // namespace
}  // namespace sigvex_test
