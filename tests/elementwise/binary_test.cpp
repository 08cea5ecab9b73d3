#include <algorithm>
#include <string>

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

TYPED_TEST(Binary, UnequalLengthsAreRefusedOrPadded) {
  using T = TypeParam;
  for (const Operation<T>& operation : operations<T>()) {
    const std::string name = operation.name;
    Vec<T> a{1, 2, 3}, b{1, 2, 3, 4, 5}, result{7};
    result->delta = 9;
    const bool any_lengths = name == "add" || name == "sub" || name == "pmul";
    EXPECT_EQ(operation.call(a, b, result), any_lengths ? 0 : -1) << name;
    if (!any_lengths) {
      EXPECT_TRUE(exactly(result, {7})) << name;
      EXPECT_EQ(result->delta, T(9)) << name;
    }
    a->points = -1;
    b->points = 0;
    EXPECT_EQ(operation.call(a, b, result), 0) << name;
    EXPECT_EQ(result->points, name == "dot" ? 1 : 0) << name;
  }
  const auto check = [](const auto& operation, Vec<T> a, Vec<T> b, const std::vector<T>& expected) {
    a->delta = 1;
    b->delta = 3;
    Vec<T> result;
    EXPECT_EQ(operation(a.get(), b.get(), result.get()), 0);
    EXPECT_TRUE(exactly(result, expected));
    EXPECT_EQ(result->delta, T(2));
    EXPECT_EQ(operation(a.get(), b.get(), a.get()), 0);  // the shorter input is the result
    EXPECT_TRUE(exactly(a, expected));
  };
  check(add, {1, 2, 3}, {10, 20, 30, 40, -50}, {11, 22, 33, 40, -50});
  check(sub, {1}, {10, 20}, {-9, -20});
  check(sub, {1}, Vec<T>::pairs({{10, 1}, {20, 2}}), {-9, -1, -20, -2});
  check(add, Vec<T>::pairs({{1, 2}}), {3, 4}, {4, 2, 4, 0});
}

// What each operation computes, in every pair of forms: complex a = (1, 2), b = (3, -4), or their real parts alone.
TYPED_TEST(Binary, FormsCombine) {
  using T = TypeParam;
  using List = std::vector<T>;
  const T third = T(1) / 3, part = T(1) / 25;
  struct Row {
    const char* name;
    List real_real, real_complex, complex_real, complex_complex;
  };
  const Row rows[] = {{"add", {4}, {4, -4}, {4, 2}, {4, -2}},
                      {"sub", {-2}, {-2, 4}, {-2, 2}, {-2, 6}},
                      {"mul", {3}, {3, -4}, {3, 6}, {11, 2}},
                      {"conj", {3}, {3, 4}, {3, 6}, {-5, 10}},
                      {"div", {third}, {3 * part, 4 * part}, {third, 2 * third}, {-5 * part, 10 * part}},
                      {"avg", {T(2.5)}, {T(2.5), -3}, {T(2.5), T(0.5)}, {T(2.5), T(-2.5)}},
                      {"max", {3}, {3, -4}, {3, 0}, {3, -4}},
                      {"min", {1}, {1, 0}, {1, 2}, {1, 2}},
                      {"ritoc", {1, 3}, {}, {}, {}},
                      {"dot", {3}, {3, -4}, {3, 6}, {11, 2}},
                      {"pmul", {3}, {3, -4}, {3, 6}, {11, 2}}};
  const Vec<T> a[] = {{1}, Vec<T>::pairs({{1, 2}})}, b[] = {{3}, Vec<T>::pairs({{3, -4}})};
  for (const Row& row : rows) {
    for (const Operation<T>& operation : operations<T>()) {
      if (std::string(row.name) != operation.name) continue;
      const List* const expected[2][2] = {{&row.real_real, &row.real_complex},
                                          {&row.complex_real, &row.complex_complex}};
      for (const int i : {0, 1}) {
        for (const int j : {0, 1}) {
          Vec<T> result;
          EXPECT_EQ(operation.call(a[i], b[j], result), expected[i][j]->empty() ? -1 : 0) << row.name << i << j;
          EXPECT_TRUE(exactly(result, *expected[i][j])) << row.name << i << j;
        }
      }
    }
  }
}

template <class T> struct Edge {
  const char* name;
  Vec<T> a, b;
  std::vector<T> expected;
};

