#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test::symmetric_fir_test {

TWINS(d, sfir, sfir_deci, deci);

SUITE_OF_BOTH(SymmetricFir);

template <class T> Vec<T> whole(const Vec<T>& half) {
  const size_t width = half->complex ? 2 : 1, n = static_cast<size_t>(half->points);
  std::vector<T> taps = half.samples();
  for (size_t k = n - 1; k-- > 0;)
    for (size_t part = 0; part < width; ++part) taps.push_back(half[k * width + part]);
  return {taps, half->complex != 0};
}

// The decimating form, in place, beside the two operations in turn.
TEST_BOTH(SymmetricFir, EveryFormAndLengthIsTheDefinition) {
  const auto inspect = [](const Vec<T>& in, const Vec<T>& half, const Vec<T>& past, const Vec<T>& out,
                          const Vec<T>& state) {
    for (const int32_t factor : {-1, 1, 2, 3, 80, INT32_MAX}) {
      for (const T first : {T(0), T(1), T(77)}) {
        Vec<T> kept = in, expected, history = past, offset = Vec<T>::pairs({{first, 1}}), expected_offset{first};
        EXPECT_EQ(deci(out, expected, factor, expected_offset), 0);
        EXPECT_EQ(sfir_deci(kept, kept, half, factor, history, offset), 0);
        EXPECT_TRUE(exactly(kept, expected.samples()) && kept->delta == expected->delta) << factor << ' ' << first;
        EXPECT_TRUE(kept->complex == out->complex && exactly(history, state.samples()) &&
                    offset[0] == expected_offset[0]);
      }
    }
  };
  for_each_cpu_target([&](const char* target) {
    SCOPED_TRACE(target);
    for (const size_t length : {1, 2, 5, 38}) {
      for (const size_t n : {0, 1, 9, 75, 300}) expect_filter<T>(length, n, sfir, whole<T>, inspect);
    }
  });
}

TEST_BOTH(SymmetricFir, BlocksOfAnySizesGiveWhatOneCallGives) {
  for (const unsigned forms : {0U, 1U, 2U, 3U}) {
    for (const int32_t factor : {1, 2, 7, 40}) {
      const Vec<T> half = noise<T>(12, forms & 2);
      Vec<T> offset;
      expect_same_in_blocks(noise<T>(1500, forms & 1), 60, [&](Vec<T>& x, Vec<T>& y, Record<T>* state) {
        return sfir_deci(x, y, half, factor, state, state ? offset.get() : nullptr);
      });
    }
  }
}

TEST_BOTH(SymmetricFir, OneRecordForBothStatesIsRefusedAndNoTapsPassTheInput) {
  Vec<T> in = noise<T>(9, false), half{2, 3}, empty, state{1, 2, 3}, offset{5}, out;
  EXPECT_EQ(sfir_deci(in, out, half, 2, state, state), -1);
  EXPECT_TRUE(exactly(state, {1, 2, 3}));
  EXPECT_EQ(sfir(in, out, empty, state), 0);
  EXPECT_TRUE(exactly(out, in.samples()) && exactly(state, {1, 2, 3}));
  EXPECT_EQ(sfir_deci(in, out, empty, 4, state, offset), 0);
  EXPECT_TRUE(exactly(out, {in[5]}) && exactly(offset, {0}) && exactly(state, {1, 2, 3}));
}

}  // namespace sigvex_test::symmetric_fir_test
