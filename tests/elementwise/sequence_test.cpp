// Operations on a vector as a sequence: running rules, sizes, order.
#include <numbers>

#include "elementwise/inplace.h"
#include "support/cpu_targets.h"

namespace sigvex_test::sequence_test {

SUITE_OF_BOTH(Sequence);

TEST_BOTH(Sequence, EachRuleAtItsEdges) {
  constexpr T nan = kNaN<T>, inf = kInf<T>, pi = std::numbers::pi_v<T>, turn = 2 * pi, huge = kHuge<T>, least = T(-0.0);
  constexpr T big = 2 / kEps<T>, most = std::numeric_limits<T>::max(), faint = -kTiny<T> / 2;
  const T beyond = std::nextafter(pi, T(4)), below = 19 * turn;
  constexpr uint32_t up = DSP_EDGE_UP, down = DSP_EDGE_DOWN, both = DSP_EDGE_EITHER;
  const InPlace<T> d = TWIN_OF(i, differ), i = TWIN_OF(i, integ), u = TWIN_OF(i, unwrap), p = TWIN_OF(i, pdiffer);
  const InPlace<T> sort = TWIN_OF(i, sort), recon = TWIN_OF(i, recon), zero = TWIN_OF(i, zero);
  const auto z = [](const std::vector<T>& scalars) { return Vec<T>(scalars, true); };
  const struct {
    InPlace<T> call;
    Vec<T> in, out;
    T delta = T(0.25), new_delta = delta;
  } rows[] = {
      {d, {1, 3, 6}, {2, 4, 6}, T(0.5)},
      {d, {1, 3, 3}, {huge, 2 * huge, 0}, 0},
      {d, {1, nan, 3, 4}, {1, nan, nan, 1}, 1},
      {d, z({1, 2, 4, 8}), z({2, 4, 6, 12}), T(0.5)},
      {i, {1, 1, 1}, {2, 4, 6}, 2},
      {i, {big, 1, 1, -big}, {big, big, big, 0}, 1},  // summed one by one in the precision of the samples
      {i, z({1, 2, 3, 5}), z({2, 4, 8, 14}), 2},
      {u, {0, 6}, {0, 6 - turn}},
      {u, {pi, T(0.1), 0, -pi}, {pi, T(0.1), 0, -pi}},  // half a turn stays, and what is less to the bit
      {u, {beyond}, {beyond - turn}},
      {u, {3, -3, 4}, {3, 3 + (-6 + turn), 4}},  // 4 is measured against the corrected -3
      {u, {100}, {std::fmod(T(100), turn) - turn}},
      {u, {20000}, {std::fmod(T(20000), turn)}},            // 3183.1 turns
      {u, {T(3.8e9)}, {std::fmod(T(3.8e9), turn) - turn}},  // too many turns for exact products
      {u, {below}, {std::fmod(below, turn) - turn}},        // rounded down, but not its quotient by a turn
      {u, {1, nan, 1}, {1, nan, nan}},
      {p, {0, 3, -3, beyond}, {0, 6, 2 * (-6 + turn), 2 * (beyond + 3 - turn)}, T(0.5)},
      {p, {4, nan, 1, 2}, {4 - turn, nan, nan, 1}, 1},
      {p, {-pi, -pi, inf}, {-pi * huge, 0, nan}, 0},
      {WITH(i, unwrap_wnd, 360), {350, 10, 190, 370, -inf, 0}, {-10, 10, 190, 370, nan, nan}},
      {WITH(i, unwrap_wnd, 4096), {0, 4095, 4094, 0, -8193}, {0, -1, -2, 0, -1}},
      {WITH(i, unwrap_wnd, 2), {0, 3, 0, -3}, {0, 1, 0, -1}},                    // half a period is left as it is
      {WITH(i, unwrap_wnd, 2), {1 / big, 1 + 2 / big}, {1 / big, 1 + 2 / big}},  // though the step is rounded
      {WITH(i, unwrap_wnd, 2), {-2, least, -2}, {0, least, least}},
      {WITH(i, unwrap_wnd, most), {most}, {0}},
      {WITH(i, unwrap_wnd, inf), {9, -9, most}, {9, -9, most}},
      {recon, z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {WITH(i, orecon, 0), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 3, -4})},
      {WITH(i, orecon, 8), z({1, 2, 3, 4, 5, 6}), z({1, 2, 3, 4, 5, 6, 5, -6, 3, -4})},
      {WITH(i, orecon, 0), {1, 3, 5}, z({1, 0, 3, 0, 5, 0, 3, least})},
      {WITH(i, orecon, 0), {7}, z({})},
      {WITH(i, orecon, 1), {}, z({})},
      {WITH(i, zpad, 5), {1, 2, 3}, {1, 2, 3, 0, 0}},
      {WITH(i, zpad, 3), z({1, 2}), z({1, 2, 0, 0, 0, 0})},
      {WITH(i, zpad, -7), {1, 2, 3}, {1, 2, 3}},
      {WITH(i, zpad2, 7), {1, 2, 3, 4, 5}, {1, 2, 3, 0, 0, 4, 5}},
      {WITH(i, zpad2, 9), {1, 2, 3, 4}, {1, 2, 0, 0, 0, 0, 0, 3, 4}},
      {WITH(i, zpad2, 3), z({1, 2, 3, 4}), z({1, 2, 0, 0, 3, 4})},
      {WITH(i, zpad2, 3), {7}, {7, 0, 0}},
      {WITH(i, zpad2, 2), {}, {0, 0}},
      {WITH(i, zpad2, 2), {1, 2, 3}, {1, 2, 3}},
      {WITH(i, unzpad, 5), {1, 2, 3, 0, 9, 4, 5}, {1, 2, 3, 4, 5}},
      {WITH(i, unzpad, 4), {1, 2, 0, 0, 0, 0, 3, 4}, {1, 2, 3, 4}},
      {WITH(i, unzpad, 2), z({1, 2, 0, 0, 3, 4}), z({1, 2, 3, 4})},
      {WITH(i, unzpad, 1), {7, 8}, {7}},
      {WITH(i, unzpad, -3), {7, 8}, {}},
      {WITH(i, unzpad, 5), {1, 2, 3}, {1, 2, 3}},
      {zero, z({1, 2}), z({0, 0})},
      {WITH(i, shift, 1), z({1, 2, 3, 4}), z({3, 4})},
      {WITH(i, shift, INT32_MAX), {1, 2, 3}, {}},
      {WITH(i, shift, INT32_MIN), {1, 2, 3}, {1, 2, 3}},
      {WITH(i, zinter, 1), {1, 2, least}, {1, 2, least}},
      {WITH(i, zinter, 3), {1, 2, least}, {1, 0, 0, 2, 0, 0, least, 0, 0}, 6, 2},
      {WITH(i, zinter, 2), z({1, 2, 3, 4}), z({1, 2, 0, 0, 3, 4, 0, 0}), 1, T(0.5)},
      {WITH(i, edge, 0, 0, up), {-1, 1, -3, 1, 1}, {1, 5.5}, 2, 1},  // positions times delta: 0.5 and 2.75
      {WITH(i, edge, 0, 0, down), {-1, 1, -3, 1, 1}, {1.25}, 1},
      {WITH(i, edge, 0, 0, both), {-1, 1, -3, 1, 1}, {0.5, 1.25, 2.75}, 1},
      {WITH(i, edge, 0, 0, both), {1, 0, -1, 0, 0, 1}, {1, 3}, 1},  // the level itself completes a crossing, arms none
      {WITH(i, edge, 1, 1, up), {0, 2, -1, 0.5, 0, 1.5, 0.5, 1.5}, {4 + T(2) / 3}, 1},  // 0 is on the band, 0.5 within
      {WITH(i, edge, 0, 2, both), {-3, 1, -1, 1, -1, 3, -3}, {0.75, 5.5}, 1},  // noise fires once; 3 had to arm down
      {WITH(i, edge, 0, 0, up), {0, 1, 2, 3}, {}, 1},
      {WITH(i, edge, 0, 0, both), {1, 0, 1}, {1}, 1},
      {WITH(i, edge, 0, 0, up), {-1, nan, 1, -1, 3}, {3.25}, 1},
      {WITH(i, edge, 0, 0, up), {-inf, inf, -1, inf}, {0.5, 2}, 1},
      {WITH(i, edge, huge, 0, up), {-1, inf, -1, 1}, {1}, 1},
      {WITH(i, edge, 0, inf, up), {-1, 1}, {}, 1},
      {WITH(i, edge, 0, 0, up), {}, {}, 1},
      {WITH(i, edge, 0, 0, up), {3}, {}, 1},
      {sort, {3, nan, 0, -inf, least, inf, -nan, faint, most, -1}, {nan, nan, -inf, -1, faint, least, 0, 3, most, inf}},
      {sort, z({3, 4, 5, 0, 0, -5, 0, 5, nan, 0, 1, 1, -3, 4, -3, -4, 0, nan}),
       z({nan, 0, 0, nan, 1, 1, -3, -4, -3, 4, 0, -5, 0, 5, 3, 4, 5, 0})},
  };
  for (const auto& row : rows) {
    for (const bool view : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "row " << &row - rows << (view ? " of a view" : ""));
      Vec<T> storage = row.in, v = view ? storage.view() : storage, expected = row.out;
      v->delta = row.delta;
      expected->delta = row.new_delta;
      EXPECT_EQ(row.call(v), 0);
      EXPECT_TRUE(same(v, expected));
      EXPECT_TRUE(!view || v->data == storage->data || exactly(storage, row.in.samples()));
    }
  }
  const std::pair<Vec<T>, std::vector<InPlace<T>>> refusals[] = {
      {{9, 1, -3},
       {TWIN_OF(i, bitrev), WITH(i, unwrap_wnd, 0), WITH(i, unwrap_wnd, -1), WITH(i, unwrap_wnd, nan),
        WITH(i, zinter, 0), WITH(i, zinter, INT32_MIN), WITH(i, edge, 0, 0, 0), WITH(i, edge, 0, 0, 4),
        WITH(i, edge, nan, 0, up), WITH(i, edge, inf, 0, up), WITH(i, edge, 0, -1, up), WITH(i, edge, 0, nan, up)}},
      {z({9, 9, -1, 1}), {u, p, WITH(i, unwrap_wnd, 1), WITH(i, edge, 0, 0, up)}},
      {{}, {TWIN_OF(i, bitrev)}}};
  for (const auto& [given, calls] : refusals) {
    for (const InPlace<T>& call : calls) {
      Vec<T> v = given;
      EXPECT_EQ(call(v), -1) << &call - calls.data();
      EXPECT_TRUE(same(v, given));
    }
  }
}

