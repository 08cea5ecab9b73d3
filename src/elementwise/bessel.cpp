// dspi_besi0 dspi_besj0 dspi_besj1 dspi_besy0 dspi_besy1, and what is not provided: dspi_erf dspi_erfc dspi_gamma
// dspi_lgamma
#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++

#include <array>
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/operations.h"

namespace sigvex {
namespace {

// 1 / (k!)^2, the power series of I0 in (x/2)^2.
constexpr auto kSeries = [] {
  std::array<double, 34> c{1};
  long double factorial = 1;
  for (size_t k = 1; k < c.size(); ++k) {
    factorial *= static_cast<long double>(k);
    c[k] = static_cast<double>(1 / (factorial * factorial));
  }
  return c;
}();

// ((2k-1)!!)^2 / k!, the asymptotic series of I0(x) sqrt(2 pi x) / exp(x) in 1/(8 x).
constexpr auto kAsymptotic = [] {
  std::array<double, 22> c{1};
  long double term = 1;
  for (size_t k = 1; k < c.size(); ++k) {
    const auto odd = static_cast<long double>(2 * k - 1);
    term *= odd * odd / static_cast<long double>(k);
    c[k] = static_cast<double>(term);
  }
  return c;
}();

template <size_t N> double horner(const std::array<double, N>& c, double x) {
  double sum = c[N - 1];
  for (size_t k = N - 1; k-- > 0;) sum = sum * x + c[k];
  return sum;
}

}  // namespace

// Both precisions compute in double: the coefficients of the power series leave the range of float.
template <class T> T bessel_i0(T x) {
  const double y = std::abs(static_cast<double>(x));
  if (y <= 20) return static_cast<T>(horner(kSeries, y / 2 * (y / 2)));
  return static_cast<T>(std::exp(y) / std::sqrt(2 * std::numbers::pi * y) * horner(kAsymptotic, 0.125 / y));
}
template double bessel_i0(double x);
template float bessel_i0(float x);

namespace dspi {
namespace {

// A sample through a double function of the C library. Its float functions are off by many units in the last place near
// the zeros; rounding the double result once is not.
template <double (*function)(double), class T> Status each_real(Vector<T>& v) {
  if (v.complex) return kFailure;
  return each_scalar<T>(v, [](T x) { return static_cast<T>(function(x)); });
}

}  // namespace

template <class T> Status besi0(Vector<T>& v) {
  if (v.complex) return kFailure;
  using L = Limits<T>;
  return each_scalar<T>(v, [](T x) { return std::abs(x) <= L::ln_huge ? bessel_i0(x) : L::huge; });
}

template <class T> Status besj0(Vector<T>& v) { return each_real<::j0, T>(v); }

template <class T> Status besj1(Vector<T>& v) { return each_real<::j1, T>(v); }

template <class T> Status besy0(Vector<T>& v) { return each_real<::y0, T>(v); }

template <class T> Status besy1(Vector<T>& v) { return each_real<::y1, T>(v); }

// The names that are not provided share one answer, whatever the record, a null one too.
template <class T> Status not_provided(Vector<T>*) { return kFailure; }

template <class T> Status erf(Vector<T>* v) { return not_provided<T>(v); }
template <class T> Status erfc(Vector<T>* v) { return not_provided<T>(v); }
template <class T> Status gamma(Vector<T>* v) { return not_provided<T>(v); }
template <class T> Status lgamma(Vector<T>* v) { return not_provided<T>(v); }

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, besi0, 1)
SIGVEX_EXPORT(i, besj0, 1)
SIGVEX_EXPORT(i, besj1, 1)
SIGVEX_EXPORT(i, besy0, 1)
SIGVEX_EXPORT(i, besy1, 1)
SIGVEX_EXPORT(i, erf, 1)
SIGVEX_EXPORT(i, erfc, 1)
SIGVEX_EXPORT(i, gamma, 1)
SIGVEX_EXPORT(i, lgamma, 1)
