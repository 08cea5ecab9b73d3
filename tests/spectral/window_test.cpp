#include <algorithm>
#include <functional>
#include <numeric>
#include <thread>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(i, window);
TWIN(i, window2);
TWIN(i, window_fir);
TWIN(i, window_cos);
TWIN(i, window_gauss);
TWIN(i, window_kaiser);
TWIN(i, window_sinc);
TWIN(i, window_tukey);
TWIN(i, swap_halves2);
TWIN(, free_internal);
TWIN(, lib_alloc);

constexpr uint32_t kPeakCentred = DSP_WINFLAG_PEAK | DSP_WINFLAG_CENTRED;
constexpr uint32_t kGiven = kPeakCentred | DSP_WINFLAG_PARAMETER;

template <class T> struct Window : ::testing::Test {};
TYPED_TEST_SUITE(Window, Precisions);

template <class T> Vec<T> ones(size_t n) { return Vec<T>(std::vector<T>(n, T(1))); }

template <class T> Vec<T> weights(size_t n, uint32_t type, uint32_t flags, T parameter = 0) {
  Vec<T> v = ones<T>(n);
  EXPECT_EQ(window2(v.get(), type, flags | DSP_WINFLAG_CENTRED, parameter), 0) << type << ' ' << flags;
  return v;
}

template <class T> double mean(const Vec<T>& v) {
  return std::accumulate(v->data, v->data + v.size(), 0.0) / static_cast<double>(v.size());
}
template <class T> double rms(const Vec<T>& v) {
  return std::sqrt(std::inner_product(v->data, v->data + v.size(), v->data, 0.0) / static_cast<double>(v.size()));
}

// Every weight against a closed form in long double, given as a function of the index.
template <class T, class F>::testing::AssertionResult follows(const Vec<T>& v, F form, double tolerance) {
  for (size_t j = 0; j < v.size(); ++j) {
    const double expected = static_cast<double>(form(static_cast<long double>(j)));
    if (!(std::abs(static_cast<double>(v[j]) - expected) <= tolerance)) {
      return ::testing::AssertionFailure() << "weight " << j << " is " << ::testing::PrintToString(v[j])
                                           << ", expected " << ::testing::PrintToString(expected);
    }
  }
  return ::testing::AssertionSuccess();
}

using Form = std::function<long double(long double distance, long double n)>;
long double cosines(std::initializer_list<long double> a, long double d, long double n) {
  long double w = 0, k = 0;
  for (const long double coefficient : a) w += coefficient * std::cos(2 * kPi * k++ * d / n);
  return w;
}
long double kaiser(long double beta, long double t) {
  return std::cyl_bessel_i(0.0L, beta * std::sqrt(std::max(0.0L, 1 - t * t))) / std::cyl_bessel_i(0.0L, beta);
}
long double tukey(long double f, long double t) { return t <= 1 - f ? 1 : (std::cos(kPi * (t - (1 - f)) / f) + 1) / 2; }

