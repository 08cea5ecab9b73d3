#include <tuple>

#include "support/cpu_targets.h"
#include "support/twin.h"

namespace sigvex_test::generators_test {

TWIN(c, cexp);
TWIN(c, cos);
TWIN(c, line);
TWIN(c, rand);

SUITE_OF_BOTH(Generators);

// The oscillators' defining recurrence, one sample after the other.
template <class T> std::vector<std::complex<T>> phasors(int n, T delta, double frequency, double phase) {
  constexpr double pi = 3.141592653589793;
  const double spacing = delta, w = (pi * spacing + pi * spacing) * frequency;
  const T c = static_cast<T>(std::cos(w)), s = static_cast<T>(std::sin(w));
  std::vector<std::complex<T>> result;
  for (int k = 0; k < n; ++k) {
    const std::complex<T> p = k > 0 ? result.back() : std::complex<T>();
    if (k % 256 == 0) result.emplace_back(std::cos(k * w + phase), std::sin(k * w + phase));
    else result.emplace_back(p.real() * c - p.imag() * s, p.real() * s + p.imag() * c);
  }
  return result;
}

TEST_BOTH(Generators, OscillatorsTurnAndRestartExactlyOnEveryTarget) {
  for_each_cpu_target([](const char* target) {
    for (const int n : {0, 1, 255, 256, 257, 1023, 1024, 1025, 2303, 17000}) {
      const std::vector<std::complex<T>> expected = phasors<T>(n, T(0.01), 3.7, 0.3);
      for (const bool wide : {false, true}) {
        Vec<T> cosine = Vec<T>::over(nullptr, n, wide, T(0.01)), turning = Vec<T>::over(nullptr, n, wide, T(0.01));
        std::vector<T> real;
        for (const std::complex<T> p : expected) real.insert(real.end(), wide ? 2 : 1, p.real());
        for (size_t k = 1; wide && k < real.size(); k += 2) real[k] = 0;
        EXPECT_EQ(cos(cosine.get(), 3.7, 0.3) | cexp(turning.get(), 3.7, 0.3), 0);
        EXPECT_TRUE(exactly(cosine, real)) << n << target;
        EXPECT_TRUE(exactly(turning, wide ? Vec<T>(expected).samples() : real)) << n << target;
        EXPECT_TRUE(cosine->complex == wide && turning->complex == wide && turning->delta == T(0.01));
      }
    }
  });
}

TEST_BOTH(Generators, TheLineIsARunningSum) {
  Vec<T> real = Vec<T>::over(nullptr, 3000, false, T(0.1)), complex = Vec<T>::over(nullptr, 3000, true, T(0.1));
  EXPECT_EQ(line(real.get(), 0.7, -2.0) | line(complex.get(), 0.7, -2.0), 0);
  T value = -2;
  for (size_t k = 0; k < 3000; ++k, value += static_cast<T>(0.7 * static_cast<double>(T(0.1)))) {
    ASSERT_TRUE(real[k] == value && complex.at(k) == std::complex<T>(value, 0));
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

TEST_BOTH(Generators, NoiseHasTheMomentsAndTailsOfItsDistribution) {
  // The means of x, |x| and x^2, and the probability of x > 1.
  using Row = std::tuple<int32_t, bool, double, double, double, double>;
  const double normal = std::sqrt(2 / M_PI), normal_tail = std::erfc(std::sqrt(0.5)) / 2, tail = std::exp(-1);
  for (const auto& [kind, complex, mean, magnitude, square, above_one] :
       {Row{DSP_RAND_UNIFORM, false, 0, 0.5, 1.0 / 3, 0}, Row{DSP_RAND_UNIFORM, true, 0, 4 / (3 * M_PI), 0.25, 0},
        Row{DSP_RAND_GAUSS, false, 0, normal, 1, normal_tail}, Row{DSP_RAND_GAUSS, true, 0, normal, 1, normal_tail},
        Row{DSP_RAND_EXPONENTIAL, false, 1, 1, 2, tail}, Row{DSP_RAND_LAPLACE, false, 0, 1, 2, tail / 2}}) {
    SCOPED_TRACE(::testing::Message() << kind << complex);
    Vec<T> v = Vec<T>::over(nullptr, 200001, complex);
    ASSERT_EQ(rand(v.get(), kind), 0);
    const auto x = [&](size_t k) { return static_cast<double>(v[k]); };
    const auto neighbours = [&](size_t k) { return x(k) * x(k - 1); };  // of one point, pair or draw, or not
    expect_mean(v, mean, x);
    expect_mean(v, magnitude, [&](size_t k) { return std::abs(x(k)); });
    expect_mean(v, square, [&](size_t k) { return x(k) * x(k); });
    expect_mean(v, above_one, [&](size_t k) { return x(k) > 1; });
    for (const size_t first : {1, 2}) expect_mean(v, mean * mean, neighbours, first, 2);
    for (size_t k = 0; kind == DSP_RAND_UNIFORM && k < 200001; ++k) {
      ASSERT_TRUE(complex ? std::norm(v.at(k)) < 1 : v[k] >= -1 && v[k] < 1);
    }
  }
}

TEST_BOTH(Generators, RefusedKindsLeaveTheStorageSized) {
  for (const int32_t kind : {-1, 0, 1, 2, 3, 4}) {
    for (const bool complex : {false, true}) {
      Vec<T> v = Vec<T>::over(nullptr, 5, complex);
      EXPECT_EQ(rand(v.get(), kind), kind >= 0 && kind < (complex ? 2 : 4) ? 0 : -1);
      EXPECT_TRUE(v->allocated == (complex ? 10 : 5) && v->points == 5 && v->complex == complex);
    }
  }
}

}  // namespace sigvex_test::generators_test
