#include <bit>

#include "support/twin.h"

namespace sigvex_test {
namespace {

constexpr Twin sliding{&dsph_corr, &dspfh_corr};
TWIN(b, corr);

template <class T> struct Correlation : ::testing::Test {};
TYPED_TEST_SUITE(Correlation, Precisions);

// n points without symmetry or period.
template <class T> Vec<T> irregular(int n, bool complex, T delta) {
  std::vector<T> real;
  std::vector<std::complex<T>> pairs;
  for (int k = 0; k < n; ++k) {
    real.push_back(static_cast<T>(std::sin(1.0 + 0.3 * k * k)));
    pairs.emplace_back(real.back(), static_cast<T>(std::cos(0.7 * k * k)));
  }
  Vec<T> v = complex ? Vec<T>(pairs) : Vec<T>(real);
  v->delta = delta;
  return v;
}

template <class T> std::complex<long double> value(const Vec<T>& v, size_t k) {
  if (v->complex) return {v.at(k).real(), v.at(k).imag()};
  return {v[k], 0};
}

// Lag k: the sum of conj(a[j]) b[j + k] over the first m points, divided by the padded length.
template <class T> std::vector<T> direct(const Vec<T>& a, const Vec<T>& b, int m, bool halve) {
  const bool complex = a->complex || b->complex;
  const long double scale =
      (halve ? 0.5L : 1.0L) / static_cast<long double>(std::bit_ceil(static_cast<unsigned>(b->points)));
  std::vector<T> result;
  for (int k = 0; k <= b->points - m; ++k) {
    std::complex<long double> sum = 0;
    for (int j = 0; j < m; ++j) sum += std::conj(value(a, j)) * value(b, j + k);
    result.push_back(static_cast<T>(sum.real() * scale));
    if (complex) result.push_back(static_cast<T>(sum.imag() * scale));
  }
  return result;
}

// Each of the three transforms errs by at most 0.6 eps sqrt(log2 256) of its norm, the product of the spectra by 3 eps,
// and the norms of the two spectra multiply to at most 2.
template <class T> void expect_close(const Vec<T>& result, const std::vector<T>& expected) {
  EXPECT_TRUE(close(result, expected, 20 * static_cast<double>(kEps<T>), 1.0));
}

TYPED_TEST(Correlation, SlidesTheFirstPointsAlongTheSecondVector) {
  using T = TypeParam;
  struct Row {
    int a, b, m;
  };
  for (const Row row :
       {Row{1, 1, 1}, {3, 1, 1}, {2, 2, 1}, {2, 2, 2}, {4, 3, 2}, {5, 8, 5}, {40, 100, 33}, {9, 256, 1}}) {
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      for (const bool halve : {false, true}) {
        const Vec<T> a = irregular<T>(row.a, forms & 1, 1), b = irregular<T>(row.b, forms & 2, 3);
        const std::vector<T> expected = direct(a, b, row.m, halve);
        Vec<T> result, work;
        Record<T>* const none = nullptr;
        SCOPED_TRACE(::testing::Message() << row.a << ' ' << row.b << ' ' << row.m << " forms " << forms << halve);
        EXPECT_EQ(sliding(static_cast<const Record<T>*>(a), static_cast<const Record<T>*>(b), result.get(), work.get(),
                          row.m, uint32_t{halve}),
                  0);
        expect_close(result, expected);
        EXPECT_EQ(result->delta, T(2));
        EXPECT_EQ(result->complex, forms != 0);
        EXPECT_EQ(result->points, row.b - row.m + 1);
        if (halve) continue;
        const auto aliased = [&](Vec<T> x, Vec<T> y,
                                 int where) {  // the result or the workspace is an input, or both are one
          Record<T>* const records[] = {x.get(), y.get()};
          Vec<T> other;
          EXPECT_EQ(corr(records[0], records[1], records[where], where ? records[1] : none, row.m), 0);
          expect_close(where ? y : x, expected);
        };
        aliased(a, b, 0);
        aliased(a, b, 1);
      }
    }
  }
}

TYPED_TEST(Correlation, KeepsItsInputsWhateverTheWorkspace) {
  using T = TypeParam;
  Vec<T> a = irregular<T>(5, false, 1), b = irregular<T>(9, true, 3);
  const Vec<T> a_before = a, b_before = b;
  for (Vec<T>* const work : {&a, &b}) {
    Vec<T> result;
    EXPECT_EQ(corr(a.get(), b.get(), result.get(), work->get(), 5), 0);
    expect_close(result, direct(a_before, b_before, 5, false));
    EXPECT_TRUE(exactly(a, a_before.samples()));
    EXPECT_TRUE(exactly(b, b_before.samples()));
  }
}

TYPED_TEST(Correlation, RefusesALengthThatAnInputLacks) {
  using T = TypeParam;
  Vec<T> a{1, 2}, b{1, 2, 3}, result{7};
  Record<T>* const none = nullptr;
  for (const int m : {-1, 0, 3, INT32_MAX}) EXPECT_EQ(corr(a.get(), b.get(), result.get(), none, m), -1) << m;
  EXPECT_EQ(corr(b.get(), a.get(), result.get(), none, 3), -1);
  EXPECT_EQ(corr(a.get(), b.get(), none, none, 1), -1);
  EXPECT_TRUE(exactly(result, {7}));
}

}  // namespace
}  // namespace sigvex_test
