// dspi_dct
#include <cstdlib>

#include "core/caches.h"
#include "core/exports.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "spectral/operations.h"
#include "spectral/roots.h"

namespace sigvex {
namespace {

// Guarded by the work lock.
template <class T> struct DctWorkspace {
  Vector<T> vector;
  Point<T>* half_angles;  // e^(i pi k/2N) for k = 1 .. (N-1)/2, from the first entry on
  int32_t length;         // N, 0 without a table
};
template <class T> constinit DctWorkspace<T> workspace{};

template <class T> void drop_table(DctWorkspace<T>& work) {
  std::free(work.half_angles);
  work.half_angles = nullptr;
  work.length = 0;
}

// One length at a time: a host that changes the length of its blocks rarely comes back to an earlier one.
template <class T> Status prepare(DctWorkspace<T>& work, int32_t length) {
  if (work.length == length) return kSuccess;
  drop_table<T>(work);
  const size_t n = count(length), entries = (n - 1) / 2;
  if (entries > 0) {
    work.half_angles = static_cast<Point<T>*>(std::malloc(entries * sizeof(Point<T>)));
    if (!work.half_angles) return kFailure;
    for (size_t k = 1; k <= entries; ++k) work.half_angles[k - 1] = unit_root<T>(k, 4 * n);
  }
  work.length = length;
  return kSuccess;
}

// The transform of N real points, reordered after Makhoul: the even samples, then the odd ones reversed. Bin k, turned
// back by the half angle, holds coefficients k and N - k in its real and imaginary part.
template <class T> Status forward(Vector<T>& v, DctWorkspace<T>& work) {
  const size_t n = points<T>(v), half = (n + 1) / 2;
  Vector<T>& aside = work.vector;
  SIGVEX_TRY(shape<T>(aside, half, 0));
  for (size_t k = 0; k < n / 2; ++k) aside.data[k] = v.data[2 * k + 1];
  for (size_t k = 0; k < half; ++k) v.data[k] = v.data[2 * k];
  for (size_t k = 0; k < n / 2; ++k) v.data[n - 1 - k] = aside.data[k];
  SIGVEX_TRY(dspi::rdft<T>(v));
  for (size_t k = 1; k < half; ++k) {  // the upper coefficients wait aside until the bins they would overwrite are read
    const Point<T> z = point<T>(v, k), w = work.half_angles[k - 1];
    v.data[k] = z.re * w.re + z.im * w.im;
    aside.data[k] = z.re * w.im - z.im * w.re;
  }
  if (n % 2 == 0) v.data[n / 2] = (v.data[n] + v.data[n + 1]) * T(0.70710678118654757);
  for (size_t k = 1; k < half; ++k) v.data[n - k] = aside.data[k];
  v.complex = 0;
  v.points = static_cast<int32_t>(n);
  v.delta *= T(0.5);
  return kSuccess;
}

// The same steps backwards.
template <class T> Status inverse(Vector<T>& v, DctWorkspace<T>& work) {
  const size_t n = points<T>(v), half = (n + 1) / 2;
  Vector<T>& spectrum = work.vector;
  spectrum.delta = v.delta;
  SIGVEX_TRY(shape<T>(spectrum, n / 2 + 1, 1));
  set_point<T>(spectrum, 0, {v.data[0], T(0)});
  for (size_t k = 1; k < half; ++k) {
    const T x = v.data[k], y = v.data[n - k];
    const Point<T> w = work.half_angles[k - 1];
    set_point<T>(spectrum, k, {x * w.re + y * w.im, x * w.im - y * w.re});
  }
  if (n % 2 == 0) set_point<T>(spectrum, n / 2, {v.data[n / 2] * T(1.4142135623730951), T(0)});
  SIGVEX_TRY(dspi::irdft<T>(spectrum, n % 2));
  for (size_t k = 0; k < half; ++k) v.data[2 * k] = spectrum.data[k];
  for (size_t k = 0; k < n / 2; ++k) v.data[2 * k + 1] = spectrum.data[n - 1 - k];
  v.delta = spectrum.delta * T(0.5);
  return kSuccess;
}

}  // namespace

template <class T> Status release_dct() {
  const WorkLock lock;
  drop_table<T>(workspace<T>);
  return dsp::destroy<T>(workspace<T>.vector);
}
template Status release_dct<double>();
template Status release_dct<float>();

namespace dspi {

template <class T> Status dct(Vector<T>& v, uint32_t flags) {
  if (v.complex) return kFailure;
  if (v.points <= 0) {
    v.delta = v.delta == 0 ? Limits<T>::huge : T(0.5) / v.delta;
    return kSuccess;
  }
  const WorkLock lock;
  DctWorkspace<T>& work = workspace<T>;
  SIGVEX_TRY(prepare<T>(work, v.points));
  if (flags & DSP_DCT_INVERSE) {
    if (flags & DSP_DCT_ORTHONORMAL) {
      each_scalar<T>(v, [](T x) { return x * T(0.5); });
      v.data[0] *= T(1.4142135623730951);
    }
    return inverse<T>(v, work);
  }
  SIGVEX_TRY(forward<T>(v, work));
  if (flags & DSP_DCT_ORTHONORMAL) {
    each_scalar<T>(v, [](T x) { return x * 2; });
    v.data[0] *= T(0.7071067811865476);
  }
  return kSuccess;
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, dct, 2)
