// dspi_besi0 dspi_besj0 dspi_besj1 dspi_besy0 dspi_besy1, and what is not provided: dspi_erf dspi_erfc dspi_gamma
// dspi_lgamma
#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++

#include "core/exports.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"

namespace sigvex {

double bessel_i0(double x) { return math_kernels<double>().i0(x); }

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
  math_kernels<T>().i0_or_huge(v.data, v.data, points<T>(v));
  return kSuccess;
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
