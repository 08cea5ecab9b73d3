#include "support/failing_storage.h"
#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, dft);
TWIN(i, rdft);
TWIN(i, irdft);
TWIN(, alloc);

template <class T> struct Dft : ::testing::Test {};
TYPED_TEST_SUITE(Dft, Precisions);

TYPED_TEST(Dft, FewerThanTwoPointsChangeOnlyDelta) {
  using T = TypeParam;
  for (const int32_t n : {1, 0, -3}) {
    for (const T delta : {T(0.25), T(0)}) {
      Vec<T> v{5};
      v->points = n;
      v->delta = delta;
      EXPECT_EQ(dft(v.get(), 0U), 0);
      EXPECT_EQ(v->points, n);
      EXPECT_EQ(v->complex, 0);
      EXPECT_EQ(v[0], T(5));
      EXPECT_EQ(v->delta, delta == 0 ? kHuge<T> : T(4));
    }
  }
}

TYPED_TEST(Dft, AnyLengthWithinItsErrorBound) {
  using T = TypeParam;
  const struct {
    size_t n, step;
  } rows[] = {{2, 1},  {3, 1},  {4, 1},   {5, 1},    {6, 1},     {7, 1},       {9, 1},        {12, 1},
              {31, 1}, {33, 1}, {100, 1}, {1009, 7}, {4098, 61}, {20011, 997}, {100003, 9973}};
  for (const auto [n, step] : rows) {
    for (const bool complex : {false, true}) {
      for (const uint32_t inverse : {0U, 1U, 0U}) {
        const Vec<T> x = noise<T>(n, complex);
        Vec<T> v = x;
        v->delta = T(0.5);
        ASSERT_EQ(dft(v.get(), inverse), 0);
        EXPECT_LE(transform_error(v, ReferenceTransform(x, inverse), step), transform_bound<T>(n)) << n << inverse;
        EXPECT_EQ(v->points, static_cast<int32_t>(n));
        EXPECT_EQ(v->complex, 1);
        EXPECT_EQ(v->delta, T(1) / (static_cast<T>(n) * T(0.5)));
      }
    }
  }
}

TYPED_TEST(Dft, StorageGrowsToTheConvolutionLength) {
  using T = TypeParam;
  const struct {
    size_t n;
    int32_t convolution;
  } rows[] = {{3, 4}, {5, 8}, {6, 16}, {9, 16}, {10, 32}, {17, 32}, {18, 64}, {1000, 2048}, {1025, 2048}, {1026, 4096}};
  for (const auto [n, convolution] : rows) {
    Vec<T> v = noise<T>(n, false);
    ASSERT_EQ(dft(v.get(), 0U), 0);
    EXPECT_EQ(v->allocated, 2 * convolution) << n;
  }
}

TYPED_TEST(Dft, AViewLeavesItsStorage) {
  using T = TypeParam;
  for (const int32_t complex : {0, 1}) {
    T storage[] = {1, 2, 3, 4, 5, 6};
    Vec<T> v;
    v->data = storage;
    v->points = 3;
    v->complex = complex;
    EXPECT_EQ(dft(v.get(), 0U), 0);
    EXPECT_EQ(v->allocated, 8);
    EXPECT_TRUE(std::equal(storage, storage + 6, std::begin({T(1), T(2), T(3), T(4), T(5), T(6)})));
  }
}

TYPED_TEST(Dft, ChangingDirectionRebuildsNothingAndLosesNothing) {
  using T = TypeParam;
  const Vec<T> x = noise<T>(7, true);
  Vec<T> first = x, v = x;
  ASSERT_EQ(dft(first.get(), 0U), 0);
  v->points = 16;
  ASSERT_EQ(alloc(v.get()), 0);
  const FailingStorage<T> counter(0);
  for (int round = 0; round < 100; ++round) {
    for (const uint32_t inverse : {1U, 0U}) {
      v->points = 7;
      std::copy_n(x->data, 14, v->data);
      ASSERT_EQ(dft(v.get(), inverse), 0);
    }
  }
  EXPECT_EQ(counter.growths, 0);
  EXPECT_TRUE(exactly(v, first.samples()));
}

TYPED_TEST(Dft, RealSpectraAndBack) {
  using T = TypeParam;
  for (const size_t n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 100, 101}) {
    const Vec<T> x = noise<T>(n, false);
    Vec<T> v = x;
    v->delta = T(0.5);
    ASSERT_EQ(rdft(v.get()), 0);
    EXPECT_EQ(v->points, static_cast<int32_t>(n / 2 + 1));
    EXPECT_LE(transform_error(v, ReferenceTransform(x, false)), transform_bound<T>(n)) << n;
    ASSERT_EQ(irdft(v.get(), static_cast<uint32_t>(n % 2)), 0);
    EXPECT_EQ(v->complex, 0);
    EXPECT_LE(difference(v, x), 2 * transform_bound<T>(n)) << n;
    EXPECT_NEAR(v->delta, 0.5, 2 * kEps<T>);
  }
  Vec<T> complex = Vec<T>::pairs({{1, 2}, {3, 4}, {5, 6}}), none;
  EXPECT_EQ(rdft(complex.get()), -1);
  EXPECT_TRUE(exactly(complex, {1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(irdft(complex.get(), 4U), 0);  // any nonzero flag means odd
  EXPECT_EQ(complex->points, 5);
  none->delta = 4;
  EXPECT_EQ(rdft(none.get()), 0);
  EXPECT_EQ(none->points, 0);
  EXPECT_EQ(none->delta, T(0.25));
  EXPECT_EQ(irdft(none.get(), 1U), 0);
  EXPECT_EQ(none->points, 0);
}

TYPED_TEST(Dft, SpacingOfZeroBecomesHuge) {
  using T = TypeParam;
  Vec<T> v{1, 2, 3};
  v->delta = 0;
  EXPECT_EQ(dft(v.get(), 0U), 0);
  EXPECT_EQ(v->delta, kHuge<T>);
}

TYPED_TEST(Dft, ALengthBeyondTheRecordIsRefusedBeforeAnyStorage) {
  using T = TypeParam;
  Vec<T> v{1};
  v->points = (1 << 28) + 2;  // 2^30 points for the convolution
  const FailingStorage<T> counter(0);
  EXPECT_EQ(dft(v.get(), 0U), -1);
  EXPECT_EQ(counter.growths, 0);
}

}  // namespace
}  // namespace sigvex_test