template <class T> void check_edges(const std::vector<Edge<T>>& edges) {
  for (const Edge<T>& edge : edges) {
    for (const Operation<T>& operation : operations<T>()) {
      if (std::string(edge.name) != operation.name) continue;
      Vec<T> result;
      EXPECT_EQ(operation.call(edge.a, edge.b, result), 0);
      EXPECT_TRUE(exactly(result, edge.expected)) << edge.name << ' ' << ::testing::PrintToString(edge.a.samples())
                                                  << ' ' << ::testing::PrintToString(edge.b.samples());
    }
  }
}

TYPED_TEST(Binary, DivisionByZeroIsUnboundedAndPositive) {
  using T = TypeParam;
  constexpr T huge = kHuge<T>, nan = kNaN<T>;
  const auto z = [](T re, T im) { return Vec<T>::pairs({{re, im}}); };
  check_edges<T>({{"div", {-2, 2, 0, nan, kInf<T>, -1}, {0, T(-0.0), 0, 0, 0, nan}, {huge, huge, 0, huge, huge, nan}},
                  {"div", z(0, -1), {0}, {huge, huge}},
                  {"div", z(0, T(-0.0)), {0}, {0, 0}},
                  {"div", {1}, z(0, 0), {huge, huge}},
                  {"div", {0}, z(0, 0), {0, 0}},
                  {"div", {0}, z(kTiny<T>, 0), {huge, huge}},
                  {"div", z(1, 1), z(nan, 0), {huge, huge}},
                  {"div", z(0, 0), z(0, 0), {0, 0}},
                  {"div", z(0, 2), z(0, 0), {huge, huge}}});
}

TYPED_TEST(Binary, ExtremesTakeTheSecondInputOnTiesAndNaN) {
  using T = TypeParam;
  constexpr T nan = kNaN<T>, inf = kInf<T>;
  const auto z = [](T re, T im) { return Vec<T>::pairs({{re, im}}); };
  const T beyond = std::nextafter(kHuge<T>, inf), wide = 4 * std::sqrt(kHuge<T>);  // |wide|^2 > huge
  check_edges<T>({{"max", {nan, 1, T(0.0), 2}, {1, nan, T(-0.0), inf}, {1, nan, T(-0.0), inf}},
                  {"min", {nan, 1, T(-0.0), 2}, {1, nan, T(0.0), -inf}, {1, nan, T(0.0), -inf}},
                  {"max", z(3, 4), z(0, 5), {0, 5}},
                  {"min", z(3, 4), z(0, 5), {0, 5}},
                  {"min", z(0, 1), z(0, -2), {0, 1}},
                  {"max", z(nan, 1), z(5, 5), {nan, 1}},         // out of range counts as huge
                  {"max", z(beyond, 0), z(wide, 0), {wide, 0}},  // which a point in range may exceed
                  {"min", z(inf, 1), z(-inf, nan), {-inf, nan}},
                  {"max", {-6}, z(5, 0), {-6, 0}},
                  {"min", z(5, 0), {-5}, {-5, 0}}});
}

TYPED_TEST(Binary, PolynomialProductIsTheFullConvolution) {
  using T = TypeParam;
  const Vec<T> empty;
  check_edges<T>({{"pmul", {1, 1}, {1, -1}, {1, 0, -1}},
                  {"pmul", {2}, {1, 2, 3}, {2, 4, 6}},
                  {"pmul", {1, 2, 3}, Vec<T>::pairs({{1, 1}, {0, 2}}), {1, 1, 2, 4, 3, 7, 0, 6}},
                  {"pmul", empty, {1, 2}, {}}});
  Vec<T> a{1, 2}, b{3}, result;
  a->delta = 4;
  EXPECT_EQ(pmul(a.get(), b.get(), result.get()), 0);
  EXPECT_EQ(result->delta, T(4));
  T storage[] = {1};
  Record<T> many{};  // as many points as two records cannot hold together
  many.data = storage;
  many.points = INT32_MAX;
  EXPECT_EQ(pmul(&many, &many, result.get()), -1);
  EXPECT_EQ(result->points, 0);
  EXPECT_EQ(result->data, nullptr);
}

TYPED_TEST(Binary, DotSumsPlainProductsIntoOnePoint) {
  using T = TypeParam;
  Vec<T> a = Vec<T>::pairs({{1, 2}, {3, 4}}), b = Vec<T>::pairs({{5, 6}, {7, 8}}), result{1, 2, 3};
  result->delta = 7;
  EXPECT_EQ(dot(a.get(), b.get(), result.get()), 0);
  EXPECT_TRUE(exactly(result, {-18, 68}));
  EXPECT_EQ(result->delta, T(7));
  Vec<T> none;
  EXPECT_EQ(dot(none.get(), none.get(), none.get()), 0);
  EXPECT_TRUE(exactly(none, {0}));
}

}  // namespace
}  // namespace sigvex_test
