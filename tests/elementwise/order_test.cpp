#include <algorithm>
#include <numeric>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, zero);
TWIN(i, zpad);
TWIN(i, shift);
TWIN(i, swap_halves);
TWIN(i, swap_halves2);
TWIN(i, rev);
TWIN(i, sort);
TWIN(i, shuffle);

template <class T> struct Order : ::testing::Test {};
TYPED_TEST_SUITE(Order, Precisions);

// n different points: 1, 2, 3 ... or (1, -1), (2, -2), (3, -3) ...
template <class T> Vec<T> numbered(size_t n, bool complex) {
  std::vector<T> real(n);
  std::vector<std::complex<T>> pairs(n);
  for (size_t k = 0; k < n; ++k) {
    real[k] = static_cast<T>(k + 1);
    pairs[k] = {real[k], -real[k]};
  }
  return complex ? Vec<T>(pairs) : Vec<T>(real);
}

// The vector whose point k is point from(k) of another.
template <class T, class F> Vec<T> picked(const Vec<T>& v, F from) {
  Vec<T> result = v;
  const size_t width = v->complex ? 2 : 1, n = static_cast<size_t>(v->points);
  for (size_t k = 0; k < n; ++k) {
    for (size_t part = 0; part < width; ++part) result[width * k + part] = v[width * from(k) + part];
  }
  return result;
}

TYPED_TEST(Order, HalvesAndReversalMoveEveryPoint) {
  using T = TypeParam;
  for (const bool complex : {false, true}) {
    for (const size_t n : {0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 64, 65, 1001}) {
      const Vec<T> original = numbered<T>(n, complex);
      Vec<T> v = original;
      v->delta = 3;
      EXPECT_EQ(swap_halves(v.get()), 0);
      EXPECT_TRUE(exactly(v, picked(original, [n](size_t k) { return (k + (n + 1) / 2) % n; }).samples())) << n;
      EXPECT_EQ(swap_halves2(v.get()), 0);
      EXPECT_TRUE(exactly(v, original.samples())) << n;
      EXPECT_EQ(rev(v.get()), 0);
      EXPECT_TRUE(exactly(v, picked(original, [n](size_t k) { return n - 1 - k; }).samples())) << n;
      EXPECT_EQ(v->complex, complex);
      EXPECT_EQ(v->delta, T(3));
    }
  }
}

TYPED_TEST(Order, ZeroPaddingGrowsAndNeverShortens) {
  using T = TypeParam;
  Vec<T> v{1, 2, 3};
  v->delta = 3;
  EXPECT_EQ(zpad(v.get(), 2), 0);
  EXPECT_EQ(zpad(v.get(), -7), 0);
  EXPECT_TRUE(exactly(v, {1, 2, 3}));
  EXPECT_EQ(zpad(v.get(), 5), 0);
  EXPECT_TRUE(exactly(v, {1, 2, 3, 0, 0}));
  EXPECT_EQ(v->allocated, 5);
  EXPECT_EQ(v->delta, T(3));
  v->points = 1;  // capacity that suffices is cleared, not trusted
  EXPECT_EQ(zpad(v.get(), 4), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 0, 0}));
  Vec<T> z = Vec<T>::pairs({{1, 2}});
  EXPECT_EQ(zpad(z.get(), 2), 0);
  EXPECT_TRUE(exactly(z, {1, 2, 0, 0}));
  v->points = -3;
  EXPECT_EQ(zpad(v.get(), 2), 0);
  EXPECT_TRUE(exactly(v, {0, 0}));
}

TYPED_TEST(Order, PaddingBeyondTheRecordFailsWithoutStorage) {
  using T = TypeParam;
  Vec<T> z = Vec<T>::pairs({{1, 2}});
  EXPECT_EQ(zpad(z.get(), INT32_MAX), -1);
  EXPECT_EQ(z->data, nullptr);
  EXPECT_EQ(z->allocated, 0);
  EXPECT_EQ(z->points, 0);
  EXPECT_EQ(zero(z.get()), 0);
}

