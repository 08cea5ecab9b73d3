#include <numbers>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, differ);
TWIN(i, integ);
TWIN(i, unwrap);

template <class T> struct Running : ::testing::Test {};
TYPED_TEST_SUITE(Running, Precisions);

template <class T> Vec<T> spaced(Vec<T> v, T delta) {
  v->delta = delta;
  return v;
}

TYPED_TEST(Running, DifferenceIsTakenAgainstZeroBeforeTheFirstPoint) {
  using T = TypeParam;
  struct Row {
    Vec<T> v;
    std::vector<T> expected;
  };
  const Row rows[] = {{spaced<T>({1, 3, 6}, T(0.5)), {2, 4, 6}},
                      {spaced<T>({}, T(0.5)), {}},
                      {spaced<T>({3, 3}, -2), {T(-1.5), T(-0.0)}},
                      {spaced<T>({1, 3, 3}, 0), {kHuge<T>, 2 * kHuge<T>, 0}},
                      {spaced<T>({1, kNaN<T>, 3, 4}, 1), {1, kNaN<T>, kNaN<T>, 1}},
                      {spaced<T>(Vec<T>::pairs({{1, 2}, {4, 8}}), T(0.5)), {2, 4, 6, 12}}};
  for (const Row& row : rows) {
    Vec<T> v = row.v;
    EXPECT_EQ(differ(v.get()), 0);
    EXPECT_TRUE(exactly(v, row.expected));
    EXPECT_EQ(v->delta, row.v->delta);
    EXPECT_EQ(v->complex, row.v->complex);
  }
}

TYPED_TEST(Running, IntegralIsARunningSumTimesDelta) {
  using T = TypeParam;
  struct Row {
    Vec<T> v;
    std::vector<T> expected;
  };
  const T big = 2 / kEps<T>;  // big + 1 is a tie that rounds to big
  const Row rows[] = {{spaced<T>({1, 1, 1}, 2), {2, 4, 6}},
                      {spaced<T>({}, 2), {}},
                      {spaced<T>({big, 1, 1, -big}, 1), {big, big, big, 0}},  // summed in the precision of the samples
                      {spaced<T>({1, 2}, 0), {0, 0}},
                      {spaced<T>(Vec<T>::pairs({{1, 2}, {3, 5}}), 2), {2, 4, 8, 14}}};
  for (const Row& row : rows) {
    Vec<T> v = row.v;
    EXPECT_EQ(integ(v.get()), 0);
    EXPECT_TRUE(exactly(v, row.expected));
    EXPECT_EQ(v->delta, row.v->delta);
  }
}

TYPED_TEST(Running, UnwrapAppliesItsRuleToEverySample) {
  using T = TypeParam;
  constexpr T pi = std::numbers::pi_v<T>, turn = 2 * pi;
  const T beyond = std::nextafter(pi, T(4));
  struct Row {
    Vec<T> v;
    std::vector<T> expected;
  };
  const Row rows[] = {{{0, 6}, {0, 6 - turn}},
                      {{pi, 0, -pi}, {pi, 0, -pi}},  // a step of exactly half a turn stays
                      {{beyond}, {beyond - turn}},
                      {{-beyond}, {turn - beyond}},
                      {{3, -3, 4}, {3, 3 + (-6 + turn), 4}},  // 4 is measured against the corrected -3
                      {{100}, {std::fmod(T(100), turn) - turn}},
                      {{1, kNaN<T>, 1}, {1, kNaN<T>, kNaN<T>}},
                      {{1, kInf<T>, 1}, {1, kNaN<T>, kNaN<T>}}};
  for (const Row& row : rows) {
    Vec<T> v = row.v;
    EXPECT_EQ(unwrap(v.get()), 0);
    EXPECT_TRUE(exactly(v, row.expected));
  }
}

TYPED_TEST(Running, UnwrapRecoversASteadyPhaseAndRefusesPoints) {
  using T = TypeParam;
  std::vector<T> wrapped;
  for (int k = 0; k < 200; ++k) wrapped.push_back(static_cast<T>(std::remainder(2.5L * k, 2 * kPi)));
  Vec<T> v(wrapped);
  EXPECT_EQ(unwrap(v.get()), 0);
  // Each sample is within half an ulp of pi, each correction within half an ulp of the phase, which is at most 500.
  for (size_t k = 0; k < v.size(); ++k) EXPECT_NEAR(v[k], 2.5 * static_cast<double>(k), 200 * 500 * kEps<T>);
  Vec<T> z = Vec<T>::pairs({{9, 9}});
  EXPECT_EQ(unwrap(z.get()), -1);
  EXPECT_TRUE(exactly(z, {9, 9}));
}

}  // namespace
}  // namespace sigvex_test
