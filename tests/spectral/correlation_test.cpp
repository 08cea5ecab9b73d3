#include <bit>

#include "support/reference_transform.h"

namespace sigvex_test::correlation_test {

constexpr Twin sliding{&dsph_corr, &dspfh_corr};
TWIN(b, corr);

SUITE_OF_BOTH(Correlation);

// Lag k: the sum of conj(a[j]) b[j + k] over the first m points, divided by the padded length.
template <class T> std::vector<T> direct(const Vec<T>& a, const Vec<T>& b, int m, bool halve) {
  const auto padded = static_cast<long double>(std::bit_ceil(static_cast<unsigned>(b->points)));
  std::vector<T> result;
  for (int k = 0; k <= b->points - m; ++k) {
    Wide sum = 0;
    for (int j = 0; j < m; ++j) sum += std::conj(wide(a, j)) * wide(b, j + k) * (halve ? 0.5L : 1.0L) / padded;
    result.push_back(static_cast<T>(sum.real()));
    if (a->complex || b->complex) result.push_back(static_cast<T>(sum.imag()));
  }
  return result;
}

// Each of the three transforms errs by at most 0.6 eps sqrt(log2 256) of its norm, the product of the spectra by 3 eps,
// and the norms of the two spectra multiply to at most 2.3.
template <class T> void expect_close(const Vec<T>& result, const std::vector<T>& expected) {
  EXPECT_TRUE(close(result, expected, 20 * static_cast<double>(kEps<T>), 1.0));
}

TEST_BOTH(Correlation, SlidesTheFirstPointsAlongTheSecondVector) {
  constexpr int rows[][3] = {{1, 1, 1}, {3, 1, 1}, {2, 2, 1},     {2, 2, 2},
                             {4, 3, 2}, {5, 8, 5}, {40, 100, 33}, {9, 256, 1}};
  for (const auto& [points_a, points_b, m] : rows) {
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      SCOPED_TRACE(::testing::Message() << points_a << ' ' << points_b << ' ' << m << " forms " << forms);
      Vec<T> a = noise<T>(points_a, forms & 1), b = noise<T>(points_b, forms & 2);
      a->delta = 1;
      b->delta = 3;
      for (const int placement : {0, 1, 2, 3}) {  // the result alone, in a, in b; the result also as workspace
        Vec<T> x = a, y = b, other, work;
        Vec<T>& result = placement == 1 ? x : placement == 2 ? y : other;
        const uint32_t halve = placement == 3;
        EXPECT_EQ(sliding(x.get(), y.get(), result.get(), (placement == 3 ? other : work).get(), m, halve), 0);
        expect_close(result, direct(a, b, m, halve));
        EXPECT_EQ(result->delta, T(2));
        EXPECT_EQ(result->complex, forms != 0);
      }
    }
  }
}

TEST_BOTH(Correlation, KeepsItsInputsWhateverTheWorkspaceAndRefusesLengthsTheyLack) {
  const Vec<T> a = noise<T>(5, false), b = noise<T>(9, true);
  Vec<T> x = a, y = b, result;
  for (Vec<T>* const work : {&x, &y}) {
    EXPECT_EQ(corr(x.get(), y.get(), result.get(), work->get(), 5), 0);
    expect_close(result, direct(a, b, 5, false));
    EXPECT_TRUE(exactly(x, a.samples()) && exactly(y, b.samples()));
  }
  const Vec<T> before = result;
  Record<T>* const none = nullptr;
  for (const int m : {-1, 0, 6, INT32_MAX}) {
    EXPECT_EQ(corr(x.get(), y.get(), result.get(), none, m), -1);
    EXPECT_EQ(corr(y.get(), x.get(), result.get(), none, m), -1);
  }
  EXPECT_TRUE(exactly(result, before.samples()));
}

}  // namespace sigvex_test::correlation_test
