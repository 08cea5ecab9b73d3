#include "support/cpu_targets.h"
#include "support/twin.h"

namespace sigvex_test::histogram_test {

SUITE_OF_BOTH(Histogram);

TEST_BOTH(Histogram, CountsByBinWithAnInclusiveTopEdge) {
  const auto hist = TWIN_OF(s, hist);
  const T top = 4 * (1 + 10 * kEps<T>);
  const struct {
    Vec<T> input;
    double lo, width;
    int32_t bins;
    std::vector<T> expected;
  } rows[] = {
      {{0, T(0.5), 1, T(3.9), 4, T(4.5), T(-0.1), T(-0.0)}, 0, 1, 4, {3, 1, 0, 2}},
      {{std::nextafter(top, T(0)), top, std::nextafter(T(4), T(0))}, 0, 1, 4, {0, 0, 0, 2}},
      {{kNaN<T>, kInf<T>, -kInf<T>, kHuge<T>}, 0, 1, 2, {0, 0}},
      {{5, 5, 6, 4, kNaN<T>}, 5, 0, 2, {2, 0}},
      {{3, 1, T(0.5), 0}, 3, -1, 3, {1, 0, 3}},
      {Vec<T>::pairs({{3, 4}, {0, -1}, {kNaN<T>, 0}, {0, kInf<T>}}), 0, 1, 6, {0, 1, 0, 0, 0, 1}},
      {Vec<T>::pairs({{kNaN<T>, 0}, {0, -2 * kHuge<T>}}), 0, double(kHuge<T>), 2, {0, 2}},
      {{1, 2}, 0, 1, -5, {}},
      {{}, 0, 1, 2, {0, 0}},
      {Vec<T>(std::vector<T>(1300, 1)), 0, 1, 2, {0, 1300}},
  };
  for_each_cpu_target([&](const char* target) {
    for (const auto& [input, lo, width, bins, expected] : rows) {
      Vec<T> result = Vec<T>::pairs({{9, 9}}), itself(input), owner(input), reader = owner.view(), wanted(expected);
      wanted->delta = static_cast<T>(width);
      EXPECT_EQ(hist(input, result, lo, width, bins) + hist(itself, itself, lo, width, bins), 0);
      EXPECT_EQ(hist(reader, owner, lo, width, bins), 0);
      EXPECT_TRUE(same(result, wanted) && same(itself, wanted) && same(owner, wanted))
          << target << ' ' << lo << ' ' << width << ' ' << bins;
      // So many that they are counted in turns.
      std::vector<T> repeated;
      for (int k = 0; k < 301; ++k) repeated.insert(repeated.end(), input->data, input->data + input.size());
      EXPECT_EQ(hist(Vec<T>(repeated, input->complex), result, lo, width, bins), 0);
      for (size_t k = 0; k < wanted.size(); ++k)
        EXPECT_EQ(result[k], 301 * wanted[k]) << target << ' ' << lo << ' ' << k;
    }
  });
}

// In single precision the tolerance of the top edge spans whole bins here: they must not be counted behind the last.
TEST_BOTH(Histogram, TheTopEdgeOfManyBinsStaysInside) {
  constexpr int32_t bins = 2000000;
  Vec<T> v{static_cast<T>(bins), static_cast<T>(bins) * (1 + 9 * kEps<T>)}, result;
  EXPECT_EQ(TWIN_OF(s, hist)(v, result, 0.0, 1.0, bins), 0);
  EXPECT_EQ(result[bins - 1], T(2));
}

}  // namespace sigvex_test::histogram_test
