#include <algorithm>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(b, add);
TWIN(b, sub);
TWIN(b, mul);
TWIN(b, conj_mul);
TWIN(b, div);
TWIN(b, avg_add);
TWIN(b, max);
TWIN(b, min);
TWIN(b, ritoc);
TWIN(b, pmul);
TWIN(bs, dot);
TWIN(i, zpad);

template <class T> struct Binary : ::testing::Test {};
TYPED_TEST_SUITE(Binary, Precisions);

template <class T> int32_t averaged(const Record<T>* a, const Record<T>* b, Record<T>* result) {
  return avg_add(a, b, result, T(0.25));
}

template <class T> struct Operation {
  const char* name;
  int32_t (*call)(const Record<T>*, const Record<T>*, Record<T>*);
  bool leaves_block;  // a result that has to grow leaves the block it shares to the first input
};

template <class T> const std::vector<Operation<T>>& operations() {
  static const std::vector<Operation<T>> list = {
      {"add", add.of<T>(), true}, {"sub", sub.of<T>(), true},       {"mul", mul.of<T>(), true},
      {"div", div.of<T>(), true}, {"max", max.of<T>(), true},       {"min", min.of<T>(), true},
      {"avg", averaged<T>, true}, {"conj", conj_mul.of<T>(), true}, {"ritoc", ritoc.of<T>(), false},
      {"dot", dot.of<T>(), true}, {"pmul", pmul.of<T>(), false}};
  return list;
}

// Two inputs and a result, of which some may be one record or lie over one storage.
template <class T> struct Operands {
  Vec<T> a, b, result;
  Vec<T>*pa = &a, *pb = &b, *pr = &result;

  static void view(Vec<T>& over, const Vec<T>& of, size_t offset = 0) {
    over = Vec<T>();
    *over.get() = *of.operator->();
    over->data += offset;
    over->allocated = 0;
  }
  // Moves an input into a longer block of the result's, behind its first scalar.
  static void bury(Vec<T>& input, Vec<T>& result) {
    const std::vector<T> samples = input.samples();
    result = input;
    zpad(result.get(), 7);
    result->points = 5;
    view(input, result, 1);
    std::copy(samples.begin(), samples.end(), input->data);
  }
};

template <class T> struct Placement {
  const char* name;
  void (*arrange)(Operands<T>& o);
};

template <class T> const std::vector<Placement<T>>& placements() {
  using O = Operands<T>;
  static const std::vector<Placement<T>> list = {
      {"the result is a", [](O& o) { o.pr = o.pa; }},
      {"the result is b", [](O& o) { o.pr = o.pb; }},
      {"all are one record", [](O& o) { o.pr = o.pb = o.pa; }},
      {"the inputs are one record", [](O& o) { o.pb = o.pa; }},
      {"the result views a", [](O& o) { O::view(o.result, o.a); }},
      {"the result views b", [](O& o) { O::view(o.result, o.b); }},
      {"the result is a complex view of a", [](O& o) { O::view(o.result, o.a), o.result->complex = 1; }},
      {"the result is a complex view of b", [](O& o) { O::view(o.result, o.b), o.result->complex = 1; }},
      {"the result lies inside a", [](O& o) { O::view(o.result, o.a, 1), o.result->points = 4; }},
      {"the result is a copy of record a", [](O& o) { *o.result.get() = *o.a.get(); }},
      {"the result is a copy of record b", [](O& o) { *o.result.get() = *o.b.get(); }},
      {"a views the result", [](O& o) { o.result = o.a, O::view(o.a, o.result); }},
      {"b views the result", [](O& o) { o.result = o.b, O::view(o.b, o.result); }},
      {"a lies inside the result", [](O& o) { O::bury(o.a, o.result); }},
      {"b lies inside the result", [](O& o) { O::bury(o.b, o.result); }},
      {"b views a, which is the result", [](O& o) { O::view(o.b, o.a), o.pr = o.pa; }},
      {"a views b, which is the result", [](O& o) { O::view(o.a, o.b), o.pr = o.pb; }},
  };
  return list;
}

// Five points of distinct values, in a block with room for some more.
template <class T> Vec<T> sampled(T first, bool complex, size_t spare) {
  std::vector<T> samples((complex ? 10 : 5) + spare);
  for (T& x : samples) x = first += T(0.5);
  Vec<T> v(samples);
  v->points = 5;
  v->complex = complex;
  return v;
}

