#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, fft);
TWIN(i, rfft);
TWIN(i, irfft);

template <class T> struct Fft : ::testing::Test {};
TYPED_TEST_SUITE(Fft, Precisions);

TYPED_TEST(Fft, OnePointKeepsItsSampleAndForm) {
  using T = TypeParam;
  Vec<T> real{3}, complex = Vec<T>::pairs({{3, 4}}), spectrum{3};
  real->delta = T(0.25);
  EXPECT_EQ(fft(real.get(), 0U), 0);
  EXPECT_TRUE(exactly(real, {3}));
  EXPECT_EQ(real->delta, T(4));
  EXPECT_EQ(fft(complex.get(), 1U), 0);
  EXPECT_TRUE(exactly(complex, {3, 4}));
  EXPECT_EQ(rfft(spectrum.get()), 0);
  EXPECT_TRUE(exactly(spectrum, {3}));
}

TYPED_TEST(Fft, TwoPointsAreExact) {
  using T = TypeParam;
  Vec<T> v{3, 1};
  v->delta = T(0.25);
  EXPECT_EQ(fft(v.get(), 0U), 0);
  EXPECT_TRUE(exactly(v, {2, 0, 1, 0}));
  EXPECT_EQ(v->complex, 1);
  EXPECT_EQ(v->delta, T(2));
  EXPECT_EQ(fft(v.get(), 1U), 0);
  EXPECT_TRUE(exactly(v, {3, 0, 1, 0}));
  EXPECT_EQ(v->delta, T(0.25));
  Vec<T> real{3, 1};
  EXPECT_EQ(rfft(real.get()), 0);
  EXPECT_TRUE(exactly(real, {2, 0, 1, 0}));
  EXPECT_EQ(real->points, 2);
}

TYPED_TEST(Fft, AgreesWithItsDefinitionForwardAndBack) {
  using T = TypeParam;
  for (const size_t n : {4, 8, 16, 64, 1024}) {
    for (const bool complex : {false, true}) {
      const Vec<T> x = noise<T>(n, complex);
      Vec<T> v = x;
      EXPECT_EQ(fft(v.get(), 0U), 0);
      EXPECT_LE(transform_error(v, ReferenceTransform(x, false)), transform_bound<T>(n)) << n;
      EXPECT_EQ(v->complex, 1);
      Vec<T> inverse = x;
      EXPECT_EQ(fft(inverse.get(), 2U), 0);
      EXPECT_LE(transform_error(inverse, ReferenceTransform(x, true)), transform_bound<T>(n)) << n;
    }
    const Vec<T> x = noise<T>(n, false);
    Vec<T> half = x;
    half->delta = T(0.5);
    EXPECT_EQ(rfft(half.get()), 0);
    EXPECT_EQ(half->points, static_cast<int32_t>(n / 2 + 1));
    EXPECT_EQ(half->delta, T(2) / static_cast<T>(n));
    EXPECT_LE(transform_error(half, ReferenceTransform(x, false)), transform_bound<T>(n)) << n;
    EXPECT_EQ(irfft(half.get()), 0);
    EXPECT_EQ(half->complex, 0);
    EXPECT_EQ(half->delta, T(0.5));
    EXPECT_LE(difference(half, x), 2 * transform_bound<T>(n)) << n;
  }
}

TYPED_TEST(Fft, OtherLengthsAndFormsAreRefusedUntouched) {
  using T = TypeParam;
  for (const int32_t n : {0, -1, -8, INT32_MIN, 3, 6}) {
    Vec<T> v{1, 2, 3, 4, 5, 6};
    v->points = n;
    v->delta = 3;
    EXPECT_EQ(fft(v.get(), 0U), -1);
    EXPECT_EQ(rfft(v.get()), -1);
    EXPECT_EQ(v->points, n);
    EXPECT_EQ(v->complex, 0);
    EXPECT_EQ(v->delta, T(3));
    v->points = 6;
    EXPECT_TRUE(exactly(v, {1, 2, 3, 4, 5, 6}));
  }
  Vec<T> complex = Vec<T>::pairs({{1, 2}, {3, 4}, {5, 6}, {7, 8}});
  EXPECT_EQ(rfft(complex.get()), -1);
  EXPECT_TRUE(exactly(complex, {1, 2, 3, 4, 5, 6, 7, 8}));
  Vec<T> one{1};  // the half spectrum of no sample
  EXPECT_EQ(irfft(one.get()), -1);
}

TYPED_TEST(Fft, SpacingOfZeroBecomesHuge) {
  using T = TypeParam;
  for (const T zero : {T(0), T(-0.0)}) {
    for (const auto transform : {rfft.template of<T>(), irfft.template of<T>()}) {
      Vec<T> v{1, 2, 3, 4};
      if (transform == irfft.template of<T>()) v->points = 3;
      v->delta = zero;
      EXPECT_EQ(transform(v), 0);
      EXPECT_EQ(v->delta, kHuge<T>);
    }
  }
}

}  // namespace
}  // namespace sigvex_test