struct Classical {
  uint32_t type;
  Form form;
};
const Classical kClassical[] = {
    {DSP_WINDOW_HANN,
     [](auto d, auto n) {
       return cosines({0.5L, 0.5L}, d, n);
     }},
    {DSP_WINDOW_HAMMING,
     [](auto d, auto n) {
       return cosines({0.54L, 0.46L}, d, n);
     }},
    {DSP_WINDOW_BLACKMAN,
     [](auto d, auto n) {
       return cosines({0.42L, 0.5L, 0.08L}, d, n);
     }},
    {DSP_WINDOW_NUTTALL,
     [](auto d, auto n) {
       return cosines({0.3635819L, 0.4891775L, 0.1365995L, 0.0106411L}, d, n);
     }},
    {DSP_WINDOW_KAISER70, [](auto d, auto n) { return kaiser(9.473960131326246L, 2 * d / n); }},
    {DSP_WINDOW_KAISER120, [](auto d, auto n) { return kaiser(15.73795091271457L, 2 * d / n); }},
    {DSP_WINDOW_GAUSS60, [](auto d, auto n) { return std::exp(-0.5L * std::pow(d / (0.1583722L * n), 2.0L)); }},
    {DSP_WINDOW_GAUSS73, [](auto d, auto n) { return std::exp(-0.5L * std::pow(7.16L * d / n, 2.0L)); }},
    {DSP_WINDOW_SINC_LOBE,
     [](auto d, auto n) { return d == 0 ? 1.0L : std::sin(2 * kPi * d / n) / (2 * kPi * d / n); }},
    {DSP_WINDOW_SQRT_HANN, [](auto d, auto n) { return std::cos(kPi * d / n); }},
    {DSP_WINDOW_TUKEY25, [](auto d, auto n) { return tukey(0.25L, 2 * d / n); }},
    {DSP_WINDOW_TRIANGULAR, [](auto d, auto n) { return 1 - d / std::floor((n + 1) / 2); }},
};

// The tolerance is the rounding of a sum of a few terms; the triangle accumulates half an ulp in each of 1024 steps.
template <class T> double tolerance(uint32_t type) {
  return type == DSP_WINDOW_TRIANGULAR ? kEps<T> + 1024 * kEps<double> : std::max<double>(kEps<T>, 32 * kEps<double>);
}

TYPED_TEST(Window, FollowsTheClosedForms) {
  using T = TypeParam;
  for (const Classical& row : kClassical) {
    const bool on_sample = row.type == DSP_WINDOW_TUKEY25 || row.type == DSP_WINDOW_TRIANGULAR;
    for (const size_t n : {1, 2, 3, 8, 33, 1000, 1001, 5000, 5001, 65536}) {
      const auto length = static_cast<long double>(n);
      const long double centre = on_sample ? std::floor(length / 2) : length / 2, middle = (length - 1) / 2;
      EXPECT_TRUE(follows(
          weights<T>(n, row.type, DSP_WINFLAG_PEAK),
          [&](long double j) { return row.form(std::abs(j - centre), length); }, tolerance<T>(row.type)))
          << row.type << ' ' << n;
      Vec<T> fir = ones<T>(n);
      EXPECT_EQ(window_fir(fir.get(), row.type, uint32_t{DSP_WINFLAG_PEAK}, T(0)), 0);
      EXPECT_TRUE(follows(
          fir, [&](long double j) { return row.form(std::abs(j - middle), length); }, tolerance<T>(row.type)))
          << "symmetric " << row.type << ' ' << n;
    }
  }
}

TYPED_TEST(Window, EveryTypeIsNormalisedAndSymmetric) {
  using T = TypeParam;
  for (uint32_t type = 0; type < 32; ++type) {
    const bool flat_top = type >= DSP_WINDOW_FLAT4 && type <= DSP_WINDOW_P601;
    for (const size_t n : {16, 100, 101, 4096}) {
      const double tolerance = 2 * kEps<T> + 1e-12;  // rounding of the weights, and coefficients printed to 14 digits
      const auto at = ::testing::Message() << type << ' ' << n;
      EXPECT_NEAR(mean(weights<T>(n, type, DSP_WINFLAG_MEAN)), 1, flat_top ? 6e-4 : tolerance) << at;
      EXPECT_NEAR(rms(weights<T>(n, type, DSP_WINFLAG_RMS)), 1, flat_top ? 6e-4 : tolerance) << at;
      const Vec<T> w = weights<T>(n, type, DSP_WINFLAG_PEAK);
      const bool shifted = n % 2 == 1 && (type == DSP_WINDOW_TRIANGULAR || type == DSP_WINDOW_TUKEY25);
      for (size_t j = shifted ? 0 : 1; j < n; ++j) ASSERT_EQ(w[j], w[(shifted ? n - 1 : n) - j]) << at << ' ' << j;
      EXPECT_EQ(*std::max_element(w->data, w->data + n), w[n / 2]) << at;
      if (n % 2 == 0) {
        EXPECT_NEAR(w[n / 2], 1, kEps<T> + 1e-9) << at;
      }
    }
  }
  EXPECT_EQ(weights<T>(1, DSP_WINDOW_COS_LOBE, DSP_WINFLAG_MEAN)[0], 1);  // the one point lies on the lobe's edge
}