// The call gives what it gives on three records that share nothing, and leaves alone what is not the result's.
template <class T>
void expect_as_separate(const Operation<T>& operation, const Placement<T>& placement, bool complex_a, bool complex_b,
                        size_t spare) {
  Operands<T> o{sampled<T>(-2, complex_a, spare), sampled<T>(3, complex_b, spare), {}};
  o.a->delta = 1;
  o.b->delta = 3;
  placement.arrange(o);
  Vec<T>& result = *o.pr;
  const T* const block = result->allocated > 0 ? result->data : nullptr;
  const Vec<T> a = *o.pa, b = *o.pb;
  Vec<T> expected;
  expected->delta = result->delta;
  const int32_t status = operation.call(a, b, expected);
  ASSERT_EQ(operation.call(*o.pa, *o.pb, result), status);
  if (status == 0) {
    EXPECT_TRUE(exactly(result, expected.samples()));
    EXPECT_EQ(result->complex, expected->complex);
    EXPECT_EQ(result->delta, expected->delta);
    EXPECT_GE(static_cast<size_t>(result->allocated), expected.size());
  }
  const auto expect_kept = [&](Vec<T>& input, const Vec<T>& before) {
    if (&input == &result || input->allocated <= 0) return;
    if (input->data != result->data) {
      EXPECT_TRUE(exactly(input, before.samples()));
    } else {
      result->allocated = 0;  // two records that own one block: only one may release it
    }
  };
  expect_kept(*o.pa, a);
  expect_kept(*o.pb, b);
  if (operation.leaves_block && &*o.pa != &result && (*o.pa)->data == block && result->data != block) {
    (*o.pa)->allocated = 1;  // now the only record that knows the block
    EXPECT_TRUE(exactly(*o.pa, a.samples()));
  }
}

TYPED_TEST(Binary, ResultMayShareRecordOrStorageWithItsInputs) {
  using T = TypeParam;
  for (const Operation<T>& operation : operations<T>()) {
    for (const Placement<T>& placement : placements<T>()) {
      for (const unsigned forms : {0U, 1U, 2U, 3U}) {
        for (const size_t spare : {0, 7}) {
          SCOPED_TRACE(::testing::Message()
                       << operation.name << ", " << placement.name << ", forms " << forms << ", spare " << spare);
          expect_as_separate<T>(operation, placement, forms & 1, forms & 2, spare);
        }
      }
    }
  }
}

// Results in every pair of forms: a = 1 or (1, 2), b = 3 or (3, -4).
TYPED_TEST(Binary, FormsCombine) {
  using T = TypeParam;
  const T third = T(1) / 3, part = T(1) / 25;
  using List = std::vector<T>;
  const List expected[][4] = {{{4}, {4, 2}, {4, -4}, {4, -2}},
                              {{-2}, {-2, 2}, {-2, 4}, {-2, 6}},
                              {{3}, {3, 6}, {3, -4}, {11, 2}},
                              {{third}, {third, 2 * third}, {3 * part, 4 * part}, {-5 * part, 10 * part}},
                              {{3}, {3, 0}, {3, -4}, {3, -4}},
                              {{1}, {1, 2}, {1, 0}, {1, 2}},
                              {{T(2.5)}, {T(2.5), T(0.5)}, {T(2.5), -3}, {T(2.5), T(-2.5)}},
                              {{3}, {3, 6}, {3, 4}, {-5, 10}},
                              {{1, 3}, {}, {}, {}},
                              {{3}, {3, 6}, {3, -4}, {11, 2}},
                              {{3}, {3, 6}, {3, -4}, {11, 2}}};
  const Vec<T> a[] = {{1}, Vec<T>::pairs({{1, 2}})}, b[] = {{3}, Vec<T>::pairs({{3, -4}})};
  for (size_t row = 0; row < std::size(expected); ++row) {
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      Vec<T> result;
      const List& list = expected[row][forms];
      const Operation<T>& operation = operations<T>()[row];
      EXPECT_EQ(operation.call(a[forms & 1], b[forms >> 1], result), list.empty() ? -1 : 0) << operation.name << forms;
      EXPECT_TRUE(exactly(result, list)) << operation.name << forms;
    }
  }
}