TEST_BOTH(Sequence, CountsThatAreNegativeOrDoNotFit) {
  Vec<T> v{1, 2, 3}, none;
  v->points = 1;  // the capacity behind it suffices, its contents do not count
  EXPECT_EQ(TWIN_OF(i, zpad)(v, 3), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 0}));
  none->points = -4;
  EXPECT_EQ(TWIN_OF(i, bitrev_scale)(none, T(2)), -1);
  EXPECT_EQ(TWIN_OF(i, orecon)(none, 1), 0);
  EXPECT_EQ(none->points, 0);
  const auto inter = [](auto* source, auto* result) { return TWIN_OF(b, inter)(source, source, result); };
  const struct {
    std::function<int32_t(Record<T>*, Record<T>*)> call;
    int32_t points, complex;  // of a source that claims more samples than there are
    bool in_place = false;
  } rows[] = {{WITH(u, cscale, 1, 1), INT32_MAX, 0},
              {WITH(u, zinter, 1 << 30), 2, 0},
              {inter, 1 << 30, 0},
              {[](auto* source, auto*) { return TWIN_OF(i, zpad)(source, INT32_MAX); }, 2, 1, true},
              {[](auto* source, auto*) { return TWIN_OF(i, zinter)(source, INT32_MAX); }, 2, 0, true},
              {[](auto* source, auto*) { return TWIN_OF(i, cscale)(source, 1, 1); }, INT32_MAX, 0, true},
              {[](auto* source, auto*) { return TWIN_OF(i, orecon)(source, 0); }, 1 << 30, 1, true}};
  for (const auto& row : rows) {
    T samples[] = {1, 2, 3, 4};
    Vec<T> source = Vec<T>::over(samples, row.points, row.complex), result{1, 2};
    EXPECT_EQ(row.call(source, result), -1) << &row - rows;
    const Vec<T>& refused = row.in_place ? source : result;
    EXPECT_TRUE(!refused->data && !refused->allocated && !refused->points) << &row - rows;
  }
  Vec<T> narrow{1, 2}, spaced{1, 2};
  EXPECT_EQ(TWIN_OF(u, zinter)(narrow, spaced, -3), -1);
  EXPECT_TRUE(exactly(spaced, {1, 2}));
}

