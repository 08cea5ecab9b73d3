#include "elementwise/inplace.h"
#include "support/cpu_targets.h"
#include "support/failing_storage.h"

namespace sigvex_test::binary_test {

SUITE_OF_BOTH(Binary);

template <class T> using Call = int32_t (*)(const Record<T>*, const Record<T>*, Record<T>*);

template <class T> struct Operation {
  const char* name;
  Call<T> call;
  std::vector<T> of_forms[4];  // what becomes of a = 1 or (1, 2) and b = 3 or (3, -4); nothing where it refuses
  T delta = 2;                 // of 1 and 3 into a result that has 9
  bool any_lengths = false, leaves_block = true;  // a result that has to grow leaves a block it shares to the input
};

template <class T> std::vector<Operation<T>> operations() {
  const T third = T(1) / 3, part = T(1) / 25, q = T(2.5), h = T(0.5);
  return {{TWIN_ROW(b, add), {{4}, {4, 2}, {4, -4}, {4, -2}}, 2, true},
          {TWIN_ROW(b, sub), {{-2}, {-2, 2}, {-2, 4}, {-2, 6}}, 2, true},
          {TWIN_ROW(b, mul), {{3}, {3, 6}, {3, -4}, {11, 2}}},
          {TWIN_ROW(b, div), {{third}, {third, 2 * third}, {3 * part, 4 * part}, {-5 * part, 10 * part}}},
          {TWIN_ROW(b, max), {{3}, {3, 0}, {3, -4}, {3, -4}}},
          {TWIN_ROW(b, min), {{1}, {1, 2}, {1, 0}, {1, 2}}},
          {"avg_add", WITH(b, avg_add, T(0.25)), {{q}, {q, h}, {q, -3}, {q, -q}}},
          {TWIN_ROW(b, conj_mul), {{3}, {3, 6}, {3, 4}, {-5, 10}}},
          {TWIN_ROW(b, ritoc), {{1, 3}, {}, {}, {}}, h, false, false},
          {TWIN_ROW(b, inter), {{1, 3}, {1, 2, 3, 0}, {1, 0, 3, -4}, {1, 2, 3, -4}}, h, false, false},
          {TWIN_ROW(bs, dot), {{3}, {3, 6}, {3, -4}, {11, 2}}, 9},
          {TWIN_ROW(b, pmul), {{3}, {3, 6}, {3, -4}, {11, 2}}, 1, true, false}};
}

template <class T> void view(Vec<T>& over, Vec<T>& of, size_t offset = 0) { over = of.view(), over->data += offset; }

// How a result may share record or storage with one input, or with both.
template <class T> struct Placement {
  using V = Vec<T>;
  const char* name;
  void (*arrange)(V& own, V*& x, V*& other, V*& result);

  static std::vector<Placement> all() {
    return {{"the result is it", [](V&, V*& x, V*&, V*& result) { result = x; }},
            {"all are one record", [](V&, V*& x, V*& other, V*& result) { result = other = x; }},
            {"the result is it, the other views it", [](V&, V*& x, V*& y, V*& result) { view(*y, *x), result = x; }},
            {"the result views it", [](V& own, V*& x, V*&, V*&) { view(own, *x); }},
            {"the result is a complex view of it", [](V& own, V*& x, V*&, V*&) { view(own, *x), own->complex = 1; }},
            {"the result lies inside it", [](V& own, V*& x, V*&, V*&) { view(own, *x, 1), own->points = 4; }},
            {"the result is a copy of its record", [](V& own, V*& x, V*&, V*&) { *own.get() = *x->get(); }},
            {"the result is a copy of its record, the other lies inside",
             [](V& own, V*& x, V*& y, V*&) { (*x)->points = 4, *own.get() = *x->get(), view(*y, *x, 1); }},
            {"it views the result", [](V& own, V*& x, V*&, V*&) { own = *x, view(*x, own); }},
            {"it lies inside the result", [](V& own, V*& x, V*&, V*&) {
               std::vector<T> longer = x->samples();
               longer.insert(longer.begin(), 0);
               longer.resize(14);
               own = V(longer, (*x)->complex), own->points = 5, view(*x, own, 1);
             }}};
  }
};

// Five points of distinct values, in a block with room for some more.
template <class T> Vec<T> sampled(T first, bool complex, size_t spare) {
  std::vector<T> samples((complex ? 10 : 5) + spare);
  for (T& x : samples) x = first += T(0.5);
  Vec<T> v(samples, complex);
  v->points = 5;
  v->delta = first;
  return v;
}

// The call gives what it gives on three records that share nothing, and leaves alone what is not the result's.
template <class T> void expect_as_separate(const Operation<T>& operation, Vec<T>& a, Vec<T>& b, Vec<T>& result) {
  const T* const block = result->allocated > 0 ? result->data : nullptr;
  const int32_t capacity = result->allocated;
  const Vec<T> kept_a = a, kept_b = b;
  Vec<T> expected;
  expected->delta = result->delta;
  const int32_t status = operation.call(kept_a, kept_b, expected);
  ASSERT_EQ(operation.call(a, b, result), status);
  if (status == 0) {
    EXPECT_TRUE(same(result, expected));
    EXPECT_GE(static_cast<size_t>(result->allocated), expected.size());
    EXPECT_TRUE(result->data == block || capacity < expected->allocated);  // one that suffices is kept
  }
  for (const auto& [input, before] : {std::pair(&a, &kept_a), std::pair(&b, &kept_b)}) {
    if (input == &result || (*input)->allocated <= 0) continue;
    if ((*input)->data == result->data) result->allocated = 0;  // of two owners of one block only one may release it
    else EXPECT_TRUE(exactly(*input, before->samples()));
  }
  if (operation.leaves_block && &a != &result && a->data == block && result->data != block) {
    a->allocated = 1;  // now the only record that knows the block
    EXPECT_TRUE(exactly(a, kept_a.samples()));
  }
}

TEST_BOTH(Binary, ResultMayShareRecordOrStorageWithItsInputs) {
  for (const Operation<T>& operation : operations<T>()) {
    for (const Placement<T>& placement : Placement<T>::all()) {
      for (unsigned bits = 0; bits < 16; ++bits) {
        SCOPED_TRACE(::testing::Message() << operation.name << ", " << placement.name << ", bits " << bits);
        const size_t spare = bits & 4 ? 7 : 0;
        Vec<T> a = sampled<T>(-2, bits & 1, spare), b = sampled<T>(3, bits & 2, spare), own;
        Vec<T>*pa = &a, *pb = &b, *result = &own;
        placement.arrange(own, bits & 8 ? pb : pa, bits & 8 ? pa : pb, result);
        expect_as_separate<T>(operation, *pa, *pb, *result);
      }
    }
  }
}

// Fused into the sum, the product of two parts is not rounded; alone a point comes through no vector.
TEST_BOTH(Binary, APointGivesTheSameBitsAloneAndAmongOthersOnEveryCpu) {
  std::vector<Operation<T>> rules = operations<T>();
  std::erase_if(rules, [](const auto& operation) { return operation.delta != 2; });  // left are those of single points
  const Call<T> turn = [](auto* a, auto*, auto* result) { return TWIN_OF(u, cscale)(a, result, T(0.3), T(0.7)); };
  const Call<T> turn_in_place = [](auto* a, auto*, auto* result) {
    return TWIN_OF(, copy)(result, a) | TWIN_OF(i, cscale)(result, T(0.3), T(0.7));
  };
  rules.insert(rules.end(), {{"cscale", turn, {}}, {"cscale in place", turn_in_place, {}}});
  const auto samples = [](size_t n, size_t step) {
    std::vector<T> x(n);
    for (size_t k = 0; k < n; ++k) x[k] = static_cast<T>(k * step % 10007) / T(10007) - T(0.3);
    return x;
  };
  for_each_cpu_target([&](const char* target) {
    for (const Operation<T>& rule : rules) {
      for (const unsigned forms : {0U, 1U, 2U, 3U}) {
        Vec<T> a(samples(200, 7919), forms & 1), b(samples(200, 5381), forms & 2), all;
        a->points = b->points = 97;
        ASSERT_EQ(rule.call(a, b, all), 0);
        for (int k = 0; k < 97; ++k) {
          Vec<T> alone;
          const auto of = [k](Vec<T>& v) { return Vec<T>::over(v->data + (v->complex ? 2 * k : k), 1, v->complex); };
          ASSERT_EQ(rule.call(of(a), of(b), alone), 0);
          ASSERT_TRUE(std::equal(alone->data, alone->data + alone.size(), all->data + alone.size() * k))
              << rule.name << ' ' << forms << ' ' << k << ' ' << target;
        }
      }
    }
  });
}

TEST_BOTH(Binary, SamplesPairUpOverEitherInputInAnyLength) {
  for (size_t n = 1; n < 150; n += n / 60 + 1) {
    for (const int over : {0, 1, 2}) {
      const std::vector<T> zeros(n);
      Vec<T> a(zeros), b(zeros), apart;
      for (size_t k = 0; k < n; ++k) a[k] = static_cast<T>(k), b[k] = -a[k];
      Vec<T>& result = over == 0 ? a : over == 1 ? b : apart;
      EXPECT_EQ(TWIN_OF(b, ritoc)(a, b, result), 0);
      for (size_t k = 0; k < 2 * n; ++k) ASSERT_EQ(result[k], static_cast<T>(k / 2) * (k % 2 ? -1 : 1)) << n << over;
    }
  }
}

TEST_BOTH(Binary, FormsLengthsAndDelta) {
  const Vec<T> x[] = {{1}, Vec<T>::pairs({{1, 2}})}, y[] = {{3}, Vec<T>::pairs({{3, -4}})};
  for (const Operation<T>& operation : operations<T>()) {
    SCOPED_TRACE(operation.name);
    for (const unsigned forms : {0U, 1U, 2U, 3U}) {
      Vec<T> result;
      EXPECT_EQ(operation.call(x[forms & 1], y[forms >> 1], result), operation.of_forms[forms].empty() ? -1 : 0);
      EXPECT_TRUE(exactly(result, operation.of_forms[forms])) << forms;
    }
    Vec<T> a{1, 2, 3}, b{1, 2, 3, 4}, result{7};
    b->delta = 3;
    result->delta = 9;
    EXPECT_EQ(operation.call(a, b, result), operation.any_lengths ? 0 : -1);
    EXPECT_TRUE(operation.any_lengths || (result->delta == 9 && exactly(result, {7})));
    b->points = 3;
    EXPECT_EQ(operation.call(a, b, result), 0);
    EXPECT_EQ(result->delta, operation.delta);
    a->points = -1;  // counts as none
    b->points = 0;
    EXPECT_EQ(operation.call(a, b, result), 0);
    EXPECT_EQ(result->points, operation.delta == 9);  // the dot product of nothing is 0
  }
}

TEST_BOTH(Binary, EachRuleAtItsEdges) {
  constexpr T nan = kNaN<T>, inf = kInf<T>, huge = kHuge<T>, tiny = kTiny<T>, least = T(-0.0);
  const T beyond = std::nextafter(huge, inf), wide = 4 * std::sqrt(huge);  // |wide|^2 > huge
  const auto z = [](const std::vector<T>& scalars) { return Vec<T>(scalars, true); };
  const Call<T> quotient = TWIN_OF(b, div), larger = TWIN_OF(b, max), smaller = TWIN_OF(b, min), dot = TWIN_OF(bs, dot);
  const Call<T> sum = TWIN_OF(b, add), difference = TWIN_OF(b, sub), product = TWIN_OF(b, pmul);
  const struct {
    Call<T> call;
    Vec<T> a, b;
    std::vector<T> expected;
  } rows[] = {{quotient, {-2, 2, 0, nan, inf, -1}, {0, least, 0, 0, 0, nan}, {huge, huge, 0, huge, huge, nan}},
              {quotient, z({0, -1, 0, least}), {0, 0}, {huge, huge, 0, 0}},
              {quotient, {1, 0, 0}, z({0, 0, 0, 0, tiny, 0}), {huge, huge, 0, 0, huge, huge}},  // tiny squared is 0
              {quotient,
               z({1, 1, 0, 0, 0, 2, 0, 0}),
               z({nan, 0, 0, 0, 0, 0, tiny, 0}),
               {huge, huge, 0, 0, huge, huge, huge, huge}},
              // by way of the reciprocal, and that last
              {quotient, z({5, 10}), {3}, {5 * (1 / T(3)), 10 * (1 / T(3))}},
              {quotient, {5}, z({1, 11}), {5 * (1 / T(122)), -55 * (1 / T(122))}},
              {quotient, z({5, 0}), z({1, 11}), {5 * (1 / T(122)), -55 * (1 / T(122))}},
              {WITH(b, avg_add, T(0.3)), {1}, z({1, 7}), {1, (1 - T(0.3)) * 7}},
              {larger, {nan, 1, 0, 2}, {1, nan, least, inf}, {1, nan, least, inf}},
              {smaller, {nan, 1, least, 2}, {1, nan, 0, -inf}, {1, nan, 0, -inf}},
              // out of range counts as huge, which a point in range may exceed
              {larger, z({3, 4, nan, 1, beyond, 0}), z({0, 5, 5, 5, wide, 0}), {0, 5, nan, 1, wide, 0}},
              {smaller, z({3, 4, inf, 1}), z({0, 5, -inf, nan}), {0, 5, -inf, nan}},
              {larger, {-6}, z({5, 0}), {-6, 0}},
              {smaller, z({5, 0}), {-5}, {-5, 0}},
              {sum, {1, 2, 3}, {10, 20, 30, 40, -50}, {11, 22, 33, 40, -50}},
              {sum, z({1, 2}), {3, 4}, {4, 2, 4, 0}},
              {difference, {1}, z({10, 1, 20, 2}), {-9, -1, -20, -2}},
              {product, {1, 1}, {1, -1}, {1, 0, -1}},
              {product, {1, 2, 3}, z({1, 1, 0, 2}), {1, 1, 2, 4, 3, 7, 0, 6}},
              {product, {}, {1, 2}, {}},
              {TWIN_OF(b, inter), {1, nan, 3}, {least, 5, inf}, {1, least, nan, 5, 3, inf}},
              {TWIN_OF(b, inter), z({1, 2, 3, 4}), {5, 6}, {1, 2, 5, 0, 3, 4, 6, 0}},
              {dot, z({1, 2, 3, 4}), z({5, 6, 7, 8}), {-18, 68}}};
  for (const auto& row : rows) {
    Vec<T> a = row.a, result;
    for (Record<T>* const to : {result.get(), a.get()}) EXPECT_EQ(row.call(a, row.b, to), 0);  // the shorter one, too
    EXPECT_TRUE(exactly(result, row.expected) && exactly(a, row.expected)) << &row - rows;
  }
  for (const Call<T> call : {TWIN_OF(b, add), TWIN_OF(b, mul), TWIN_OF(b, pmul), TWIN_OF(b, inter)}) {
    Vec<T> result{7, 8};  // claims more than fits, from the result's own block on: refused before it is read
    result->delta = 9;    // but the spacing is set before the storage
    const Vec<T> many = Vec<T>::over(result->data + 1, 1 << 30, 1);
    EXPECT_EQ(call(many, many, result), -1);
    EXPECT_TRUE(result->data == nullptr && result->points == 0 && result->delta < 9);
  }
  Vec<T> factor{1, 2}, result{3, 4};
  result->delta = 9;
  const FailingStorage<T> none(0);  // not even for the copy of an input: everything stays
  EXPECT_EQ(product(factor, result, result), -1);
  EXPECT_TRUE(result->delta == 9 && exactly(result, {3, 4}));
}

}  // namespace sigvex_test::binary_test
