#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

// An operation beside its form in place, which has tests of its values.
template <class T> struct Copy {
  const char* name;
  std::function<int32_t(const Record<T>*, Record<T>*)> operation;
  InPlace<T> in_place;
};
template <class T> std::vector<Copy<T>> copies() {
  // clang-format off
  return {{"scale", [](auto* s, auto* d) { return TWIN_OF(u, scale)(s, d, T(-2.5)); },
           [](auto* v) { return TWIN_OF(i, scale)(v, T(-2.5)); }},
          {"cscale", [](auto* s, auto* d) { return TWIN_OF(u, cscale)(s, d, 2, -3); },
           [](auto* v) { return TWIN_OF(i, cscale)(v, 2, -3); }},
          {TWIN_ROW(u, sqrt), TWIN_OF(i, sqrt)},
          {TWIN_ROW(u, mag), TWIN_OF(i, mag)},
          {TWIN_ROW(u, magsq), TWIN_OF(i, magsq)}};
  // clang-format on
}

template <class T> void expect_same(const Vec<T>& v, const Vec<T>& expected) {
  EXPECT_TRUE(exactly(v, expected.samples()));
  EXPECT_EQ(v->points, expected->points);
  EXPECT_EQ(v->complex, expected->complex);
  EXPECT_EQ(v->delta, expected->delta);
}

template <class T> struct Copies : ::testing::Test {};
TYPED_TEST_SUITE(Copies, Precisions);

// Calls f with each operation, a source of each length and form, led by what the guards are for, and the result.
template <class T, class F> void each_case(F f) {
  for (const Copy<T>& copy : copies<T>()) {
    for (size_t n = 0; n <= 33; ++n) {
      for (const bool complex : {false, true}) {
        SCOPED_TRACE(copy.name + std::to_string(n) + (complex ? " complex" : " real"));
        std::vector<T> x = {-4, 9, T(-0.0), 0, kInf<T>, 1, 2 * kHuge<T>, kNaN<T>, -kHuge<T>};
        while (x.size() < 66) x.push_back(T(0.7) * static_cast<T>(x.size()) - T(9));
        x.resize(complex ? 2 * n : n);
        Vec<T> source = make(x, complex);
        source->delta = T(0.3);
        Vec<T> expected = source;
        EXPECT_EQ(copy.in_place(expected), 0);
        f(copy.operation, source, expected);
      }
    }
  }
}

TYPED_TEST(Copies, SeparateAndSameRecordsGetTheInPlaceResult) {
  using T = TypeParam;
  each_case<T>([](auto operation, Vec<T>& source, const Vec<T>& expected) {
    const Vec<T> original = source;
    Vec<T> fresh, used = Vec<T>::pairs({{1, 2}, {3, 4}});
    EXPECT_EQ(operation(source, fresh) + operation(source, used), 0);
    expect_same(fresh, expected);
    expect_same(used, expected);
    expect_same(source, original);
    EXPECT_EQ(operation(source, source), 0);
    expect_same(source, expected);
  });
}

// Two records over one block, some scalars apart: either may lie in front and own the block, which may have room for
// the result or not.
TYPED_TEST(Copies, RecordsThatShareStorageGetTheInPlaceResult) {
  using T = TypeParam;
  each_case<T>([](auto operation, const Vec<T>& original, const Vec<T>& expected) {
    for (const size_t apart : {0, 1, 2, 5}) {
      for (const bool destination_in_front : {false, true}) {
        for (const bool room : {false, true}) {
          SCOPED_TRACE(std::to_string(apart) + (destination_in_front ? " behind" : " ahead") +
                       (room ? " with room" : ""));
          Vec<T> front(std::vector<T>(apart + (room ? 80 : original.size()))), behind;
          behind->data = front->data + apart;
          Vec<T>&source = destination_in_front ? behind : front, &destination = destination_in_front ? front : behind;
          std::copy_n(original->data, original.size(), source->data);
          source->points = original->points;
          source->complex = original->complex;
          source->delta = original->delta;
          EXPECT_EQ(operation(source, destination), 0);
          expect_same(destination, expected);
        }
      }
    }
  });
}

TYPED_TEST(Copies, AGrowingCopyOfTheRecordLeavesTheSharedBlockAlone) {
  using T = TypeParam;
  Vec<T> source{1, 2, 3}, destination;
  *destination.get() = *source.get();
  EXPECT_EQ(TWIN_OF(u, cscale)(source, destination, 2, 1), 0);
  EXPECT_TRUE(exactly(destination, {2, 1, 4, 2, 6, 3}));
  EXPECT_TRUE(exactly(source, {1, 2, 3}));
  EXPECT_NE(source->data, destination->data);
}

// Twice as many scalars as fit.
TYPED_TEST(Copies, PromotionThatCannotGrowLeavesNoStorage) {
  using T = TypeParam;
  T sample = 1;
  Vec<T> source, destination{1, 2};
  source->data = &sample;
  source->points = INT32_MAX;
  EXPECT_EQ(TWIN_OF(u, cscale)(source, destination, 1, 1), -1);
  EXPECT_EQ(source->points, INT32_MAX);
  EXPECT_EQ(TWIN_OF(i, cscale)(source, 1, 1), -1);
  for (const Vec<T>* v : {&source, &destination}) {
    EXPECT_EQ((*v)->data, nullptr);
    EXPECT_EQ((*v)->points, 0);
    EXPECT_EQ((*v)->allocated, 0);
  }
  EXPECT_EQ(sample, 1);
}

}  // namespace
}  // namespace sigvex_test
