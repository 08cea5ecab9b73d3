// dsps_sum dsps_magsq_sum
#include "core/exports.h"
#include "stats/kernels.h"
#include "stats/operations.h"
#include "stats/result.h"

namespace sigvex::dsps {

template <class T> Status sum(const Vector<T>& v, Vector<T>& result) {
  const StatsKernels<T>& kernels = stats_kernels<T>();
  if (!v.complex) {
    const auto [re] = sums<1, T>(kernels.samples, v.data, points<T>(v));
    return write_point<T>(result, 0, {re, T(0)});
  }
  const auto [re, im] = sums<2, T>(kernels.points, v.data, points<T>(v));
  return write_point<T>(result, v.complex, {re, im});
}

template <class T> Status magsq_sum(const Vector<T>& v, Vector<T>& result) {
  const StatsKernels<T>& kernels = stats_kernels<T>();
  return write_real<T>(result,
                       sums<1, T>(v.complex ? kernels.squared_magnitudes : kernels.squares, v.data, points<T>(v))[0]);
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, sum, 2)
SIGVEX_EXPORT(s, magsq_sum, 2)
