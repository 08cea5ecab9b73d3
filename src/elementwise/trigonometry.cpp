// dspi_acos dspi_asin dspi_atan dspi_cos dspi_sin dspi_tan dspi_cosh dspi_sinh dspi_tanh dspi_sinc
#include <cmath>

#include "core/exports.h"
#include "core/vector.h"

namespace sigvex::dspi {
namespace {

template <class T, class F> Status each_real(Vector<T>& v, F f) { return v.complex ? kFailure : each_scalar<T>(v, f); }

}  // namespace

template <class T> Status acos(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::abs(x) > 1 ? T(0) : std::acos(x); });
}

template <class T> Status asin(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::abs(x) > 1 ? T(0) : std::asin(x); });
}

template <class T> Status atan(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::atan(x); });
}

template <class T> Status cos(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::cos(x); });
}

template <class T> Status sin(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::sin(x); });
}

template <class T> Status tan(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::tan(x); });
}

template <class T> Status cosh(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::cosh(x); });
}

template <class T> Status sinh(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::sinh(x); });
}

template <class T> Status tanh(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return std::tanh(x); });
}

template <class T> Status sinc(Vector<T>& v) {
  return each_real<T>(v, [](T x) { return x == 0 ? T(1) : std::sin(x) / x; });
}

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