TYPED_TEST(Window, RotatesOnceUnlessToldNotTo) {
  using T = TypeParam;
  Vec<T> four = ones<T>(4);
  four->delta = T(0.25);
  EXPECT_EQ(window2(four.get(), uint32_t{DSP_WINDOW_HANN}, kPeakCentred, T(0)), 0);
  EXPECT_TRUE(exactly(four, {0, T(0.5), 1, T(0.5)}));
  EXPECT_EQ(four->delta, T(0.25));
  for (uint32_t type = 1; type < 32; ++type) {
    for (const uint32_t alternative : {0U, type == DSP_WINDOW_TUKEY25 ? uint32_t{DSP_WINFLAG_ALTERNATIVE} : 0U}) {
      for (const size_t n : {4, 5}) {
        Vec<T> expected = weights<T>(n, type, alternative), rotated = ones<T>(n);
        swap_halves2(expected.get());
        EXPECT_EQ(window(rotated.get(), type, alternative | DSP_WINFLAG_ROTATE), 0);
        EXPECT_TRUE(exactly(rotated, expected.samples())) << type;
      }
    }
  }
}

TYPED_TEST(Window, UniformLeavesTheSamplesAndRotatesOnRequest) {
  using T = TypeParam;
  const std::vector<T> samples{1, kNaN<T>, T(-0.0), kInf<T>, 5};
  for (const uint32_t flags : {0, 1, 2, 4, 32}) {
    Vec<T> v(samples);
    EXPECT_EQ(window(v.get(), uint32_t{DSP_WINDOW_UNIFORM}, flags), 0);
    EXPECT_TRUE(exactly(v, samples)) << flags;
  }
  Vec<T> v(samples);
  EXPECT_EQ(window(v.get(), uint32_t{DSP_WINDOW_NONE}, uint32_t{DSP_WINFLAG_ROTATE | DSP_WINFLAG_CENTRED}), 0);
  EXPECT_TRUE(exactly(v, {T(-0.0), kInf<T>, 5, 1, kNaN<T>}));
  EXPECT_EQ(window_fir(v.get(), uint32_t{DSP_WINDOW_UNIFORM}, uint32_t{DSP_WINFLAG_ROTATE}, T(0)), 0);
  EXPECT_TRUE(exactly(v, {T(-0.0), kInf<T>, 5, 1, kNaN<T>}));
}

TYPED_TEST(Window, ComplexPointsTakeOneRealWeight) {
  using T = TypeParam;
  Vec<T> v = Vec<T>::pairs({{1, 1}, {2, kInf<T>}, {3, -4}, {kNaN<T>, 8}});
  EXPECT_EQ(window2(v.get(), uint32_t{DSP_WINDOW_HANN}, kPeakCentred, T(0)), 0);
  EXPECT_TRUE(exactly(v, {0, 0, 1, kInf<T>, 3, -4, kNaN<T>, 4}));
  EXPECT_EQ(v->complex, 1);
}

TYPED_TEST(Window, EmptyVectorsAreLeftAlone) {
  using T = TypeParam;
  for (uint32_t type = 0; type < 32; ++type) {
    for (const int32_t points : {0, -3}) {
      Vec<T> v;
      v->points = points;
      EXPECT_EQ(window(v.get(), type, 0U), 0);
      EXPECT_EQ(v->points, points);
      EXPECT_EQ(v->data, nullptr);
    }
  }
}

