// dspu_scale dspu_cscale dspu_sqrt dspu_mag dspu_magsq
#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/blocks.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspu {
namespace {

// Sizes the destination and fills it by run(x, y, n), which reads n points of the source's form and writes as many of
// the destination's. The source is read from a copy where the destination is written over it ahead of the reading; a
// block that both share from its start is left to the source, not moved. A view that is its own destination gets a
// block and is read from the storage it leaves.
template <class T, class Run> Status apply(const Vector<T>& source, Vector<T>& destination, int32_t complex, Run run) {
  if (fits(scalars(source.points, complex)) && endangered<T>(source, destination, 0)) {
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, source));
    return apply<T>(copy, destination, complex, run);
  }
  const T* const viewed = source.allocated <= 0 ? source.data : nullptr;
  SIGVEX_TRY(prepare_result<T>(source, source, complex, destination));
  run(viewed ? viewed : source.data, destination.data, points<T>(destination));
  return kSuccess;
}

}  // namespace

template <class T> Status scale(const Vector<T>& source, Vector<T>& destination, T factor) {
  const size_t width = source.complex ? 2 : 1;
  return apply<T>(source, destination, source.complex,
                  [=](const T* x, T* y, size_t n) { map_samples(x, y, width * n, Times<T>{factor}); });
}

template <class T> Status cscale(const Vector<T>& source, Vector<T>& destination, T re, T im) {
  const bool spreads = !source.complex;
  return apply<T>(source, destination, 1, [=](const T* x, T* y, size_t n) {
    const TimesComplex<T> f{re, im};
    spreads ? map_blocks<T>(x, y, n, f) : map_blocks<Point<T>>(x, y, n, f);
  });
}

template <class T> Status sqrt(const Vector<T>& source, Vector<T>& destination) {
  const MathKernels<T>& k = math_kernels<T>();
  return apply<T>(source, destination, source.complex, source.complex ? k.root_of_points : k.root_or_zero);
}

template <class T> Status mag(const Vector<T>& source, Vector<T>& destination) {
  if (source.complex) return apply<T>(source, destination, 0, math_kernels<T>().magnitude);
  return apply<T>(source, destination, 0, [](const T* x, T* y, size_t n) { map_samples(x, y, n, Absolute()); });
}

template <class T> Status magsq(const Vector<T>& source, Vector<T>& destination) {
  if (source.complex) return apply<T>(source, destination, 0, math_kernels<T>().magsq_capped);
  return apply<T>(source, destination, 0, [](const T* x, T* y, size_t n) { map_samples(x, y, n, MagsqCapped()); });
}

}  // namespace sigvex::dspu

SIGVEX_EXPORT(u, scale, 3)
SIGVEX_EXPORT(u, cscale, 4)
SIGVEX_EXPORT(u, sqrt, 2)
SIGVEX_EXPORT(u, mag, 2)
SIGVEX_EXPORT(u, magsq, 2)
