#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test {
namespace {

TWINS(d, sfir, sfir_deci, deci);

template <class T> struct SymmetricFir : ::testing::Test {};
TYPED_TEST_SUITE(SymmetricFir, Precisions);

template <class T> Vec<T> whole(const Vec<T>& half) {
  const size_t width = half->complex ? 2 : 1, n = static_cast<size_t>(half->points);
  std::vector<T> taps = half.samples();
  for (size_t k = n - 1; k-- > 0;)
    for (size_t part = 0; part < width; ++part) taps.push_back(half[k * width + part]);
  Vec<T> result(taps);
  result->points = 2 * half->points - 1;
  result->complex = half->complex;
  return result;
}

// Beside the definition with the filter written out, and the decimating form beside the two operations in turn.
template <class T> void expect_definition(const char* target) {
  for (const size_t length : {1, 2, 5, 38}) {
    for (const size_t n : {0, 1, 9, 75, 300}) {
      for (const unsigned forms : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << length << " taps, " << n << " points, forms " << forms);
        Vec<T> in = noise<T>(n + 1, forms & 1), past = noise<T>(2 * length, forms & 1),
               half = noise<T>(length, forms & 2);
        in->points = static_cast<int32_t>(n);
        in->delta = 3;
        past->points = static_cast<int32_t>(2 * length - 2);
        Vec<T> state = past, out{7}, silent, same = in, same_half = half;
        std::vector<T> stream = past.samples();
        for (const T x : in.samples()) stream.push_back(x);
        const std::vector<T> last(stream.end() - static_cast<long>(past.size()), stream.end());
        EXPECT_EQ(sfir(in.get(), out.get(), half.get(), state.get()), 0);
        EXPECT_TRUE(right(out, past, in, whole(half)));
        EXPECT_TRUE(out->points == in->points && out->complex == (forms != 0) && out->delta == 3 && state->delta == 3);
        EXPECT_TRUE(exactly(state, last));
        for (const int32_t factor : {-1, 2, 3, 80, INT32_MAX}) {
          for (const T first : {T(0), T(1), T(77)}) {
            Vec<T> kept, expected, history = past, offset{first, 1}, expected_offset{first};
            EXPECT_EQ(deci(out.get(), expected.get(), factor, expected_offset.get()), 0);
            EXPECT_EQ(sfir_deci(in.get(), kept.get(), half.get(), factor, history.get(), offset.get()), 0);
            EXPECT_TRUE(exactly(kept, expected.samples()) && kept->delta == expected->delta) << factor << ' ' << first;
            EXPECT_TRUE(kept->complex == out->complex && exactly(history, last) && offset[0] == expected_offset[0]);
          }
        }
        Record<T>* const none = nullptr;
        EXPECT_EQ(sfir(in.get(), silent.get(), half.get(), none), 0);
        EXPECT_TRUE(right(silent, Vec<T>(), in, whole(half)));
        EXPECT_EQ(sfir_deci(same.get(), same.get(), half.get(), 1, none, none), 0);
        EXPECT_EQ(sfir(in.get(), same_half.get(), same_half.get(), none), 0);
        EXPECT_TRUE(exactly(same, silent.samples()) && exactly(same_half, silent.samples()));
      }
    }
  }
}

TYPED_TEST(SymmetricFir, EveryFormAndLengthIsTheDefinition) { for_each_cpu_target(expect_definition<TypeParam>); }

TYPED_TEST(SymmetricFir, BlocksOfAnySizesGiveWhatOneCallGives) {
  using T = TypeParam;
  for (const unsigned forms : {0U, 1U, 2U, 3U}) {
    for (const int32_t factor : {1, 2, 7, 40}) {
      Vec<T> in = noise<T>(1500, forms & 1), half = noise<T>(12, forms & 2), once, offset, none;
      EXPECT_EQ(sfir_deci(in.get(), once.get(), half.get(), factor, none.get(), offset.get()), 0);
      offset = Vec<T>();
      EXPECT_TRUE(exactly(once, in_blocks(in, 60, 3, [&](Vec<T>& x, Vec<T>& y, Vec<T>& state) {
                            return sfir_deci(x.get(), y.get(), half.get(), factor, state.get(), offset.get());
                          })));
    }
  }
}

TYPED_TEST(SymmetricFir, RecordsThatAreSharedMissingOrOfAnotherForm) {
  using T = TypeParam;
  Vec<T> in = noise<T>(9, false), half{2, 3}, empty, state{1, 2, 3}, offset{5}, out;
  EXPECT_EQ(sfir_deci(in.get(), out.get(), half.get(), 2, state.get(), state.get()), -1);
  EXPECT_TRUE(exactly(state, {1, 2, 3}));
  EXPECT_EQ(sfir(in.get(), out.get(), empty.get(), state.get()), 0);
  EXPECT_TRUE(exactly(out, in.samples()) && exactly(state, {1, 2, 3}));
  EXPECT_EQ(sfir_deci(in.get(), out.get(), empty.get(), 4, state.get(), offset.get()), 0);
  EXPECT_TRUE(exactly(out, {in[5]}) && exactly(offset, {0}) && exactly(state, {1, 2, 3}));
  Vec<T> pairs = Vec<T>::pairs({{1, 9}, {2, 8}, {3, 7}}), first = Vec<T>::pairs({{1, 6}});
  EXPECT_EQ(sfir_deci(in.get(), out.get(), half.get(), 2, pairs.get(), first.get()), 0);
  EXPECT_TRUE(exactly(pairs, {in[7], in[8]}) && exactly(first, {0}));
  const std::vector<T> filtered = defined(Vec<T>{1, 2}, in, Vec<T>{2, 3, 2});  // the real parts, cut to two
  EXPECT_TRUE(close(out, std::vector<T>{filtered[1], filtered[3], filtered[5], filtered[7]}, 8 * kEps<T>, 1));
}

}  // namespace
}  // namespace sigvex_test
