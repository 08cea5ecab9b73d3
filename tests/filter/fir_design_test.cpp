#include "support/twin.h"

namespace sigvex_test::fir_design_test {

TWINS(c, fir, fir2);

SUITE_OF_BOTH(Design);

template <class T> Vec<T> designed(int32_t n, int32_t type, double p1, double p2 = 0, bool complex = false) {
  Vec<T> v = Vec<T>::over(nullptr, n, complex);
  EXPECT_EQ(fir(v, type, p1, p2), 0);
  return v;
}

// The response about the centre of the taps, by direct summation.
template <class T> std::complex<double> response(const Vec<T>& v, double frequency) {
  std::complex<double> sum = 0;
  for (int k = 0; k < v->points; ++k) {
    sum += static_cast<double>(v[k]) * std::polar(1.0, -2 * M_PI * frequency * (k - (v->points - 1) / 2.0));
  }
  return sum;
}

// The wanted gains: 1 up to 0.2, or from 0.1 to 0.3; not a number where they change.
double cut(double f) { return std::abs(f - 0.2) < 0.02 ? NAN : f < 0.2; }
double band(double f) { return std::abs(std::abs(f - 0.2) - 0.1) < 0.02 ? NAN : std::abs(f - 0.2) < 0.1; }

TEST_BOTH(Design, HasTheWantedResponse) {
  using C = std::complex<double>;
  using Row = std::tuple<int32_t, double, double, C (*)(double), double>;
  // The taps beyond M = 50 on a side that are missing leave ripples of up to 1 / (2 pi^2 M 0.02) = 0.05 times the step,
  // 0.02 away from it; the other edges add a little.
  constexpr double kRipple = 0.06;
  const Row rows[] = {
      {DSP_FIR_BAND_PASS, 0.2, 0.2, [](double f) -> C { return band(f); }, 2 * kRipple},
      {DSP_FIR_BAND_STOP, 0.2, 0.2, [](double f) -> C { return 1 - band(f); }, 2 * kRipple},
      {DSP_FIR_HIGH_PASS, 0.2, 9, [](double f) -> C { return 1 - cut(f); }, kRipple},
      {DSP_FIR_LOW_PASS, 0.2, 9, [](double f) -> C { return cut(f); }, kRipple},
      {DSP_FIR_DELAYED_LOW_PASS, 0.2, 0.3, [](double f) { return std::polar(cut(f), -0.6 * M_PI * f); }, 2 * kRipple},
      {DSP_FIR_DIFFERENTIATOR, 0.2, 9, [](double f) { return C(0, 2 * M_PI * f * cut(f)); }, 0.4 * M_PI * kRipple},
      {DSP_FIR_HILBERT, 0.2, 9, [](double f) { return C(0, f < 0.02 ? NAN : cut(f)); }, 2 * kRipple},
      {DSP_FIR_RAMP, 0.2, 9, [](double f) -> C { return 2 * f * cut(f); }, kRipple},
      {DSP_FIR_GAUSS, 0.05, 9, [](double f) -> C { return std::exp2(-f * f / 0.005); }, 1e-6}};  // taps to 7 s
  for (const auto& [type, p1, p2, wanted, ripple] : rows) {
    for (const int n : {100, 101}) {
      if (n == 100 && (type == DSP_FIR_BAND_STOP || type == DSP_FIR_HIGH_PASS)) continue;
      const Vec<T> v = designed<T>(n, type, p1, p2);
      for (double f = 0.001; f < 0.5; f += 0.007) {
        const double error = std::abs(response(v, f) - wanted(f));
        EXPECT_TRUE(std::isnan(error) || error < ripple) << type << ' ' << n << ' ' << f << ' ' << error;
      }
    }
  }
}

TEST_BOTH(Design, StaysExactAtTheLeastCutoffs) {
  EXPECT_TRUE(exactly(designed<T>(4, DSP_FIR_GAUSS, 0.0), std::vector<T>(4, T(0.25))));
  EXPECT_TRUE(close(designed<T>(3, DSP_FIR_HILBERT, 1e-12), std::vector{2e-24 * M_PI, 0.0, -2e-24 * M_PI}, 1e-6));
  EXPECT_TRUE(close(designed<T>(2, DSP_FIR_RAMP, 1e-12), std::vector{2e-24, 2e-24}, 1e-6));
}

// Asked for as p1; what the types 4 and 9 take, and the step that goes with it.
TEST_BOTH(Design, KernelsFollowTheirShape) {
  struct Row {
    int n;
    double p1, shape[2];
  };
  constexpr double q = M_PI / 2, slope = 1.610830415, base = 1.386795655;
  for (const Row& row :
       {Row{1, 0, {2 * q, slope + base}}, Row{3, 0, {6.321022275, 5.922377}}, Row{4, 0, {7.5194, 4 * slope + base}},
        Row{6, 0, {10.686, 6 * slope + base}}, Row{8, 0, {13.962, 8 * slope + base}},
        Row{10, 0, {10 * q + 1.4, 10 * slope + base}}, Row{15, 0, {16 * q, 15 * slope + base}},
        Row{1001, 0, {1002 * q, 1001 * slope + base}}, Row{9, 4, {4, 4}}, Row{12, -7, {-7, -7}}}) {
    for (const bool ratio : {false, true}) {
      const long double a = row.shape[ratio], step = (ratio ? 4 * std::hypot(a, kPi) : 4 * a) / (row.n + 1);
      std::vector<long double> expected;
      long double sum = 0;
      for (int k = 0; k < row.n; ++k) {
        const long double v = step * (k - (row.n - 1) / 2.0L), r = a * a - v * v / 4, s = std::sqrt(std::abs(r));
        sum += expected.emplace_back((r > 0 ? std::sinh(s) : std::sin(s)) / (ratio ? s : 1));
      }
      for (long double& tap : expected) tap /= sum;
      // The argument of the kernel errs by some roundings, which its slope, near the peak, multiplies by its size.
      const double error = 2 * static_cast<double>(kEps<T>) + 4 * std::abs(static_cast<double>(a)) * kEps<double>;
      const Vec<T> v = designed<T>(row.n, ratio ? DSP_FIR_SINH_RATIO : DSP_FIR_SINH, row.p1);
      EXPECT_TRUE(close(v, expected, error, 1)) << row.n;
    }
  }
}

TEST_BOTH(Design, RefusesAfterSizing) {
  for (const int n : {0, 4, 5}) {
    for (int32_t type = -1; type <= 11; ++type) {
      Vec<T> v = Vec<T>::over(nullptr, n, 1);
      const bool refused = type < 0 || type > 10 || ((type == 1 || type == 2) && n % 2 == 0);
      EXPECT_EQ(fir(v, type, 0.2, 0.1), refused ? -1 : 0) << n << ' ' << type;
      EXPECT_TRUE(v->points == n && v->allocated == 2 * n && v->complex == !refused) << n << ' ' << type;
      for (size_t k = 1; !refused && k < v.size(); k += 2) EXPECT_EQ(v[k], 0);
    }
  }
}

TEST_BOTH(Design, FixedSetsAreHalvesOfUnitGain) {
  constexpr int points[] = {12, 20, 5, 38, 61, 95};
  for (int32_t set = 99; set <= 106; ++set) {
    for (const bool complex : {false, true}) {
      Vec<T> v = designed<T>(3, DSP_FIR_LOW_PASS, 0.1, 0, complex);
      const bool known = set > 99 && set < 106;
      EXPECT_EQ(fir2(v, set), known ? 0 : -1);
      EXPECT_TRUE(v->points == (known ? points[set - 100] : 3) && v->complex == complex);
      const size_t width = complex ? 2 : 1, centre = v.size() - width;
      double sum = -static_cast<double>(v[centre]);
      for (size_t k = 0; known && k < v.size(); ++k) {
        sum += 2 * static_cast<double>(v[k]);
        EXPECT_EQ(v[k] == 0, k % width == 1 || (set == DSP_FIR_SET_75 && k != centre && k / width % 2 == 1)) << set;
      }
      EXPECT_TRUE(!known || std::abs(sum - 1) < 6e-4) << set << ' ' << sum;
    }
  }
}

}  // namespace sigvex_test::fir_design_test
