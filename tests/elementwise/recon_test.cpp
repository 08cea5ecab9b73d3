#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, orecon);
TWIN(i, recon);

template <class T> struct Recon : ::testing::Test {};
TYPED_TEST_SUITE(Recon, Precisions);

TYPED_TEST(Recon, MirrorsTheConjugateBehindTheGivenPoints) {
  using T = TypeParam;
  const Vec<T> half = Vec<T>::pairs({{1, 2}, {3, 4}, {5, 6}}), real{1, 3, 5};
  const struct {
    Vec<T> input;
    uint32_t odd;
    std::vector<T> expected;
  } rows[] = {{half, 0, {1, 2, 3, 4, 5, 6, 3, -4}},
              {half, 1, {1, 2, 3, 4, 5, 6, 5, -6, 3, -4}},
              {half, 8, {1, 2, 3, 4, 5, 6, 5, -6, 3, -4}},
              {real, 0, {1, 0, 3, 0, 5, 0, 3, T(-0.0)}},
              {Vec<T>{7, 8}, 0, {7, 0, 8, 0}},
              {Vec<T>{7}, 1, {7, 0}},
              {Vec<T>{7}, 0, {}},
              {Vec<T>{}, 0, {}},
              {Vec<T>{}, 1, {}}};
  for (const auto& row : rows) {
    Vec<T> v = row.input;
    v->delta = T(0.25);
    EXPECT_EQ(orecon(v.get(), row.odd), 0);
    EXPECT_TRUE(exactly(v, row.expected));
    EXPECT_EQ(v->complex, 1);
    EXPECT_EQ(v->delta, T(0.25));
    if (row.odd) continue;
    Vec<T> same = row.input;
    EXPECT_EQ(recon(same.get()), 0);
    EXPECT_TRUE(exactly(same, row.expected));
  }
}

TYPED_TEST(Recon, NegativeAndUnrepresentableCounts) {
  using T = TypeParam;
  Vec<T> v{1};
  v->points = -3;
  EXPECT_EQ(orecon(v.get(), 1U), 0);
  EXPECT_EQ(v->points, 0);
  T one[] = {1, 2};
  Record<T> view{};
  view.data = one;
  view.points = 1 << 30;
  view.complex = 1;
  EXPECT_EQ(orecon(&view, 0U), -1);
  EXPECT_EQ(view.points, 0);
}

}  // namespace
}  // namespace sigvex_test
