// dspi_fft dspi_rfft dspi_irfft
#include <algorithm>

#include "core/exports.h"
#include "elementwise/operations.h"
#include "spectral/dfti.h"
#include "spectral/engine.h"
#include "spectral/operations.h"
#include "spectral/settings.h"

namespace sigvex::dspi {

template <class T> Status fft(Vector<T>& v, uint32_t inverse) {
  if (dft_flags<T>() & DSP_DFT_USE_MKL) return dfti_transform<T>(v, inverse != 0, true);
  if (!power_of_two(v.points)) return kFailure;
  const size_t n = points<T>(v);
  if (n == 2) {
    if (!inverse) SIGVEX_TRY(scale<T>(v, T(0.5)));
    SIGVEX_TRY(rtoc<T>(v));
    const Point<T> a = point<T>(v, 0), b = point<T>(v, 1);
    set_point<T>(v, 0, {a.re + b.re, a.im + b.im});
    set_point<T>(v, 1, {a.re - b.re, a.im - b.im});
  } else if (n > 2) {
    SIGVEX_TRY(complex_transform<T>(v, inverse != 0));
  }
  v.delta = bin_spacing<T>(v.delta, n);
  return kSuccess;
}

template <class T> Status rfft(Vector<T>& v) {
  if (dft_flags<T>() & DSP_DFT_USE_MKL) return dfti_transform<T>(v, false, false);
  if (v.complex || !power_of_two(v.points)) return kFailure;
  const size_t n = points<T>(v);
  if (n == 2) {
    SIGVEX_TRY(rtoc<T>(v));
    const T a = v.data[0], b = v.data[2];
    set_point<T>(v, 0, {(a + b) * T(0.5), T(0)});
    set_point<T>(v, 1, {(a - b) * T(0.5), T(0)});
  } else if (n > 2) {
    SIGVEX_TRY(real_transform<T>(v));
  }
  v.delta = bin_spacing<T>(v.delta, n);
  return kSuccess;
}

// Where the own kernels serve and the bins are those of a real transform, half the full spectrum is enough.
template <class T> Status irfft(Vector<T>& v) {
  const size_t n = 2 * std::max(points<T>(v), size_t{1}) - 2;
  if (dft_flags<T>() & DSP_DFT_USE_MKL || n <= 2 || !fits(n) || !power_of_two(static_cast<int32_t>(n))) {
    SIGVEX_TRY(orecon<T>(v, 0));
    SIGVEX_TRY(fft<T>(v, 1));
    return real<T>(v);
  }
  SIGVEX_TRY(rtoc<T>(v));
  SIGVEX_TRY(real_inverse_transform<T>(v));
  v.delta = bin_spacing<T>(v.delta, n);
  return kSuccess;
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, fft, 2)
SIGVEX_EXPORT(i, rfft, 1)
SIGVEX_EXPORT(i, irfft, 1)
