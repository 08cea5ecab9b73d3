// Exact results at the edges: zeros, ties, NaN, values out of range, products and powers that leave the number range.
#include "stats/statistics.h"

namespace sigvex_test {
namespace {

template <class T> struct Values : ::testing::Test {};
TYPED_TEST_SUITE(Values, Precisions);

TYPED_TEST(Values, AtTheEdges) {
  using T = TypeParam;
  constexpr T huge = kHuge<T>, inf = kInf<T>, nan = kNaN<T>, most = std::numeric_limits<T>::max();
  // Alone among 16 zeros its fourth power survives in the mean of fourth powers, but not in the squared variance.
  const T faint = std::ldexp(T(1), sizeof(T) == 8 ? -267 : -36);
  const auto root4 = [](T m) { return std::exp(std::log(m) / 4); };
  const auto z = [](std::initializer_list<std::complex<T>> points) { return Vec<T>::pairs(points); };
  struct Row {
    const char* name;
    Vec<T> input;
    std::vector<T> expected;
  };
  const Row rows[] = {
      {"sum", {inf, 1}, {inf}},
      {"sum", z({{nan, 1}, {1, 2}}), {nan, 3}},
      {"magsq_sum", {nan, 2}, {huge * huge + 4}},
      {"magsq_sum", z({{1, inf}, {-2 * huge, 0}}), {1 + huge * huge + huge * huge}},
      {"rms", {-inf}, {std::sqrt(huge * huge)}},
      {"gmean", {2, -2}, {0}},
      {"gmean", {4, 0, 9}, {0}},
      {"gmean", {kTiny<T> / 2}, {0}},
      {"gmean", {-2, -8}, {std::exp(std::log(T(16)) / 2)}},
      {"gmean", {most, most, 1 / most}, {inf}},  // the product, not a sum of logarithms
      {"gmean", {nan}, {0}},
      {"gmean", z({{0, 2}, {0, 0}}), {0, 0}},
      {"gmean", z({{nan, 2}, {0, 1}}), {0, 0}},
      {"gmean",
       z({{2, 0}, {0, 0.5}}),
       {root4(1) * std::cos(std::atan2(T(1), T(0)) / 2), root4(1) * std::sin(std::atan2(T(1), T(0)) / 2)}},
      {"hmean", {1, 0, 2}, {0}},
      {"hmean", {nan, T(-0.0)}, {0}},
      {"hmean", {0, T(-0.0)}, {0}},
      {"hmean", {1, -1}, {huge}},
      {"hmean", {1, 2, T(0.5), 2}, {1}},
      {"hmean", z({{0, 1}, {0, -1}}), {0, T(-0.0)}},
      {"hmean", z({{0, 0.5}, {0, 0.25}, {0, 0.5}}), {0, T(3) / 8}},
      {"median", {3, 1, 2, 4}, {2.5}},
      {"median", {3, -1, 2}, {2}},
      {"median", z({{3, 4}, {1, 0}, {0, 2}}), {0, 2}},
      {"median", z({{3, 4}, {1, 0}}), {2, 2}},
      {"max", {-2 * huge, -3 * huge}, {-huge}},
      {"max", {nan, -5, nan}, {-5}},
      {"max", {nan}, {-huge}},
      {"max", {T(-0.0), 0}, {T(-0.0)}},
      {"max", {1, inf}, {inf}},
      {"max", z({{-1, 0}, {0, -1}}), {-1, 0}},
      {"max", z({{3, 0}, {nan, 7}, {inf, 8}}), {nan, 7}},
      {"max", z({{inf, 0}, {huge, 0}}), {huge, 0}},  // rated huge^2 and only huge
      {"min", {2 * huge, inf}, {huge}},
      {"min", {nan, 5, -inf}, {-inf}},
      {"min", z({{nan, 1}, {inf, 2}}), {nan, 1}},
      {"min", z({{huge, 1}}), {huge, 1}},
      {"min", z({{3, 0}, {0, -1}, {1, 0}}), {0, -1}},
      {"pop_var", {0, inf, 0, 0}, {huge * huge / 4 - huge / 4 * (huge / 4)}},
      {"pop_var", z({{nan, 1}, {0, 1}}), {0}},  // a shift point that is no number: all equally far
      {"samp_var", {T(0.1)}, {0}},
      {"samp_var", {-1, 1, 1, -1, 0}, {T(4) * (T(1) / 5) * (T(5) / 4)}},
      {"samp_stddev", {7}, {0}},
      {"skew", {0, 1, 0, 0}, {T(0.25 - 3.0 / 16 + 2.0 / 64) / (T(0.1875) * std::sqrt(T(0.1875)))}},
      {"skew", Vec<T>(std::vector<T>(49, T(0.1))), {0}},
      {"skew", Vec<T>(std::vector<T>(7, inf)), {0}},
      {"excess", Vec<T>(std::vector<T>(10, T(0.1))), {-3}},  // whose mean is not exactly 0.1
      {"excess", {1, -1, -1, 1}, {-2}},
      {"excess", {inf, -inf, huge, -huge}, {nan}},
      {"excess", {kTiny<T>, 0}, {-3}},
      {"excess", {0, 0, 0, 0, 0, faint, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {huge}},
  };
  for (size_t k = 0; k < std::size(rows); ++k) {
    EXPECT_TRUE(exactly(result_of(rows[k].name, rows[k].input), rows[k].expected)) << rows[k].name << ", row " << k;
  }
}

TYPED_TEST(Values, TheFirstOfEqualsWinsAcrossBlocks) {
  using T = TypeParam;
  for (size_t first : {0, 2047, 2048, 9000}) {
    for (size_t second : {9001, 11 * 2048 - 1, 17 * 2048 + 5}) {
      Vec<T> v(std::vector<std::complex<T>>(17 * 2048 + 6));
      v[2 * first + 1] = v[2 * second] = 3;
      EXPECT_TRUE(exactly(result_of("max", v), {0, 3})) << first << ' ' << second;
    }
  }
}

}  // namespace
}  // namespace sigvex_test
