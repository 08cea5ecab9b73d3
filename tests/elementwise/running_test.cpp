#include <numbers>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, differ);
TWIN(i, integ);
TWIN(i, unwrap);

template <class T> struct Running : ::testing::Test {};
TYPED_TEST_SUITE(Running, Precisions);

TYPED_TEST(Running, EachRuleAtItsEdges) {
  using T = TypeParam;
  struct Row {
    int32_t (*call)(Record<T>*);
    T delta;
    Vec<T> v;
    std::vector<T> expected;
  };
  constexpr T nan = kNaN<T>, pi = std::numbers::pi_v<T>, turn = 2 * pi, big = 2 / kEps<T>;  // big + 1 rounds to big
  const T beyond = std::nextafter(pi, T(4));
  const auto d = differ.template of<T>(), i = integ.template of<T>(), u = unwrap.template of<T>();
  const Row rows[] = {
      {d, T(0.5), {1, 3, 6}, {2, 4, 6}},
      {d, -2, {3, 3}, {T(-1.5), T(-0.0)}},
      {d, 0, {1, 3, 3}, {kHuge<T>, 2 * kHuge<T>, 0}},
      {d, 1, {1, nan, 3, 4}, {1, nan, nan, 1}},
      {d, T(0.5), Vec<T>::pairs({{1, 2}, {4, 8}}), {2, 4, 6, 12}},
      {i, 2, {1, 1, 1}, {2, 4, 6}},
      {i, 1, {big, 1, 1, -big}, {big, big, big, 0}},  // summed one by one in the precision of the samples
      {i, 0, {1, 2}, {0, 0}},
      {i, 2, Vec<T>::pairs({{1, 2}, {3, 5}}), {2, 4, 8, 14}},
      {u, 1, {0, 6}, {0, 6 - turn}},
      {u, 1, {pi, 0, -pi}, {pi, 0, -pi}},  // half a turn stays
      {u, 1, {beyond}, {beyond - turn}},
      {u, 1, {-beyond}, {turn - beyond}},
      {u, 1, {3, -3, 4}, {3, 3 + (-6 + turn), 4}},  // 4 is measured against the corrected -3
      {u, 1, {100}, {std::fmod(T(100), turn) - turn}},
      {u, 1, {1, nan, 1}, {1, nan, nan}},
      {u, 1, {1, kInf<T>, 1}, {1, nan, nan}},
      {d, 1, {}, {}},
      {i, 1, {}, {}},
      {u, 1, {}, {}},
  };
  for (const Row& row : rows) {
    Vec<T> v = row.v;
    v->delta = row.delta;
    EXPECT_EQ(row.call(v), 0);
    EXPECT_TRUE(exactly(v, row.expected));
    EXPECT_EQ(v->delta, row.delta);
    EXPECT_EQ(v->complex, row.v->complex);
  }
  Vec<T> z = Vec<T>::pairs({{9, 9}});
  EXPECT_EQ(unwrap(z.get()), -1);
  EXPECT_TRUE(exactly(z, {9, 9}));
}

TYPED_TEST(Running, UnwrapRecoversASteadyPhase) {
  using T = TypeParam;
  std::vector<T> wrapped;
  for (int k = 0; k < 200; ++k) wrapped.push_back(static_cast<T>(std::remainder(2.5L * k, 2 * kPi)));
  Vec<T> v(wrapped);
  EXPECT_EQ(unwrap(v.get()), 0);
  // Each of the 200 corrections is rounded to half an ulp of a phase below 512.
  for (size_t k = 0; k < v.size(); ++k) EXPECT_NEAR(v[k], 2.5 * static_cast<double>(k), 200 * 256 * kEps<T>);
}

}  // namespace
}  // namespace sigvex_test
