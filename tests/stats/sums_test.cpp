// Sums, and what all statistics share: the block rule to the last bit, empty inputs, aliases, what stays untouched.
#include <algorithm>
#include <random>

#include "stats/statistics.h"

namespace sigvex_test {
namespace {

template <class T> struct Statistics : ::testing::Test {};
TYPED_TEST_SUITE(Statistics, Precisions);

template <class T> Vec<T> noise(size_t n, bool complex) {
  std::minstd_rand random(static_cast<unsigned>(n) + 1);
  std::uniform_real_distribution<T> uniform(T(-1), T(3));
  std::vector<std::complex<T>> samples(n);
  for (auto& z : samples) z = {uniform(random), uniform(random)};
  Vec<T> v(samples);
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
  for (size_t n : {1, 2, 3, 4, 5, 2047, 2048, 2049, 4095, 4096, 4097, 16 * 2048 + 17, 27 * 2048 - 1}) {
    const Vec<T> x = noise<T>(n, false), z = noise<T>(n, true);
    const auto blocks = [n](auto term) { return sum_of_blocks<T>(n, term); };
    const T count = static_cast<T>(n), weight = 1 / count,
            center = (x[n / 2] + x[0] + x[n - 1]) * T(0.3333333333333333);
    const T re = blocks([&](size_t k) { return z[2 * k]; }), im = blocks([&](size_t k) { return z[2 * k + 1]; });
    const T squares = blocks([&](size_t k) { return z[2 * k] * z[2 * k] + z[2 * k + 1] * z[2 * k + 1]; });
    const T m1 = weight * blocks([&](size_t k) { return x[k] - center; });
    const T m2 = weight * blocks([&](size_t k) { return (x[k] - center) * (x[k] - center); });
    EXPECT_TRUE(exactly(result_of<T>("sum", x), {blocks([&](size_t k) { return x[k]; })})) << n;
    EXPECT_TRUE(exactly(result_of<T>("sum", z), {re, im})) << n;
    EXPECT_TRUE(exactly(result_of<T>("mean", z), {re * weight, im * weight})) << n;
    EXPECT_TRUE(exactly(result_of<T>("hmean", x), {count / blocks([&](size_t k) { return 1 / x[k]; })})) << n;
    EXPECT_TRUE(exactly(result_of<T>("magsq_sum", z), {squares})) << n;
    EXPECT_TRUE(exactly(result_of<T>("rms", z), {std::sqrt(squares / count)})) << n;
    EXPECT_TRUE(exactly(result_of<T>("pop_var", x), {m2 - m1 * m1})) << n;
  }
}

TYPED_TEST(Statistics, OfNothingTheResultIsStated) {
  using T = TypeParam;
  for (const Statistic<T>& row : statistics<T>()) {
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
  for (const Statistic<T>& row : statistics<T>()) {
    for (int32_t complex : {0, 1}) {
      if (complex && !row.takes_complex) continue;
      const Vec<T> input = noise<T>(5, complex);
      Vec<T> result, itself(input), owner(input), reader(input), view(input);
      std::vector<T> storage = input.samples();
      Record<T> viewed = *view.get(), read = *owner.get();  // a view that is input and result; a reader of the result
      viewed.data = storage.data();
      viewed.allocated = read.allocated = 0;
      result->delta = itself->delta = viewed.delta = owner->delta = T(0.25);
      EXPECT_EQ(row.of(input, result), 0) << row.name;
      EXPECT_EQ(row.of(itself, itself), 0) << row.name;
      EXPECT_EQ(row.of(&viewed, &viewed), 0) << row.name;
      EXPECT_EQ(row.of(&read, owner), 0) << row.name;
      EXPECT_EQ(storage, noise<T>(5, complex).samples()) << row.name;
      EXPECT_EQ(input.samples(), storage) << row.name;
      std::swap(*view.get(), viewed);
      std::free(viewed.data);
      for (const Vec<T>* v : {&result, &itself, &view, &owner}) {
        EXPECT_TRUE(exactly(*v, result.samples())) << row.name;
        EXPECT_EQ((*v)->complex, complex && row.keeps_form) << row.name;
        EXPECT_EQ((*v)->delta, T(0.25)) << row.name;
      }
    }
  }
}

}  // namespace
}  // namespace sigvex_test
