// dspi_dft dspi_rdft dspi_irdft
#include <bit>
#include <cstdlib>
#include <memory>
#include <utility>

#include "core/caches.h"
#include "core/exports.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/engine.h"
#include "spectral/operations.h"
#include "spectral/rader.h"
#include "spectral/roots.h"
#include "spectral/settings.h"

namespace sigvex {
namespace {

// Lengths that are no power of two, after Bluestein: jk = (j^2 + k^2 - (k-j)^2) / 2 turns the transform into a product
// with a chirp, a convolution with the conjugate chirp, which transforms of M points compute, and a product again.
// Kept for the forward direction of one length; the inverse multiplies by the conjugates, because the chirp's kernel is
// even and so is its spectrum. Each spectrum is built when the first vector comes that needs it. Guarded by the work
// lock.
enum class Order { kNone, kNatural, kOwn };
template <class T> struct Bluestein {
  Vector<T> chirp;   // e^(-i pi k^2/N), N points
  int32_t length;    // N, 0 while there is no chirp
  Vector<T> kernel;  // for complex points, the spectrum of the conjugate chirp, mirrored, M points
  Order order;       // in which it stands, that of dspi_fft or the engine's own; none while it is not built
  T* halves;         // for real samples, spectra of M/2 points, null while they are not built
};
template <class T> constinit Bluestein<T> bluestein{};

// The smallest 4 * 2^k that holds the convolution, at least 2N - 2: the kernel's two outermost points are one.
size_t convolution_length(int32_t n) { return 4 * std::bit_floor(static_cast<size_t>(n) - 2); }

template <class T> Status build_chirp(Vector<T>& chirp, int32_t length) {
  const size_t n = count(length);
  SIGVEX_TRY(shape<T>(chirp, n, 1));
  for (size_t k = 0, square = 0; k < n; ++k) {  // k^2 mod 2N, from step to step because it would outgrow its type
    const Point<T> root = unit_root<T>(square, 2 * n);
    set_point<T>(chirp, k, {root.re, -root.im});
    square += 2 * k + 1;
    if (square >= 2 * n) square -= 2 * n;
  }
  return kSuccess;
}

template <class T> Status build_kernel(Vector<T>& kernel, const Vector<T>& chirp, Order order) {
  const size_t m = convolution_length(chirp.points);
  SIGVEX_TRY(shape<T>(kernel, m, 1));
  SIGVEX_TRY(dspi::zero<T>(kernel));
  set_point<T>(kernel, 0, {T(1), T(0)});
  for (size_t k = 1, n = points<T>(chirp); k < n; ++k) {
    const Point<T> z = point<T>(chirp, k);
    set_point<T>(kernel, k, {z.re, -z.im});
    set_point<T>(kernel, m - k, {z.re, -z.im});
  }
  return order == Order::kNatural ? dspi::fft<T>(kernel, 1) : kernel_spectrum<T>(kernel.data, m, 1);
}

template <class T> Status drop_kernel(Bluestein<T>& work) {
  work.order = Order::kNone;
  return dsp::destroy<T>(work.kernel);
}

// All but the chirp's storage, which the next length takes over.
template <class T> Status drop(Bluestein<T>& work) {
  work.length = 0;
  std::free(std::exchange(work.halves, nullptr));
  return drop_kernel<T>(work);
}

template <class T> Status prepare(Bluestein<T>& work, int32_t length) {
  if (work.length == length) return kSuccess;
  SIGVEX_TRY(drop<T>(work));
  SIGVEX_TRY(build_chirp<T>(work.chirp, length));
  work.length = length;
  return kSuccess;
}

template <class T> Status prepare_kernel(Bluestein<T>& work, Order order) {
  if (work.order == order) return kSuccess;
  SIGVEX_TRY(drop_kernel<T>(work));
  SIGVEX_TRY(build_kernel<T>(work.kernel, work.chirp, order));
  work.order = order;
  return kSuccess;
}

// Whether m points hold the convolution that gives bins 0 .. N/2 alone.
bool holds_half(size_t m, size_t n) { return n + n / 2 <= m; }

// Of the conjugate chirp, for M/2 points: where they hold half a transform its spectrum, the negative lags mirrored,
// otherwise the two of RealChirp.
template <class T> Status prepare_halves(Bluestein<T>& work) {
  if (work.halves) return kSuccess;
  const size_t n = points<T>(work.chirp), m = convolution_length(work.length) / 2;
  const size_t scalars = holds_half(m, n) ? 2 * m : 4 * m;
  std::unique_ptr<T, decltype(&std::free)> block(static_cast<T*>(std::calloc(scalars, sizeof(T))), &std::free);
  if (!block) return kFailure;
  T *const first = block.get(), *const second = first + 2 * m;
  const auto put = [&](T* spectrum, size_t place, size_t lag) {
    const Point<T> z = point<T>(work.chirp, lag % n);  // the chirp of an even length has the period n
    spectrum[2 * place] = z.re;
    spectrum[2 * place + 1] = -z.im;
  };
  if (holds_half(m, n)) {
    for (size_t l = 0; l <= n / 2; ++l) put(first, l, l);
    for (size_t l = 1; l < n; ++l) put(first, m - l, l);
    SIGVEX_TRY(kernel_spectrum<T>(first, m, 1));
  } else {
    for (size_t l = 1; l <= n / 2 * 2; ++l) put(first, (m + n / 2 - l) % m, l);
    for (size_t l = 0; l <= n / 2; ++l) {
      put(second, l, l);
      put(second, (m - l) % m, l);
    }
    SIGVEX_TRY(kernel_spectrum<T>(first, m, 2));
    SIGVEX_TRY(kernel_spectrum<T>(second, m, 2));
  }
  work.halves = block.release();
  return kSuccess;
}

// In whole transforms, which the transform library can compute.
template <class T> Status transform_by_steps(Vector<T>& v, const Bluestein<T>& work, bool inverse) {
  const auto times = [&](const Vector<T>& factors) {
    return inverse ? dspb::conj_mul<T>(v, factors, v) : dspb::mul<T>(v, factors, v);
  };
  SIGVEX_TRY(times(work.chirp));
  SIGVEX_TRY(dspi::zpad<T>(v, work.kernel.points));
  SIGVEX_TRY(dspi::fft<T>(v, 1));
  SIGVEX_TRY(times(work.kernel));
  SIGVEX_TRY(dspi::fft<T>(v, 0));
  v.points = work.length;
  SIGVEX_TRY(times(work.chirp));
  return inverse ? kSuccess : dspi::scale<T>(v, T(1) / static_cast<T>(work.length));
}

template <class T> Status chirp_transform(Vector<T>& v, bool inverse) {
  const bool by_library = dft_flags<T>() & DSP_DFT_USE_MKL;
  const WorkLock lock;
  Bluestein<T>& work = bluestein<T>;
  const int32_t n = v.points, complex = v.complex;
  if (n == kRaderLength && complex && !by_library) return rader_transform<T>(v, inverse);
  if (!fits(2 * convolution_length(n))) return exhausted<T>(v);
  SIGVEX_TRY(prepare<T>(work, n));
  SIGVEX_TRY(prepare_kernel<T>(work, by_library ? Order::kNatural : Order::kOwn));
  if (by_library) return transform_by_steps<T>(v, work, inverse);
  SIGVEX_TRY(reshape<T>(v, points<T>(work.kernel), 1));
  const T factor = inverse ? T(1) : T(1) / static_cast<T>(n);
  const Convolution<T> convolution{work.kernel.data, v.data, count(n), !complex, work.chirp.data,
                                   inverse,          v.data, count(n), factor};
  const Status status = convolve<T>(points<T>(work.kernel), convolution);
  v.points = n;
  if (status < 0) v.complex = complex;
  return status;
}

// Of a real v, bins 0 .. N/2.
template <class T> Status real_chirp_transform(Vector<T>& v) {
  const WorkLock lock;
  Bluestein<T>& work = bluestein<T>;
  const int32_t n = v.points;
  const size_t m = convolution_length(n) / 2;
  if (!fits(4 * m)) return exhausted<T>(v);
  SIGVEX_TRY(prepare<T>(work, n));
  SIGVEX_TRY(prepare_halves<T>(work));
  SIGVEX_TRY(reshape<T>(v, 2 * m, 1));
  const T *const chirp = work.chirp.data, *const spectra = work.halves;
  const T factor = T(1) / static_cast<T>(n);
  const Status status =
      holds_half(m, count(n))
          ? convolve<T>(m, {spectra, v.data, count(n), true, chirp, false, v.data, count(n) / 2 + 1, factor})
          : real_chirp<T>(m, {spectra, spectra + 2 * m, chirp, count(n), v.data, factor});
  v.points = status < 0 ? n : n / 2 + 1;
  if (status < 0) v.complex = 0;
  return status;
}

}  // namespace

template <class T> Status release_dft() {
  const WorkLock lock;
  Bluestein<T>& work = bluestein<T>;
  release_rader<T>();
  SIGVEX_TRY(drop<T>(work));
  return dsp::destroy<T>(work.chirp);
}
template Status release_dft<double>();
template Status release_dft<float>();

namespace dspi {

template <class T> Status dft(Vector<T>& v, uint32_t inverse) {
  const T delta = v.delta;
  if (v.points < 2) {
    v.delta = bin_spacing<T>(delta, 1);
    return kSuccess;
  }
  if (power_of_two(v.points)) return fft<T>(v, inverse);
  SIGVEX_TRY(chirp_transform<T>(v, inverse != 0));
  v.delta = bin_spacing<T>(delta, points<T>(v));
  return kSuccess;
}

template <class T> Status rdft(Vector<T>& v) {
  if (v.complex) return kFailure;
  const int32_t n = v.points;
  if (power_of_two(n)) return rfft<T>(v);
  if (n > 3 && !(dft_flags<T>() & DSP_DFT_USE_MKL)) {
    const T delta = v.delta;
    SIGVEX_TRY(real_chirp_transform<T>(v));
    v.delta = bin_spacing<T>(delta, count(n));
    return kSuccess;
  }
  SIGVEX_TRY(dft<T>(v, 0));
  if (n > 1) v.points = n / 2 + 1;
  return kSuccess;
}

template <class T> Status irdft(Vector<T>& v, uint32_t odd) {
  if (!odd && points<T>(v) > 1 && std::has_single_bit(2 * points<T>(v) - 2)) return irfft<T>(v);
  SIGVEX_TRY(orecon<T>(v, odd));
  SIGVEX_TRY(dft<T>(v, 1));
  return real<T>(v);
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, dft, 2)
SIGVEX_EXPORT(i, rdft, 1)
SIGVEX_EXPORT(i, irdft, 2)
