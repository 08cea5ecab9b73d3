// Operations on a vector as a sequence: running rules, sizes, order.
#include <algorithm>
#include <numbers>

#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> struct Sequence : ::testing::Test {};
TYPED_TEST_SUITE(Sequence, Precisions);

TYPED_TEST(Sequence, EachRuleAtItsEdges) {
  using T = TypeParam;
  constexpr T nan = kNaN<T>, inf = kInf<T>, pi = std::numbers::pi_v<T>, turn = 2 * pi, huge = kHuge<T>, least = T(-0.0);
  constexpr T big = 2 / kEps<T>, most = std::numeric_limits<T>::max(), faint = -kTiny<T> / 2;
  const T beyond = std::nextafter(pi, T(4));
  const InPlace<T> d = TWIN_OF(i, differ), i = TWIN_OF(i, integ), u = TWIN_OF(i, unwrap), sort = TWIN_OF(i, sort);
  const InPlace<T> recon = TWIN_OF(i, recon), zero = TWIN_OF(i, zero), reverse = TWIN_OF(i, bitrev);
  const auto odd = [](uint32_t flags) { return [flags](Record<T>* v) { return TWIN_OF(i, orecon)(v, flags); }; };
  const auto pad = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, zpad)(v, n); }; };
  const auto drop = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, shift)(v, n); }; };
  const auto z = [](const std::vector<T>& scalars) { return make<T>(scalars, true); };
  const struct {
    InPlace<T> call;
    Vec<T> in, out;
    T delta = T(0.25);
    bool refused = false;
  } rows[] = {
      {d, {1, 3, 6}, {2, 4, 6}, T(0.5)},
      {d, {1, 3, 3}, {huge, 2 * huge, 0}, 0},
      {d, {1, nan, 3, 4}, {1, nan, nan, 1}, 1},
      {d, z({1, 2, 4, 8}), z({2, 4, 6, 12}), T(0.5)},
      {i, {1, 1, 1}, {2, 4, 6}, 2},
      {i, {big, 1, 1, -big}, {big, big, big, 0}, 1},  // summed one by one in the precision of the samples
      {i, z({1, 2, 3, 5}), z({2, 4, 8, 14}), 2},
      {u, {0, 6}, {0, 6 - turn}},
      {u, {pi, 0, -pi}, {pi, 0, -pi}},  // half a turn stays
      {u, {beyond}, {beyond - turn}},
      {u, {3, -3, 4}, {3, 3 + (-6 + turn), 4}},  // 4 is measured against the corrected -3
      {u, {100}, {std::fmod(T(100), turn) - turn}},
      {u, {1, nan, 1}, {1, nan, nan}},
      {u, z({9, 9}), z({9, 9}), 1, true},
      {recon, z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {odd(0), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {odd(8), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 5, -6, 3, -4})},
      {odd(0), {1, 3, 5}, z({1, 0, 3, 0, 5, 0, 3, least})},
      {odd(0), {7}, z({})},
      {odd(1), {}, z({})},
      {pad(5), {1, 2, 3}, {1, 2, 3, 0, 0}},
      {pad(3), z({1, 2}), z({1, 2, 0, 0, 0, 0})},
      {pad(-7), {1, 2, 3}, {1, 2, 3}},
      {zero, z({1, 2}), z({0, 0})},
      {drop(1), z({1, 2, 3, 4}), z({3, 4})},
      {drop(INT32_MAX), {1, 2, 3}, {}},
      {drop(INT32_MIN), {1, 2, 3}, {1, 2, 3}},
      {reverse, {1, 2, 3}, {1, 2, 3}, 1, true},
      {reverse, {}, {}, 1, true},
      {sort, {3, nan, 0, -inf, least, inf, -nan, faint, most, -1}, {nan, nan, -inf, -1, faint, least, 0, 3, most, inf}},
      {sort, z({3, 4, 5, 0, 0, -5, 0, 5, nan, 0, 1, 1, -3, 4, -3, -4, 0, nan}),
       z({nan, 0, 0, nan, 1, 1, -3, -4, -3, 4, 0, -5, 0, 5, 3, 4, 5, 0})},
  };
  for (const auto& row : rows) {
    for (const bool view : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "row " << &row - rows << (view ? " of a view" : ""));
      Vec<T> storage = row.in, v;
      *v.get() = *storage.get();
      (view ? v : storage)->allocated = 0;
      v->delta = row.delta;
      EXPECT_EQ(row.call(v), row.refused ? -1 : 0);
      EXPECT_TRUE(exactly(v, row.out.samples()));
      EXPECT_TRUE(v->complex == row.out->complex && v->delta == row.delta);
      EXPECT_TRUE(!view || v->data == storage->data || exactly(storage, row.in.samples()));
    }
  }
}

