#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(, append);
TWIN(, copy_at_most);
TWIN(, insert_subvec);
TWIN(, cmp);
TWIN(u, subvec);

template <class T> struct Contents : ::testing::Test {};
TYPED_TEST_SUITE(Contents, Precisions);

TYPED_TEST(Contents, AppendKeepsDeltaAndTurnsComplexWhereEitherIs) {
  using T = TypeParam;
  Vec<T> real{1, 2}, complex = Vec<T>::pairs({{3, 4}});
  real->delta = T(0.5);
  EXPECT_EQ(append(real.get(), complex.get()), 0);
  EXPECT_TRUE(exactly(real, {1, 0, 2, 0, 3, 4}));
  EXPECT_EQ(real->complex, 1);
  EXPECT_EQ(real->delta, T(0.5));
  Vec<T> tail{7};
  EXPECT_EQ(append(real.get(), tail.get()), 0);
  EXPECT_TRUE(exactly(real, {1, 0, 2, 0, 3, 4, 7, 0}));
  EXPECT_EQ(append(tail.get(), tail.get()), 0);
  EXPECT_TRUE(exactly(tail, {7, 7}));
}

TYPED_TEST(Contents, AppendOfAViewIntoTheDestinationSurvivesItsGrowth) {
  using T = TypeParam;
  Vec<T> v{1, 2, 3};
  Record<T> view{};
  view.data = v->data + 1;
  view.points = 2;
  EXPECT_EQ(append(v.get(), &view), 0);
  EXPECT_TRUE(exactly(v, {1, 2, 3, 2, 3}));
}

TYPED_TEST(Contents, SubvecClampsStartAndCount) {
  using T = TypeParam;
  struct Row {
    int32_t start, count;
    std::vector<T> expected;
  };
  const Row rows[] = {{1, 2, {2, 3}}, {9, 2, {}},      {2, 99, {3, 4}},
                      {0, -1, {}},    {-5, 2, {1, 2}}, {0, INT32_MAX, {1, 2, 3, 4}}};
  for (const Row& row : rows) {
    Vec<T> source{1, 2, 3, 4}, destination{9, 9};
    source->delta = 3;
    EXPECT_EQ(subvec(source.get(), destination.get(), row.start, row.count), 0);
    EXPECT_TRUE(exactly(destination, row.expected)) << row.start << ' ' << row.count;
    EXPECT_EQ(destination->delta, T(3));
    EXPECT_EQ(subvec(source.get(), source.get(), row.start, row.count), 0);
    EXPECT_TRUE(exactly(source, row.expected));
  }
}

TYPED_TEST(Contents, SubvecOfAViewIntoItselfLeavesTheViewedStorage) {
  using T = TypeParam;
  T storage[] = {1, 2, 3, 4};
  Vec<T> v;
  v->data = storage;
  v->points = 4;
  EXPECT_EQ(subvec(v.get(), v.get(), 1, 2), 0);
  EXPECT_TRUE(exactly(v, {2, 3}));
  EXPECT_EQ(v->allocated, 2);
  EXPECT_EQ(storage[0], 1);
}

TYPED_TEST(Contents, InsertOverwritesAndGrows) {
  using T = TypeParam;
  Vec<T> source{1, 2, 3}, destination{10, 20, 30, 40};
  source->delta = 2;
  EXPECT_EQ(insert_subvec(source.get(), destination.get(), 1, 2, 1), 0);
  EXPECT_TRUE(exactly(destination, {10, 2, 3, 40}));
  EXPECT_EQ(insert_subvec(source.get(), destination.get(), 0, 9, 99), 0);
  EXPECT_TRUE(exactly(destination, {10, 2, 3, 40, 1, 2, 3}));
  EXPECT_EQ(destination->delta, T(2));
  EXPECT_EQ(insert_subvec(destination.get(), destination.get(), 0, 7, 5), 0);  // over itself, growing
  EXPECT_TRUE(exactly(destination, {10, 2, 3, 40, 1, 10, 2, 3, 40, 1, 2, 3}));
}

TYPED_TEST(Contents, InsertOfAComplexSourceConvertsOnlyWhatItKeeps) {
  using T = TypeParam;
  Vec<T> source = Vec<T>::pairs({{1, 2}, {3, 4}}), kept{7, 8, 9}, covered{7, 8};
  EXPECT_EQ(insert_subvec(source.get(), kept.get(), 0, 2, 0), 0);
  EXPECT_TRUE(exactly(kept, {1, 2, 3, 4, 9, 0}));
  EXPECT_EQ(insert_subvec(source.get(), covered.get(), 0, 2, 0), 0);
  EXPECT_TRUE(exactly(covered, {1, 2, 3, 4}));
  Vec<T> real{5};
  EXPECT_EQ(insert_subvec(real.get(), covered.get(), 0, 1, 1), 0);
  EXPECT_TRUE(exactly(covered, {1, 2, 5, 0}));
}

TYPED_TEST(Contents, CompareStopsAtTheFirstDifference) {
  using T = TypeParam;
  const Vec<T> a{1, 2, 3};
  struct Row {
    Vec<T> b;
    T delta;
    int32_t expected;
  };
  const Row rows[] = {{a, 1, 0},
                      {{1, 2, T(3.5)}, 1, -1},
                      {{1, T(1.5), 9}, 1, 1},
                      {{1, kNaN<T>, -9}, 1, -1},
                      {{1, 2, 3}, 2, -1},
                      {Vec<T>::pairs({{1, 0}, {2, -1}, {3, 9}}), 1, 1}};
  for (const Row& row : rows) {
    Vec<T> b = row.b;
    b->delta = row.delta;
    int32_t result = 7;
    EXPECT_EQ(cmp(a.operator->(), b.get(), T(0.1), &result), 0);
    EXPECT_EQ(result, row.expected);
  }
  int32_t result = 7;
  const Vec<T> shorter{1, 2};
  EXPECT_EQ(cmp(a.operator->(), shorter.operator->(), T(0), &result), -1);
  EXPECT_EQ(result, 7);
}

TEST(Tof, RoundsEverySampleAndRefusesOneRecord) {
  Vec<double> source{1.0, 0.1, 1e300};
  source->delta = 0.1;
  Vec<float> destination;
  EXPECT_EQ(dspu_tof(source, destination), 0);
  EXPECT_TRUE(exactly(destination, {1.0F, 0.1F, kInf<float>}));
  EXPECT_EQ(destination->delta, 0.1F);
  Vec<float> copied;
  EXPECT_EQ(dspfu_tof(destination, copied), 0);
  EXPECT_TRUE(exactly(copied, destination.samples()));
  EXPECT_EQ(dspfu_tof(copied, copied), -1);
  EXPECT_EQ(copied->points, 3);
}

}  // namespace
}  // namespace sigvex_test
