// Operations on a vector as a sequence: running rules, sizes, order.
#include <algorithm>
#include <numbers>

#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

SUITE_OF_BOTH(Sequence);

TEST_BOTH(Sequence, EachRuleAtItsEdges) {
  constexpr T nan = kNaN<T>, inf = kInf<T>, pi = std::numbers::pi_v<T>, turn = 2 * pi, huge = kHuge<T>, least = T(-0.0);
  constexpr T big = 2 / kEps<T>, most = std::numeric_limits<T>::max(), faint = -kTiny<T> / 2;
  const T beyond = std::nextafter(pi, T(4));
  const InPlace<T> d = TWIN_OF(i, differ), i = TWIN_OF(i, integ), u = TWIN_OF(i, unwrap), sort = TWIN_OF(i, sort);
  const InPlace<T> recon = TWIN_OF(i, recon), zero = TWIN_OF(i, zero), reverse = TWIN_OF(i, bitrev);
  const auto odd = [](uint32_t flags) { return [flags](Record<T>* v) { return TWIN_OF(i, orecon)(v, flags); }; };
  const auto pad = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, zpad)(v, n); }; };
  const auto drop = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, shift)(v, n); }; };
  const InPlace<T> p = TWIN_OF(i, pdiffer);
  const auto pad2 = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, zpad2)(v, n); }; };
  const auto unpad = [](int32_t n) { return [n](Record<T>* v) { return TWIN_OF(i, unzpad)(v, n); }; };
  const auto around = [](T period) { return [period](Record<T>* v) { return TWIN_OF(i, unwrap_wnd)(v, period); }; };
  const auto stuff = [](int32_t by) { return [by](Record<T>* v) { return TWIN_OF(i, zinter)(v, by); }; };
  const auto edge = [](T level, T hysteresis, uint32_t direction) {
    return [=](Record<T>* v) { return TWIN_OF(i, edge)(v, level, hysteresis, direction); };
  };
  constexpr uint32_t up = DSP_EDGE_UP, down = DSP_EDGE_DOWN, either = DSP_EDGE_EITHER;
  const auto z = [](const std::vector<T>& scalars) { return make<T>(scalars, true); };
  const struct {
    InPlace<T> call;
    Vec<T> in, out;
    T delta = T(0.25);
    bool refused = false;
    T new_delta = delta;
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
      {u, {20000}, {std::fmod(T(20000), turn)}},  // 3183.1 turns
      {u, {40000000}, {std::fmod(T(40000000), turn) - turn}},
      {u, {1, nan, 1}, {1, nan, nan}},
      {u, z({9, 9}), z({9, 9}), 1, true},
      {p, {0, 3, -3, beyond}, {0, 6, 2 * (-6 + turn), 2 * (beyond + 3 - turn)}, T(0.5)},
      {p, {4, nan, 1, 2}, {4 - turn, nan, nan, 1}, 1},
      {p, {-pi, -pi, inf}, {-pi * huge, 0, nan}, 0},
      {p, z({9, 9}), z({9, 9}), 1, true},
      {around(360), {350, 10, 190, 370, -inf, 0}, {-10, 10, 190, 370, nan, nan}},
      {around(4096), {0, 4095, 4094, 0, -8193}, {0, -1, -2, 0, -1}},
      {around(inf), {9, -9, most}, {9, -9, most}},
      {around(0), {9}, {9}, 1, true},
      {around(-1), {9}, {9}, 1, true},
      {around(nan), {9}, {9}, 1, true},
      {around(1), z({9, 9}), z({9, 9}), 1, true},
      {recon, z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {odd(0), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {odd(8), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 5, -6, 3, -4})},
      {odd(0), {1, 3, 5}, z({1, 0, 3, 0, 5, 0, 3, least})},
      {odd(0), {7}, z({})},
      {odd(1), {}, z({})},
      {pad(5), {1, 2, 3}, {1, 2, 3, 0, 0}},
      {pad(3), z({1, 2}), z({1, 2, 0, 0, 0, 0})},
      {pad(-7), {1, 2, 3}, {1, 2, 3}},
      {pad2(7), {1, 2, 3, 4, 5}, {1, 2, 3, 0, 0, 4, 5}},
      {pad2(9), {1, 2, 3, 4}, {1, 2, 0, 0, 0, 0, 0, 3, 4}},
      {pad2(3), z({1, 2, 3, 4}), z({1, 2, 0, 0, 3, 4})},
      {pad2(3), {7}, {7, 0, 0}},
      {pad2(2), {}, {0, 0}},
      {pad2(2), {1, 2, 3}, {1, 2, 3}},
      {unpad(5), {1, 2, 3, 0, 9, 4, 5}, {1, 2, 3, 4, 5}},
      {unpad(4), {1, 2, 0, 0, 0, 0, 3, 4}, {1, 2, 3, 4}},
      {unpad(2), z({1, 2, 0, 0, 3, 4}), z({1, 2, 3, 4})},
      {unpad(1), {7, 8}, {7}},
      {unpad(-3), {7, 8}, {}},
      {unpad(5), {1, 2, 3}, {1, 2, 3}},
      {zero, z({1, 2}), z({0, 0})},
      {drop(1), z({1, 2, 3, 4}), z({3, 4})},
      {drop(INT32_MAX), {1, 2, 3}, {}},
      {drop(INT32_MIN), {1, 2, 3}, {1, 2, 3}},
      {reverse, {1, 2, 3}, {1, 2, 3}, 1, true},
      {reverse, {}, {}, 1, true},
      {stuff(1), {1, 2, least}, {1, 2, least}},
      {stuff(3), {1, 2, least}, {1, 0, 0, 2, 0, 0, least, 0, 0}, 6, false, 2},
      {stuff(2), z({1, 2, 3, 4}), z({1, 2, 0, 0, 3, 4, 0, 0}), 1, false, T(0.5)},
      {stuff(0), {1, 2}, {1, 2}, 1, true},
      {stuff(INT32_MIN), {1, 2}, {1, 2}, 1, true},
      {edge(0, 0, up), {-1, 1, -3, 1, 1}, {1, 5.5}, 2, false, 1},  // positions times delta: 0.5 and 2.75
      {edge(0, 0, down), {-1, 1, -3, 1, 1}, {1.25}, 1},
      {edge(0, 0, either), {-1, 1, -3, 1, 1}, {0.5, 1.25, 2.75}, 1},
      {edge(0, 0, either), {1, 0, -1, 0, 0, 1}, {1, 3}, 1},  // the level itself completes a crossing, and arms none
      {edge(1, 1, up), {0, 2, -1, 0.5, 0, 1.5, 0.5, 1.5}, {4 + T(2) / 3}, 1},  // 0 lies on the band, 0.5 within
      {edge(0, 2, either), {-3, 1, -1, 1, -1, 3, -3}, {0.75, 5.5}, 1},  // noise fires once; down had to be armed by 3
      {edge(0, 0, up), {0, 1, 2, 3}, {}, 1},
      {edge(0, 0, up), {-1, nan, 1, -1, 3}, {3.25}, 1},
      {edge(0, 0, up), {-inf, inf, -1, inf}, {0.5, 2}, 1},
      {edge(huge, 0, up), {-1, inf, -1, 1}, {1}, 1},
      {edge(0, inf, up), {-1, 1}, {}, 1},
      {edge(0, 0, up), {}, {}, 1},
      {edge(0, 0, up), {3}, {}, 1},
      {edge(0, 0, 0), {-1, 1}, {-1, 1}, 2, true},
      {edge(0, 0, 4), {-1, 1}, {-1, 1}, 2, true},
      {edge(nan, 0, up), {-1, 1}, {-1, 1}, 2, true},
      {edge(inf, 0, up), {-1, 1}, {-1, 1}, 2, true},
      {edge(0, -1, up), {-1, 1}, {-1, 1}, 2, true},
      {edge(0, nan, up), {-1, 1}, {-1, 1}, 2, true},
      {edge(0, 0, up), z({-1, 1}), z({-1, 1}), 3, true},
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
      EXPECT_TRUE(v->complex == row.out->complex && v->delta == row.new_delta);
      EXPECT_TRUE(!view || v->data == storage->data || exactly(storage, row.in.samples()));
    }
  }
}

