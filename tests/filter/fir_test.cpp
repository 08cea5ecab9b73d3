#include "filter/stream.h"
#include "support/cpu_targets.h"
#include "support/failing_storage.h"

namespace sigvex_test {
namespace {

TWIN(d, fir);
TWIN(, free_internal);

template <class T> struct Fir : ::testing::Test {};
TYPED_TEST_SUITE(Fir, Precisions);

template <class T> int32_t filter(Vec<T>& in, Vec<T>& out, Vec<T>& taps, Record<T>* state) {
  return fir(in.get(), out.get(), taps.get(), state);
}

template <class T> Vec<T> taps_of(size_t n, bool complex) {
  Vec<T> taps = noise<T>(n, complex);
  taps->delta = 9;  // of no account
  return taps;
}

// The definition, on the last points of `past` as the history.
template <class T> std::vector<T> defined(const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  const int before = past->points;
  std::vector<T> result;
  for (int n = 0; n < in->points; ++n) {
    std::complex<long double> sum = 0;
    for (int k = 0; k < taps->points && n - k >= -before; ++k) {
      sum += value(taps, k) * (n >= k ? value(in, n - k) : value(past, before + n - k));
    }
    result.push_back(static_cast<T>(sum.real()));
    if (in->complex || taps->complex) result.push_back(static_cast<T>(sum.imag()));
  }
  return result;
}

template <class T> double norm(const Vec<T>& v) {
  double power = 0;
  for (const T x : v.samples()) power += static_cast<double>(x) * static_cast<double>(x);
  return std::sqrt(power);
}

// N products and sums err by 2 N eps of the norms' product, after Cauchy and Schwarz; three transforms by 4 eps
// sqrt(log2 4096) of their output's norm, which the N taps raise by no more than sqrt(N).
template <class T> double bound(const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  const double n = taps->points, gain = 2 * n + 3 * 4 * std::sqrt(12.0 * n);
  return gain * kEps<T> * norm(taps) * (norm(past) + norm(in));
}

template <class T> Vec<T> last(const Vec<T>& v, size_t n) { return cut(v, v->points - n, v->points); }

// Runs one set of lengths in every form, with and without a history.
template <class T> void expect_definition(const char* target) {
  for (const size_t count : {1, 2, 9, 35, 36, 37, 45, 46, 47, 131, 300}) {
    for (const size_t n : {0, 1, 8, 34, 35, 44, 45, 46, 64, 130, 256, 700}) {
      for (const unsigned forms : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << count << " taps, " << n << " points, forms " << forms);
        const bool complex = forms & 1;
        Vec<T> in = noise<T>(n + 1, complex), past = noise<T>(count, complex), taps = taps_of<T>(count, forms & 2);
        in->points = static_cast<int32_t>(n);
        in->delta = 3;
        past->points = static_cast<int32_t>(count) - 1;
        Vec<T> state = past, out{7}, silent, joined = past;
        const Vec<T> in_before = in, taps_before = taps;
        EXPECT_EQ(filter(in, out, taps, state.get()), 0);
        EXPECT_TRUE(close(out, defined(past, in, taps), bound(past, in, taps), 1));
        EXPECT_EQ(out->points, in->points);
        EXPECT_EQ(out->complex, forms != 0);
        EXPECT_EQ(out->delta, T(3));
        std::vector<T> stream = past.samples();
        for (const T x : in.samples()) stream.push_back(x);
        EXPECT_TRUE(exactly(state, {stream.end() - static_cast<long>(past.size()), stream.end()}));
        EXPECT_EQ(state->delta, T(3));
        EXPECT_EQ(filter(in, silent, taps, nullptr), 0);
        EXPECT_TRUE(close(silent, defined(Vec<T>(), in, taps), bound(Vec<T>(), in, taps), 1));
        EXPECT_TRUE(exactly(in, in_before.samples()));
        EXPECT_TRUE(exactly(taps, taps_before.samples()));
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
      Vec<T> in = noise<T>(1500, forms & 1), taps = taps_of<T>(count, forms & 2), whole;
      EXPECT_EQ(filter(in, whole, taps, nullptr), 0);
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
      std::vector<T> expected = defined(past, in, taps);
      EXPECT_EQ(filter(in, out, taps, state.get()), 0);
      EXPECT_TRUE(close(out, expected, bound(past, in, taps), 1));
      EXPECT_TRUE(exactly(state, last(in, 3).samples()));
    }
  }
}

TYPED_TEST(Fir, TheOutputMayBeAnInputOrShareItsStorage) {
  using T = TypeParam;
  for (const size_t count : {5, 64}) {
    for (const unsigned forms : {0U, 1U, 2U}) {
      const Vec<T> x = noise<T>(200, forms & 1), h = taps_of<T>(count, forms & 2);
      Vec<T> in = x, taps = h, expected, state, shared_state = x;
      EXPECT_EQ(filter(in, expected, taps, state.get()), 0);
      EXPECT_EQ(filter(in, in, taps, nullptr), 0);
      EXPECT_TRUE(exactly(in, expected.samples()));
      in = x;
      EXPECT_EQ(filter(in, taps, taps, nullptr), 0);
      EXPECT_TRUE(exactly(taps, expected.samples()));
      taps = h;
      Record<T> view = *in.get();
      view.allocated = 0;
      EXPECT_EQ(fir(&view, in.get(), taps.get(), static_cast<Record<T>*>(nullptr)), 0);
      EXPECT_TRUE(exactly(in, expected.samples()));
      EXPECT_EQ(filter(shared_state, in, taps, shared_state.get()), 0);  // the input is its own history
      EXPECT_TRUE(exactly(shared_state, state.samples()));
      EXPECT_EQ(filter(taps, taps, taps, taps.get()), 0);
      EXPECT_EQ(taps->points, static_cast<int32_t>(count));
    }
  }
}

TYPED_TEST(Fir, WithoutTapsTheInputIsCopiedAndTheStateStays) {
  using T = TypeParam;
  Vec<T> in = Vec<T>::pairs({{1, 2}, {3, 4}}), out, none, state{5, 6}, taps{2};
  in->delta = 3;
  none->complex = 1;
  EXPECT_EQ(filter(in, out, none, state.get()), 0);
  EXPECT_TRUE(exactly(out, {1, 2, 3, 4}));
  EXPECT_EQ(out->delta, T(3));
  EXPECT_TRUE(exactly(state, {5, 6}));
  EXPECT_EQ(state->delta, T(1));
  in->points = -4;
  EXPECT_EQ(filter(in, out, taps, state.get()), 0);
  EXPECT_EQ(out->points, 0);
  EXPECT_EQ(state->points, 0);
  Record<T>* const null = nullptr;
  EXPECT_EQ(fir(null, out.get(), taps.get(), null), -1);
  EXPECT_EQ(fir(in.get(), null, taps.get(), null), -1);
  EXPECT_EQ(fir(in.get(), out.get(), null, null), -1);
}

// 64 taps on 63 points: the transform holds the whole convolution, so every output comes through the kept spectrum.
TYPED_TEST(Fir, TheKeptSpectrumServesEqualTapsOnly) {
  using T = TypeParam;
  Vec<T> in = noise<T>(63, false), pairs = noise<T>(63, true), longer = noise<T>(700, false), taps(std::vector<T>(64));
  taps[0] = 1;
  taps[9] = T(0.5);
  const auto run = [&](Vec<T>& x) {
    Vec<T> out;
    EXPECT_EQ(filter(x, out, taps, nullptr), 0);
    return out;
  };
  const auto expect_right = [&](Vec<T>& x) {
    EXPECT_TRUE(close(run(x), defined(Vec<T>(), x, taps), bound(Vec<T>(), x, taps), 1));
  };
  EXPECT_EQ(free_internal.of<T>()(), 0);
  const std::vector<T> first = run(in).samples();
  taps[63] = 4 * kEps<T>;
  EXPECT_TRUE(exactly(run(in), first));
  taps[63] = 6 * kEps<T>;
  EXPECT_FALSE(exactly(run(in), first));
  for (const T tap : {T(1), kNaN<T>, kNaN<T>, T(2), kInf<T>, T(3)}) {  // in the last place only
    taps[63] = tap;
    if (!std::isfinite(tap)) {
      EXPECT_TRUE(std::isnan(run(in)[62]));
      continue;
    }
    expect_right(in);
    expect_right(pairs);   // the other spectrum, from earlier taps, must not serve
    expect_right(longer);  // nor one of another length
    expect_right(in);
    taps->delta += 1;
    expect_right(in);
  }
  taps[0] = kNaN<T>;
  EXPECT_TRUE(std::isnan(run(in)[0]));
  EXPECT_TRUE(std::isnan(run(in)[0]));
  taps[0] = 0;  // no tolerance at all
  expect_right(in);
  taps[63] = 5;
  expect_right(in);
  EXPECT_EQ(free_internal.of<T>()(), 0);
  expect_right(pairs);
}

TYPED_TEST(Fir, AfterFailingStorageTheNextCallIsRight) {
  using T = TypeParam;
  for (const bool complex : {false, true}) {
    int32_t status = -1;
    for (int granted = 0; status < 0 && granted < 40; ++granted) {
      EXPECT_EQ(free_internal.of<T>()(), 0);
      Vec<T> in = noise<T>(100, complex), taps = taps_of<T>(50, false), out, state;
      {
        const FailingStorage<T> storage(granted);
        status = filter(in, out, taps, state.get());
      }
      Vec<T> again, silent;
      EXPECT_EQ(filter(in, again, taps, silent.get()), 0);
      EXPECT_TRUE(close(again, defined(Vec<T>(), in, taps), bound(Vec<T>(), in, taps), 1)) << granted;
    }
    EXPECT_EQ(status, 0);
  }
}

TYPED_TEST(Fir, ALoudHistoryStaysWhereItReaches) {
  using T = TypeParam;
  for (const T loud : {kInf<T>, kNaN<T>, kHuge<T>, T(1000)}) {
    Vec<T> in(std::vector<T>(300)), taps = taps_of<T>(100, false), state(std::vector<T>(99, loud)), out;
    EXPECT_EQ(filter(in, out, taps, state.get()), 0);
    EXPECT_NE(out[98], T(0));
    EXPECT_TRUE(close(last(out, 201), std::vector<T>(201), 0)) << loud;
  }
}

}  // namespace
}  // namespace sigvex_test
