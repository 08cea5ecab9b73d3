#include "support/twin.h"

namespace sigvex_test::contents_test {

TWINS(, append, copy_at_most, insert_subvec, cmp);
TWIN(u, subvec);

SUITE_OF_BOTH(Contents);

TEST_BOTH(Contents, AppendTurnsComplexWhereEitherIs) {
  Vec<T> v{1, 2}, complex = Vec<T>::pairs({{3, 4}}), tail{7};
  v->delta = T(0.5);
  EXPECT_EQ(append(v, complex) + append(v, tail), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 2, 0, 3, 4, 7, 0}));
  EXPECT_TRUE(v->complex == 1 && v->delta == T(0.5));
  EXPECT_EQ(append(tail, tail), 0);
  EXPECT_TRUE(exactly(tail, {7, 7}));
  Vec<T> view = Vec<T>::over(v->data + 2, 2);  // moves with the growth of what it lies in
  EXPECT_EQ(append(v, view), 0);
  EXPECT_TRUE(exactly(v, {1, 0, 2, 0, 3, 4, 7, 0, 2, 0, 0, 0}));
  view = Vec<T>::over(v->data + 2, INT32_MAX);  // of which only what is copied may be read
  EXPECT_EQ(subvec(view, v, 2, 2), 0);
  EXPECT_TRUE(exactly(v, {3, 4}));
  EXPECT_EQ(append(v, view), -1);
  EXPECT_TRUE(v->data == nullptr && v->points == 0);
}

TEST_BOTH(Contents, SubvecClampsStartAndCount) {
  const struct {
    int32_t start, count;
    std::vector<T> expected;
  } rows[] = {{1, 2, {2, 3}}, {9, 2, {}}, {2, 99, {3, 4}}, {0, -1, {}}, {-5, 2, {1, 2}}, {0, INT32_MAX, {1, 2, 3, 4}}};
  for (const auto& [start, count, expected] : rows) {
    Vec<T> source{1, 2, 3, 4}, destination{9, 9};
    source->delta = 3;
    Vec<T> view = source.view();
    EXPECT_EQ(subvec(source, destination, start, count) + subvec(view, view, start, count), 0);
    EXPECT_TRUE(exactly(source, {1, 2, 3, 4}));  // which the view has left
    EXPECT_EQ(subvec(source, source, start, count), 0);
    for (const Vec<T>* v : {&source, &destination, &view}) {
      EXPECT_TRUE((*v)->delta == T(3) && exactly(*v, expected)) << start << ' ' << count;
    }
  }
}

TEST_BOTH(Contents, InsertOverwritesGrowsAndTurnsComplex) {
  const auto z = [](std::initializer_list<std::complex<T>> points) { return Vec<T>::pairs(points); };
  const struct {
    Vec<T> source, destination;
    int32_t start, count, at;
    std::vector<T> expected;
    // clang-format off
  } rows[] = {{{1, 2, 3}, {10, 20, 30, 40}, 1, 2, 1, {10, 2, 3, 40}}, {{1, 2, 3}, {10, 20}, 0, 9, 99, {10, 20, 1, 2, 3}},
              {z({{1, 2}, {3, 4}}), {7, 8, 9}, 0, 2, 0, {1, 2, 3, 4, 9, 0}},
              {z({{1, 2}, {3, 4}}), {7, 8}, 0, 2, 0, {1, 2, 3, 4}}, {{5}, z({{1, 2}, {3, 4}}), 0, 1, 1, {1, 2, 5, 0}}};
  // clang-format on
  for (const auto& [source, destination, start, count, at, expected] : rows) {
    Vec<T> from = source, v = destination;
    from->delta = 2;
    EXPECT_EQ(insert_subvec(from, v, start, count, at), 0);
    EXPECT_TRUE(v->delta == T(2) && exactly(v, expected)) << &source - &rows[0].source;
  }
  Vec<T> itself{1, 2, 3};  // over itself, growing
  EXPECT_EQ(insert_subvec(itself, itself, 0, 3, 2), 0);
  EXPECT_TRUE(exactly(itself, {1, 2, 1, 2, 3}));
}

TEST_BOTH(Contents, CompareStopsAtTheFirstDifference) {
  const Vec<T> a{1, 2, 3};
  const struct {
    Vec<T> b;
    T delta;
    int32_t expected, status = 0;
    // clang-format off
  } rows[] = {{a, 1, 0}, {{1, 2, T(3.5)}, 1, -1}, {{1, T(1.5), 9}, 1, 1}, {{1, kNaN<T>, -9}, 1, -1}, {a, 2, -1},
              {Vec<T>::pairs({{1, 0}, {2, -1}, {3, 9}}), 1, 1}, {{1, 2}, 1, 7, -1}};
  // clang-format on
  for (const auto& row : rows) {
    Vec<T> b = row.b;
    b->delta = row.delta;
    int32_t result = 7;
    EXPECT_EQ(cmp(a, b, T(0.1), &result), row.status);
    EXPECT_EQ(result, row.expected);
  }
}

TEST(Tof, RoundsEverySampleAndRefusesOneRecord) {
  Vec<double> source{1.0, 0.1, 1e300};
  source->delta = 0.1;
  Vec<float> destination, copied;
  EXPECT_EQ(dspu_tof(source, destination) + dspfu_tof(destination, copied), 0);
  for (const Vec<float>* v : {&destination, &copied}) EXPECT_TRUE(exactly(*v, {1.0F, 0.1F, kInf<float>}));
  EXPECT_EQ(destination->delta, 0.1F);
  EXPECT_EQ(dspfu_tof(copied, copied), -1);
  Vec<float> inside = Vec<float>::over(copied->data + 1, 0);
  inside->allocated = copied->points = 2;
  EXPECT_EQ(dspfu_tof(copied, inside), 0);
  EXPECT_TRUE(exactly(inside, {1.0F, 0.1F}));
  inside->allocated = 0;
}

}  // namespace sigvex_test::contents_test