TEST_BOTH(Sequence, CountsThatAreNegativeOrDoNotFit) {
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
  Vec<T> wide, narrow{1, 2}, woven{1, 2}, spaced{1, 2};
  wide->data = sample;
  wide->points = 1 << 30;
  EXPECT_EQ(TWIN_OF(b, inter)(wide, wide, woven), -1);
  EXPECT_EQ(TWIN_OF(u, zinter)(narrow, spaced, -3), -1);
  EXPECT_TRUE(exactly(spaced, {1, 2}));
  EXPECT_EQ(TWIN_OF(u, zinter)(narrow, spaced, 1 << 30), -1);
  EXPECT_EQ(TWIN_OF(i, zinter)(narrow, INT32_MAX), -1);
  for (const Vec<T>* refused : {&v, &view, &source, &copied, &woven, &spaced, &narrow}) {
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

TEST_BOTH(Sequence, HalvesAndReversalsMoveEveryPoint) {
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

TEST_BOTH(Sequence, SortAndShuffleKeepEveryPoint) {
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

// Many points of few magnitudes, NaN and infinite ones among them, against a plain sort by the stated order.
TEST_BOTH(Sequence, PointsSortByMagnitudeThenParts) {
  const auto compare = [](T a, T b) { return a < b ? -1 : a > b ? 1 : std::isnan(b) - std::isnan(a); };
  const auto key = [](std::complex<T> z) { return z.real() * z.real() + z.imag() * z.imag(); };
  const T values[] = {0, 1, -1, 2, -2, 3, kInf<T>, -kInf<T>, kNaN<T>, -kNaN<T>, kHuge<T> * kHuge<T>};
  std::vector<std::complex<T>> z;
  for (size_t k = 0; k < 3000; ++k) z.emplace_back(values[k * k % 11], values[k * 7919 % 1009 % 11]);
  Vec<T> v(z);
  std::sort(z.begin(), z.end(), [&](std::complex<T> a, std::complex<T> b) {
    const int order[] = {compare(key(a), key(b)), compare(a.real(), b.real()), compare(a.imag(), b.imag())};
    return order[0] ? order[0] < 0 : order[1] ? order[1] < 0 : order[2] < 0;
  });
  EXPECT_EQ(TWIN_OF(i, sort)(v), 0);
  EXPECT_TRUE(exactly(v, Vec<T>(z).samples()));
}

TEST_BOTH(Sequence, ShuffleGivesEveryPlaceAnEqualChance) {
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
