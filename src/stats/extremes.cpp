// dsps_max dsps_min
#include <limits>

#include "core/exports.h"
#include "core/limits.h"
#include "stats/operations.h"
#include "stats/result.h"
#include "stats/search.h"

namespace sigvex::dsps {
namespace {

// Only a strictly better sample replaces the best so far, which a NaN never is. Points are searched from a bound that
// no squared magnitude reaches, so that one is found even where all are out of range.
template <class T> Status extreme(const Vector<T>& v, bool largest, Vector<T>& result) {
  if (points<T>(v) == 0) return write_point<T>(result, v.complex, {0, 0});
  constexpr T bounds[] = {Limits<T>::huge, std::numeric_limits<T>::infinity()};
  const T start = bounds[v.complex != 0];
  const Levels<T> y{v};
  const Best<T> best = search(y, largest, largest ? -start : start, [](auto&...) { return false; });
  if (v.complex) return write_point<T>(result, v.complex, point<T>(v, best.index(y)));
  return write_real<T>(result, best.found ? v.data[best.index(y)] : best.level);
}

}  // namespace

template <class T> Status max(const Vector<T>& v, Vector<T>& result) { return extreme<T>(v, true, result); }

template <class T> Status min(const Vector<T>& v, Vector<T>& result) { return extreme<T>(v, false, result); }

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, max, 2)
SIGVEX_EXPORT(s, min, 2)