TYPED_TEST(Window, RefusalsLeaveTheVector) {
  using T = TypeParam;
  using R = Record<T>;
  constexpr uint32_t mean = 0, rms = 1, alternative = 4, given = 8;
  const auto two = [](uint32_t type, uint32_t flags, T parameter = 0) {
    return [=](R* v) { return window2(v, type, flags, parameter); };
  };
  constexpr double limit = kHuge<T> == T(1e100) ? 230.25850929940458 : 34.538776381388636;
  const auto beta = [](uint32_t flags, double b) {
    return [=](R* v) { return window_kaiser(v, flags, static_cast<T>(b)); };
  };
  const std::function<int32_t(R*)> refused[] = {
      two(DSP_WINDOW_HANN, 3),
      two(DSP_WINDOW_UNIFORM, 3),
      two(32, 0),
      two(UINT32_MAX, 0),
      two(DSP_WINDOW_TRIANGULAR, alternative),
      two(DSP_WINDOW_TRIANGULAR, given, 3),
      two(DSP_WINDOW_HANN, alternative),
      two(DSP_WINDOW_UNIFORM, given, 0),
      two(DSP_WINDOW_KAISER70, given, kNaN<T>),
      two(DSP_WINDOW_COS_LOBE, given, kInf<T>),
      two(DSP_WINDOW_GAUSS60, given, 0),
      two(DSP_WINDOW_TUKEY25, given, T(1.5)),
      two(DSP_WINDOW_HANN, given, T(0.25)),  // no sample inside, no mean
      [](R* v) { return window(v, DSP_WINDOW_HANN, DSP_WINFLAG_PARAMETER); },
      [](R* v) { return window_fir(v, DSP_WINDOW_HANN, DSP_WINFLAG_ALTERNATIVE, T(0)); },
      [](R* v) { return window_cos(v, DSP_WINFLAG_PARAMETER); },
      [](R* v) { return window_gauss(v, 0U, kNaN<T>); },
      [](R* v) { return window_sinc(v, 0U, T(0), T(1)); },
      [](R* v) { return window_sinc(v, 0U, T(1), kInf<T>); },
      [](R* v) { return window_tukey(v, 0U, T(-0.1)); },
      beta(given, 1),
      beta(mean, kNaN<double>),
      beta(mean, 2.001 * limit),
      beta(rms, -1.001 * limit),
  };
  for (size_t k = 0; k < std::size(refused); ++k) {
    Vec<T> v{1, 2, 3};
    EXPECT_EQ(refused[k](v.get()), -1) << k;
    EXPECT_TRUE(exactly(v, {1, 2, 3})) << k;
  }
  Vec<T> complex = Vec<T>::pairs({{1, 2}});
  EXPECT_EQ(window(complex.get(), uint32_t{DSP_WINDOW_BARTLETT}, 0U), -1);
  EXPECT_TRUE(exactly(complex, {1, 2}));
  EXPECT_EQ(window2(static_cast<R*>(nullptr), uint32_t{DSP_WINDOW_UNIFORM}, 0U, T(0)), -1);
  for (const double b : {2 * limit, -2 * limit}) {
    Vec<T> v = ones<T>(8);
    EXPECT_EQ(window_kaiser(v.get(), mean, static_cast<T>(b)), 0);
    EXPECT_NEAR(static_cast<double>(v[4]) / 8, 0.9, 0.1);  // so narrow that the peak holds nearly all of the mean
  }
}

