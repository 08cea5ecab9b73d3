#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(c, cexp);
TWIN(c, cos);
TWIN(c, line);
TWIN(c, rand);

template <class T> struct Generators : ::testing::Test {};
TYPED_TEST_SUITE(Generators, Precisions);

template <class T> Vec<T> blank(int32_t n, bool complex, T delta = 1) {
  Vec<T> v;
  v->points = n;
  v->complex = complex;
  v->delta = delta;
  return v;
}

// The oscillators' defining recurrence, one sample after the other.
template <class T> std::vector<T> phasors(int n, T delta, double frequency, double phase, int parts) {
  constexpr double pi = 3.141592653589793;
  const double spacing = delta, w = (pi * spacing + pi * spacing) * frequency;
  const T step_c = static_cast<T>(std::cos(w)), step_s = static_cast<T>(std::sin(w));
  std::vector<T> result;
  T c = 0, s = 0;
  for (int k = 0; k < n; ++k) {
    if (k % 256 == 0) {
      c = static_cast<T>(std::cos(k * w + phase));
      s = static_cast<T>(std::sin(k * w + phase));
    }
    result.push_back(c);
    if (parts == 2) result.push_back(s);
    const T turned = c * step_c - s * step_s;
    s = c * step_s + s * step_c;
    c = turned;
  }
  return result;
}

TYPED_TEST(Generators, OscillatorsTurnAndRestartExactly) {
  using T = TypeParam;
  for (const int n : {0, 1, 255, 256, 257, 1023, 1024, 1025, 2303}) {
    const T delta = T(0.01);
    Vec<T> real = blank<T>(n, false, delta), handed = blank<T>(n, false, delta);
    Vec<T> spread = blank<T>(n, true, delta), complex = blank<T>(n, true, delta);
    EXPECT_EQ(cos(real.get(), 3.7, 0.3) | cos(spread.get(), 3.7, 0.3), 0);
    EXPECT_EQ(cexp(complex.get(), 3.7, 0.3) | cexp(handed.get(), 3.7, 0.3), 0);
    const std::vector<T> expected = phasors<T>(n, delta, 3.7, 0.3, 1);
    std::vector<T> pairs;
    for (const T x : expected) pairs.insert(pairs.end(), {x, T(0)});
    EXPECT_TRUE(exactly(real, expected) && exactly(handed, expected) && exactly(spread, pairs)) << n;
    EXPECT_TRUE(exactly(complex, phasors<T>(n, delta, 3.7, 0.3, 2))) << n;
    EXPECT_EQ(spread->complex, 1);
    EXPECT_EQ(complex->delta, delta);
  }
}

TYPED_TEST(Generators, TheLineIsARunningSum) {
  using T = TypeParam;
  Vec<T> real = blank<T>(3000, false, T(0.1)), complex = blank<T>(3000, true, T(0.1));
  EXPECT_EQ(line(real.get(), 0.7, -2.0) | line(complex.get(), 0.7, -2.0), 0);
  T value = -2;
  for (size_t k = 0; k < 3000; ++k, value += static_cast<T>(0.7 * static_cast<double>(T(0.1)))) {
    ASSERT_EQ(real[k], value);
    ASSERT_EQ(complex.at(k), std::complex<T>(value, 0));
  }
}

// The mean of f over the samples from `first` on in steps, which are independent, lies within six standard errors of
// the expected one: all the checks of a run together fail by chance once in 10^7 runs.
template <class T, class F> void expect_mean(const Vec<T>& v, double expected, F f, size_t first = 0, size_t step = 1) {
  double sum = 0, squares = 0, n = 0;
  for (size_t k = first; k < v.size(); k += step, ++n) {
    sum += f(k);
    squares += f(k) * f(k);
  }
  EXPECT_NEAR(sum / n, expected, 6 * std::sqrt((squares / n - sum / n * (sum / n)) / n));
}

TYPED_TEST(Generators, NoiseHasTheMomentsAndTailsOfItsDistribution) {
  using T = TypeParam;
  struct Row {
    int32_t kind;
    bool complex;
    double mean, magnitude, square, above_one;  // of x, |x|, x^2, and the probability of x > 1
  };
  const double normal = std::sqrt(2 / M_PI), normal_tail = std::erfc(std::sqrt(0.5)) / 2, tail = std::exp(-1);
  for (const Row& row :
       {Row{DSP_RAND_UNIFORM, false, 0, 0.5, 1.0 / 3, 0}, Row{DSP_RAND_UNIFORM, true, 0, 4 / (3 * M_PI), 0.25, 0},
        Row{DSP_RAND_GAUSS, false, 0, normal, 1, normal_tail}, Row{DSP_RAND_GAUSS, true, 0, normal, 1, normal_tail},
        Row{DSP_RAND_EXPONENTIAL, false, 1, 1, 2, tail}, Row{DSP_RAND_LAPLACE, false, 0, 1, 2, tail / 2}}) {
    SCOPED_TRACE(::testing::Message() << row.kind << row.complex);
    Vec<T> v = blank<T>(200001, row.complex);
    ASSERT_EQ(rand(v.get(), row.kind), 0);
    const auto x = [&](size_t k) { return static_cast<double>(v[k]); };
    expect_mean(v, row.mean, x);
    expect_mean(v, row.magnitude, [&](size_t k) { return std::abs(x(k)); });
    expect_mean(v, row.square, [&](size_t k) { return x(k) * x(k); });
    expect_mean(v, row.above_one, [&](size_t k) { return x(k) > 1; });
    for (const size_t first : {1, 2}) {  // neighbours, of one point, pair or draw or not, are uncorrelated
      expect_mean(
          v, row.mean * row.mean, [&](size_t k) { return x(k) * x(k - 1); }, first, 2);
    }
    for (size_t k = 0; row.kind == DSP_RAND_UNIFORM && k < 200001; ++k) {
      ASSERT_TRUE(row.complex ? std::norm(v.at(k)) < 1 : v[k] >= -1 && v[k] < 1);
    }
  }
}

TYPED_TEST(Generators, RefusedKindsLeaveTheStorageSized) {
  using T = TypeParam;
  for (const int32_t kind : {-1, 0, 1, 2, 3, 4}) {
    for (const bool complex : {false, true}) {
      Vec<T> v = blank<T>(5, complex), none = blank<T>(-3, complex);
      const int32_t status = kind >= 0 && kind < (complex ? 2 : 4) ? 0 : -1;
      EXPECT_TRUE(rand(v.get(), kind) == status && rand(none.get(), kind) == status);
      EXPECT_TRUE(v->allocated == (complex ? 10 : 5) && v->points == 5 && v->complex == complex);
    }
  }
}

}  // namespace
}  // namespace sigvex_test