// n different points, point from(k) in place k: 1, 2, 3 ... or (1, -1), (2, -2) ...
template <class T, class F> Vec<T> numbered(size_t n, bool complex, F from) {
  std::vector<T> scalars;
  for (size_t k = 0; k < n; ++k) {
    scalars.push_back(static_cast<T>(from(k) + 1));
    if (complex) scalars.push_back(-scalars.back());
  }
  return {scalars, complex};
}

TEST_BOTH(Sequence, HalvesReversalsAndZerosMoveEveryPoint) {
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
      const size_t factor = 1 + n % 5, width = complex ? 2 : 1;
      Vec<T> apart, spread = v;
      EXPECT_EQ(TWIN_OF(u, zinter)(v, apart, int32_t(factor)) | TWIN_OF(i, zinter)(spread, int32_t(factor)), 0);
      EXPECT_TRUE(exactly(apart, spread.samples()) && apart.size() == factor * v.size());
      for (size_t k = 0; k < apart.size(); ++k) {
        ASSERT_EQ(apart[k], k / width % factor ? 0 : v[k / width / factor * width + k % width]) << n;
      }
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
  for (size_t k = 0; k < 3000; ++k) {
    z.emplace_back(values[k * k % 11], values[k * 7919 % 1009 % 11]);
    z.emplace_back(0, T(k / 2 + 4) * (k % 2 ? -1 : 1));  // two of each magnitude
  }
  const Vec<T> shuffled(z);
  std::sort(z.begin(), z.end(), [&](std::complex<T> a, std::complex<T> b) {
    const int order[] = {compare(key(a), key(b)), compare(a.real(), b.real()), compare(a.imag(), b.imag())};
    return order[0] ? order[0] < 0 : order[1] ? order[1] < 0 : order[2] < 0;
  });
  for_each_cpu_target([&](const char* target) {
    Vec<T> v = shuffled;
    EXPECT_EQ(TWIN_OF(i, sort)(v), 0);
    EXPECT_TRUE(exactly(v, Vec<T>(z).samples())) << target;
  });
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

}  // namespace sigvex_test::sequence_test
