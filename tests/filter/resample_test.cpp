#include "filter/stream.h"
#include "support/cpu_targets.h"

namespace sigvex_test {
namespace {

TWIN(c, rsmp_cos);
TWIN(c, rsmp_pcos);
TWIN(d, rsmp2);
constexpr Twin built_in{&dspc_rsmp, &dspfc_rsmp};
constexpr Twin resample{&dspd_rsmp, &dspfd_rsmp};

constexpr uint8_t kNearest = 0, kLinear = 1;

template <class T> struct Resampling : ::testing::Test {};
TYPED_TEST_SUITE(Resampling, Precisions);

template <class T> Vec<T> blank(size_t n, bool complex = false) {
  return complex ? Vec<T>(std::vector<std::complex<T>>(n, {5, 5})) : Vec<T>(std::vector<T>(n, 5));
}

// The kernel of a set in the length that the resampler takes it in.
template <class T> Vec<T> kernel_of(uint32_t set) {
  constexpr size_t kPoints[] = {8194, 13314, 2050, 10242, 13314};
  Vec<T> kernel = blank<T>(kPoints[set]);
  EXPECT_EQ(built_in(kernel.get(), set), 0);
  return kernel;
}

TYPED_TEST(Resampling, KernelsTabulateOnePeriodOfTheirSeries) {
  using T = TypeParam;
  Vec<T> c{3, T(0.5), T(-1.25), T(2), T(0.75)};
  for (const size_t n : {2, 4, 6, 200, 5000}) {
    for (const bool complex : {false, true}) {
      Vec<T> cosines = blank<T>(n, complex), powers = cosines;
      cosines->delta = 7;
      EXPECT_EQ(rsmp_cos(cosines.get(), c.get()), 0);
      EXPECT_EQ(rsmp_pcos(powers.get(), c.get()), 0);
      std::vector<double> series, polynomial;
      for (size_t k = 0; k < n; ++k) {
        const long double theta = n == 2 ? 0 : kPi * (2.0L * static_cast<long double>(k) - n) / (n - 2.0L);
        const long double u = std::cos(theta);
        series.push_back(
            k == 0 ? 3 : static_cast<double>(0.5L - 1.25L * u + 2 * std::cos(2 * theta) + 0.75L * std::cos(3 * theta)));
        polynomial.push_back(k == 0 ? 3 : static_cast<double>(0.5L + u * (-1.25L + u * (2 + u * 0.75L))));
        if (complex) series.push_back(0), polynomial.push_back(0);
      }
      // Rounding of the value, and n / 2 angles summed with half an ulp of pi each, times the steepest slope, below 8.
      const double error = 4 * kEps<T> + static_cast<double>(n) / 2 * 2 * kEps<double> * 8;
      EXPECT_TRUE(close(cosines, series, error, 1)) << n;
      EXPECT_TRUE(close(powers, polynomial, error, 1)) << n;
      EXPECT_EQ(cosines->complex, complex);
      EXPECT_EQ(cosines->delta, T(7));
      for (size_t k = 1; k < n; ++k) EXPECT_EQ(cosines[complex ? 2 * k : k], cosines[complex ? 2 * (n - k) : n - k]);
    }
  }
}

TYPED_TEST(Resampling, KernelsWithoutRoomOrSeriesAreZero) {
  using T = TypeParam;
  Vec<T> c{3, 1, 2}, k_alone{4}, pairs = Vec<T>::pairs({{3, 1}, {2, 2}}), none;
  for (const auto make : {rsmp_cos.of<T>(), rsmp_pcos.of<T>()}) {
    Vec<T> one{9}, six = blank<T>(6, true), seven = blank<T>(7), self{3, 1, 2, 5};
    EXPECT_EQ(make(one, c), 0);
    EXPECT_TRUE(exactly(one, {3}));
    EXPECT_EQ(make(six, k_alone), 0);
    EXPECT_TRUE(exactly(six, {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(make(six, none), 0);
    EXPECT_TRUE(exactly(six, std::vector<T>(12)));
    EXPECT_EQ(make(none, c), 0);
    EXPECT_EQ(make(seven, c), -1);
    EXPECT_EQ(make(seven, k_alone), 0);
    EXPECT_EQ(make(six, pairs), -1);
    EXPECT_EQ(make(self, self), 0);
    EXPECT_EQ(self[0], T(3));
    EXPECT_EQ(self[2], T(8));
    EXPECT_EQ(make(nullptr, c), -1);
    EXPECT_EQ(make(six, nullptr), -1);
  }
  EXPECT_EQ(built_in(k_alone.get(), 5U), -1);
  EXPECT_EQ(built_in(k_alone.get(), UINT32_MAX), -1);
}

// Gain at m / K of the input's rate: K/2 times the m-th coefficient of the series, recovered from the table.
TYPED_TEST(Resampling, BuiltInKernelsHaveTheirDocumentedResponse) {
  using T = TypeParam;
  struct Row {
    uint32_t set;
    int m;
    double gain;
  };
  for (const Row& row : {Row{0, 0, 1},
                         {1, 0, 0.97138},
                         {2, 0, 1},
                         {3, 0, 0.9992},
                         {4, 0, 1},
                         {2, 2, 0.355339},
                         {3, 3, 0.971329},
                         {4, 3, 11.929096}}) {
    const Vec<T> kernel = kernel_of<T>(row.set);
    const int steps = kernel->points - 2, length = static_cast<int>(kernel[0]);
    double sum = 0;
    for (int k = 1; k <= steps; ++k)
      sum += kernel[k] * std::cos(2 * static_cast<double>(kPi) * row.m * (k - 1) / steps);
    EXPECT_NEAR(std::abs(sum) * length / steps, row.gain, 6e-6 + 20 * kEps<T>) << row.set << ' ' << row.m;
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
      sum += value(in, newest - k) * (mode == kNearest || share == 0 ? low : low + share * (kernel[at + 1] - low));
    }
    result.push_back(static_cast<double>(sum.real()));
    if (in->complex) result.push_back(static_cast<double>(sum.imag()));
  }
  return result;
}

template <class T> void expect_definition(const char* target) {
  Vec<T> odd_steps = blank<T>(64), lone = blank<T>(2), c{T(6.7), T(0.5), T(0.25), T(-1)};  // 62 steps over 7 points
  EXPECT_EQ(rsmp_cos(odd_steps.get(), c.get()), 0);
  EXPECT_EQ(rsmp_cos(lone.get(), c.get()), 0);
  for (const Vec<T>& given : {odd_steps, lone, kernel_of<T>(2), kernel_of<T>(3), kernel_of<T>(4)}) {
    for (const double ratio : {0.91875, 1.0, 0.01237, 3.7183, 250.3}) {
      for (const unsigned row : {0U, 1U, 3U}) {
        SCOPED_TRACE(::testing::Message() << target << ' ' << given->points << ' ' << ratio << ' ' << row);
        const uint8_t mode = row & 1;
        Vec<T> in = noise<T>(300, row & 2), kernel = given, out;
        const Vec<T> before = in;
        in->delta = 3;
        Record<T>* const null = nullptr;
        EXPECT_EQ(resample(in.get(), out.get(), mode, kernel.get(), ratio, null), 0);
        // The weights, up to 10, err by an eps and by that of the place, at most 13314 / 2^53, times a slope below 4 a
        // step; 13 of them meet samples up to 5.
        EXPECT_TRUE(close(out, defined(in, kernel, mode, ratio), 13 * 5 * (40 * kEps<T> + 1e-11), 1));
        EXPECT_EQ(out->delta, static_cast<T>(ratio * 3));
        EXPECT_EQ(out->complex, in->complex);
        EXPECT_TRUE(exactly(in, before.samples()));
        EXPECT_TRUE(exactly(kernel, given.samples()));
      }
    }
  }
}

TYPED_TEST(Resampling, EveryModeAndKernelIsTheDefinition) { for_each_cpu_target(expect_definition<TypeParam>); }

// Set 3 passes a tenth of the rate with K/2 times its second coefficient, and has no image of it.
TYPED_TEST(Resampling, ASineComesOutDelayedByHalfTheKernel) {
  using T = TypeParam;
  const double ratio = 44100.0 / 48000, turn = 0.2 * static_cast<double>(kPi), gain = 5 * 0.200142671498;
  std::vector<T> samples;
  for (int k = 0; k < 2000; ++k) samples.push_back(static_cast<T>(std::sin(turn * k)));
  Vec<T> in(samples), out;
  for (const uint8_t mode : {kNearest, kLinear}) {
    EXPECT_EQ(rsmp2(in.get(), out.get(), mode, 3U, ratio, static_cast<Record<T>*>(nullptr)), 0);
    EXPECT_EQ(out->points, 2177);  // 2000 / ratio, rounded up
    // Half a step of the table off, or an eighth of its square; slope and curvature of the kernel below 1 and 2 a
    // sample.
    const double error = 10 * (mode == kNearest ? 0.5 / 1024 : 2 / (8.0 * 1024 * 1024)) + 100 * kEps<T>;
    for (int m = 12; m < 2177; ++m) EXPECT_NEAR(out[m], gain * std::sin(turn * (m * ratio - 5)), error) << m;
  }
}

TYPED_TEST(Resampling, BuiltInSetsAreTheirKernelsAndBlocksOfAnySizesGiveTheSameBits) {
  using T = TypeParam;
  for (uint32_t set = 0; set < 5; ++set) {
    Vec<T> kernel = kernel_of<T>(set);
    for (const double ratio : {0.91875, 1.0, 2.7, 0.0313, 777.7}) {
      for (const unsigned row : {0U, 1U, 3U}) {
        SCOPED_TRACE(::testing::Message() << set << ' ' << ratio << ' ' << row);
        Vec<T> in = noise<T>(2000, row & 2), whole, state;
        const uint8_t mode = row & 1;
        EXPECT_EQ(resample(in.get(), whole.get(), mode, kernel.get(), ratio, state.get()), 0);
        EXPECT_EQ(whole->points, static_cast<int>(std::ceil(2000 / ratio)));
        EXPECT_EQ(state->points, static_cast<int>(kernel[0]) + 2);
        EXPECT_TRUE(exactly(whole, in_blocks(in, 60, set, [&](Vec<T>& x, Vec<T>& y, Vec<T>& s) {
                              return rsmp2(x.get(), y.get(), mode, set, ratio, s.get());
                            })));
      }
    }
  }
}

TYPED_TEST(Resampling, NothingDriftsOverABillionSamples) {
  using T = TypeParam;
  for (const double off : {-0x1p-40, 0x1p-40}) {  // the millionth output stands a millionth of a sample off the end
    Vec<T> in(std::vector<T>(1'000'000)), piece(std::vector<T>(333'333)), out, state;
    size_t made = 0, left = 1'000'000'000;
    for (int k = 0; left > 0; ++k) {
      Vec<T>& block = k % 2 ? in : piece;
      block->points = static_cast<int32_t>(std::min<size_t>(left, k % 2 ? 1'000'000 : 333'333));
      left -= static_cast<size_t>(block->points);
      EXPECT_EQ(rsmp2(block.get(), out.get(), kLinear, 3U, 1000 + off, state.get()), 0);
      made += static_cast<size_t>(out->points);
    }
    EXPECT_EQ(made, off < 0 ? 1'000'001U : 1'000'000U);
    const double next = static_cast<double>(state[0]) + static_cast<double>(state[1]) + static_cast<double>(state[2]);
    EXPECT_EQ(next, off < 0 ? 1000 + 1'000'001 * off : 1'000'000 * off);
  }
}

TYPED_TEST(Resampling, RefusesWhatItCannotDo) {
  using T = TypeParam;
  Vec<T> in{1, 2, 3}, pairs = noise<T>(3, true), kernel = kernel_of<T>(2), wide = blank<T>(6, true), half = kernel,
                      nan = kernel;
  half[0] = T(0.25);
  nan[0] = kNaN<T>;
  Vec<T> kept{7, 8}, state{9};
  const auto run = [&](Vec<T>& x, uint8_t mode, Vec<T>& k, double ratio) {
    return resample(x.get(), kept.get(), mode, k.get(), ratio, state.get());
  };
  for (const double ratio : {-1.0, 0.0, -0.0, std::nan(""), -HUGE_VAL})
    EXPECT_EQ(run(in, 1, kernel, ratio), -1) << ratio;
  for (Vec<T>* const bad : {&wide, &half, &nan}) EXPECT_EQ(run(in, 1, *bad, 1), -1);
  EXPECT_EQ(run(in, 2, kernel, 1), -1);
  EXPECT_EQ(run(pairs, 0, kernel, 1), -1);
  for (const uint32_t set : {5U, UINT32_MAX})
    EXPECT_EQ(rsmp2(in.get(), kept.get(), kLinear, set, 1.0, state.get()), -1);
  EXPECT_EQ(rsmp2(pairs.get(), kept.get(), kNearest, 0U, 1.0, state.get()), -1);
  EXPECT_TRUE(exactly(kept, {7, 8}));
  EXPECT_TRUE(exactly(state, {9}));
  state[0] = 0;
  for (const double ratio : {1e-9, 1e-30, 5e-324})
    EXPECT_EQ(run(in, 1, kernel, ratio), -1) << ratio;  // 3e9 points and up
  EXPECT_EQ(kept->points, 0);
  Vec<T> one{3};
  EXPECT_EQ(run(in, 2, one, 2), 0);  // no kernel: a copy
  EXPECT_TRUE(exactly(kept, {1, 2, 3}));
  EXPECT_EQ(kept->delta, T(1));
  EXPECT_EQ(run(in, 1, kernel, 1e300), 0);
  EXPECT_EQ(kept->points, 1);
  for (T& x : {std::ref(state[0]), std::ref(state[1]), std::ref(state[2])}) x = kNaN<T>;
  EXPECT_EQ(run(in, 1, kernel, 1), 0);  // a position that is none counts as 0
  EXPECT_EQ(kept->points, 3);
}

TYPED_TEST(Resampling, TheOutputMayBeAnInputAndTheStateTakesTheInputsForm) {
  using T = TypeParam;
  const Vec<T> x = noise<T>(50, true), g = kernel_of<T>(2);
  Vec<T> in = x, kernel = g, expected, state{0, 0, 0, 4};
  in->delta = 2;
  EXPECT_EQ(resample(in.get(), expected.get(), kLinear, kernel.get(), 0.4, state.get()), 0);
  EXPECT_EQ(state->complex, 1);
  EXPECT_EQ(state->points, 10);
  EXPECT_EQ(state->delta, T(2));
  for (size_t k = 0; k < 7; ++k) EXPECT_EQ(state.at(3 + k), x.at(43 + k));
  Vec<T> fresh{0, 0, 0, 4};
  EXPECT_EQ(resample(in.get(), in.get(), kLinear, kernel.get(), 0.4, fresh.get()), 0);
  EXPECT_TRUE(exactly(in, expected.samples()));
  in = x;
  fresh = Vec<T>{0, 0, 0, 4};
  EXPECT_EQ(resample(in.get(), kernel.get(), kLinear, kernel.get(), 0.4, fresh.get()), 0);
  EXPECT_TRUE(exactly(kernel, expected.samples()));
}

}  // namespace
}  // namespace sigvex_test
