// Sums and what all statistics share: the block rule to the last bit, empty inputs, aliases, what stays untouched.
#include <algorithm>
#include <random>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(s, sum);
TWIN(s, mean);
TWIN(s, gmean);
TWIN(s, hmean);
TWIN(s, median);
TWIN(s, max);
TWIN(s, min);
TWIN(s, magsq_sum);
TWIN(s, rms);
TWIN(s, pop_var);
TWIN(s, pop_stddev);
TWIN(s, samp_var);
TWIN(s, samp_stddev);
TWIN(s, skew);
TWIN(s, excess);

template <class T> using Statistic = int32_t (*)(const Record<T>*, Record<T>*);
template <class T> struct Row {
  const char* name;
  Statistic<T> of;
  bool takes_complex, keeps_form;
  T of_nothing;
};
#define STATISTIC(name, ...) \
  { #name, name.template of < T>(), __VA_ARGS__ }
template <class T>
const Row<T> kStatistics[] = {
    STATISTIC(sum, true, true, 0),          STATISTIC(mean, true, true, 0),        STATISTIC(gmean, true, true, 0),
    STATISTIC(hmean, true, true, 0),        STATISTIC(median, true, true, 0),      STATISTIC(max, true, true, 0),
    STATISTIC(min, true, true, 0),          STATISTIC(magsq_sum, true, false, 0),  STATISTIC(rms, true, false, 0),
    STATISTIC(pop_var, true, false, 0),     STATISTIC(pop_stddev, true, false, 0), STATISTIC(samp_var, true, false, 0),
    STATISTIC(samp_stddev, true, false, 0), STATISTIC(skew, false, false, 0),      STATISTIC(excess, false, false, -3),
};

template <class T> struct Statistics : ::testing::Test {};
TYPED_TEST_SUITE(Statistics, Precisions);

template <class T> Vec<T> noise(size_t n, bool complex) {
  std::minstd_rand random(static_cast<unsigned>(n) + 1);
  std::uniform_real_distribution<T> uniform(T(-1), T(3));
  std::vector<T> samples(complex ? 2 * n : n);
  std::generate(samples.begin(), samples.end(), [&] { return uniform(random); });
  Vec<T> v(samples);
  v->points = static_cast<int32_t>(n);
  v->complex = complex;
  return v;
}

// The rule itself, one block after the other.
template <class T, class Term> T sum_of_blocks(size_t n, Term term) {
  T total = 0;
  for (size_t first = 0; first < n; first += 2048) {
    T block = 0;
    for (size_t k = first; k < std::min(n, first + 2048); ++k) block += term(k);
    total += block;
  }
  return total;
}

TYPED_TEST(Statistics, SumsRunInBlocksToTheLastBit) {
  using T = TypeParam;
  for (size_t n : {0, 1, 2, 3, 5, 2047, 2048, 2049, 4095, 4096, 4097, 16 * 2048 + 17, 27 * 2048 - 1}) {
    const Vec<T> x = noise<T>(n, false), z = noise<T>(n, true);
    const auto part = [&](size_t offset) { return sum_of_blocks<T>(n, [&](size_t k) { return z[2 * k + offset]; }); };
    const T count = static_cast<T>(n), weight = n ? 1 / count : T(0);
    Vec<T> result;
    sum(x, result.get());
    EXPECT_TRUE(exactly(result, {sum_of_blocks<T>(n, [&](size_t k) { return x[k]; })})) << n;
    sum(z, result.get());
    EXPECT_TRUE(exactly(result, {part(0), part(1)})) << n;
    mean(z, result.get());
    EXPECT_TRUE(exactly(result, {part(0) * weight, part(1) * weight})) << n;
    const T squares = sum_of_blocks<T>(n, [&](size_t k) { return z[2 * k] * z[2 * k] + z[2 * k + 1] * z[2 * k + 1]; });
    magsq_sum(z, result.get());
    EXPECT_TRUE(exactly(result, {squares})) << n;
    rms(z, result.get());
    EXPECT_TRUE(exactly(result, {n ? std::sqrt(squares / count) : T(0)})) << n;
    hmean(x, result.get());
    EXPECT_TRUE(exactly(result, {n ? count / sum_of_blocks<T>(n, [&](size_t k) { return 1 / x[k]; }) : T(0)})) << n;
    if (n == 0) continue;
    const T center = (x[n / 2] + x[0] + x[n - 1]) * T(0.3333333333333333);
    const T s1 = sum_of_blocks<T>(n, [&](size_t k) { return x[k] - center; });
    const T s2 = sum_of_blocks<T>(n, [&](size_t k) { return (x[k] - center) * (x[k] - center); });
    pop_var(x, result.get());
    EXPECT_TRUE(exactly(result, {s2 * weight - s1 * weight * (s1 * weight)})) << n;
  }
}

TYPED_TEST(Statistics, OnlyTheSumOfSquaresClamps) {
  using T = TypeParam;
  Vec<T> result;
  sum(Vec<T>{kInf<T>, 1}, result.get());
  EXPECT_TRUE(exactly(result, {kInf<T>}));
  sum(Vec<T>::pairs({{kNaN<T>, 1}, {1, 2}}), result.get());
  EXPECT_TRUE(exactly(result, {kNaN<T>, 3}));
  for (T outside : {kInf<T>, -kInf<T>, kNaN<T>, -2 * kHuge<T>}) {
    magsq_sum(Vec<T>{outside, 2}, result.get());
    EXPECT_TRUE(exactly(result, {kHuge<T> * kHuge<T> + 4})) << outside;
    rms(Vec<T>::pairs({{outside, 0}}), result.get());
    EXPECT_TRUE(exactly(result, {std::sqrt(kHuge<T> * kHuge<T>)})) << outside;
  }
}

TYPED_TEST(Statistics, OfNothingTheResultIsStated) {
  using T = TypeParam;
  for (const Row<T>& row : kStatistics<T>) {
    for (int32_t points : {0, -3}) {
      Vec<T> none, result{7, 7, 7};
      none->points = points;
      EXPECT_EQ(row.of(none, result), 0) << row.name;
      EXPECT_TRUE(exactly(result, {row.of_nothing})) << row.name;
      none->complex = 1;
      EXPECT_EQ(row.of(none, result), row.takes_complex ? 0 : -1) << row.name;
      EXPECT_TRUE(exactly(result, row.keeps_form ? std::vector<T>{0, 0} : std::vector<T>{row.of_nothing})) << row.name;
    }
  }
}

TYPED_TEST(Statistics, OfOneRecordOrSharedStorageEqualTheSeparateResult) {
  using T = TypeParam;
  for (const Row<T>& row : kStatistics<T>) {
    for (bool complex : {false, true}) {
      if (complex && !row.takes_complex) continue;
      const Vec<T> input = noise<T>(5, complex);
      Vec<T> result, itself(input), owner(input), view, reader;
      result->delta = itself->delta = view->delta = owner->delta = T(0.25);
      EXPECT_EQ(row.of(input, result), 0) << row.name;
      EXPECT_TRUE(exactly(input, noise<T>(5, complex).samples())) << row.name;
      EXPECT_EQ(result->complex, complex && row.keeps_form) << row.name;

      EXPECT_EQ(row.of(itself, itself), 0) << row.name;
      EXPECT_TRUE(exactly(itself, result.samples())) << row.name;

      std::vector<T> storage = input.samples();  // a view that is input and result: it gets a block of its own
      view->data = storage.data();
      view->points = 5;
      view->complex = complex;
      EXPECT_EQ(row.of(view, view), 0) << row.name;
      EXPECT_TRUE(exactly(view, result.samples())) << row.name;
      EXPECT_EQ(storage, input.samples()) << row.name;

      reader->data = owner->data;
      reader->points = 5;
      reader->complex = complex;
      EXPECT_EQ(row.of(reader, owner), 0) << row.name;
      EXPECT_TRUE(exactly(owner, result.samples())) << row.name;
      for (const Vec<T>* v : {&result, &itself, &view, &owner}) EXPECT_EQ((*v)->delta, T(0.25)) << row.name;
    }
  }
}

}  // namespace
}  // namespace sigvex_test
