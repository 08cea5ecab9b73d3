// dspi_besi0 dspi_besj0 dspi_besj1 dspi_besy0 dspi_besy1, and what is not provided: dspi_erf dspi_erfc dspi_gamma
// dspi_lgamma
#include "core/exports.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex {

double bessel_i0(double x) { return math_kernels<double>().i0(x); }

namespace dspi {

template <class T> Status besi0(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().i0_or_huge); }
template <class T> Status besj0(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().j0); }
template <class T> Status besj1(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().j1); }
template <class T> Status besy0(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().y0); }
template <class T> Status besy1(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().y1); }

// All the names that are not provided are this function: it refuses every record, a null one too.
template <class T> Status erf(Vector<T>*) { return kFailure; }

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, besi0, 1)
SIGVEX_EXPORT(i, besj0, 1)
SIGVEX_EXPORT(i, besj1, 1)
SIGVEX_EXPORT(i, besy0, 1)
SIGVEX_EXPORT(i, besy1, 1)
SIGVEX_EXPORT_SHARED(i, erf, 1)
SIGVEX_EXPORT_AS(i, erfc, dspi_erf)
SIGVEX_EXPORT_AS(i, gamma, dspi_erf)
SIGVEX_EXPORT_AS(i, lgamma, dspi_erf)
