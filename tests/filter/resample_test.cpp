#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test::resample_test {

TWINS(c, rsmp_cos, rsmp_pcos);
TWIN(d, rsmp2);
constexpr Twin built_in{&dspc_rsmp, &dspfc_rsmp};
constexpr Twin resample{&dspd_rsmp, &dspfd_rsmp};

constexpr uint8_t kNearest = 0, kLinear = 1;

SUITE_OF_BOTH(Resampling);

template <class T> Vec<T> blank(size_t n, bool complex = false) {
  return complex ? Vec<T>(std::vector<std::complex<T>>(n, {5, 5})) : Vec<T>(std::vector<T>(n, 5));
}

// The kernel of a set in the length that the resampler takes it in.
template <class T> Vec<T> kernel_of(uint32_t set) {
  constexpr size_t kPoints[] = {8194, 13314, 2050, 10242, 13314};
  Vec<T> kernel = blank<T>(kPoints[set]);
  EXPECT_EQ(built_in(kernel, set), 0);
  return kernel;
}

TEST_BOTH(Resampling, KernelsTabulateOnePeriodOfTheirSeries) {
  Vec<T> c{3, T(0.5), T(-1.25), T(2), T(0.75)};
  for (const size_t n : {1, 2, 4, 6, 200, 5000}) {
    for (const bool complex : {false, true}) {
      const size_t width = complex ? 2 : 1;
      Vec<T> cosines = blank<T>(n, complex), powers = cosines;
      EXPECT_EQ(rsmp_cos(cosines, c) | rsmp_pcos(powers, c), 0);
      std::vector<long double> series(n * width), polynomial(n * width);
      series[0] = polynomial[0] = 3;
      for (size_t k = 1; k < n; ++k) {
        const long double theta = n == 2 ? 0 : kPi * (2.0L * static_cast<long double>(k) - n) / (n - 2.0L);
        const long double u = std::cos(theta);
        series[k * width] = 0.5L - 1.25L * u + 2 * std::cos(2 * theta) + 0.75L * std::cos(3 * theta);
        polynomial[k * width] = 0.5L + u * (-1.25L + u * (2 + u * 0.75L));
        EXPECT_EQ(cosines[width * k], cosines[width * (n - k)]);
      }
      // Rounding of the value, and n / 2 angles summed with half an ulp of pi each, times the steepest slope, below 8.
      const double error = 4 * kEps<T> + static_cast<double>(n) / 2 * 2 * kEps<double> * 8;
      EXPECT_TRUE(close(cosines, series, error, 1) && close(powers, polynomial, error, 1)) << n;
    }
  }
}

// Gain at m / K of the input's rate: K/2 times the m-th coefficient of the series, recovered from the table.
TEST_BOTH(Resampling, BuiltInKernelsHaveTheirDocumentedResponse) {
  const std::tuple<uint32_t, int, double> rows[] = {{0, 0, 1}, {1, 0, 0.97138},  {2, 0, 1},        {3, 0, 0.9992},
                                                    {4, 0, 1}, {2, 2, 0.355339}, {3, 3, 0.971329}, {4, 3, 11.929096}};
  for (const auto& [set, m, gain] : rows) {
    const Vec<T> kernel = kernel_of<T>(set);
    const int steps = kernel->points - 2, length = static_cast<int>(kernel[0]);
    double sum = 0;
    for (int k = 0; k < steps; ++k) sum += kernel[k + 1] * std::cos(2 * static_cast<double>(kPi) * m * k / steps);
    EXPECT_NEAR(std::abs(sum) * length / steps, gain, 6e-6 + 20 * kEps<T>) << set << ' ' << m;
  }
}

// Every output by the definition: the K points up to its position, weighted from the table.
template <class T> std::vector<double> defined(const Vec<T>& in, const Vec<T>& kernel, uint8_t mode, double ratio) {
  const int length = static_cast<int>(kernel[0] + T(0.5)), steps = kernel->points - 2;
  std::vector<double> result;
  for (size_t m = 0; static_cast<long double>(m) * ratio < in->points; ++m) {
    const long double position = static_cast<long double>(m) * ratio;
    const int newest = static_cast<int>(position);
    std::complex<long double> sum = 0;
    for (int k = 0; k < length && k <= newest; ++k) {
      const long double place = (position - newest + k) * steps / length;
      const size_t at = 1 + static_cast<size_t>(mode == kNearest ? place + 0.5L : place);
      const long double low = kernel[at], share = place - std::floor(place);
      sum += wide(in, newest - k) * (mode == kNearest || share == 0 ? low : low + share * (kernel[at + 1] - low));
    }
    result.push_back(static_cast<double>(sum.real()));
    if (in->complex) result.push_back(static_cast<double>(sum.imag()));
  }
  return result;
}

