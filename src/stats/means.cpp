// dsps_mean dsps_rms dsps_gmean dsps_hmean dsps_median
#include <hwy/contrib/sort/vqsort.h>

#include <cmath>
#include <vector>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/operations.h"
#include "elementwise/sort_key.h"
#include "stats/kernels.h"
#include "stats/operations.h"
#include "stats/result.h"

namespace sigvex::dsps {

template <class T> Status mean(const Vector<T>& v, Vector<T>& result) {
  const size_t n = points<T>(v);  // before the sum: the result may be the input
  SIGVEX_TRY(sum<T>(v, result));
  if (n == 0) return kSuccess;
  const T weight = T(1) / static_cast<T>(n);
  return each_scalar<T>(result, [weight](T total) { return total * weight; });
}

template <class T> Status rms(const Vector<T>& v, Vector<T>& result) {
  const size_t n = points<T>(v);
  SIGVEX_TRY(magsq_sum<T>(v, result));
  if (n > 0) result.data[0] = std::sqrt(result.data[0] / static_cast<T>(n));
  return kSuccess;
}

namespace {

// The logarithm of one product, not a sum of logarithms: a product that leaves the number range decides the result.
template <class T> T geometric_mean(const T* x, size_t n) {
  T product = 1;
  for (size_t k = 0; k < n; ++k) product *= x[k];
  return n > 0 && product >= Limits<T>::tiny ? std::exp(std::log(product) / static_cast<T>(n)) : T(0);
}

template <class T> Point<T> geometric_mean_complex(const Vector<T>& v) {
  const size_t n = points<T>(v);
  Point<T> product{1, 0};
  for (size_t k = 0; k < n; ++k) {
    const Point<T> z = point<T>(v, k);
    product = {product.re * z.re - product.im * z.im, product.re * z.im + product.im * z.re};
  }
  const T m = magsq(product);
  if (n == 0 || !(m >= Limits<T>::tiny)) return {0, 0};
  const T magnitude = std::exp(std::log(m) / static_cast<T>(2 * n));
  const T angle = std::atan2(product.im, product.re) / static_cast<T>(n);
  return {magnitude * std::cos(angle), magnitude * std::sin(angle)};
}

// A zero is looked for beside the sum and not in it: infinite terms of both signs would end in NaN.
template <class T> T harmonic_mean(const T* x, size_t n) {
  const auto [total, zeros] = sums<2, T>(stats_kernels<T>().reciprocals, x, n);
  if (n == 0 || zeros > 0) return 0;
  return total == 0 ? Limits<T>::huge : static_cast<T>(n) / total;
}

template <class T> Point<T> harmonic_mean_complex(const Vector<T>& v) {
  const size_t n = points<T>(v);
  if (n == 0) return {0, 0};
  const auto [re, im] = sums<2, T>(stats_kernels<T>().reciprocal_points, v.data, n);
  const T m = magsq(Point<T>{re, im}), r = m > 0 ? 1 / m : Limits<T>::huge;
  return {r * re * static_cast<T>(n), -(r * im * static_cast<T>(n))};
}

}  // namespace

template <class T> Status gmean(const Vector<T>& v, Vector<T>& result) {
  if (v.complex) return write_point<T>(result, v.complex, geometric_mean_complex<T>(v));
  return write_point<T>(result, 0, {geometric_mean<T>(v.data, points<T>(v)), T(0)});
}

template <class T> Status hmean(const Vector<T>& v, Vector<T>& result) {
  if (v.complex) return write_point<T>(result, v.complex, harmonic_mean_complex<T>(v));
  return write_point<T>(result, 0, {harmonic_mean<T>(v.data, points<T>(v)), T(0)});
}

namespace {

// The middle of many samples without sorting all: their keys are counted by their upper half, or quarter, and only
// those that share it with the middle ones are sorted.
template <class T> T median_by_counting(const T* x, size_t n) {
  using Key = SortKey<T>;
  using Bits = typename Key::Bits;
  constexpr int kShift = 8 * sizeof(T) - 16;
  std::vector<uint32_t> counts(size_t{1} << 16);
  for (size_t k = 0; k < n; ++k) ++counts[Key::rank(x[k]) >> kShift];
  const size_t upper = n / 2, lower = n % 2 ? upper : upper - 1;
  size_t below = 0, first = 0;  // samples below the class of the lower middle one, and that class
  while (below + counts[first] <= lower) below += counts[first++];
  size_t end = below + counts[first], last = first;
  while (end <= upper) end += counts[++last];
  std::vector<Bits> middle(end - below + 1);  // one more, for what does not belong here
  size_t found = 0;
  for (size_t k = 0; k < n; ++k) {
    const Bits rank = Key::rank(x[k]), its_class = rank >> kShift;
    middle[found] = rank;
    found += static_cast<size_t>(its_class >= first) & static_cast<size_t>(its_class <= last);
  }
  hwy::Sorter()(middle.data(), found, hwy::SortAscending());
  const T low = Key::ranked(middle[lower - below]), high = Key::ranked(middle[upper - below]);
  return n % 2 ? high : (low + high) * T(0.5);
}

}  // namespace

template <class T> Status median(const Vector<T>& v, Vector<T>& result) {
  constexpr size_t kCountingPays = 1 << 16;
  const size_t n = points<T>(v), width = v.complex ? 2 : 1;
  if (!v.complex && n >= kCountingPays) return write_real<T>(result, median_by_counting<T>(v.data, n));
  Scratch<T> sorted;
  SIGVEX_TRY(dsp::copy<T>(sorted, v));
  SIGVEX_TRY(dspi::sort<T>(sorted));
  const auto middle = [&](size_t part) {
    const auto at = [&](size_t k) { return sorted.data[k * width + part]; };
    if (n == 0) return T(0);
    return n % 2 ? at(n / 2) : (at(n / 2 - 1) + at(n / 2)) * T(0.5);
  };
  return write_point<T>(result, v.complex, {middle(0), v.complex ? middle(1) : T(0)});
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, mean, 2)
SIGVEX_EXPORT(s, rms, 2)
SIGVEX_EXPORT(s, gmean, 2)
SIGVEX_EXPORT(s, hmean, 2)
SIGVEX_EXPORT(s, median, 2)