TYPED_TEST(Order, ZeroClearsEveryScalarAndLeavesViewedStorage) {
  using T = TypeParam;
  Vec<T> z = numbered<T>(3, true);
  EXPECT_EQ(zero(z.get()), 0);
  EXPECT_TRUE(exactly(z, {0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(z->complex, 1);
  T storage[] = {1, 2, 3};
  for (const auto& operation : {0, 1}) {
    Vec<T> view;
    view->data = storage;
    view->points = 2;
    EXPECT_EQ(operation ? zpad(view.get(), 3) : zero(view.get()), 0);
    EXPECT_TRUE(exactly(view, operation ? std::vector<T>{1, 2, 0} : std::vector<T>{0, 0}));
    EXPECT_EQ(view->allocated, view->points);
    EXPECT_EQ(storage[0], 1);
    EXPECT_EQ(storage[2], 3);
  }
}

TYPED_TEST(Order, ShiftDropsLeadingPoints) {
  using T = TypeParam;
  struct Row {
    int32_t count;
    std::vector<T> expected;
  };
  const Row rows[] = {{0, {1, 2, 3}},  {1, {2, 3}},           {3, {}}, {4, {}}, {INT32_MAX, {}},
                      {-1, {1, 2, 3}}, {INT32_MIN, {1, 2, 3}}};
  for (const Row& row : rows) {
    Vec<T> v{1, 2, 3};
    v->delta = 3;
    EXPECT_EQ(shift(v.get(), row.count), 0);
    EXPECT_TRUE(exactly(v, row.expected)) << row.count;
    EXPECT_EQ(v->delta, T(3));
  }
  Vec<T> z = Vec<T>::pairs({{1, 2}, {3, 4}});
  EXPECT_EQ(shift(z.get(), 1), 0);
  EXPECT_TRUE(exactly(z, {3, 4}));
}

TYPED_TEST(Order, SortOrdersRealsWithNaNFirst) {
  using T = TypeParam;
  Vec<T> v{3, kNaN<T>, T(0.0), -kInf<T>, T(-0.0), kInf<T>, -kNaN<T>, -kTiny<T> / 2, std::numeric_limits<T>::max(), -1};
  EXPECT_EQ(sort(v.get()), 0);
  EXPECT_TRUE(exactly(
      v, {kNaN<T>, kNaN<T>, -kInf<T>, -1, -kTiny<T> / 2, T(-0.0), T(0.0), 3, std::numeric_limits<T>::max(), kInf<T>}));
}

// Any vector of n points that repeats some values and lacks others.
template <class T> Vec<T> scattered(size_t n, bool complex) {
  Vec<T> v = numbered<T>(n, complex);
  uint32_t state = 1;
  for (size_t k = 0; k < v.size(); ++k) {
    state = state * 1664525U + 1013904223U;
    v[k] = static_cast<T>(static_cast<int32_t>(state >> 20) - 2048);
  }
  return v;
}

TYPED_TEST(Order, SortKeepsEveryPoint) {
  using T = TypeParam;
  for (const size_t n : {0, 1, 2, 3, 17, 255, 256, 257, 5000}) {
    Vec<T> real = scattered<T>(n, false), z = scattered<T>(n, true);
    std::vector<T> expected = real.samples();
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(sort(real.get()), 0);
    EXPECT_TRUE(exactly(real, expected)) << n;

    std::vector<std::tuple<T, T, T>> keys, sorted;
    const auto key = [&z](size_t k) { return std::tuple(std::norm(z.at(k)), z.at(k).real(), z.at(k).imag()); };
    for (size_t k = 0; k < n; ++k) keys.push_back(key(k));
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(sort(z.get()), 0);
    for (size_t k = 0; k < n; ++k) sorted.push_back(key(k));
    EXPECT_EQ(sorted, keys) << n;
  }
}

TYPED_TEST(Order, SortOrdersPointsByMagnitudeThenParts) {
  using T = TypeParam;
  Vec<T> z = Vec<T>::pairs({{3, 4}, {5, 0}, {0, -5}, {0, 5}, {kNaN<T>, 0}, {1, 1}, {-3, 4}, {-3, -4}, {0, kNaN<T>}});
  EXPECT_EQ(sort(z.get()), 0);
  EXPECT_TRUE(exactly(z, {kNaN<T>, 0, 0, kNaN<T>, 1, 1, -3, -4, -3, 4, 0, -5, 0, 5, 3, 4, 5, 0}));
  EXPECT_EQ(z->complex, 1);
}

TYPED_TEST(Order, ShuffleMovesWholePointsWithEqualChances) {
  using T = TypeParam;
  constexpr size_t kCount = 5, kRounds = 20000;
  size_t seen[kCount][kCount] = {};  // how often each point came to each place
  for (size_t round = 0; round < kRounds; ++round) {
    Vec<T> z = numbered<T>(kCount, true);
    EXPECT_EQ(shuffle(z.get()), 0);
    bool present[kCount] = {};
    for (size_t k = 0; k < kCount; ++k) {
      const size_t point = static_cast<size_t>(z[2 * k]) - 1;
      ASSERT_LT(point, kCount);
      EXPECT_EQ(z[2 * k + 1], -z[2 * k]);
      EXPECT_FALSE(std::exchange(present[point], true));
      ++seen[point][k];
    }
  }
  // Binomial: within 6 standard deviations of an equal share; all 50 checks fail by chance less than once in 10^7 runs.
  const double share = double{kRounds} / kCount, deviation = std::sqrt(share * (1 - 1.0 / kCount));
  for (const auto& places : seen) {
    for (const size_t times : places) EXPECT_NEAR(static_cast<double>(times), share, 6 * deviation);
  }
}

TYPED_TEST(Order, ShuffleOfALongVectorIsAPermutation) {
  using T = TypeParam;
  const Vec<T> original = numbered<T>(3000, false);
  Vec<T> v = original, nothing;
  EXPECT_EQ(shuffle(v.get()), 0);
  EXPECT_NE(v.samples(), original.samples());
  EXPECT_EQ(sort(v.get()), 0);
  EXPECT_TRUE(exactly(v, original.samples()));
  EXPECT_EQ(shuffle(nothing.get()), 0);
}

}  // namespace
}  // namespace sigvex_test
