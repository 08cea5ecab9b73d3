// dsps_pop_var dsps_pop_stddev dsps_samp_var dsps_samp_stddev dsps_skew dsps_excess
//
// All sums are of deviations from a point near the data, so that a large offset does not cancel the digits away.
#include <algorithm>
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"
#include "stats/kernels.h"
#include "stats/operations.h"
#include "stats/result.h"

namespace sigvex::dsps {
namespace {

// The first, middle and last sample of part `part` in samples of `width` scalars; the shift point is their mean.
template <class T> T shift_sum(const T* x, size_t n, size_t width = 1, size_t part = 0) {
  return x[n / 2 * width + part] + x[part] + x[(n - 1) * width + part];
}

template <class T> T variance(const Vector<T>& v) {
  const size_t n = points<T>(v);
  if (n == 0) return 0;
  const T* const x = v.data;
  const StatsKernels<T>& kernels = stats_kernels<T>();
  const T third = static_cast<T>(0.3333333333333333), weight = T(1) / static_cast<T>(n);
  if (!v.complex) {
    const T center = shift_sum(x, n) * third;
    const auto [s1, s2] = sums<2, T>(kernels.deviations, x, n, {center, T(0)});
    const T m1 = s1 * weight;
    return s2 * weight - m1 * m1;
  }
  const Point<T> center{shift_sum(x, n, 2, 0) * third, shift_sum(x, n, 2, 1) * third};
  const auto [re1, im1, re2, im2] = sums<4, T>(kernels.deviations_of_points, x, n, center);
  const Point<T> m1{re1 * weight, im1 * weight};
  return re2 * weight + im2 * weight - m1.re * m1.re - m1.im * m1.im;
}

// n / (n - 1), which makes a population variance that of a sample; a single point has none to spare.
template <class T> T sample_factor(const Vector<T>& v) {
  const size_t n = points<T>(v);
  return n > 1 ? static_cast<T>(n) / static_cast<T>(n - 1) : T(1);
}

// Samples that are all alike do not deviate; a rounded center must not make it look as if they did.
template <class T> bool constant(const T* x, size_t n) {
  return std::all_of(x, x + n, [x](T sample) { return sample == x[0]; });
}

template <class T> T skewness(const T* x, size_t n) {
  if (constant(x, n)) return 0;
  const T center = shift_sum(x, n) / 3, count = static_cast<T>(n);
  const auto [s1, s2, s3] = sums<3, T>(stats_kernels<T>().cubed_deviations, x, n, {center, T(0)});
  const T m1 = s1 / count, m2 = s2 / count, m3 = s3 / count;
  const T numerator = m3 - 3 * m2 * m1 + 2 * m1 * m1 * m1;
  const T var = m2 - m1 * m1, denominator = var * std::sqrt(var);
  if (denominator == 0) return numerator == 0 ? T(0) : Limits<T>::huge;
  return numerator / denominator;
}

template <class T> T excess_kurtosis(const T* x, size_t n) {
  constexpr T kNone = -3;  // of no samples, and of samples without deviation
  if (constant(x, n)) return kNone;
  const StatsKernels<T>& kernels = stats_kernels<T>();
  const auto [total] = sums<1, T>(kernels.clamped, x, n);
  const T weight = T(1) / static_cast<T>(n), mean = total * weight;
  const auto [s2, s4] = sums<2, T>(kernels.fourth_powers, x, n, {mean, T(0)});
  const T var = s2 * weight, q = s4 * weight, var2 = var * var;
  if (var2 == 0) return q == 0 ? kNone : Limits<T>::huge;
  return q / var2 - 3;
}

}  // namespace

template <class T> Status pop_var(const Vector<T>& v, Vector<T>& result) {
  return write_real<T>(result, variance<T>(v));
}

template <class T> Status pop_stddev(const Vector<T>& v, Vector<T>& result) {
  return write_real<T>(result, std::sqrt(variance<T>(v)));
}

template <class T> Status samp_var(const Vector<T>& v, Vector<T>& result) {
  return write_real<T>(result, variance<T>(v) * sample_factor<T>(v));
}

template <class T> Status samp_stddev(const Vector<T>& v, Vector<T>& result) {
  return write_real<T>(result, std::sqrt(variance<T>(v) * sample_factor<T>(v)));
}

template <class T> Status skew(const Vector<T>& v, Vector<T>& result) {
  if (v.complex) return kFailure;
  return write_real<T>(result, skewness<T>(v.data, points<T>(v)));
}

template <class T> Status excess(const Vector<T>& v, Vector<T>& result) {
  if (v.complex) return kFailure;
  return write_real<T>(result, excess_kurtosis<T>(v.data, points<T>(v)));
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, pop_var, 2)
SIGVEX_EXPORT(s, pop_stddev, 2)
SIGVEX_EXPORT(s, samp_var, 2)
SIGVEX_EXPORT(s, samp_stddev, 2)
SIGVEX_EXPORT(s, skew, 2)
SIGVEX_EXPORT(s, excess, 2)
