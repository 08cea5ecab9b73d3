// I0, the modified Bessel function of the first kind and order 0.
#if defined(SIGVEX_ELEMENTWISE_BESSEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_BESSEL_INL_H
#undef SIGVEX_ELEMENTWISE_BESSEL_INL_H
#else
#define SIGVEX_ELEMENTWISE_BESSEL_INL_H
#endif

#include <algorithm>
#include <cmath>
#include <numbers>

#include "elementwise/exponential-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// Not fused: the same bits on every CPU.
template <size_t N> HWY_INLINE V<double> horner(const std::array<double, N>& c, V<double> x) {
  V<double> sum = set<double>(c[N - 1]);
  for (size_t k = N - 1; k-- > 0;) sum = sum * x + set<double>(c[k]);
  return sum;
}

// exp(y) / sqrt(2 pi y) times the asymptotic series in 1/(8 y), for y > 20.
HWY_INLINE V<double> i0_of_large(V<double> y) {
  const V<double> power = patch<double>(
      hn::Le(y, set<double>(kExpLimit<double>)), rounded(exponential<double>(y)),
      [](double at) { return std::exp(at); }, y);
  const V<double> root = hn::Sqrt(set<double>(2 * std::numbers::pi) * y);
  return power / root * horner(kI0Asymptotic, set<double>(0.125) / y);
}

// Up to 20 the power series in (x/2)^2. A vector goes only through the series that its samples need.
HWY_INLINE V<double> i0(V<double> x) {
  constexpr D<double> d;
  const V<double> y = hn::Abs(x), edge = set<double>(20), half = y * set<double>(0.5);
  const M<double> small = hn::Le(y, edge);
  if (hn::AllTrue(d, small)) return horner(kI0Series, half * half);
  const V<double> large = i0_of_large(hn::IfThenElse(small, edge, y));
  if (hn::AllFalse(d, small)) return large;
  return hn::IfThenElse(small, horner(kI0Series, half * half), large);
}

// Huge beyond the limit of the precision T, and for NaN.
template <class T> HWY_INLINE V<double> i0_or_huge(V<double> x) {
  const M<double> inside = hn::Le(hn::Abs(x), set<double>(Limits<T>::ln_huge));
  return hn::IfThenElse(inside, i0(hn::IfThenElseZero(inside, x)), set<double>(Limits<T>::huge));
}

// In double in either precision, for the sake of the coefficients, which leave the range of float, and of the zeros.
template <class F> HWY_INLINE void each_in_double(const double* x, double* y, size_t n, F f) {
  each_sample(x, y, n, f);
}
template <class F> HWY_INLINE void each_in_double(const float* x, float* y, size_t n, F f) {
  double block[256];
  for (size_t start = 0; start < n; start += std::size(block)) {
    const size_t count = std::min(n - start, std::size(block));
    std::copy_n(x + start, count, block);
    each_sample(block, block, count, f);
    std::transform(block, block + count, y + start, [](double at) { return static_cast<float>(at); });
  }
}

template <class T> void map_i0_or_huge(const T* x, T* y, size_t n) {
  each_in_double(x, y, n, [](V<double> at) HWY_ATTR { return i0_or_huge<T>(at); });
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
