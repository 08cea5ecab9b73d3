// dspi_window dspi_window2 dspi_window_fir dspi_window_cos _gauss _kaiser _sinc _tukey
#include "spectral/window.h"

#include <cmath>

#include "core/caches.h"
#include "core/exports.h"
#include "core/limits.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/window_families.h"

namespace sigvex {
namespace {

// The last window, since hosts weight frame after frame with the same one. Guarded by the work lock.
template <class T> struct WindowCache {
  bool valid;
  WindowShape shape;
  Vector<T> weights;
};
template <class T> constinit WindowCache<T> cache{};

template <class T> Status find_or_build(const WindowShape& shape, size_t n) {
  WindowCache<T>& c = cache<T>;
  if (c.valid && points<T>(c.weights) == n && c.shape == shape) return kSuccess;
  c.valid = false;
  SIGVEX_TRY(sigvex::shape<T>(c.weights, n, 0));
  SIGVEX_TRY(window_weights<T>(shape, n, c.weights.data));
  c.shape = shape;
  c.valid = true;
  return kSuccess;
}

// Multiplies a vector by a window of its own length.
template <class T> Status apply(Vector<T>& v, const WindowShape& shape) {
  if (shape.family == Family::triangle && v.complex) return kFailure;
  const size_t n = points<T>(v);
  if (n == 0) return kSuccess;
  const WorkLock lock;
  SIGVEX_TRY(find_or_build<T>(shape, n));
  const T* const w = cache<T>.weights.data;
  if (!v.complex) {
    for (size_t k = 0; k < n; ++k) v.data[k] *= w[k];
    return kSuccess;
  }
  for (size_t k = 0; k < n; ++k) {
    v.data[2 * k] *= w[k];
    v.data[2 * k + 1] *= w[k];
  }
  return kSuccess;
}

}  // namespace

template <class T> Status release_windows() {
  const WorkLock lock;
  cache<T>.valid = false;
  return dsp::destroy<T>(cache<T>.weights);
}
template Status release_windows<double>();
template Status release_windows<float>();

namespace dspi {

template <class T> Status window(Vector<T>& v, uint32_t type, uint32_t flags) {
  return flags & DSP_WINFLAG_PARAMETER ? kFailure : window2<T>(v, type, flags, 0);
}

template <class T> Status window2(Vector<T>& v, uint32_t type, uint32_t flags, T parameter) {
  WindowShape shape;
  SIGVEX_TRY(choose_window(type, flags, parameter, shape));
  if (!shape.uniform()) SIGVEX_TRY(apply<T>(v, shape));
  const bool rotate = type == DSP_WINDOW_UNIFORM ? flags & DSP_WINFLAG_ROTATE : !(flags & DSP_WINFLAG_CENTRED);
  return rotate ? swap_halves2<T>(v) : kSuccess;
}

template <class T> Status window_fir(Vector<T>& v, uint32_t type, uint32_t flags, T parameter) {
  WindowShape shape;
  SIGVEX_TRY(choose_window(type, flags, parameter, shape));
  shape.symmetric = true;
  return shape.uniform() ? kSuccess : apply<T>(v, shape);
}

// The families' own windows take their parameter anyway, with or without the flag; a width beside it they have not.
template <class T> Status window_cos(Vector<T>& v, uint32_t flags) {
  if (flags & DSP_WINFLAG_PARAMETER) return kFailure;
  WindowShape shape;
  SIGVEX_TRY(choose_cosine_lobe(flags, shape));
  return apply<T>(v, shape);
}

template <class T> Status window_gauss(Vector<T>& v, uint32_t flags, T width) {
  WindowShape shape;
  SIGVEX_TRY(choose_gauss(flags, width, shape));
  return apply<T>(v, shape);
}

// Beyond these limits I0, or for the RMS its square, has no room in the precision.
template <class T> Status window_kaiser(Vector<T>& v, uint32_t flags, T beta) {
  if (flags & DSP_WINFLAG_PARAMETER) return kFailure;
  WindowShape shape;
  SIGVEX_TRY(choose_kaiser(flags, beta, shape));
  if (!(std::abs(beta) <= (shape.mode == 1 ? 1 : 2) * Limits<T>::ln_huge)) return kFailure;
  return apply<T>(v, shape);
}

template <class T> Status window_sinc(Vector<T>& v, uint32_t flags, T width, T scale) {
  WindowShape shape;
  SIGVEX_TRY(choose_sinc(flags, width, scale, shape));
  return apply<T>(v, shape);
}

template <class T> Status window_tukey(Vector<T>& v, uint32_t flags, T fraction) {
  WindowShape shape;
  SIGVEX_TRY(choose_tukey(flags, fraction, shape));
  return apply<T>(v, shape);
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, window, 3)
SIGVEX_EXPORT(i, window2, 4)
SIGVEX_EXPORT(i, window_fir, 4)
SIGVEX_EXPORT(i, window_cos, 2)
SIGVEX_EXPORT(i, window_gauss, 3)
SIGVEX_EXPORT(i, window_kaiser, 3)
SIGVEX_EXPORT(i, window_sinc, 4)
SIGVEX_EXPORT(i, window_tukey, 3)