template <class T> void expect_definition(const char* target) {
  Vec<T> odd_steps = blank<T>(64), lone = blank<T>(2), c{T(6.7), T(0.5), T(0.25), T(-1)};  // 62 steps over 7 points
  EXPECT_EQ(rsmp_cos(odd_steps, c) | rsmp_cos(lone, c), 0);
  for (const Vec<T>& given : {odd_steps, lone, kernel_of<T>(2), kernel_of<T>(3), kernel_of<T>(4)}) {
    for (const double ratio : {0.91875, 1.0, 0.01237, 3.7183, 250.3}) {
      for (const unsigned row : {0U, 1U, 3U}) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << given->points << ' ' << ratio << ' ' << row);
        const uint8_t mode = row & 1;
        Vec<T> in = noise<T>(300, row & 2), kernel = given, out, same = in;
        in->delta = 3;
        EXPECT_EQ(resample(in, out, mode, kernel, ratio, nullptr), 0);
        // The weights, up to 10, err by an eps and by that of the place, at most 13314 / 2^53, times a slope below 4 a
        // step; 13 of them meet samples up to 5.
        EXPECT_TRUE(close(out, defined(in, kernel, mode, ratio), 13 * 5 * (40 * kEps<T> + 1e-11), 1));
        EXPECT_TRUE(out->delta == static_cast<T>(ratio * 3) && out->complex == in->complex);
        EXPECT_TRUE(exactly(in, same.samples()) && exactly(kernel, given.samples()));
        EXPECT_EQ(resample(same, same, mode, kernel, ratio, nullptr), 0);
        EXPECT_EQ(resample(in, kernel, mode, kernel, ratio, nullptr), 0);
        EXPECT_TRUE(exactly(same, out.samples()) && exactly(kernel, out.samples()));
      }
    }
  }
}

TEST_BOTH(Resampling, EveryModeAndKernelIsTheDefinition) { for_each_cpu_target(expect_definition<T>); }

TEST_BOTH(Resampling, BuiltInSetsAreTheirKernelsAndBlocksOfAnySizesGiveTheSameBits) {
  for_each_cpu_target([](const char* target) {
    for (uint32_t set = 0; set < 5; ++set) {
      const Vec<T> kernel = kernel_of<T>(set);
      const size_t length = static_cast<size_t>(kernel[0]);
      for (const double ratio : {0.91875, 2.7, 0.0313, 777.7}) {
        for (const unsigned row : {0U, 1U, 3U}) {
          SCOPED_TRACE(::testing::Message() << target << ' ' << set << ' ' << ratio << ' ' << row);
          const uint8_t mode = row & 1;
          Vec<T> in = noise<T>(2000, row & 2), by_kernel, state{0, 0, 0};
          in->delta = 2;
          EXPECT_EQ(resample(in, by_kernel, mode, kernel, ratio, state), 0);
          EXPECT_TRUE(state->complex == in->complex && state->delta == 2 &&
                      state.size() == (row & 2 ? 2 : 1) * (length + 2));
          EXPECT_TRUE(!(row & 2) || (state[1] == 0 && state[3] == 0));
          EXPECT_TRUE(exactly(cut(state, 3, length + 2), cut(in, 2001 - length, 2000).samples()));
          const Vec<T> whole = expect_same_in_blocks(in, 60, [&](Vec<T>& x, Vec<T>& y, Record<T>* of_blocks) {
            return rsmp2(x, y, mode, set, ratio, of_blocks);
          });
          EXPECT_TRUE(exactly(whole, by_kernel.samples()) && whole->points == int(std::ceil(2000 / ratio)));
        }
      }
    }
  });
}

TEST_BOTH(Resampling, RefusesWhatItCannotDo) {
  Vec<T> in{1, 2, 3}, pairs = noise<T>(3, true), kernel = kernel_of<T>(2), wide = blank<T>(6, true), one{3},
                      seven = blank<T>(7), kept{7, 8}, state{9};
  const auto run = [&](Vec<T>& x, uint8_t mode, Vec<T>& k, double ratio) {
    return resample(x, kept, mode, k, ratio, state);
  };
  for (const double ratio : {-1.0, -0.0, 0.0, std::nan(""), -HUGE_VAL}) {
    EXPECT_EQ(run(in, 1, kernel, ratio) & rsmp2(in, kept, kLinear, 2, ratio, state), -1) << ratio;
  }
  EXPECT_TRUE(run(in, 1, wide, 1) == -1 && run(in, 2, kernel, 1) == -1 && run(pairs, 0, kernel, 1) == -1);
  kernel[0] = T(0.25);
  EXPECT_TRUE(run(in, 1, kernel, 1) == -1);
  EXPECT_TRUE(rsmp_cos(seven, in) == -1 && rsmp_pcos(wide, pairs) == -1);
  for (const uint32_t set : {5U, UINT32_MAX}) {
    EXPECT_EQ(built_in(wide, set), -1);
    EXPECT_EQ(rsmp2(in, kept, kLinear, set, 1.0, state), -1);
  }
  EXPECT_TRUE(exactly(kept, {7, 8}) && exactly(state, {9}));
  kernel[0] = 2;
  state[0] = 0;
  for (const double ratio : {1e-9, 5e-324}) EXPECT_EQ(run(in, 1, kernel, ratio), -1) << ratio;  // 3e9 points and up
  EXPECT_TRUE(run(in, 2, one, 2) == 0 && exactly(kept, {1, 2, 3}));                             // no kernel: a copy
  EXPECT_TRUE(run(in, 1, kernel, 1e300) == 0 && kept->points == 1);
  std::fill_n(state->data, 3, kNaN<T>);  // a position that is none counts as 0
  EXPECT_TRUE(run(in, 1, kernel, 1) == 0 && kept->points == 3);
}

}  // namespace sigvex_test::resample_test
