// dspi_abs dspi_neg dspi_scale dspi_offset dspi_cscale dspi_timesi dspi_limit dspi_recip dspi_square
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/blocks.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspi {

template <class T> Status abs(Vector<T>& v) {
  if (v.complex) return kFailure;
  return each_scalar<T>(v, Absolute());
}

template <class T> Status neg(Vector<T>& v) {
  return each_scalar<T>(v, [](T x) { return -x; });
}

template <class T> Status scale(Vector<T>& v, T factor) { return each_scalar<T>(v, Times<T>{factor}); }

template <class T> Status offset(Vector<T>& v, T offset) {
  if (!v.complex) return each_scalar<T>(v, [=](T x) { return x + offset; });
  return each_point<T>(v, [=](Point<T> z) -> Point<T> { return {z.re + offset, z.im}; });
}

template <class T> Status cscale(Vector<T>& v, T re, T im) {
  const TimesComplex<T> f{re, im};
  if (v.complex) return each_point<T>(v, f);
  SIGVEX_TRY(spread<T>(v));
  map_blocks<T>(v.data, v.data, points<T>(v), f);
  return kSuccess;
}

template <class T> Status timesi(Vector<T>& v) {
  if (v.complex) return each_point<T>(v, [](Point<T> z) -> Point<T> { return {-z.im, z.re}; });
  SIGVEX_TRY(spread<T>(v));
  math_kernels<T>().weave(nullptr, v.data, v.data, points<T>(v));
  return kSuccess;
}

template <class T> Status limit(Vector<T>& v, int32_t, T a, T b, int32_t* clipped) {
  if (std::isnan(a) || std::isnan(b)) return kFailure;
  const T low = std::min(a, b), high = std::max(a, b);
  T* const samples = v.data;
  const size_t n = size<T>(v);
  bool any = false;
  on_widest_vectors(n, [=, &any] {
    using Flag = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;  // as wide as a sample
    Flag changed = 0;
    for (size_t k = 0; k < n; ++k) {
      const T x = samples[k], capped = x > high ? high : x;
      samples[k] = capped >= low ? capped : low;  // NaN counts as below the bounds
      changed |= samples[k] != x;
    }
    any = changed != 0;
  });
  if (clipped) *clipped = any;
  return kSuccess;
}

template <class T> Status recip(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, [](T x) { return x > 0 || x < 0 ? 1 / x : x; });
  return each_point<T>(v, [](Point<T> z) -> Point<T> {
    const T m = magsq_capped(z), k = m > 0 ? 1 / m : Limits<T>::huge;
    return {z.re * k, -z.im * k};
  });
}

template <class T> Status square(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, [](T x) { return x * x; });
  return each_point<T>(v, [](Point<T> z) -> Point<T> { return {z.re * z.re - z.im * z.im, 2 * z.re * z.im}; });
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, abs, 1)
SIGVEX_EXPORT(i, neg, 1)
SIGVEX_EXPORT(i, scale, 2)
SIGVEX_EXPORT(i, offset, 2)
SIGVEX_EXPORT(i, cscale, 3)
SIGVEX_EXPORT(i, timesi, 1)
SIGVEX_EXPORT(i, limit, 5)
SIGVEX_EXPORT(i, recip, 1)
SIGVEX_EXPORT(i, square, 1)
