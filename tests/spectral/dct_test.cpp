#include "support/failing_storage.h"
#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, dct);
TWIN(, free_internal);

constexpr uint32_t kInverse = DSP_DCT_INVERSE, kOrthonormal = DSP_DCT_ORTHONORMAL;

template <class T> struct Dct : ::testing::Test {};
TYPED_TEST_SUITE(Dct, Precisions);

// The mean of x[j] cos(pi k (2j+1) / 2N); orthonormal: twice that, and coefficient 0 times the root of one half.
template <class T> std::vector<long double> expected(const Vec<T>& x, bool orthonormal) {
  const size_t n = x.size();
  std::vector<long double> y(n);
  for (size_t k = 0; k < n; ++k) {
    for (size_t j = 0; j < n; ++j) {
      const long double turns = static_cast<long double>(k * (2 * j + 1) % (4 * n)) / static_cast<long double>(2 * n);
      y[k] += x[j] * std::cos(kPi * turns) / static_cast<long double>(n);
    }
    if (orthonormal) y[k] *= k == 0 ? std::sqrt(2.0L) : 2;
  }
  return y;
}

// One more rounding on the way than the transform has, for the half angles.
template <class T> double bound(size_t n) { return transform_bound<T>(n) + 2.0 * kEps<T>; }

TYPED_TEST(Dct, AgreesWithItsDefinitionAndInvertsExactly) {
  using T = TypeParam;
  for (const size_t n : {1, 2, 3, 4, 5, 6, 7, 8, 15, 16, 100, 127, 1000}) {
    for (const uint32_t flags : {0U, kOrthonormal}) {
      const Vec<T> x = noise<T>(n, false);
      Vec<T> v = x;
      v->delta = T(0.25);
      ASSERT_EQ(dct(v.get(), flags), 0);
      EXPECT_EQ(v->complex, 0);
      EXPECT_NEAR(v->delta, 2.0 / static_cast<double>(n), 2.0 * kEps<T>);
      const std::vector<long double> y = expected(x, flags != 0);
      long double error = 0, power = 0;
      for (size_t k = 0; k < n; ++k) {
        error += (v[k] - y[k]) * (v[k] - y[k]);
        power += y[k] * y[k];
      }
      EXPECT_LE(std::sqrt(error / power), bound<T>(n)) << n;
      ASSERT_EQ(dct(v.get(), flags | kInverse), 0);
      EXPECT_LE(difference(v, x), 2 * bound<T>(n)) << n;
      EXPECT_NEAR(v->delta, 0.25, 2.0 * kEps<T>);
    }
  }
}

TYPED_TEST(Dct, ComplexIsRefusedAndNothingStaysNothing) {
  using T = TypeParam;
  Vec<T> complex = Vec<T>::pairs({{1, 2}, {3, 4}});
  EXPECT_EQ(dct(complex.get(), 0U), -1);
  EXPECT_TRUE(exactly(complex, {1, 2, 3, 4}));
  for (const int32_t n : {0, -2}) {
    for (const uint32_t flags : {0U, 1U, 2U, 3U}) {
      Vec<T> v{5};
      v->points = n;
      v->delta = T(0.25);
      EXPECT_EQ(dct(v.get(), flags), 0);
      EXPECT_EQ(v->delta, T(2));
      v->delta = 0;
      EXPECT_EQ(dct(v.get(), flags), 0);
      EXPECT_EQ(v->delta, kHuge<T>);
      EXPECT_EQ(v->points, n);
      EXPECT_EQ(v[0], T(5));
    }
  }
}

TYPED_TEST(Dct, SpacingOfZeroBecomesHalfOfHuge) {
  using T = TypeParam;
  for (const uint32_t flags : {0U, 1U}) {
    for (const size_t n : {3, 4}) {
      Vec<T> v = noise<T>(n, false);
      v->delta = 0;
      EXPECT_EQ(dct(v.get(), flags), 0);
      EXPECT_EQ(v->delta, kHuge<T> / 2);
    }
  }
}

TYPED_TEST(Dct, ExhaustedMemoryAnywhereLeavesTheWorkspacesUsable) {
  using T = TypeParam;  // a length that goes through the chirp transform as well
  const Vec<T> x = noise<T>(11, false);
  for (const uint32_t flags : {0U, kInverse}) {
    Vec<T> right = x;
    ASSERT_EQ(dct(right.get(), flags), 0);
    int status = -1;
    for (int failing = 0; status != 0; ++failing) {
      ASSERT_LT(failing, 12);
      ASSERT_EQ(free_internal.of<T>()(), 0);
      Vec<T> v = x, after = x;
      {
        const FailingStorage<T> storage(failing);
        status = dct(v.get(), flags);
      }
      ASSERT_EQ(dct(after.get(), flags), 0);
      EXPECT_TRUE(exactly(after, right.samples())) << failing;
    }
  }
}

}  // namespace
}  // namespace sigvex_test
