#include <algorithm>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, bitrev);
TWIN(i, bitrev_scale);

template <class T> struct BitReversal : ::testing::Test {};
TYPED_TEST_SUITE(BitReversal, Precisions);

TYPED_TEST(BitReversal, MovesWholePointsToTheReversedIndex) {
  using T = TypeParam;
  for (int bits = 0; bits <= 12; ++bits) {
    const size_t n = size_t{1} << bits;
    std::vector<T> real(n), expected(n);
    std::vector<std::complex<T>> complex(n);
    for (size_t k = 0; k < n; ++k) {
      size_t reversed = 0;
      for (int b = 0; b < bits; ++b) reversed |= (k >> b & 1) << (bits - 1 - b);
      real[k] = static_cast<T>(k) + T(0.5);
      complex[k] = {real[k], -real[k]};
      expected[reversed] = real[k];
    }
    Vec<T> v(real), z(complex);
    v->delta = z->delta = 3;
    EXPECT_EQ(bitrev(v.get()), 0);
    EXPECT_TRUE(exactly(v, expected)) << n;
    EXPECT_EQ(bitrev(v.get()), 0);  // its own inverse
    EXPECT_TRUE(exactly(v, real)) << n;
    EXPECT_EQ(bitrev_scale(z.get(), T(-4)), 0);  // a power of two: exact
    for (size_t k = 0; k < n; ++k) ASSERT_EQ(z.at(k), std::complex<T>(-4 * expected[k], 4 * expected[k])) << n;
    EXPECT_EQ(z->delta, T(3));
    EXPECT_EQ(v->complex, 0);
  }
}

TYPED_TEST(BitReversal, RefusesOtherCountsAndChangesNothing) {
  using T = TypeParam;
  Vec<T> three{1, 2, 3}, none;
  EXPECT_EQ(bitrev(three.get()), -1);
  EXPECT_EQ(bitrev_scale(three.get(), T(2)), -1);
  EXPECT_TRUE(exactly(three, {1, 2, 3}));
  EXPECT_EQ(bitrev(none.get()), -1);
  none->points = -4;
  EXPECT_EQ(bitrev_scale(none.get(), T(2)), -1);
}

}  // namespace
}  // namespace sigvex_test
