// dsps_lin_regres dsps_lin_regres2
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "stats/blocks.h"

namespace sigvex::dsps {
namespace {

// P(|t| <= sqrt(nu) tan(angle)) for Student's t with nu degrees of freedom: the finite series 26.7.3 and 26.7.4 of
// Abramowitz and Stegun.
double within(double angle, int nu) {
  const double c = std::cos(angle), s = std::sin(angle);
  const bool odd = nu % 2 == 1;
  double sum = odd ? angle : 0, term = odd ? s * c : s;
  for (int k = odd ? 3 : 2; k <= nu; k += 2) {
    sum += term;
    term *= c * c * (k - 1) / k;
  }
  return odd ? sum * 2 / std::numbers::pi : sum;
}

// The bound that |t| keeps with probability 0.95. Many degrees of freedom: the expansion about the normal distribution,
// 26.7.5, whose next term is below 1e-15.
double student_bound(size_t nu) {
  if (nu > 1000) {
    constexpr double z = 1.9599639845400542, q = z * z;
    const double v = 1 / static_cast<double>(nu);
    constexpr double g1 = z * (q + 1) / 4, g2 = z * ((5 * q + 16) * q + 3) / 96;
    constexpr double g3 = z * (((3 * q + 19) * q + 17) * q - 15) / 384;
    constexpr double g4 = z * ((((79 * q + 776) * q + 1482) * q - 1920) * q - 945) / 92160;
    return z + v * (g1 + v * (g2 + v * (g3 + v * g4)));
  }
  double low = 0, high = std::numbers::pi / 2;
  for (int halvings = 0; halvings < 60; ++halvings) {
    const double angle = (low + high) / 2;
    (within(angle, static_cast<int>(nu)) < 0.95 ? low : high) = angle;
  }
  return std::sqrt(static_cast<double>(nu)) * std::tan(high);
}

// A ratio over a deviation of 0 is unbounded; nothing over nothing is 0.
double ratio(double numerator, double denominator, double huge) {
  if (denominator != 0) return numerator / denominator;
  return numerator == 0 ? 0 : std::copysign(huge, numerator);
}

// The mean of n values from their distances to the first, so that values all alike do not deviate at all. What its
// rounding leaves is taken out of the sums.
template <class F> double rough_mean(size_t n, F value) {
  const auto [sum] = block_sums<double, 1>(n, [&](size_t k) { return Sums<double, 1>{value(k) - value(0)}; });
  return value(0) + sum / static_cast<double>(n);
}

using Figures = std::array<double, 20>;

// In double for both precisions. x(k) and y(k) give the values of point k.
template <class X, class Y> Status fit(size_t points, X x, Y y, double huge, Figures& figures) {
  if (points < 2) return kFailure;
  const auto n = static_cast<double>(points);
  const double near_x = rough_mean(points, x), near_y = rough_mean(points, y);
  const auto [dx, dy, dxx, dyy, dxy] = block_sums<double, 5>(points, [&](size_t k) {
    const double u = x(k) - near_x, v = y(k) - near_y;
    return Sums<double, 5>{u, v, u * u, v * v, u * v};
  });
  const double sxx = dxx - dx * dx / n, syy = dyy - dy * dy / n, sxy = dxy - dx * dy / n;
  if (sxx == 0) return kFailure;
  const double mean_x = near_x + dx / n, mean_y = near_y + dy / n;
  const double slope = sxy / sxx, intercept = mean_y - slope * mean_x;
  const double correlation = std::clamp(ratio(sxy, std::sqrt(sxx) * std::sqrt(syy), 0), -1.0, 1.0);
  figures = {intercept, slope, huge, huge, correlation, correlation * correlation, huge};
  figures[10] = mean_x;
  figures[11] = mean_y;
  figures[12] = std::sqrt(sxx / (n - 1));
  figures[13] = std::sqrt(syy / (n - 1));
  figures[14] = sxy / (n - 1);
  figures[15] = figures[17] = -huge;
  figures[16] = figures[18] = huge;
  figures[19] = n;
  if (points == 2) return kSuccess;

  // The residuals themselves: the difference of the sums of squares would cancel for a good fit.
  const double offset = (dy - slope * dx) / n;
  const auto [residual] = block_sums<double, 1>(points, [&](size_t k) {
    const double e = (y(k) - near_y) - slope * (x(k) - near_x) - offset;
    return Sums<double, 1>{e * e};
  });
  const double variance = residual / (n - 2), deviation = std::sqrt(variance);
  const double error_slope = deviation / std::sqrt(sxx);
  const double error_intercept = deviation * std::sqrt(1 / n + mean_x * mean_x / sxx);
  const double bound = student_bound(points - 2);
  figures[2] = error_intercept;
  figures[3] = error_slope;
  figures[6] = deviation;
  figures[7] = ratio(intercept, error_intercept, huge);
  figures[8] = ratio(slope, error_slope, huge);
  figures[9] = ratio(slope * sxy, variance, huge);
  figures[15] = intercept - bound * error_intercept;
  figures[16] = intercept + bound * error_intercept;
  figures[17] = slope - bound * error_slope;
  figures[18] = slope + bound * error_slope;
  return kSuccess;
}

// The result may be x or y: everything is read before it is written.
template <class T> Status regress(const Vector<T>* x, const Vector<T>& y, Vector<T>& result, size_t wanted) {
  const size_t n = points<T>(y);
  if (y.complex || (x && (x->complex || points<T>(*x) != n))) return kFailure;
  const auto ordinate = [&y](size_t k) -> double { return y.data[k]; };
  Figures figures;
  if (x) {
    SIGVEX_TRY(fit(
        n, [x](size_t k) -> double { return x->data[k]; }, ordinate, Limits<T>::huge, figures));
  } else {
    const double delta = y.delta;
    const auto grid = [delta](size_t k) { return static_cast<double>(k) * delta; };
    SIGVEX_TRY(fit(n, grid, ordinate, Limits<T>::huge, figures));
  }
  SIGVEX_TRY(shape<T>(result, wanted, 0));
  std::transform(figures.begin(), figures.begin() + wanted, result.data, [](double f) { return static_cast<T>(f); });
  return kSuccess;
}

}  // namespace

template <class T> Status lin_regres(const Vector<T>* x, const Vector<T>& y, Vector<T>& result) {
  return regress<T>(x, y, result, 2);
}

template <class T> Status lin_regres2(const Vector<T>* x, const Vector<T>& y, Vector<T>& result) {
  return regress<T>(x, y, result, Figures{}.size());
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, lin_regres, 3)
SIGVEX_EXPORT(s, lin_regres2, 3)
