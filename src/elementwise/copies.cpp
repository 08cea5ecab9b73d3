// dspu_scale dspu_cscale dspu_sqrt dspu_mag dspu_magsq
#include <type_traits>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspu {
namespace {

// Sizes the destination and fills it by a rule with one overload for samples and one for points; what these return is
// the destination's form. The source is read from a copy where the destination takes its storage away or is written
// over it ahead of the reading.
template <class T, class F> Status apply(const Vector<T>& source, Vector<T>& destination, F f) {
  constexpr bool kSpreads = std::is_same_v<std::invoke_result_t<F, T>, Point<T>>;
  constexpr bool kKeepsPoints = std::is_same_v<std::invoke_result_t<F, Point<T>>, Point<T>>;
  const int32_t complex = source.complex ? kKeepsPoints : kSpreads;
  if (endangered<T>(source, destination, scalars(source.points, complex))) {
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, source));
    return apply<T>(copy, destination, f);
  }
  SIGVEX_TRY(prepare_result<T>(source, source, complex, destination));
  const T* const x = source.data;
  T* const y = destination.data;
  const size_t n = points<T>(destination);
  if (source.complex) {
    for (size_t k = 0; k < n; ++k) store<T>(y, k, f(Point<T>{x[2 * k], x[2 * k + 1]}));
  } else if constexpr (kSpreads) {
    spread(x, y, n, f);
  } else {
    for (size_t k = 0; k < n; ++k) store<T>(y, k, f(x[k]));
  }
  return kSuccess;
}

}  // namespace

template <class T> Status scale(const Vector<T>& source, Vector<T>& destination, T factor) {
  if (&source == &destination) return dspi::scale<T>(destination, factor);
  return apply<T>(source, destination, Times<T>{factor});
}

template <class T> Status cscale(const Vector<T>& source, Vector<T>& destination, T re, T im) {
  if (&source == &destination) return dspi::cscale<T>(destination, re, im);
  return apply<T>(source, destination, TimesComplex<T>{re, im});
}

template <class T> Status sqrt(const Vector<T>& source, Vector<T>& destination) {
  if (&source == &destination) return dspi::sqrt<T>(destination);
  return apply<T>(source, destination, RootOrZero());
}

template <class T> Status mag(const Vector<T>& source, Vector<T>& destination) {
  if (&source == &destination) return dspi::mag<T>(destination);
  return apply<T>(source, destination, Magnitude());
}

template <class T> Status magsq(const Vector<T>& source, Vector<T>& destination) {
  if (&source == &destination) return dspi::magsq<T>(destination);
  return apply<T>(source, destination, MagsqCapped());
}

}  // namespace sigvex::dspu

SIGVEX_EXPORT(u, scale, 3)
SIGVEX_EXPORT(u, cscale, 4)
SIGVEX_EXPORT(u, sqrt, 2)
SIGVEX_EXPORT(u, mag, 2)
SIGVEX_EXPORT(u, magsq, 2)
