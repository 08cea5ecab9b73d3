#include "elementwise/inplace.h"

namespace sigvex_test {
namespace {

template <class T> using IntoAnother = std::function<int32_t(const Record<T>*, Record<T>*)>;

namespace u {
TWIN(u, scale);
TWIN(u, cscale);
TWIN(u, sqrt);
TWIN(u, mag);
TWIN(u, magsq);
}  // namespace u
TWIN(i, scale);
TWIN(i, cscale);
TWIN(i, sqrt);
TWIN(i, mag);
TWIN(i, magsq);

// An operation into another vector beside the one in place, which has its own tests of values.
template <class T> struct Pair {
  const char* name;
  IntoAnother<T> into;
  InPlace<T> in_place;
};
template <class T> std::vector<Pair<T>> pairs() {
  return {
      {"scale", [](auto* s, auto* d) { return u::scale(s, d, T(-2.5)); }, [](auto* v) { return scale(v, T(-2.5)); }},
      {"cscale", [](auto* s, auto* d) { return u::cscale(s, d, T(2), T(-3)); },
       [](auto* v) { return cscale(v, T(2), T(-3)); }},
      {"sqrt", u::sqrt.of<T>(), sqrt.of<T>()},
      {"mag", u::mag.of<T>(), mag.of<T>()},
      {"magsq", u::magsq.of<T>(), magsq.of<T>()}};
}

// Lengths around the lane counts, led by what the guards are for.
template <class T> std::vector<Vec<T>> sources() {
  const T inf = kInf<T>, nan = kNaN<T>, over = std::nextafter(kHuge<T>, inf);
  std::vector<Vec<T>> all;
  for (const size_t n : {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33}) {
    std::vector<T> x = {-4, 9, T(-0.0), 0, over, 1, -over, nan, inf, -inf};
    while (x.size() < 2 * n) x.push_back(T(0.7) * static_cast<T>(x.size()) - T(9));
    x.resize(2 * n);
    all.push_back(make(x, Form::kComplex));
    x.resize(n);
    all.push_back(make(x, Form::kReal));
  }
  for (Vec<T>& v : all) v->delta = T(0.3);
  return all;
}

template <class T> void expect_same(const Vec<T>& v, const Vec<T>& expected) {
  EXPECT_TRUE(exactly(v, expected.samples()));
  EXPECT_EQ(v->points, expected->points);
  EXPECT_EQ(v->complex, expected->complex);
  EXPECT_EQ(v->delta, expected->delta);
}

template <class T> struct Copies : ::testing::Test {};
TYPED_TEST_SUITE(Copies, Precisions);

TYPED_TEST(Copies, SeparateDestinationsGetTheInPlaceResultAndTheSourceStays) {
  using T = TypeParam;
  for (const Pair<T>& pair : pairs<T>()) {
    for (const Vec<T>& original : sources<T>()) {
      SCOPED_TRACE(std::string(pair.name) + " of " + std::to_string(original->points) +
                   (original->complex ? " c" : " r"));
      Vec<T> expected = original, source = original, fresh, used = Vec<T>::pairs({{1, 2}, {3, 4}});
      EXPECT_EQ(pair.in_place(expected), 0);
      EXPECT_EQ(pair.into(source, fresh), 0);
      EXPECT_EQ(pair.into(source, used), 0);
      expect_same(fresh, expected);
      expect_same(used, expected);
      expect_same(source, original);
      EXPECT_EQ(fresh->allocated, static_cast<int32_t>(expected.size()));
      EXPECT_EQ(pair.into(source, source), 0);
      expect_same(source, expected);
    }
  }
}

// Two records over one block: `at` scalars apart, either of them its owner, with room for the result or without.
TYPED_TEST(Copies, SharedStorageGivesTheSameResult) {
  using T = TypeParam;
  constexpr size_t kRoom = 80;
  for (const Pair<T>& pair : pairs<T>()) {
    for (const Vec<T>& original : sources<T>()) {
      for (const size_t at : {0, 1, 2, 5}) {
        for (const bool behind : {false, true}) {
          for (const bool destination_owns : {false, true}) {
            for (const bool room : {false, true}) {
              SCOPED_TRACE(std::string(pair.name) + " of " + std::to_string(original->points) + " at " +
                           std::to_string(at) + (behind ? " behind" : "") + (destination_owns ? " owned" : " viewed") +
                           (room ? " with room" : ""));
              const size_t source_at = behind ? at : 0, owner_at = destination_owns ? at - source_at : source_at;
              if (owner_at > 0) continue;  // a record owns a block from its start
              Vec<T> expected = original, block(std::vector<T>(room ? kRoom : original.size() + at)), source,
                     destination;
              EXPECT_EQ(pair.in_place(expected), 0);
              source->data = block->data + source_at;
              source->points = original->points;
              source->complex = original->complex;
              source->delta = original->delta;
              std::copy_n(original->data, original.size(), source->data);
              destination->data = block->data + at - source_at;
              destination->points = original->points;
              // the block belongs to one of the two from here on
              (destination_owns ? destination : source)->allocated = std::exchange(block->allocated, 0);
              EXPECT_EQ(pair.into(source, destination), 0);
              expect_same(destination, expected);
            }
          }
        }
      }
    }
  }
}

TYPED_TEST(Copies, ARefusalLeavesRecordsThatCanBeDestroyed) {
  using T = TypeParam;
  T sample = 1;
  Vec<T> source, destination{1, 2};
  source->data = &sample;
  source->points = INT32_MAX;  // twice as many scalars do not fit
  EXPECT_EQ(u::cscale(source.get(), destination.get(), T(1), T(1)), -1);
  EXPECT_EQ(destination->data, nullptr);
  EXPECT_EQ(destination->points, 0);
  EXPECT_EQ(destination->allocated, 0);
  EXPECT_EQ(source->data, &sample);
  EXPECT_EQ(source->points, INT32_MAX);
}

}  // namespace
}  // namespace sigvex_test
