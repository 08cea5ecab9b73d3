// dspi_exp dspi_exp10 dspi_log dspi_log10 dspi_db dspi_sqrt
#include "core/exports.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspi {
namespace {

// One kernel for samples, one for points.
template <class T>
Status each(Vector<T>& v, typename MathKernels<T>::Map of_samples, typename MathKernels<T>::Map of_points) {
  (v.complex ? of_points : of_samples)(v.data, v.data, points<T>(v));
  return kSuccess;
}

}  // namespace

template <class T> Status exp(Vector<T>& v) {
  const MathKernels<T>& k = math_kernels<T>();
  return each<T>(v, k.exp_capped, k.exp_of_points);
}

template <class T> Status exp10(Vector<T>& v) {
  const MathKernels<T>& k = math_kernels<T>();
  return each<T>(v, k.exp10_capped, k.exp10_of_points);
}

template <class T> Status log(Vector<T>& v) {
  const MathKernels<T>& k = math_kernels<T>();
  return each<T>(v, k.log_or_floor, k.log_of_points);
}

template <class T> Status db(Vector<T>& v, T factor) {
  const MathKernels<T>& k = math_kernels<T>();
  (v.complex ? k.db_of_points : k.db)(v.data, v.data, points<T>(v), factor);
  return kSuccess;
}

template <class T> Status log10(Vector<T>& v) {
  return v.complex ? db<T>(v, 1) : each_real<T>(v, math_kernels<T>().log10_or_floor);
}

template <class T> Status sqrt(Vector<T>& v) {
  const MathKernels<T>& k = math_kernels<T>();
  return each<T>(v, k.root_or_zero, k.root_of_points);
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, exp, 1)
SIGVEX_EXPORT(i, exp10, 1)
SIGVEX_EXPORT(i, log, 1)
SIGVEX_EXPORT(i, log10, 1)
SIGVEX_EXPORT(i, db, 2)
SIGVEX_EXPORT(i, sqrt, 1)
