// dspi_acos dspi_asin dspi_atan dspi_cos dspi_sin dspi_tan dspi_cosh dspi_sinh dspi_tanh dspi_sinc
#include "core/exports.h"
#include "elementwise/kernels.h"
#include "elementwise/rules.h"

namespace sigvex::dspi {

template <class T> Status acos(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().acos_or_zero); }
template <class T> Status asin(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().asin_or_zero); }
template <class T> Status atan(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().atan); }
template <class T> Status cos(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().cos); }
template <class T> Status sin(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().sin); }
template <class T> Status tan(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().tan); }
template <class T> Status cosh(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().cosh); }
template <class T> Status sinh(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().sinh); }
template <class T> Status tanh(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().tanh); }
template <class T> Status sinc(Vector<T>& v) { return each_real<T>(v, math_kernels<T>().sinc); }

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, acos, 1)
SIGVEX_EXPORT(i, asin, 1)
SIGVEX_EXPORT(i, atan, 1)
SIGVEX_EXPORT(i, cos, 1)
SIGVEX_EXPORT(i, sin, 1)
SIGVEX_EXPORT(i, tan, 1)
SIGVEX_EXPORT(i, cosh, 1)
SIGVEX_EXPORT(i, sinh, 1)
SIGVEX_EXPORT(i, tanh, 1)
SIGVEX_EXPORT(i, sinc, 1)