TYPED_TEST(Binary, EachRuleAtItsEdges) {
  using T = TypeParam;
  constexpr T nan = kNaN<T>, inf = kInf<T>, huge = kHuge<T>, tiny = kTiny<T>, minus_zero = T(-0.0);
  const T beyond = std::nextafter(huge, inf), wide = 4 * std::sqrt(huge);  // |wide|^2 > huge
  const auto z = [](T re, T im) { return Vec<T>::pairs({{re, im}}); };
  struct Row {
    int32_t (*call)(const Record<T>*, const Record<T>*, Record<T>*);
    Vec<T> a, b;
    std::vector<T> expected;
  };
  const auto quotient = div.template of<T>(), larger = max.template of<T>(), smaller = min.template of<T>();
  const auto sum = add.template of<T>(), difference = sub.template of<T>(), product = pmul.template of<T>();
  const Row rows[] = {
      {quotient, {-2, 2, 0, nan, inf, -1}, {0, minus_zero, 0, 0, 0, nan}, {huge, huge, 0, huge, huge, nan}},
      {quotient, z(0, -1), {0}, {huge, huge}},
      {quotient, z(0, minus_zero), {0}, {0, 0}},
      {quotient, {1}, z(0, 0), {huge, huge}},
      {quotient, {0}, z(0, 0), {0, 0}},
      {quotient, {0}, z(tiny, 0), {huge, huge}},  // its square is 0
      {quotient, z(1, 1), z(nan, 0), {huge, huge}},
      {quotient, z(0, 0), z(0, 0), {0, 0}},
      {quotient, z(0, 2), z(0, 0), {huge, huge}},
      {larger, {nan, 1, 0, 2}, {1, nan, minus_zero, inf}, {1, nan, minus_zero, inf}},
      {smaller, {nan, 1, minus_zero, 2}, {1, nan, 0, -inf}, {1, nan, 0, -inf}},
      {larger, z(3, 4), z(0, 5), {0, 5}},
      {smaller, z(3, 4), z(0, 5), {0, 5}},
      {larger, z(nan, 1), z(5, 5), {nan, 1}},         // out of range counts as huge,
      {larger, z(beyond, 0), z(wide, 0), {wide, 0}},  // which a point in range may exceed
      {smaller, z(inf, 1), z(-inf, nan), {-inf, nan}},
      {larger, {-6}, z(5, 0), {-6, 0}},
      {smaller, z(5, 0), {-5}, {-5, 0}},
      {sum, {1, 2, 3}, {10, 20, 30, 40, -50}, {11, 22, 33, 40, -50}},
      {sum, Vec<T>::pairs({{1, 2}}), {3, 4}, {4, 2, 4, 0}},
      {difference, {1}, Vec<T>::pairs({{10, 1}, {20, 2}}), {-9, -1, -20, -2}},
      {product, {1, 1}, {1, -1}, {1, 0, -1}},
      {product, {1, 2, 3}, Vec<T>::pairs({{1, 1}, {0, 2}}), {1, 1, 2, 4, 3, 7, 0, 6}},
      {product, {}, {1, 2}, {}},
      {dot.template of<T>(), Vec<T>::pairs({{1, 2}, {3, 4}}), Vec<T>::pairs({{5, 6}, {7, 8}}), {-18, 68}},
      {dot.template of<T>(), {}, {}, {0}},
  };
  for (const Row& row : rows) {
    Vec<T> a = row.a, result;
    for (Record<T>* const to : {result.get(), a.get()}) EXPECT_EQ(row.call(a, row.b, to), 0);  // the shorter one, too
    EXPECT_TRUE(exactly(result, row.expected)) << &row - rows;
    EXPECT_TRUE(exactly(a, row.expected)) << &row - rows;
  }
}

TYPED_TEST(Binary, DeltaAndRefusals) {
  using T = TypeParam;
  const std::vector<T> deltas{2, 2, 2, 2, 2, 2, 2, 2, T(0.5), 9, 1};  // of 1 and 3 into a result that has 9
  for (size_t k = 0; k < deltas.size(); ++k) {
    const Operation<T>& operation = operations<T>()[k];
    const bool any_lengths = k == 0 || k == 1 || k == 10;
    Vec<T> a{1, 2, 3}, b{1, 2, 3, 4}, result{7};
    a->delta = 1;
    b->delta = 3;
    result->delta = 9;
    EXPECT_EQ(operation.call(a, b, result), any_lengths ? 0 : -1) << operation.name;
    EXPECT_TRUE(any_lengths || (result->delta == 9 && exactly(result, {7}))) << operation.name;
    b->points = 3;
    EXPECT_EQ(operation.call(a, b, result), 0) << operation.name;
    EXPECT_EQ(result->delta, deltas[k]) << operation.name;
    a->points = -1;  // counts as none
    b->points = 0;
    EXPECT_EQ(operation.call(a, b, result), 0) << operation.name;
    EXPECT_EQ(result->points, k == 9 ? 1 : 0) << operation.name;
  }
  Vec<T> a{1, 2}, b{1, 2, 3}, claims;
  *claims.get() = *a.get();  // a record that owns the block of the shorter input, too
  EXPECT_EQ(add(a.get(), b.get(), claims.get()), 0);
  EXPECT_TRUE(exactly(claims, {2, 4, 3}) && exactly(a, {1, 2}));
  T storage[] = {1};
  Record<T> many{};  // two of them have more products than a record can hold
  many.data = storage;
  many.points = INT32_MAX;
  Vec<T> result{7};
  EXPECT_EQ(pmul(&many, &many, result.get()), -1);
  EXPECT_TRUE(result->data == nullptr && result->points == 0);
}

}  // namespace
}  // namespace sigvex_test