TYPED_TEST(Window, ParameterReplacesTheFamilysOwnOrTheWidth) {
  using T = TypeParam;
  constexpr size_t n = 24;
  const auto check = [](const Vec<T>& w, auto form) {
    return follows(
        w, [&](long double j) { return form(std::abs(j - 12)); }, std::max<double>(kEps<T>, 32 * kEps<double>));
  };
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_GAUSS60, kGiven, T(0.25)),
                    [](long double d) { return std::exp(-0.5L * std::pow(d / 6, 2.0L)); }));
  EXPECT_TRUE(
      check(weights<T>(n, DSP_WINDOW_TUKEY25, kGiven, T(0.5)), [](long double d) { return tukey(0.5L, d / 12); }));
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_RIEMANN, kGiven, T(0.5)),
                    [](long double d) { return d == 0 ? 1 : std::sin(kPi * d / 6) / (kPi * d / 6); }));
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_KAISER70, kGiven, T(10)),
                    [](long double d) { return kaiser(9.473960131326246L, d / 5); }));
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_COS_LOBE, kGiven, T(9)),
                    [](long double d) { return d > 4.5L ? 0 : std::cos(kPi * d / 9); }));
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_HAMMING, kGiven, T(9)), [](long double d) {
    return d > 4.5L ? 0 : cosines({0.54L, 0.46L}, d, 9);
  }));
  EXPECT_TRUE(check(weights<T>(n, DSP_WINDOW_UNIFORM, kGiven, T(9)), [](long double d) { return d > 4.5L ? 0 : 1; }));
  for (const uint32_t type : {0, 2, 14, 20, 23, 24, 25}) {  // over the whole frame
    EXPECT_NEAR(mean(weights<T>(n, type, DSP_WINFLAG_PARAMETER, T(0.75))), 1, 2 * kEps<T>) << type;
    EXPECT_NEAR(rms(weights<T>(n, type, DSP_WINFLAG_PARAMETER | DSP_WINFLAG_RMS, T(0.75))), 1, 2 * kEps<T>) << type;
  }
}

TYPED_TEST(Window, FamiliesOfTheirOwnAreTheTypesWithoutRotation) {
  using T = TypeParam;
  struct Row {
    uint32_t type;
    T parameter;
    std::function<int32_t(Record<T>*, uint32_t)> family;
  };
  const Row rows[] = {
      {DSP_WINDOW_COS_LOBE, 0, [](auto* v, uint32_t flags) { return window_cos(v, flags); }},
      {DSP_WINDOW_GAUSS80, T(0.2), [](auto* v, uint32_t flags) { return window_gauss(v, flags, T(0.2)); }},
      {DSP_WINDOW_SINC_LOBE, 0, [](auto* v, uint32_t flags) { return window_sinc(v, flags, T(1), T(kPi)); }},
      {DSP_WINDOW_TUKEY25, T(0.75), [](auto* v, uint32_t flags) { return window_tukey(v, flags, T(0.75)); }},
      {DSP_WINDOW_KAISER89, 0, [](auto* v, uint32_t flags) { return window_kaiser(v, flags, T(11.9)); }}};
  for (const Row& row : rows) {
    for (const uint32_t mode : {0, 1, 2}) {
      for (const size_t n : {6, 7}) {
        Vec<T> v = ones<T>(n);
        EXPECT_EQ(row.family(v.get(), mode | DSP_WINFLAG_ROTATE), 0);
        const uint32_t given = row.parameter == 0 ? 0 : DSP_WINFLAG_PARAMETER;
        const Vec<T> expected = weights<T>(n, row.type, mode | given, row.parameter);
        EXPECT_TRUE(close(v, expected.samples(), 4 * kEps<T>, 1)) << row.type << ' ' << mode << ' ' << n;
      }
    }
    Vec<T> v = ones<T>(6), alternative = ones<T>(6);
    EXPECT_EQ(row.family(v.get(), 0), 0);
    const bool tukey_type = row.type == DSP_WINDOW_TUKEY25;
    EXPECT_EQ(row.family(alternative.get(), DSP_WINFLAG_ALTERNATIVE), tukey_type ? 0 : -1);
    EXPECT_TRUE(exactly(alternative, tukey_type ? v.samples() : ones<T>(6).samples()));
  }
}