TYPED_TEST(Sequence, CountsThatAreNegativeOrDoNotFit) {
  using T = TypeParam;
  Vec<T> v{1, 2, 3}, view, none, source, copied{1, 2};
  v->points = 1;  // the capacity behind it suffices, its contents do not count
  EXPECT_EQ(TWIN_OF(i, zpad)(v, 3), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 0}));
  v->complex = 1;
  EXPECT_EQ(TWIN_OF(i, zpad)(v, INT32_MAX), -1);
  T sample[] = {1, 2};
  source->data = view->data = sample;  // more scalars than a record holds
  source->points = INT32_MAX;
  view->points = 1 << 30;
  view->complex = 1;
  EXPECT_EQ(TWIN_OF(u, cscale)(source, copied, 1, 1), -1);
  EXPECT_EQ(TWIN_OF(i, cscale)(source, 1, 1), -1);
  EXPECT_EQ(TWIN_OF(i, orecon)(view, 0), -1);
  for (const Vec<T>* refused : {&v, &view, &source, &copied}) {
    EXPECT_TRUE(!(*refused)->data && !(*refused)->allocated && !(*refused)->points);
  }
  none->points = -4;
  EXPECT_EQ(TWIN_OF(i, bitrev_scale)(none, T(2)), -1);
  EXPECT_EQ(TWIN_OF(i, orecon)(none, 1), 0);
  EXPECT_EQ(none->points, 0);
}

// n different points, point from(k) in place k: 1, 2, 3 ... or (1, -1), (2, -2) ...
template <class T, class F> Vec<T> numbered(size_t n, bool complex, F from) {
  std::vector<T> scalars;
  for (size_t k = 0; k < n; ++k) {
    scalars.push_back(static_cast<T>(from(k) + 1));
    if (complex) scalars.push_back(-scalars.back());
  }
  return make(scalars, complex);
}

TYPED_TEST(Sequence, HalvesAndReversalsMoveEveryPoint) {
  using T = TypeParam;
  for (const bool complex : {false, true}) {
    for (const size_t n : {0, 1, 2, 3, 4, 5, 7, 8, 16, 17, 32, 64, 65, 128, 256, 1001, 1024, 4096}) {
      const auto expect = [=](Vec<T>& v, auto from) {
        EXPECT_TRUE(exactly(v, numbered<T>(n, complex, from).samples()));
      };
      Vec<T> v = numbered<T>(n, complex, [](size_t k) { return k; });
      EXPECT_EQ(TWIN_OF(i, swap_halves)(v), 0);
      expect(v, [n](size_t k) { return (k + (n + 1) / 2) % n; });
      EXPECT_EQ(TWIN_OF(i, swap_halves2)(v), 0);
      expect(v, [](size_t k) { return k; });
      EXPECT_EQ(TWIN_OF(i, rev)(v), 0);
      expect(v, [n](size_t k) { return n - 1 - k; });
      if (n == 0 || (n & (n - 1)) != 0) continue;
      const auto reversed = [n](size_t k) {
        size_t r = 0;
        for (size_t bit = 1; bit < n; bit *= 2) r = 2 * r + (k & bit ? 1 : 0);
        return n - 1 - r;
      };
      EXPECT_EQ(TWIN_OF(i, bitrev)(v), 0);
      expect(v, reversed);
      EXPECT_EQ(TWIN_OF(i, bitrev_scale)(v, T(2)), 0);
      expect(v, [n](size_t k) { return 2 * (n - k) - 1; });
    }
  }
}

TYPED_TEST(Sequence, SortAndShuffleKeepEveryPoint) {
  using T = TypeParam;
  for (const size_t n : {0, 1, 2, 3, 17, 255, 256, 257, 5000}) {
    for (const bool complex : {false, true}) {
      const auto twice = [](size_t k) { return k / 2; };  // every value about twice
      Vec<T> v = numbered<T>(n, complex, twice);
      EXPECT_EQ(TWIN_OF(i, shuffle)(v), 0);
      EXPECT_EQ(TWIN_OF(i, sort)(v), 0);
      EXPECT_TRUE(exactly(v, numbered<T>(n, complex, twice).samples())) << n;
    }
  }
}

TYPED_TEST(Sequence, ShuffleGivesEveryPlaceAnEqualChance) {
  using T = TypeParam;
  constexpr size_t kCount = 5, kRounds = 20000;
  double seen[kCount][kCount] = {};  // how often each point came to each place
  for (size_t round = 0; round < kRounds; ++round) {
    Vec<T> v{0, 1, 2, 3, 4};
    EXPECT_EQ(TWIN_OF(i, shuffle)(v), 0);
    for (size_t k = 0; k < kCount; ++k) ++seen[k][static_cast<size_t>(v[k])];
  }
  // Binomial: within 6 standard deviations of an equal share. All 50 checks fail by chance less than once in 10^7 runs.
  const double share = double{kRounds} / kCount, deviation = std::sqrt(share * (1 - 1.0 / kCount));
  for (const auto& places : seen) {
    for (const double times : places) EXPECT_NEAR(times, share, 6 * deviation);
  }
}

}  // namespace
}  // namespace sigvex_test
