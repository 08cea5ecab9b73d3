// The statistics of one result: the block rule to the last bit, accuracy, edges, empty inputs, aliases.
#include <array>
#include <random>
#include <string_view>

#include "support/cpu_targets.h"
#include "support/twin.h"

namespace sigvex_test::statistics_test {

template <class T> struct Statistic {
  const char* name;
  int32_t (*of)(const Record<T>*, Record<T>*);
  bool takes_complex = true, keeps_form = false;
  T of_nothing = 0;
};

#define OF_ITS_FORM(family, op) {TWIN_ROW(family, op), true, true},
#define REAL(family, op)        {TWIN_ROW(family, op)},
template <class T> const std::vector<Statistic<T>>& statistics() {
  static const std::vector<Statistic<T>> all = {
      {TWIN_ROW(s, skew), false},
      {TWIN_ROW(s, excess), false, false, -3},
      FOR_EACH(OF_ITS_FORM, s, sum, mean, gmean, hmean, max, min, median)
          FOR_EACH(REAL, s, magsq_sum, rms, pop_var, pop_stddev, samp_var, samp_stddev)};
  return all;
}

// What the statistic of that name gives.
template <class T> Vec<T> result_of(std::string_view name, const Vec<T>& input) {
  Vec<T> result;
  for (const Statistic<T>& statistic : statistics<T>()) {
    if (statistic.name != name) continue;
    EXPECT_EQ(statistic.of(input, result), 0) << name;
  }
  EXPECT_GT(result.size(), 0U) << name;
  return result;
}

SUITE_OF_BOTH(Statistics);

template <class T> Vec<T> noise(size_t n, bool complex) {
  std::minstd_rand random(static_cast<unsigned>(n) + 1);
  std::uniform_real_distribution<T> uniform(T(-1), T(3));
  std::vector<T> scalars(complex ? 2 * n : n);
  for (T& x : scalars) x = uniform(random);
  return {scalars, complex};
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

TEST_BOTH(Statistics, SumsRunInBlocksToTheLastBitOnEveryTarget) {
  for_each_cpu_target([](const char* target) {
    for (size_t n : {1, 2, 3, 4, 5, 2047, 2048, 2049, 4095, 4096, 4097, 16 * 2048 + 17, 27 * 2048 - 1}) {
      SCOPED_TRACE(target + std::to_string(n));
      const Vec<T> x = noise<T>(n, false), z = noise<T>(n, true);
      const auto blocks = [n](auto term) { return sum_of_blocks<T>(n, term); };
      const T count = static_cast<T>(n), weight = 1 / count, third = T(0.3333333333333333);
      const auto sum = [&](size_t part) { return blocks([&](size_t k) { return z[2 * k + part]; }); };
      const auto mean_square = [&](size_t part, int power) {  // of the deviations from the shift point, or their mean
        const T center = (z[n / 2 * 2 + part] + z[part] + z[2 * (n - 1) + part]) * third;
        const T mean = weight * blocks([&](size_t k) {
                         const T d = z[2 * k + part] - center;
                         return power == 1 ? d : d * d;
                       });
        return power == 1 ? mean * mean : mean;
      };
      const T squares = blocks([&](size_t k) { return z[2 * k] * z[2 * k] + z[2 * k + 1] * z[2 * k + 1]; });
      const T variance = mean_square(0, 2) + mean_square(1, 2) - mean_square(0, 1) - mean_square(1, 1);
      const T power = blocks([&](size_t k) { return x[k] * x[k]; });
      EXPECT_TRUE(exactly(result_of<T>("sum", x), {blocks([&](size_t k) { return x[k]; })}));
      EXPECT_TRUE(exactly(result_of<T>("sum", z), {sum(0), sum(1)}));
      EXPECT_TRUE(exactly(result_of<T>("mean", z), {sum(0) * weight, sum(1) * weight}));
      EXPECT_TRUE(exactly(result_of<T>("hmean", x), {count / blocks([&](size_t k) { return 1 / x[k]; })}));
      EXPECT_TRUE(exactly(result_of<T>("magsq_sum", z), {squares}));
      EXPECT_TRUE(exactly(result_of<T>("rms", x), {std::sqrt(power / count)}));
      EXPECT_TRUE(exactly(result_of<T>("pop_var", z), {variance}));
      const auto moment = [&](T center, int p) {
        return blocks([&](size_t k) {
          const T d = x[k] - center, square = d * d;
          return p == 1 ? d : p == 2 ? square : square * (p == 3 ? d : square);
        });
      };
      const T sum3 = x[n / 2] + x[0] + x[n - 1], near = sum3 * third,
              mean = weight * blocks([&](size_t k) { return x[k]; });
      const T m1 = moment(sum3 / 3, 1) / count, m2 = moment(sum3 / 3, 2) / count, m3 = moment(sum3 / 3, 3) / count;
      const T spread = m2 - m1 * m1, about_mean = weight * moment(mean, 2), s1 = weight * moment(near, 1);
      const T skew = (m3 - 3 * m2 * m1 + 2 * m1 * m1 * m1) / (spread * std::sqrt(spread));
      const T excess = weight * moment(mean, 4) / (about_mean * about_mean) - 3;
      EXPECT_TRUE(exactly(result_of<T>("pop_var", x), {weight * moment(near, 2) - s1 * s1}));
      EXPECT_TRUE(exactly(result_of<T>("skew", x), {n > 1 ? skew : 0}));
      EXPECT_TRUE(exactly(result_of<T>("excess", x), {n > 1 ? excess : -3}));
    }
  });
}

// Against the central moments in long double. With deviations of at most R from the shift point, the mean of their p-th
// powers is off by at most g R^p, g being epsilon times the longest chain of additions and some products; the factors
// count the means that enter. An offset costs nothing where it cancels before anything is squared. The excess is
// measured without one, as its deviations are from a rounded mean; R^2 / var bounds a kurtosis.
TEST_BOTH(Statistics, AgreeWithExtendedPrecisionWhateverTheOffset) {
  constexpr size_t n = 5000;
  for (T offset : {T(0), T(4096), T(-4096)}) {
    std::minstd_rand random(1);
    std::vector<T> x(2 * n);
    for (T& sample : x) sample = offset + std::exp2(static_cast<T>(random() % 1024) / 512);
    const auto moments = [&x](size_t first, size_t step) {
      long double mean = 0;
      std::array<long double, 5> m{};
      for (size_t k = 0; k < n; ++k) mean += x[first + step * k] / static_cast<long double>(n);
      for (size_t k = 0; k < n; ++k) {
        for (size_t p = 2; p <= 4; ++p) m[p] += std::pow(x[first + step * k] - mean, static_cast<int>(p)) / n;
      }
      return m;
    };
    const Vec<T> v({x.begin(), x.begin() + n}, false), z(x, true);
    const double g = (2048 + 3 + 8) * double{kEps<T>}, R = 3, sample = n / (n - 1.0);
    const auto m = moments(0, 1);
    const double var = static_cast<double>(m[2]), var_z = static_cast<double>(moments(0, 2)[2] + moments(1, 2)[2]);
    const double sigma = std::sqrt(var), skew = static_cast<double>(m[3]) / (var * sigma);
    EXPECT_NEAR(result_of("pop_var", v)[0], var, 3 * g * R * R);
    EXPECT_NEAR(result_of("pop_var", z)[0], var_z, 6 * g * R * R);
    EXPECT_NEAR(result_of("samp_var", v)[0], var * sample, 4 * g * R * R);
    EXPECT_NEAR(result_of("pop_stddev", v)[0], sigma, 3 * g * R * R / sigma);
    EXPECT_NEAR(result_of("samp_stddev", v)[0], sigma * std::sqrt(sample), 4 * g * R * R / sigma);
    EXPECT_NEAR(result_of("skew", v)[0], skew, g * (13 * R * R * R / (var * sigma) + 5 * R * R / var));
    if (offset != 0) continue;
    EXPECT_NEAR(result_of("excess", v)[0], static_cast<double>(m[4]) / (var * var) - 3, 16 * g * R * R / var);
  }
}

TEST_BOTH(Statistics, AtTheEdges) {
  constexpr T huge = kHuge<T>, inf = kInf<T>, nan = kNaN<T>, most = std::numeric_limits<T>::max();
  // Alone among 16 zeros its fourth power survives in the mean of fourth powers, but not in the squared variance.
  const T faint = std::ldexp(T(1), sizeof(T) == 8 ? -267 : -36);
  // Alone among 99 zeros it leaves a third moment of three denormals, and a variance whose power 1.5 is none.
  std::vector<T> lone(100);
  lone[7] = std::cbrt(300 * std::numeric_limits<T>::denorm_min());
  const T root4 = std::exp(std::log(T(1)) / 4), eighth = std::atan2(T(1), T(0)) / 2;
  const auto z = [](std::initializer_list<std::complex<T>> points) { return Vec<T>::pairs(points); };
  const struct {
    const char* name;
    Vec<T> input;
    std::vector<T> expected;
  } rows[] = {
      {"sum", {inf, 1}, {inf}},
      {"sum", z({{nan, 1}, {1, 2}}), {nan, 3}},
      {"magsq_sum", {nan, 2}, {huge * huge + 4}},
      {"magsq_sum", z({{1, inf}, {-2 * huge, 0}}), {1 + huge * huge + huge * huge}},
      {"rms", {-inf}, {std::sqrt(huge * huge)}},
      {"gmean", {2, -2}, {0}},
      {"gmean", {kTiny<T> / 2}, {0}},
      {"gmean", {kTiny<T>}, {std::exp(std::log(kTiny<T>))}},
      {"gmean", {most, most, 1 / most}, {inf}},  // the product, not a sum of logarithms
      {"gmean", {nan}, {0}},
      {"gmean", z({{0, 2}, {0, 0}}), {0, 0}},
      {"gmean", z({{nan, 2}, {0, 1}}), {0, 0}},
      {"gmean", z({{std::sqrt(kTiny<T>), 0}}), {std::exp(std::log(kTiny<T>) / 2), 0}},
      {"gmean", z({{2, 0}, {0, 0.5}}), {root4 * std::cos(eighth), root4 * std::sin(eighth)}},
      {"hmean", {1, 0, 2}, {0}},
      {"hmean", {nan, T(-0.0)}, {0}},
      {"hmean", {1, -1}, {huge}},
      {"hmean", z({{0, 1}, {0, -1}}), {0, T(-0.0)}},
      {"hmean", z({{0, 0.5}, {0, 0.25}, {0, 0.5}}), {0, T(3) / 8}},
      {"median", {3, 1, 2, 4}, {2.5}},
      {"median", {3, -1, 2}, {2}},
      {"median", {most, most}, {inf}},  // the sum is halved
      {"median", z({{3, 4}, {1, 0}, {0, 2}}), {0, 2}},
      {"median", z({{3, 4}, {1, 0}}), {2, 2}},
      {"max", {-2 * huge, -3 * huge}, {-huge}},
      {"max", {nan, -5, nan}, {-5}},
      {"max", {nan}, {-huge}},
      {"max", {T(-0.0), 0}, {T(-0.0)}},
      {"max", z({{3, 0}, {nan, 7}, {inf, 8}}), {nan, 7}},
      {"max", z({{inf, 0}, {huge, 0}}), {huge, 0}},  // rated huge^2 and only huge
      {"min", {2 * huge, inf}, {huge}},
      {"min", {nan, 5, -inf}, {-inf}},
      {"min", z({{huge, 0}, {nan, 1}, {inf, 2}}), {nan, 1}},
      {"min", z({{3, 0}, {0, -1}, {1, 0}}), {0, -1}},
      {"pop_var", {0, inf, 0, 0}, {huge * huge / 4 - huge / 4 * (huge / 4)}},
      {"pop_var", z({{nan, 1}, {0, 1}}), {0}},  // a shift point that is no number: all equally far
      {"samp_var", {T(0.1)}, {0}},
      {"skew", {0, 1, 0, 0}, {T(0.25 - 3.0 / 16 + 2.0 / 64) / (T(0.1875) * std::sqrt(T(0.1875)))}},
      {"skew", Vec<T>(std::vector<T>(49, T(0.1))), {0}},
      {"skew", Vec<T>(lone), {huge}},
      {"excess", Vec<T>(std::vector<T>(10, T(0.1))), {-3}},  // whose mean is not exactly 0.1
      {"excess", {1, -1, -1, 1}, {-2}},
      {"excess", {inf, -inf, huge, -huge}, {nan}},
      {"excess", {kTiny<T>, 0}, {-3}},
      {"excess", {0, 0, 0, 0, 0, faint, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {huge}},
  };
  for_each_cpu_target([&](const char* target) {
    for (const auto& row : rows) {
      EXPECT_TRUE(exactly(result_of(row.name, row.input), row.expected)) << row.name << &row - rows << target;
    }
  });
}

TEST_BOTH(Statistics, TheFirstOfEqualsWinsAcrossBlocks) {
  const T least = T(-0.0);
  for_each_cpu_target([&](const char* target) {
    for (size_t first : {0, 2047, 2048, 9000}) {
      Vec<T> v(std::vector<std::complex<T>>(17 * 2048 + 6)), x(std::vector<T>(9002, -1)), at, after;
      v[2 * first + 1] = v[2 * 9001] = v[2 * (11 * 2048 - 1)] = v[2 * (17 * 2048 + 5)] = 3;
      x[first] = least;
      x[9001] = 0;
      EXPECT_TRUE(exactly(result_of("max", v), {0, 3})) << first << target;
      EXPECT_TRUE(exactly(result_of("max", x), {least})) << first << target;
      EXPECT_EQ(TWIN_OF(s, peak)(x, at, 0, 0), 0);
      x[first + 1] = kNaN<T>;  // after which the search begins anew
      EXPECT_EQ(TWIN_OF(s, peak)(x, after, 0, 0), 0);
      EXPECT_TRUE(exactly(at, {least, static_cast<T>(first)})) << target;
      EXPECT_TRUE(exactly(after, {first == 9000 ? kNaN<T> : T(0), 9001})) << target;
    }
  });
}

// Spread out, all in one class, and with the two middle ones far apart.
TEST_BOTH(Statistics, TheMedianOfManyIsThatOfTheSorted) {
  for (const size_t n : {65535, 65536, 70001, 131072}) {
    Vec<T> spread = noise<T>(n, false), alike(std::vector<T>(n, T(-0.1))), apart(spread);
    for (size_t k = 0; k < n; ++k) apart[k] = k % 2 ? (2 * k < n ? T(3.1) : kInf<T>) : k % 64 ? T(-2.3) : kNaN<T>;
    for (const Vec<T>* v : {&spread, &alike, &apart}) {
      std::vector<T> sorted = v->samples();
      std::sort(sorted.begin(), sorted.end(), [](T a, T b) { return a < b || (std::isnan(a) && !std::isnan(b)); });
      const T middle = n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) * T(0.5);
      EXPECT_TRUE(exactly(result_of("median", *v), {middle})) << n;
    }
  }
}

TEST_BOTH(Statistics, OfNothingTheResultIsStated) {
  for (const Statistic<T>& row : statistics<T>()) {
    Vec<T> none, complex = Vec<T>::pairs({}), result{7, 7, 7};
    EXPECT_EQ(row.of(complex, result), row.takes_complex ? 0 : -1) << row.name;
    const std::vector<T> kept = {7, 7, 7}, pair = {0, 0}, one = {row.of_nothing};
    EXPECT_TRUE(exactly(result, !row.takes_complex ? kept : row.keeps_form ? pair : one)) << row.name;
    none->points = -3;  // counts as none
    EXPECT_EQ(row.of(none, result), 0) << row.name;
    EXPECT_TRUE(exactly(result, one)) << row.name;
  }
}

TEST_BOTH(Statistics, OfOneRecordOrSharedStorageEqualTheSeparateResult) {
  for (const Statistic<T>& row : statistics<T>()) {
    for (const bool complex : {false, true}) {
      if (complex && !row.takes_complex) continue;
      Vec<T> input = noise<T>(5, complex);
      input->complex *= 5;  // any number but 0 says complex; what a result gets is 1
      Vec<T> storage(input), result, itself(input), owner(input), reader = owner.view(), view = storage.view();
      result->delta = itself->delta = view->delta = owner->delta = T(0.25);
      EXPECT_EQ(row.of(input, result) + row.of(itself, itself) + row.of(view, view) + row.of(reader, owner), 0);
      EXPECT_TRUE(exactly(input, storage.samples()) && exactly(input, noise<T>(5, complex).samples())) << row.name;
      EXPECT_TRUE(result->complex == (complex && row.keeps_form) && result->delta == T(0.25)) << row.name;
      EXPECT_TRUE(same(itself, result) && same(view, result) && same(owner, result)) << row.name;
    }
  }
}

}  // namespace sigvex_test::statistics_test