template <class T> int allocations = 0;
template <class T> int32_t count_and_refuse(Record<T>* v) {
  ++allocations<T>;
  v->data = nullptr;
  return 0;
}

TYPED_TEST(Window, TheLastWindowIsKeptUntilItIsReleasedOrAnotherIsWanted) {
  using T = TypeParam;
  EXPECT_EQ(free_internal.template of<T>()(), 0);
  const Vec<T> first = weights<T>(64, DSP_WINDOW_GAUSS60, kGiven, T(0.25));
  const auto refuse = [](auto hook) { EXPECT_EQ(lib_alloc.template of<T>()(hook, nullptr), 0); };
  Vec<T> again = ones<T>(64);
  refuse(&count_and_refuse<T>);
  allocations<T> = 0;
  EXPECT_EQ(window2(again.get(), uint32_t{DSP_WINDOW_GAUSS60}, kGiven, T(0.25)), 0);
  EXPECT_EQ(allocations<T>, 0);
  EXPECT_TRUE(exactly(again, first.samples()));
  EXPECT_EQ(free_internal.template of<T>()(), 0);
  EXPECT_EQ(window2(again.get(), uint32_t{DSP_WINDOW_GAUSS60}, kGiven, T(0.25)), -1);
  EXPECT_EQ(allocations<T>, 1);
  EXPECT_TRUE(exactly(again, first.samples()));
  refuse(nullptr);

  // Neighbours in each part of the choice, in an order that would show one taken for another.
  struct Choice {
    size_t n;
    uint32_t type, flags;
    T parameter;
  };
  const Choice choices[] = {{64, DSP_WINDOW_GAUSS60, kGiven, T(0.25)},      {64, DSP_WINDOW_GAUSS60, kGiven, T(0.3)},
                            {64, DSP_WINDOW_TUKEY25, kGiven, T(0.3)},       {64, DSP_WINDOW_RIEMANN, kGiven, T(0.3)},
                            {64, DSP_WINDOW_RIEMANN, kPeakCentred, 0},      {63, DSP_WINDOW_RIEMANN, kPeakCentred, 0},
                            {63, DSP_WINDOW_HANN, kPeakCentred, 0},         {63, DSP_WINDOW_HAMMING, kPeakCentred, 0},
                            {63, DSP_WINDOW_HAMMING, kPeakCentred | 8, 63}, {63, DSP_WINDOW_HAMMING, 32, 0}};
  std::vector<Vec<T>> fresh;
  for (const Choice& c : choices) {
    fresh.push_back(weights<T>(c.n, c.type, c.flags, c.parameter));
    free_internal.template of<T>()();
  }
  for (size_t k = 0; k < std::size(choices); ++k) {
    const Choice& c = choices[k];
    EXPECT_TRUE(exactly(weights<T>(c.n, c.type, c.flags, c.parameter), fresh[k].samples())) << k;
    Vec<T> fir = ones<T>(c.n);
    EXPECT_EQ(window_fir(fir.get(), c.type, c.flags, c.parameter), 0);
    EXPECT_EQ(fir[0], fir[c.n - 1]) << k;
  }
}

TYPED_TEST(Window, ThreadsThatWantDifferentWindowsGetTheirOwn) {
  using T = TypeParam;
  ASSERT_EQ(dsp_lib_init(), 0);
  std::vector<std::thread> threads;
  for (const uint32_t type : {DSP_WINDOW_HANN, DSP_WINDOW_KAISER70, DSP_WINDOW_TRIANGULAR, DSP_WINDOW_TUKEY25}) {
    const Vec<T> expected = weights<T>(40, type, 0);
    threads.emplace_back([type, expected] {
      for (int round = 0; round < 50; ++round) {
        ASSERT_TRUE(exactly(weights<T>(40, type, 0), expected.samples())) << type;
        if (round % 8 == 0) free_internal.template of<T>()();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace sigvex_test
