#include <functional>
#include <numeric>

#include "support/failing_storage.h"

namespace sigvex_test::window_test {

TWINS(i, window, window2, window_fir, window_cos, window_gauss, window_kaiser, window_sinc, window_tukey, swap_halves2);
TWINS(, free_internal, window_scale, window2_scale, window_enbw, window2_enbw);

constexpr uint32_t kPeak = DSP_WINFLAG_PEAK, kRms = DSP_WINFLAG_RMS, kMean = DSP_WINFLAG_MEAN,
                   kAlternative = DSP_WINFLAG_ALTERNATIVE, kGiven = DSP_WINFLAG_PARAMETER, kRotate = DSP_WINFLAG_ROTATE,
                   kCentred = DSP_WINFLAG_CENTRED;

SUITE_OF_BOTH(Window);

template <class T> Vec<T> ones(size_t n) { return Vec<T>(std::vector<T>(n, T(1))); }

template <class T> Vec<T> weights(size_t n, uint32_t type, uint32_t flags, T parameter = 0) {
  Vec<T> v = ones<T>(n);
  EXPECT_EQ(window2(v, type, flags | kCentred, parameter), 0) << type << ' ' << flags;
  return v;
}

template <class T> double mean(const Vec<T>& v) {
  return std::accumulate(v->data, v->data + v.size(), 0.0) / static_cast<double>(v.size());
}
template <class T> double rms(const Vec<T>& v) {
  return std::sqrt(std::inner_product(v->data, v->data + v.size(), v->data, 0.0) / static_cast<double>(v.size()));
}

// These are tabulated for their ripple, and normalised to 6e-4 only.
constexpr bool flat_top(uint32_t type) { return type >= DSP_WINDOW_FLAT4 && type <= DSP_WINDOW_P601; }

using Real = long double;
template <class... A> Real cosines(Real d, Real n, A... coefficients) {
  Real w = 0, k = 0;
  ((w += coefficients * std::cos(2 * kPi * k++ * d / n)), ...);
  return w;
}
Real kaiser(Real beta, Real t) {
  return std::cyl_bessel_i(0.0L, beta * std::sqrt(std::max(0.0L, 1 - t * t))) / std::cyl_bessel_i(0.0L, beta);
}
Real gauss(Real t) { return std::exp(-t * t / 2); }
Real lobe(Real angle) { return angle == 0 ? 1 : std::sin(angle) / angle; }
Real tukey(Real f, Real t) { return t <= 1 - f ? 1 : (std::cos(kPi * (t - (1 - f)) / f) + 1) / 2; }

// The weight at a distance from the centre of n points; with a parameter, of 24 points.
struct ClosedForm {
  uint32_t type;
  Real (*form)(Real d, Real n);
  Real parameter = 0;
};
const ClosedForm kClosedForms[] = {
    {DSP_WINDOW_HANN, [](Real d, Real n) { return cosines(d, n, 0.5L, 0.5L); }},
    {DSP_WINDOW_HAMMING, [](Real d, Real n) { return cosines(d, n, 0.54L, 0.46L); }},
    {DSP_WINDOW_BLACKMAN, [](Real d, Real n) { return cosines(d, n, 0.42L, 0.5L, 0.08L); }},
    {DSP_WINDOW_NUTTALL, [](Real d, Real n) { return cosines(d, n, 0.3635819L, 0.4891775L, 0.1365995L, 0.0106411L); }},
    {DSP_WINDOW_KAISER70, [](Real d, Real n) { return kaiser(9.473960131326246L, 2 * d / n); }},
    {DSP_WINDOW_KAISER120, [](Real d, Real n) { return kaiser(15.73795091271457L, 2 * d / n); }},
    {DSP_WINDOW_GAUSS60, [](Real d, Real n) { return gauss(d / (0.1583722L * n)); }},
    {DSP_WINDOW_GAUSS73, [](Real d, Real n) { return gauss(7.16L * d / n); }},
    {DSP_WINDOW_SINC_LOBE, [](Real d, Real n) { return lobe(2 * kPi * d / n); }},
    {DSP_WINDOW_SQRT_HANN, [](Real d, Real n) { return std::cos(kPi * d / n); }},
    {DSP_WINDOW_TUKEY25, [](Real d, Real n) { return tukey(0.25L, 2 * d / n); }},
    {DSP_WINDOW_TRIANGULAR, [](Real d, Real n) { return 1 - d / std::floor((n + 1) / 2); }},
    {DSP_WINDOW_GAUSS60, [](Real d, Real n) { return gauss(d / (0.25L * n)); }, 0.25L},
    {DSP_WINDOW_TUKEY25, [](Real d, Real n) { return tukey(0.5L, 2 * d / n); }, 0.5L},
    {DSP_WINDOW_RIEMANN, [](Real d, Real n) { return lobe(2 * kPi * d / n / 0.5L); }, 0.5L},
    {DSP_WINDOW_KAISER70, [](Real d, Real) { return kaiser(9.473960131326246L, d / 5); }, 10},
    {DSP_WINDOW_COS_LOBE, [](Real d, Real) { return d > 4.5L ? 0 : std::cos(kPi * d / 9); }, 9},
    {DSP_WINDOW_HAMMING, [](Real d, Real) { return d > 4.5L ? 0 : cosines(d, 9, 0.54L, 0.46L); }, 9},
    {DSP_WINDOW_UNIFORM, [](Real d, Real) { return d > 4.5L ? 0.0L : 1.0L; }, 9},
};

TEST_BOTH(Window, FollowsTheClosedForms) {
  for (const ClosedForm& row : kClosedForms) {
    const bool triangular = row.type == DSP_WINDOW_TRIANGULAR, on_sample = triangular || row.type == DSP_WINDOW_TUKEY25;
    // The rounding of a sum of a few terms; the triangle accumulates half an ulp in each of 1024 steps.
    const double tolerance = triangular ? kEps<T> + 1024 * kEps<double> : std::max<double>(kEps<T>, 32 * kEps<double>);
    const T parameter = static_cast<T>(row.parameter);
    const uint32_t flags = kPeak | (row.parameter != 0 ? kGiven : 0);
    for (const size_t n : {1, 2, 3, 8, 24, 33, 1000, 1001, 5000, 5001, 65536}) {
      if (row.parameter != 0 && n != 24) continue;
      const auto length = static_cast<Real>(n);
      const auto follows = [&](const Vec<T>& v, Real centre) {
        std::vector<Real> expected;
        for (size_t j = 0; j < n; ++j) expected.push_back(row.form(std::abs(static_cast<Real>(j) - centre), length));
        EXPECT_TRUE(close(v, expected, tolerance, 1)) << row.type << ' ' << n << ' ' << centre;
      };
      follows(weights<T>(n, row.type, flags, parameter), on_sample ? std::floor(length / 2) : length / 2);
      Vec<T> symmetric = ones<T>(n);
      EXPECT_EQ(window_fir(symmetric, row.type, flags, parameter), 0);
      follows(symmetric, (length - 1) / 2);
    }
  }
}

TEST_BOTH(Window, EveryTypeIsNormalisedAndSymmetric) {
  for (uint32_t type = 0; type < 32; ++type) {
    for (const size_t n : {16, 100, 101, 4096}) {
      // Rounding of the weights, and coefficients printed to 14 digits.
      const double tolerance = flat_top(type) ? 6e-4 : 2 * kEps<T> + 1e-12;
      const auto at = ::testing::Message() << type << ' ' << n;
      EXPECT_NEAR(mean(weights<T>(n, type, kMean)), 1, tolerance) << at;
      EXPECT_NEAR(rms(weights<T>(n, type, kRms)), 1, tolerance) << at;
      const Vec<T> w = weights<T>(n, type, kPeak);
      const bool shifted = n % 2 == 1 && (type == DSP_WINDOW_TRIANGULAR || type == DSP_WINDOW_TUKEY25);
      for (size_t j = shifted ? 0 : 1; j < n; ++j) ASSERT_EQ(w[j], w[(shifted ? n - 1 : n) - j]) << at << ' ' << j;
      EXPECT_EQ(*std::max_element(w->data, w->data + n), w[n / 2]) << at;
      EXPECT_NEAR(w[n / 2], 1, n % 2 == 0 ? kEps<T> + 1e-9 : 1) << at;
    }
  }
  EXPECT_EQ(weights<T>(1, DSP_WINDOW_COS_LOBE, kMean)[0], 1);  // the one point lies on the lobe's edge
  for (const uint32_t type : {0, 2, 14, 20, 23, 24, 25}) {     // with a parameter, over the whole frame
    EXPECT_NEAR(mean(weights<T>(24, type, kGiven, T(0.75))), 1, 2 * kEps<T>) << type;
    EXPECT_NEAR(rms(weights<T>(24, type, kGiven | kRms, T(0.75))), 1, 2 * kEps<T>) << type;
  }
}

TEST_BOTH(Window, RotationFormAndSamples) {
  for (uint32_t type = 1; type < 32; ++type) {
    for (const uint32_t flags : {0U, type == DSP_WINDOW_TUKEY25 ? kAlternative : kRms}) {
      for (const size_t n : {4, 5}) {
        Vec<T> expected = weights<T>(n, type, flags), rotated = ones<T>(n);
        swap_halves2(expected);
        EXPECT_EQ(window(rotated, type, flags | kRotate), 0);
        EXPECT_TRUE(exactly(rotated, expected.samples())) << type;
      }
    }
    Vec<T> none;
    none->points = -3;
    EXPECT_EQ(window(none, type, 0U), 0);
    EXPECT_EQ(none->points, -3);
  }
  const std::vector<T> samples{1, kNaN<T>, T(-0.0), kInf<T>, 5}, rotated{T(-0.0), kInf<T>, 5, 1, kNaN<T>};
  for (const uint32_t flags : {kMean, kRms, kPeak, kAlternative, kCentred, kRotate | kCentred}) {
    Vec<T> v(samples), fir(samples);
    EXPECT_EQ(window(v, uint32_t{DSP_WINDOW_UNIFORM}, flags), 0);
    EXPECT_TRUE(exactly(v, flags & kRotate ? rotated : samples)) << flags;
    EXPECT_EQ(window_fir(fir, uint32_t{DSP_WINDOW_UNIFORM}, kRotate, T(0)), 0);
    EXPECT_TRUE(exactly(fir, samples));
  }
  Vec<T> v = Vec<T>::pairs({{1, 1}, {2, kInf<T>}, {3, -4}, {kNaN<T>, 8}});  // both parts take one weight
  v->delta = T(0.25);
  EXPECT_EQ(window(v, uint32_t{DSP_WINDOW_TRIANGULAR}, kCentred), -1);  // for real samples alone
  EXPECT_EQ(window2(v, uint32_t{DSP_WINDOW_HANN}, kPeak | kCentred, T(0)), 0);
  EXPECT_TRUE(exactly(v, {0, 0, 1, kInf<T>, 3, -4, kNaN<T>, 4}));
  EXPECT_EQ(v->delta, T(0.25));
}

TEST_BOTH(Window, RefusalsLeaveTheVector) {
  constexpr T limit = static_cast<T>(kHuge<T> == T(1e100) ? 230.25850929940458 : 34.538776381388636);
  const std::vector<std::function<int32_t(Record<T>*)>> refused = {
      WITH(i, window2, DSP_WINDOW_HANN, 3, 0),
      WITH(i, window2, DSP_WINDOW_UNIFORM, 3, 0),
      WITH(i, window2, 32, 0, 0),
      WITH(i, window2, UINT32_MAX, 0, 0),
      WITH(i, window2, DSP_WINDOW_TRIANGULAR, kAlternative, 0),
      WITH(i, window2, DSP_WINDOW_TRIANGULAR, kGiven, 3),
      WITH(i, window2, DSP_WINDOW_HANN, kAlternative, 0),
      WITH(i, window2, DSP_WINDOW_UNIFORM, kGiven, 0),
      WITH(i, window2, DSP_WINDOW_KAISER70, kGiven, kNaN<T>),
      WITH(i, window2, DSP_WINDOW_COS_LOBE, kGiven, kInf<T>),
      WITH(i, window2, DSP_WINDOW_GAUSS60, kGiven, 0),
      WITH(i, window2, DSP_WINDOW_TUKEY25, kGiven, T(1.5)),
      WITH(i, window2, DSP_WINDOW_HANN, kGiven, T(0.25)),  // which holds no sample
      WITH(i, window, DSP_WINDOW_HANN, kGiven),
      WITH(i, window_cos, kGiven),
      WITH(i, window_fir, DSP_WINDOW_HANN, kAlternative, 0),
      WITH(i, window_gauss, kAlternative, 1),
      WITH(i, window_gauss, 0, kNaN<T>),
      WITH(i, window_sinc, 0, 0, 1),
      WITH(i, window_sinc, 0, 1, kInf<T>),
      WITH(i, window_tukey, 0, T(-0.1)),
      WITH(i, window_kaiser, kGiven, 1),
      WITH(i, window_kaiser, kMean, kNaN<T>),
      WITH(i, window_kaiser, kMean, T(2.001) * limit),
      WITH(i, window_kaiser, kRms, T(-1.001) * limit)};
  for (size_t k = 0; k < refused.size(); ++k) {
    Vec<T> v{1, 2, 3};
    EXPECT_EQ(refused[k](v), -1) << k;
    EXPECT_TRUE(exactly(v, {1, 2, 3})) << k;
  }
  for (const T beta : {2 * limit, -2 * limit}) {
    Vec<T> v = ones<T>(8);
    EXPECT_EQ(window_kaiser(v, kMean, beta), 0);
    EXPECT_NEAR(v[4] / 8, 0.9, 0.1);  // so narrow that the peak holds nearly all of the mean
  }
}

TEST_BOTH(Window, FamiliesOfTheirOwnAreTheTypesWithoutRotation) {
  const struct {
    uint32_t type, given;
    T parameter;
    int32_t (*family)(Record<T>*, uint32_t);
  } rows[] = {{DSP_WINDOW_COS_LOBE, 0, 0, TWIN_OF(i, window_cos)},
              {DSP_WINDOW_GAUSS80, kGiven, T(0.2), WITH(i, window_gauss, T(0.2))},
              {DSP_WINDOW_SINC_LOBE, 0, 0, WITH(i, window_sinc, 1, T(kPi))},
              {DSP_WINDOW_TUKEY25, kGiven, T(0.75), WITH(i, window_tukey, T(0.75))},
              {DSP_WINDOW_KAISER89, 0, 0, WITH(i, window_kaiser, T(11.9))}};
  for (const auto& row : rows) {
    for (const uint32_t mode : {kMean, kRms, kPeak}) {
      for (const size_t n : {6, 7}) {
        Vec<T> v = ones<T>(n);
        EXPECT_EQ(row.family(v, mode | kRotate), 0);
        const Vec<T> expected = weights<T>(n, row.type, mode | row.given, row.parameter);
        EXPECT_TRUE(close(v, expected.samples(), 4 * kEps<T>, 1)) << row.type << ' ' << mode << ' ' << n;
      }
    }
  }
}

// Neighbours in each part of the choice, in an order that would show one taken for another.
TEST_BOTH(Window, TheLastWindowIsKeptUntilItIsReleasedOrAnotherIsWanted) {
  const struct {
    size_t n;
    uint32_t type, flags;
    T parameter;
    // clang-format off
  } choices[] = {{64, DSP_WINDOW_GAUSS60, kPeak | kGiven, T(0.25)}, {64, DSP_WINDOW_GAUSS60, kPeak | kGiven, T(0.3)},
                 {64, DSP_WINDOW_TUKEY25, kPeak | kGiven, T(0.3)}, {64, DSP_WINDOW_RIEMANN, kPeak | kGiven, T(0.3)},
                 {64, DSP_WINDOW_RIEMANN, kPeak, 0}, {63, DSP_WINDOW_RIEMANN, kPeak, 0}, {63, DSP_WINDOW_HANN, kPeak, 0},
                 {63, DSP_WINDOW_HAMMING, kPeak, 0}, {63, DSP_WINDOW_HAMMING, kPeak | kGiven, 63},
                 {63, DSP_WINDOW_HAMMING, kMean, 0}};
  // clang-format on
  std::vector<Vec<T>> fresh;
  for (const auto& c : choices) {
    Vec<T> again = ones<T>(c.n);
    fresh.push_back(weights<T>(c.n, c.type, c.flags, c.parameter));
    const FailingStorage<T> counter(0);
    EXPECT_EQ(window2(again, c.type, c.flags | kCentred, c.parameter), 0);
    EXPECT_EQ(counter.growths, 0);
    EXPECT_EQ(free_internal.of<T>()(), 0);
    EXPECT_EQ(window2(again, c.type, c.flags | kCentred, c.parameter), -1);
    EXPECT_EQ(counter.growths, 1);
    EXPECT_TRUE(exactly(again, fresh.back().samples()));
  }
  const auto expect_fresh = [&](const auto& c) {
    EXPECT_TRUE(exactly(weights<T>(c.n, c.type, c.flags, c.parameter), fresh[&c - choices].samples())) << &c - choices;
  };
  for (const auto& c : choices) expect_fresh(c);
  for (const auto& c : choices) {
    expect_fresh(c);
    Vec<T> fir = ones<T>(c.n);
    EXPECT_EQ(window_fir(fir, c.type, c.flags, c.parameter), 0);
    EXPECT_EQ(fir[0], fir[c.n - 1]) << &c - choices;
  }
}

TEST_BOTH(Window, MetricsAreThoseOfTheWeights) {
  for (uint32_t type = 0; type < 32; ++type) {
    for (const uint32_t given : {0U, kGiven}) {
      if (given && type == DSP_WINDOW_TRIANGULAR) continue;
      for (const int32_t n : {64, 65, 5001}) {
        const bool width = type < DSP_WINDOW_GAUSS60 || (type >= DSP_WINDOW_COS_LOBE && type < DSP_WINDOW_GAUSS73);
        const T parameter = width ? T(40) : T(0.875);
        const Vec<T> peak = weights<T>(n, type, given | kPeak, parameter);
        const auto at = ::testing::Message() << type << ' ' << n << ' ' << given;
        for (const uint32_t mode : {kMean, kRms, kPeak}) {
          T scale = 0, plain = 0;
          EXPECT_EQ(window2_scale(&scale, type, given | mode, n, parameter), 0);
          const Vec<T> w = weights<T>(n, type, given | mode, parameter);
          // 1e-6: to that many digits the coefficients of each set are printed at the least.
          EXPECT_NEAR(w[n / 2], scale * peak[n / 2], scale * (8 * kEps<T> + (given ? 0 : 1e-6))) << at << ' ' << mode;
          EXPECT_EQ(window_scale(&plain, type, given | mode, n), given ? -1 : 0);
          EXPECT_EQ(plain, given ? 0 : scale);
        }
        T enbw = 0;
        EXPECT_EQ(given ? window2_enbw(&enbw, type, n, parameter) : window_enbw(&enbw, type, n), 0);
        const double summed = 8 * kEps<T> + 3 * n * kEps<double>;  // the sums of this test err by n roundings each
        const double coefficients = given ? 0 : flat_top(type) ? 1.2e-3 : 1e-6;
        EXPECT_NEAR(enbw, std::pow(rms(peak) / mean(peak), 2), enbw * (summed + coefficients)) << at;
      }
    }
  }
  constexpr uint32_t hann = DSP_WINDOW_HANN, triangle = DSP_WINDOW_TRIANGULAR, gauss = DSP_WINDOW_GAUSS60;
  for (const int32_t n : {-1, 0, 1, 4096}) {  // known for any length
    T mean = 0, rms = 0, enbw = 0, uniform = 0;
    EXPECT_EQ(window_scale(&mean, hann, kMean, n) | window_scale(&rms, hann, kRms, n), 0);
    EXPECT_EQ(window_enbw(&enbw, hann, n) | window_enbw(&uniform, uint32_t{DSP_WINDOW_UNIFORM}, n), 0);
    EXPECT_TRUE(mean == T(2) && rms == T(1.632993161855452) && uniform == T(1));
    EXPECT_NEAR(enbw, 1.5, 1.5 * (4 * kEps<double> + kEps<T> / 2));
  }
  T none = 7;
  const std::tuple<uint32_t, uint32_t, int32_t> refused[] = {{hann, 3, 8},   {hann, kGiven, 8}, {hann, kAlternative, 8},
                                                             {32, kPeak, 8}, {gauss, kMean, 0}, {triangle, kRms, -4}};
  for (const auto& [type, flags, n] : refused) EXPECT_EQ(window_scale(&none, type, flags, n), -1) << type << flags;
  EXPECT_EQ(window2_scale(&none, triangle, kGiven, 8, T(4)) & window2_scale(&none, gauss, kGiven, 8, kNaN<T>), -1);
  EXPECT_EQ(window_enbw(&none, 32U, 8) & window_enbw(&none, gauss, 0) & window2_enbw(&none, triangle, 8, T(4)), -1);
  EXPECT_EQ(none, T(7));
}

}  // namespace sigvex_test::window_test
