#include <functional>

#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test::fir_test {

TWIN(d, fir);
TWIN(, free_internal);

SUITE_OF_BOTH(Fir);

TEST_BOTH(Fir, EveryFormAndLengthIsTheDefinition) {
  for_each_cpu_target([](const char* target) {
    SCOPED_TRACE(target);
    for (const size_t count : {1, 2, 9, 35, 36, 37, 45, 46, 47, 131, 300}) {
      for (const size_t n : {0, 1, 8, 34, 35, 44, 45, 46, 64, 130, 256, 1020}) {
        expect_filter<T>(count, n, fir, std::identity(), [](const auto&...) {});
      }
    }
  });
}

TEST_BOTH(Fir, BlocksOfAnySizesGiveWhatOneCallGives) {
  for (const size_t count : {1, 2, 20, 35, 60, 100}) {
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      SCOPED_TRACE(::testing::Message() << count << " taps, forms " << forms);
      const Vec<T> in = noise<T>(1500, forms & 1), taps = noise<T>(count, forms & 2);
      const bool direct = count <= 35 || forms >= 2;
      expect_same_in_blocks(
          in, count == 60 ? 300 : 90, [&](Vec<T>& x, Vec<T>& y, Record<T>* state) { return fir(x, y, taps, state); },
          direct ? 0 : 2 * bound(Vec<T>(), in, taps));
    }
  }
}

// 64 taps on 63 points: the transform holds the whole convolution, so every output comes through the kept spectrum.
TEST_BOTH(Fir, TheKeptSpectrumServesEqualTapsOnly) {
  Vec<T> in = noise<T>(63, false), pairs = noise<T>(63, true), longer = noise<T>(700, false), taps(std::vector<T>(64));
  const auto run = [&](Vec<T>& x) {
    Vec<T> out;
    EXPECT_EQ(fir(x, out, taps, nullptr), 0);
    return out;
  };
  const auto expect_right = [&](Vec<T>& x) { EXPECT_TRUE(right(run(x), Vec<T>(), x, taps)); };
  taps[0] = 1;
  taps[9] = T(0.5);
  EXPECT_EQ(free_internal.of<T>()(), 0);
  const std::vector<T> first = run(in).samples();
  for (const int off : {4, 6}) {  // five epsilons apart are equal
    taps[63] = static_cast<T>(off) * kEps<T>;
    EXPECT_EQ(exactly(run(in), first), off < 5) << off;
  }
  std::vector<T> last;
  for (const int off : {0, -4, 4}) {  // both within five epsilons of the first ones, but not of each other
    taps[63] = static_cast<T>(off) * kEps<T>;
    last = run(off ? pairs : in).samples();
  }
  EXPECT_EQ(free_internal.of<T>()(), 0);
  EXPECT_TRUE(exactly(run(pairs), last));
  for (const T tap : {T(1), kNaN<T>, kNaN<T>, T(2), kInf<T>, T(3)}) {  // in the last place only
    taps[63] = tap;
    if (!std::isfinite(tap)) EXPECT_TRUE(std::isnan(run(in)[62]));
    else
      for (Vec<T>* const x : {&in, &pairs, &longer, &in})
        expect_right(*x);  // another form's or length's must not serve
  }
  taps[0] = 0;  // no tolerance at all
  expect_right(in);
  EXPECT_EQ(free_internal.of<T>()(), 0);
  expect_right(pairs);
}

TEST_BOTH(Fir, ALoudHistoryStaysWhereItReachesAndASampleInWrappedOutputs) {
  for (const T loud : {kInf<T>, kNaN<T>, kHuge<T>, T(1e5)}) {
    for (const size_t n : {400, 512}) {  // a transform with room for the history, and one without
      Vec<T> in{std::vector<T>(n)}, taps = noise<T>(100, false), state(std::vector<T>(99, loud)), out;
      in[n - 1] = T(1);
      EXPECT_EQ(fir(in, out, taps, state), 0);
      EXPECT_NE(out[98], T(0));
      EXPECT_TRUE(right(cut(out, 99, n), Vec<T>(), cut(in, 99, n), taps)) << loud << ' ' << n;
      in[90] = loud;
      EXPECT_EQ(fir(in, out, taps, nullptr), 0);
      EXPECT_TRUE(n < 512 || std::isfinite(out[89])) << loud;
    }
  }
}

}  // namespace sigvex_test::fir_test
