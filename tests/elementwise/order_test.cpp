#include <algorithm>
#include <tuple>

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

// n different points, point from(k) in place k: 1, 2, 3 ... or (1, -1), (2, -2) ...
template <class T, class F> Vec<T> numbered(size_t n, bool complex, F from) {
  std::vector<T> scalars;
  for (size_t k = 0; k < n; ++k) {
    scalars.push_back(static_cast<T>(from(k) + 1));
    if (complex) scalars.push_back(-scalars.back());
  }
  Vec<T> v(scalars);
  v->points = static_cast<int32_t>(n);
  v->complex = complex;
  return v;
}

TYPED_TEST(Order, HalvesAndReversalMoveEveryPoint) {
  using T = TypeParam;
  for (const bool complex : {false, true}) {
    for (const size_t n : {0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 64, 65, 1001}) {
      const auto in_order = numbered<T>(n, complex, [](size_t k) { return k; }).samples();
      const auto swapped = numbered<T>(n, complex, [n](size_t k) { return (k + (n + 1) / 2) % n; }).samples();
      Vec<T> v = numbered<T>(n, complex, [](size_t k) { return k; });
      EXPECT_EQ(swap_halves(v.get()), 0);
      EXPECT_TRUE(exactly(v, swapped)) << n;
      EXPECT_EQ(swap_halves2(v.get()), 0);
      EXPECT_TRUE(exactly(v, in_order)) << n;
      EXPECT_EQ(rev(v.get()), 0);
      EXPECT_TRUE(exactly(v, numbered<T>(n, complex, [n](size_t k) { return n - 1 - k; }).samples())) << n;
    }
  }
}

TYPED_TEST(Order, PaddingZeroingAndShiftingSizeTheVector) {
  using T = TypeParam;
  const auto pad = zpad.template of<T>(), drop = shift.template of<T>();
  const auto clear = +[](Record<T>* v, int32_t) { return zero(v); };
  struct Row {
    int32_t (*call)(Record<T>*, int32_t);
    int32_t argument;
    std::vector<T> of_real, of_complex;  // what becomes of 1 2 3 and of (1, 2)
  };
  const Row rows[] = {{pad, 2, {1, 2, 3}, {1, 2, 0, 0}},
                      {pad, 5, {1, 2, 3, 0, 0}, {1, 2, 0, 0, 0, 0, 0, 0, 0, 0}},
                      {pad, -7, {1, 2, 3}, {1, 2}},
                      {clear, 0, {0, 0, 0}, {0, 0}},
                      {drop, 0, {1, 2, 3}, {1, 2}},
                      {drop, 1, {2, 3}, {}},
                      {drop, 4, {}, {}},
                      {drop, INT32_MAX, {}, {}},
                      {drop, -1, {1, 2, 3}, {1, 2}},
                      {drop, INT32_MIN, {1, 2, 3}, {1, 2}}};
  for (const Row& row : rows) {
    T storage[] = {1, 2, 3};
    Vec<T> real{1, 2, 3}, complex = Vec<T>::pairs({{1, 2}}), view;
    view->data = storage;
    view->points = 3;
    real->delta = 7;
    for (Record<T>* const v : {real.get(), complex.get(), view.get()}) EXPECT_EQ(row.call(v, row.argument), 0);
    EXPECT_TRUE(exactly(real, row.of_real));
    EXPECT_TRUE(exactly(view, row.of_real));
    EXPECT_TRUE(exactly(complex, row.of_complex));
    EXPECT_EQ(complex->complex, 1);
    EXPECT_EQ(real->delta, T(7));
    EXPECT_TRUE(storage[0] == 1 && storage[1] == 2 && storage[2] == 3);  // a view that is sized leaves what it viewed
  }
  Vec<T> v{1, 2, 3};
  v->points = 1;  // the capacity behind it suffices, its contents do not count
  EXPECT_EQ(zpad(v.get(), 3), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 0}));
  v->complex = 1;
  EXPECT_EQ(zpad(v.get(), INT32_MAX), -1);  // more scalars than a record holds
  EXPECT_TRUE(v->data == nullptr && v->allocated == 0 && v->points == 0);
  EXPECT_EQ(zero(v.get()), 0);
}

TYPED_TEST(Order, SortIsTotalWithNaNFirst) {
  using T = TypeParam;
  constexpr T nan = kNaN<T>, inf = kInf<T>, most = std::numeric_limits<T>::max(), faint = -kTiny<T> / 2;
  Vec<T> v{3, nan, T(0.0), -inf, T(-0.0), inf, -nan, faint, most, -1};
  EXPECT_EQ(sort(v.get()), 0);
  EXPECT_TRUE(exactly(v, {nan, nan, -inf, -1, faint, T(-0.0), T(0.0), 3, most, inf}));
  Vec<T> z = Vec<T>::pairs({{3, 4}, {5, 0}, {0, -5}, {0, 5}, {nan, 0}, {1, 1}, {-3, 4}, {-3, -4}, {0, nan}});
  EXPECT_EQ(sort(z.get()), 0);
  EXPECT_TRUE(exactly(z, {nan, 0, 0, nan, 1, 1, -3, -4, -3, 4, 0, -5, 0, 5, 3, 4, 5, 0}));
}

TYPED_TEST(Order, SortAndShuffleKeepEveryPoint) {
  using T = TypeParam;
  const auto by_key = [](std::complex<T> a, std::complex<T> b) {
    return std::tuple(std::norm(a), a.real(), a.imag()) < std::tuple(std::norm(b), b.real(), b.imag());
  };
  for (const size_t n : {0, 1, 2, 3, 17, 255, 256, 257, 5000}) {
    Vec<T> v = numbered<T>(n, false, [n](size_t k) { return (k * 7919) % (n / 2 + 1); });  // every value about twice
    std::vector<T> expected = v.samples();
    std::vector<std::complex<T>> pairs;
    for (const T x : expected) pairs.emplace_back(x, T(3000) - x);
    Vec<T> z(pairs);
    std::sort(expected.begin(), expected.end());
    std::sort(pairs.begin(), pairs.end(), by_key);
    for (Vec<T>* const each : {&v, &z}) {
      EXPECT_EQ(shuffle(each->get()), 0);
      EXPECT_EQ(sort(each->get()), 0);
    }
    EXPECT_TRUE(exactly(v, expected)) << n;
    EXPECT_TRUE(exactly(z, Vec<T>(pairs).samples())) << n;
  }
}

TYPED_TEST(Order, ShuffleGivesEveryPlaceAnEqualChance) {
  using T = TypeParam;
  constexpr size_t kCount = 5, kRounds = 20000;
  double seen[kCount][kCount] = {};  // how often each point came to each place
  for (size_t round = 0; round < kRounds; ++round) {
    Vec<T> v = numbered<T>(kCount, false, [](size_t k) { return k; });
    EXPECT_EQ(shuffle(v.get()), 0);
    for (size_t k = 0; k < kCount; ++k) ++seen[k][static_cast<size_t>(v[k]) - 1];
  }
  // Binomial: within 6 standard deviations of an equal share. All 50 checks fail by chance less than once in 10^7 runs.
  const double share = double{kRounds} / kCount, deviation = std::sqrt(share * (1 - 1.0 / kCount));
  for (const auto& places : seen) {
    for (const double times : places) EXPECT_NEAR(times, share, 6 * deviation);
  }
}

}  // namespace
}  // namespace sigvex_test
