// dsps_sum dsps_magsq_sum
#include "core/exports.h"
#include "core/limits.h"
#include "stats/blocks.h"
#include "stats/operations.h"
#include "stats/result.h"

namespace sigvex::dsps {

template <class T> Status sum(const Vector<T>& v, Vector<T>& result) {
  const T* const x = v.data;
  if (!v.complex) {
    const auto [re] = block_sums<T, 1>(points<T>(v), [x](size_t k) { return Sums<T, 1>{x[k]}; });
    return write_point<T>(result, 0, {re, T(0)});
  }
  const auto [re, im] = block_sums<T, 2>(points<T>(v), [x](size_t k) { return Sums<T, 2>{x[2 * k], x[2 * k + 1]}; });
  return write_point<T>(result, v.complex, {re, im});
}

template <class T> Status magsq_sum(const Vector<T>& v, Vector<T>& result) {
  const T* const x = v.data;
  const auto squares = [&](auto square) { return block_sums<T, 1>(points<T>(v), square)[0]; };
  if (!v.complex) {
    return write_real<T>(result, squares([x](size_t k) { return Sums<T, 1>{clamped(x[k]) * clamped(x[k])}; }));
  }
  return write_real<T>(result, squares([&v](size_t k) { return Sums<T, 1>{magsq(clamped(point<T>(v, k)))}; }));
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, sum, 2)
SIGVEX_EXPORT(s, magsq_sum, 2)
