#include "support/twin.h"

namespace sigvex_test::peak_test {

SUITE_OF_BOTH(Peak);

TEST_BOTH(Peak, FindsAndRefines) {
  constexpr T huge = kHuge<T>, nan = kNaN<T>, inf = kInf<T>;
  constexpr T offset = T(0.792233201343665), curvature = T(0.6260852964868817), shape = T(0.02036);
  const auto gauss = [=](T ratio) { return std::log(ratio) * offset; };
  const auto height = [=](T y, T d) { return y * std::exp(curvature * (d * d)); };
  const T d = gauss(T(3) / 2) + T(0.5), e = gauss(T(2) / 3) + T(0.5), u = gauss(T(2) / 3);
  const T corrected = u * (1 - (u * u - T(0.25)) * shape) + T(0.5);
  const auto peak = TWIN_OF(s, peak);
  const struct {
    Vec<T> input;
    uint32_t flags;
    int32_t index;
    std::vector<T> expected;
    int32_t status = 0;
  } rows[] = {
      {{5, 5, 1}, 0, 0, {5, 0}},
      {{5, nan, 1, 2, T(-0.5), 2}, 0, 0, {2, 3}},  // the NaN takes the place of the 5 and leaves it to the 1
      {{5, nan}, 0, 0, {nan, 1}},
      {{-3 * huge, -2 * huge}, 0, 0, {-3 * huge, 0}},
      {{2, -4, 0, -4}, DSP_PEAK_MINIMUM, 0, {-4, 1}},
      {{nan, 1, 1}, DSP_PEAK_MINIMUM, 0, {1, 1}},
      {{3 * huge, 2 * huge}, DSP_PEAK_MINIMUM, 0, {3 * huge, 0}},
      {{1, 2, 3, 4}, DSP_PEAK_AT_INDEX, 10, {4, 3}},
      {{1, 2, 3, 4}, DSP_PEAK_AT_INDEX | DSP_PEAK_MINIMUM, 1, {2, 1}},
      {Vec<T>::pairs({{1, 1}, {0, 2}, {2, 0}}), 0x80000801, 0, {4, 1}},
      {Vec<T>::pairs({{3, 4}, {nan, 0}, {inf, 0}}), 0, 0, {huge, 1}},
      {Vec<T>::pairs({{3, 4}, {0, 1}, {inf, 0}}), DSP_PEAK_MINIMUM, 0, {1, 1}},
      {{1, 3, 2}, DSP_PEAK_PARABOLIC, 0, {3 - T(0.25) / -6, 1 - T(0.5) / -3}},
      {{1, 2, 3}, DSP_PEAK_PARABOLIC, 0, {3, 2}},
      {{2, 2, 2}, DSP_PEAK_PARABOLIC | DSP_PEAK_AT_INDEX, 1, {nan, nan}},
      {{1, 3, 2}, DSP_PEAK_GAUSS, 0, {height(3, e), 1 + e}},
      {{2, 3, 1}, DSP_PEAK_GAUSS, 0, {height(3, 1 - d), d}},
      {{3, 2}, DSP_PEAK_GAUSS, 0, {height(3, e), e}},
      {{2, 3, 2}, DSP_PEAK_GAUSS, 0, {height(3, e), 1 + e}},  // the right one of equal neighbours
      {{1, 3, 2}, DSP_PEAK_GAUSS_CORRECTED, 0, {height(3, corrected), 1 + corrected}},
      {{1, 100}, DSP_PEAK_GAUSS, 0, {height(100, T(-0.5)), T(1.5)}, -1},
      {{3, -2}, DSP_PEAK_GAUSS, 0, {height(3, T(-0.5)), T(-0.5)}, -1},
      {{7}, DSP_PEAK_GAUSS, 0, {7, 0}},
      {{}, DSP_PEAK_GAUSS, 0, {0, 0}},
  };
  for (const auto& [input, flags, index, expected, status] : rows) {
    Vec<T> result = Vec<T>::pairs({{9, 9}}), itself(input);
    result->delta = itself->delta = T(0.25);
    EXPECT_EQ(peak(input, result, flags, index), status);
    EXPECT_EQ(peak(itself, itself, flags, index), status);
    Vec<T> wanted(expected);
    EXPECT_TRUE(same(itself, wanted)) << ::testing::PrintToString(input.samples()) << flags;  // it starts anew
    wanted->delta = T(0.25);
    EXPECT_TRUE(same(result, wanted)) << ::testing::PrintToString(input.samples()) << flags;
  }
  for (const uint32_t unknown : {1024U, 1280U, 1536U, 1792U}) {
    Vec<T> v{1, 3, 2}, none;
    EXPECT_EQ(peak(v, v, unknown, 0) + peak(none, v, unknown, 0), -2);
    EXPECT_TRUE(exactly(v, {1, 3, 2}));
  }
}

}  // namespace sigvex_test::peak_test
