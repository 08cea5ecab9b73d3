#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test {
namespace {

TWIN(d, fir);
TWIN(, free_internal);

template <class T> struct Fir : ::testing::Test {};
TYPED_TEST_SUITE(Fir, Precisions);

template <class T> int32_t filter(Vec<T>& in, Vec<T>& out, Vec<T>& taps, Record<T>* state = nullptr) {
  return fir(in.get(), out.get(), taps.get(), state);
}

// Runs one set of lengths in every form, with and without a history, into an output of its own and into each input.
template <class T> void expect_definition(const char* target) {
  for (const size_t count : {1, 2, 9, 35, 36, 37, 45, 46, 47, 131, 300}) {
    for (const size_t n : {0, 1, 8, 34, 35, 44, 45, 46, 64, 130, 256, 1020}) {
      for (const unsigned forms : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << count << " taps, " << n << " points, forms " << forms);
        Vec<T> in = noise<T>(n + 1, forms & 1), past = noise<T>(count, forms & 1), taps = noise<T>(count, forms & 2);
        in->points = static_cast<int32_t>(n);
        in->delta = 3;
        in->complex *= 5;  // any number but 0 says complex; what a result gets is 1
        past->points = static_cast<int32_t>(count) - 1;
        Vec<T> state = past, out{7}, silent, same = in, same_taps = taps;
        std::vector<T> stream = past.samples();
        for (const T x : in.samples()) stream.push_back(x);
        EXPECT_EQ(filter(in, out, taps, state.get()), 0);
        EXPECT_TRUE(right(out, past, in, taps));
        EXPECT_TRUE(out->points == in->points && out->complex == (forms != 0) && out->delta == 3 && state->delta == 3);
        EXPECT_TRUE(exactly(state, {stream.end() - static_cast<long>(past.size()), stream.end()}));
        EXPECT_EQ(filter(in, silent, taps), 0);
        EXPECT_TRUE(right(silent, Vec<T>(), in, taps));
        EXPECT_TRUE(exactly(in, same.samples()) && exactly(taps, same_taps.samples()));
        EXPECT_EQ(filter(same, same, taps) | filter(in, same_taps, same_taps), 0);
        EXPECT_TRUE(exactly(same, silent.samples()) && exactly(same_taps, silent.samples()));
      }
    }
  }
}

TYPED_TEST(Fir, EveryFormAndLengthIsTheDefinition) { for_each_cpu_target(expect_definition<TypeParam>); }

TYPED_TEST(Fir, BlocksOfAnySizesGiveWhatOneCallGives) {
  using T = TypeParam;
  for (const size_t count : {1, 2, 20, 35, 60, 100}) {
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      SCOPED_TRACE(::testing::Message() << count << " taps, forms " << forms);
      Vec<T> in = noise<T>(1500, forms & 1), taps = noise<T>(count, forms & 2), whole;
      EXPECT_EQ(filter(in, whole, taps), 0);
      const auto blocks = in_blocks(in, count == 60 ? 300 : 90, static_cast<unsigned>(count),
                                    [&](Vec<T>& x, Vec<T>& y, Vec<T>& s) { return filter(x, y, taps, s.get()); });
      const bool direct = count <= 35 || forms >= 2;
      EXPECT_TRUE(direct ? exactly(whole, blocks) : close(whole, blocks, 2 * bound(Vec<T>(), in, taps), 1));
    }
  }
}

TYPED_TEST(Fir, AStateOfAnotherLengthOrFormIsBroughtToTheInputs) {
  using T = TypeParam;
  for (const bool complex : {false, true}) {
    for (const Vec<T>& given : {Vec<T>{1, 2}, Vec<T>{1, 2, 3, 4, 5, 6}, Vec<T>::pairs({{1, 9}, {2, 8}}),
                                Vec<T>::pairs({{1, 9}, {2, 8}, {3, 7}, {4, 6}})}) {
      Vec<T> state = given, in = noise<T>(5, complex), out, taps{1, -2, 3, -4}, past(std::vector<std::complex<T>>(3));
      for (int k = 0; k < std::min(given->points, 3); ++k) {
        past[2 * k] = static_cast<T>(value(given, k).real());
        past[2 * k + 1] = complex ? static_cast<T>(value(given, k).imag()) : T(0);
      }
      EXPECT_EQ(filter(in, out, taps, state.get()), 0);
      EXPECT_TRUE(right(out, past, in, taps));
      EXPECT_TRUE(exactly(state, cut(in, 2, 5).samples()));
    }
  }
}

// 64 taps on 63 points: the transform holds the whole convolution, so every output comes through the kept spectrum.
TYPED_TEST(Fir, TheKeptSpectrumServesEqualTapsOnly) {
  using T = TypeParam;
  Vec<T> in = noise<T>(63, false), pairs = noise<T>(63, true), longer = noise<T>(700, false), taps(std::vector<T>(64));
  const auto run = [&](Vec<T>& x) {
    Vec<T> out;
    EXPECT_EQ(filter(x, out, taps), 0);
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

TYPED_TEST(Fir, ALoudHistoryStaysWhereItReachesAndASampleInWrappedOutputs) {
  using T = TypeParam;
  for (const T loud : {kInf<T>, kNaN<T>, kHuge<T>, T(1000)}) {
    Vec<T> in(std::vector<T>(512)), taps = noise<T>(100, false), state(std::vector<T>(99, loud)), out;
    EXPECT_EQ(filter(in, out, taps, state.get()), 0);
    EXPECT_NE(out[98], T(0));
    EXPECT_TRUE(close(cut(out, 99, 512), std::vector<T>(413), 0)) << loud;
    in.get()->data[90] = loud;
    EXPECT_EQ(filter(in, out, taps), 0);
    EXPECT_TRUE(std::isfinite(out[89])) << loud;
  }
}

}  // namespace
}  // namespace sigvex_test
