#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, hilbert);
TWIN(i, analytic);

template <class T> struct Analytic : ::testing::Test {};
TYPED_TEST_SUITE(Analytic, Precisions);

// offset + cos(3 k turns / n), and for even n an alternation, which has no Hilbert transform either.
template <class T> Vec<T> tone(size_t n, bool sine, T offset) {
  std::vector<T> x(n);
  for (size_t k = 0; k < n; ++k) {
    const long double angle = 2 * kPi * 3 * static_cast<long double>(k) / static_cast<long double>(n);
    x[k] = static_cast<T>(sine ? std::sin(angle) : std::cos(angle));
    if (!sine) x[k] += n % 2 == 0 && k % 2 ? -offset : offset;
  }
  return Vec<T>(x);
}

TYPED_TEST(Analytic, CosineBecomesSineAndTheOffsetVanishes) {
  using T = TypeParam;
  for (const size_t n : {7, 8, 12, 15, 64, 100}) {
    const Vec<T> x = tone<T>(n, false, T(0.5)), sine = tone<T>(n, true, T(0));
    Vec<T> v = x, z = x;
    v->delta = z->delta = T(0.25);
    ASSERT_EQ(hilbert(v.get()), 0);
    EXPECT_EQ(v->complex, 0);
    EXPECT_LE(difference(v, sine), 2 * transform_bound<T>(n)) << n;
    EXPECT_NEAR(v->delta, 0.25, kEps<T>);
    ASSERT_EQ(analytic(z.get()), 0);
    ASSERT_EQ(z->complex, 1);
    Vec<T> expected = Vec<T>(std::vector<std::complex<T>>(n));
    for (size_t k = 0; k < n; ++k) {
      expected[2 * k] = x[k];
      expected[2 * k + 1] = sine[k];
    }
    EXPECT_LE(difference(z, expected), 2 * transform_bound<T>(n)) << n;
    EXPECT_NEAR(z->delta, 0.25, kEps<T>);
  }
}

TYPED_TEST(Analytic, ComplexInputKeepsItsForm) {
  using T = TypeParam;
  const size_t n = 9;
  Vec<T> z = Vec<T>(std::vector<std::complex<T>>(n)), real = tone<T>(n, false, T(0)), expected = z;
  for (size_t k = 0; k < n; ++k) z[2 * k + 1] = real[k];
  ASSERT_EQ(hilbert(z.get()), 0);
  ASSERT_EQ(hilbert(real.get()), 0);
  for (size_t k = 0; k < n; ++k) expected[2 * k + 1] = real[k];
  ASSERT_EQ(z->complex, 1);
  EXPECT_LE(difference(z, expected), 2 * transform_bound<T>(n));
}

TYPED_TEST(Analytic, ShortVectors) {
  using T = TypeParam;
  for (const auto operation : {hilbert.template of<T>(), analytic.template of<T>()}) {
    for (const int32_t n : {0, -5}) {
      Vec<T> v{7};
      v->points = n;
      v->delta = 4;
      EXPECT_EQ(operation(v), 0);
      EXPECT_EQ(v->points, n);
      EXPECT_EQ(v->delta, T(4));
    }
  }
  Vec<T> one{7}, complex_one = Vec<T>::pairs({{7, 8}}), pair{1, 5}, single{7};
  EXPECT_EQ(hilbert(one.get()), 0);
  EXPECT_TRUE(exactly(one, {0}));
  EXPECT_EQ(hilbert(complex_one.get()), 0);
  EXPECT_TRUE(exactly(complex_one, {0, 0}));
  EXPECT_EQ(hilbert(pair.get()), 0);
  EXPECT_TRUE(exactly(pair, {0, 0}));
  EXPECT_EQ(analytic(single.get()), 0);
  EXPECT_TRUE(exactly(single, {7}));
}

}  // namespace
}  // namespace sigvex_test
