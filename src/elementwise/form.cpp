// dspi_rtoc dspi_real dspi_imag dspi_conj dspi_mag dspi_magsq dspi_phase dspi_rtop dspi_ptor
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspi {
namespace {

// Turns a complex vector into a real one: each point gives one sample.
template <class T> Status to_real(Vector<T>& v, typename MathKernels<T>::Map kernel) {
  v.complex = 0;
  kernel(v.data, v.data, points<T>(v));
  return kSuccess;
}

template <class T> Status each_point_by(Vector<T>& v, typename MathKernels<T>::Map kernel) {
  if (v.complex) kernel(v.data, v.data, points<T>(v));
  return kSuccess;
}

}  // namespace

template <class T> Status rtoc(Vector<T>& v) {
  if (v.complex) return kSuccess;
  SIGVEX_TRY(spread<T>(v));
  math_kernels<T>().weave(v.data, nullptr, v.data, points<T>(v));
  return kSuccess;
}

template <class T> Status real(Vector<T>& v) {
  if (!v.complex) return kSuccess;
  return to_real<T>(v, math_kernels<T>().real);
}

template <class T> Status imag(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, [](T) { return T(0); });
  return to_real<T>(v, math_kernels<T>().imag);
}

template <class T> Status conj(Vector<T>& v) {
  if (!v.complex) return kSuccess;
  return each_point<T>(v, [](Point<T> z) -> Point<T> { return {z.re, -z.im}; });
}

template <class T> Status mag(Vector<T>& v) {
  return v.complex ? to_real<T>(v, math_kernels<T>().magnitude) : each_scalar<T>(v, Absolute());
}

template <class T> Status magsq(Vector<T>& v) {
  return v.complex ? to_real<T>(v, math_kernels<T>().magsq_capped) : each_scalar<T>(v, MagsqCapped());
}

template <class T> Status phase(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, [](T x) { return x < 0 ? std::numbers::pi_v<T> : T(0); });
  return to_real<T>(v, math_kernels<T>().phase);
}

template <class T> Status rtop(Vector<T>& v) { return each_point_by<T>(v, math_kernels<T>().polar); }

template <class T> Status ptor(Vector<T>& v) { return each_point_by<T>(v, math_kernels<T>().rectangular); }

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, rtoc, 1)
SIGVEX_EXPORT(i, real, 1)
SIGVEX_EXPORT(i, imag, 1)
SIGVEX_EXPORT(i, conj, 1)
SIGVEX_EXPORT(i, mag, 1)
SIGVEX_EXPORT(i, magsq, 1)
SIGVEX_EXPORT(i, phase, 1)
SIGVEX_EXPORT(i, rtop, 1)
SIGVEX_EXPORT(i, ptor, 1)
