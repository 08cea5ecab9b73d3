// dspd_fir
#include <bit>
#include <cmath>
#include <utility>

#include "core/caches.h"
#include "core/exports.h"
#include "core/limits.h"
#include "core/locks.h"
#include "elementwise/operations.h"
#include "filter/complex_taps.h"
#include "filter/kernels.h"
#include "filter/operations.h"
#include "filter/state.h"
#include "spectral/operations.h"

namespace sigvex {
namespace {

// n outputs y of taps on points x, of which the first is the oldest that the first output reaches back to.
template <class T> void convolve(const T* x, int32_t complex, const Vector<T>& taps, T* y, size_t n) {
  const auto kernel = filter_kernels<T>().convolve;
  const size_t width = complex ? 2 : 1, count = points<T>(taps);
  if (!taps.complex) return kernel(x, width, taps.data, 1, count, y, n * width);
  by_parts<T>(complex, y, n, [&](size_t part, size_t start, T* to, size_t m) {
    kernel(x + start, width, taps.data + part, 2, count, to, m);
  });
}

// The first n outputs by their definition. Those at the seam fill a whole tile where there are as many.
template <class T>
Status filter_directly(const Vector<T>& in, const Vector<T>& taps, Vector<T>& out, const Vector<T>* state, size_t n) {
  const size_t past = points<T>(taps) - 1, head = std::min(std::max(past, kWholeTile), n);
  Scratch<T> seam;
  SIGVEX_TRY(join<T>(seam, state, past, in, head));
  convolve<T>(seam.data, in.complex, taps, out.data, head);
  if (head == n) return kSuccess;
  convolve<T>(in.data + (head - past) * (in.complex ? 2 : 1), in.complex, taps, out.data + head * (out.complex ? 2 : 1),
              n - head);
  return kSuccess;
}

// The spectra of the last taps that were filtered with by transforms, for real and for complex input, each with every
// so-manieth bin of it: the spectrum for the short circle that the seam of two blocks is filtered on. Guarded by the
// work lock.
template <class T> struct TapsCache { Vector<T> taps, real, real_seam, complex, complex_seam; };
template <class T> constinit TapsCache<T> cache{};

template <class T> bool same(const Vector<T>& a, const Vector<T>& b, T tolerance) {
  int32_t order;
  return dsp::cmp<T>(a, b, tolerance, order) == kSuccess && order == 0;
}

// Neighbouring real samples x are the parts of half as many complex points z = e + io, and so are the outputs. With the
// taps' even half g, their odd half u and u delayed by one point, v, the outputs are
//   g * e + v * o + i (g * o + u * e) = (g + i/2 (u - v)) * z + i/2 (u + v) * conj z,
// sums over circles of size / 2 points: real samples take two spectra, one behind the other.
template <class T> Status real_spectrum(const Vector<T>& taps, size_t size, Vector<T>& spectrum) {
  const size_t half = size / 2, n = points<T>(taps);
  SIGVEX_TRY(shape<T>(spectrum, size, 1));
  SIGVEX_TRY(dspi::zero<T>(spectrum));
  T *const a = spectrum.data, *const b = a + size;
  for (size_t k = 0; k < n; k += 2) a[k] = taps.data[k];
  for (size_t k = 1; k < n; k += 2) {
    const T odd = taps.data[k] / 2;
    const size_t delayed = (k + 2) % size;
    a[k] += odd;
    a[delayed] -= odd;
    b[k] += odd;
    b[delayed] += odd;
  }
  Vector<T> circle{};
  circle.points = static_cast<int32_t>(half);
  circle.complex = 1;
  for (T* const start : {a, b}) {
    circle.data = start;
    SIGVEX_TRY(dspi::fft<T>(circle, 1));
  }
  return kSuccess;
}

template <class T> Status complex_spectrum(const Vector<T>& taps, size_t size, Vector<T>& spectrum) {
  SIGVEX_TRY(dsp::copy<T>(spectrum, taps));
  SIGVEX_TRY(dspi::zpad<T>(spectrum, static_cast<int32_t>(size)));
  return dspi::fft<T>(spectrum, 1);
}

// Outputs from which on direct sums cost more than a circle of their own.
constexpr size_t kLongSeam = 64;

// The circle that holds the history and as many outputs, which it does not wrap.
size_t seam_size(size_t taps) { return std::bit_ceil(2 * (taps - 1)); }

template <class T> Status every_step(const Vector<T>& spectrum, size_t n, Vector<T>& part) {
  const size_t step = points<T>(spectrum) / n;
  SIGVEX_TRY(shape<T>(part, n, 1));
  for (size_t k = 0; k < n; ++k) set_point<T>(part, k, point<T>(spectrum, k * step));
  return kSuccess;
}

// New taps empty both spectra, so that neither can ever pass for that of taps it was not made of. The same taps in
// another size or form keep the other spectrum.
template <class T> Status find_or_build(const Vector<T>& taps, size_t size, bool complex) {
  TapsCache<T>& c = cache<T>;
  Vector<T>&kept = complex ? c.complex : c.real, &kept_seam = complex ? c.complex_seam : c.real_seam;
  const T tolerance = std::abs(taps.data[0]) * 5 * Limits<T>::epsilon;
  if (points<T>(kept) == size && same<T>(taps, c.taps, tolerance)) return kSuccess;
  if (!same<T>(taps, c.taps, T(0))) {
    c.real.points = c.complex.points = 0;
    SIGVEX_TRY(dsp::copy<T>(c.taps, taps));
  }
  Scratch<T> spectrum, seam;
  SIGVEX_TRY(complex ? complex_spectrum<T>(taps, size, spectrum) : real_spectrum<T>(taps, size, spectrum));
  SIGVEX_TRY(every_step<T>(spectrum, std::min(seam_size(points<T>(taps)), size), seam));
  std::swap<Vector<T>>(kept, spectrum);
  std::swap<Vector<T>>(kept_seam, seam);
  return kSuccess;
}

// Filters x on a circle of its points, by their taps' spectrum.
template <class T> Status convolve_circle(Vector<T>& x, const Vector<T>& spectrum) {
  if (x.complex) {
    SIGVEX_TRY(dspi::fft<T>(x, 1));
    SIGVEX_TRY(dspb::mul<T>(x, spectrum, x));
    return dspi::fft<T>(x, 0);
  }
  x.points /= 2;
  x.complex = 1;
  Status status = dspi::fft<T>(x, 1);
  if (status >= 0) {
    filter_kernels<T>().mix(x.data, spectrum.data, spectrum.data + spectrum.points, points<T>(x));
    status = dspi::fft<T>(x, 0);
  }
  x.points *= 2;
  x.complex = 0;
  return status;
}

// The power of two to transform at: one that holds the whole convolution where direct sums for the outputs that a
// shorter one wraps would cost more.
template <class T> size_t transform_size(const Vector<T>& in, const Vector<T>& taps) {
  const size_t n = points<T>(in), count = points<T>(taps), doublings = n > 1 ? std::bit_width(n - 1) : 0;
  const bool linear = count * count > 9 * doublings * n;
  return std::bit_ceil(std::max(linear ? n + count - 1 : n, count));
}

template <class T> bool worth_transforming(const Vector<T>& in, const Vector<T>& taps) {
  const size_t least = in.complex ? 36 : 46;
  return !taps.complex && points<T>(taps) >= least && points<T>(in) >= points<T>(taps) - 1 &&
         fits(2 * transform_size<T>(in, taps));
}

template <class T> bool all_bounded(const T* x, size_t n) {
  return std::all_of(x, x + n, [](T sample) { return bounded(sample); });
}

// Whether the history may enter the block's transform, whose rounding errors, or a NaN, reach every output: not where
// it is far above the block, or unbounded. Outputs that it cannot reach then never see it.
template <class T> bool comparable(const Vector<T>& history, const Vector<T>& in) {
  const T* const past = history.data;
  if (!all_bounded(past, size<T>(history))) return false;
  T peak = 0;
  for (size_t k = 0; k < size<T>(history); ++k) peak = std::max(peak, std::abs(past[k]));
  return std::any_of(in.data, in.data + size<T>(in), [peak](T x) { return 8 * std::abs(x) >= peak; });
}

// The first n outputs by a circle of their own that begins with the whole history.
template <class T>
Status filter_seam(const Vector<T>& in, const Vector<T>& spectrum, Vector<T>& out, const Vector<T>* state, size_t past,
                   size_t n) {
  const size_t width = in.complex ? 2 : 1;
  Scratch<T> circle;
  SIGVEX_TRY(join<T>(circle, state, past, in, n));
  SIGVEX_TRY(reshape<T>(circle, points<T>(spectrum), in.complex));
  std::fill(circle.data + (past + n) * width, circle.data + size<T>(circle), T(0));
  SIGVEX_TRY(convolve_circle<T>(circle, spectrum));
  std::copy_n(circle.data + past * width, n * width, out.data);
  return kSuccess;
}

// The block at the front of the transform's circle and the newest history at its end, just before the block: every
// output is right but for the first ones, whose history found no room there.
template <class T>
Status filter_by_transform(const Vector<T>& in, const Vector<T>& taps, Vector<T>& out, const Vector<T>* state) {
  const WorkLock lock;
  const TapsCache<T>& c = cache<T>;
  const size_t n = points<T>(in), s = transform_size<T>(in, taps), past = points<T>(taps) - 1;
  const size_t width = in.complex ? 2 : 1;
  SIGVEX_TRY(find_or_build<T>(taps, s, in.complex));
  SIGVEX_TRY(shape<T>(out, s, in.complex ? 1 : 0));
  std::copy_n(in.data, n * width, out.data);
  std::fill(out.data + n * width, out.data + s * width, T(0));
  const bool calm = !state || comparable<T>(*state, in);
  const size_t room = state && !calm ? 0 : std::min(s - n, past);
  if (state) std::copy_n(state->data + (past - room) * width, room * width, out.data + (s - room) * width);
  SIGVEX_TRY(convolve_circle<T>(out, in.complex ? c.complex : c.real));
  out.points = in.points;
  out.delta = in.delta;
  const Vector<T>& seam = in.complex ? c.complex_seam : c.real_seam;
  const size_t wrapped = past - room;
  // A NaN among the samples leaves the outputs before it alone, as in direct sums.
  if (calm && wrapped >= kLongSeam && points<T>(seam) < s && all_bounded(in.data, wrapped * width))
    return filter_seam<T>(in, seam, out, state, past, wrapped);
  return filter_directly<T>(in, taps, out, state, wrapped);
}

}  // namespace

template <class T> Status release_fir() {
  const WorkLock lock;
  TapsCache<T>& c = cache<T>;
  for (Vector<T>* const v : {&c.taps, &c.real, &c.real_seam, &c.complex, &c.complex_seam})
    SIGVEX_TRY(dsp::destroy<T>(*v));
  return kSuccess;
}
template Status release_fir<double>();
template Status release_fir<float>();

namespace dspd {

template <class T> Status fir(const Vector<T>& in, Vector<T>& out, const Vector<T>& taps, Vector<T>* state) {
  if (taps.points < 1) return dsp::copy<T>(out, in);
  return run_block<T>(in, taps, out, state, [state](const Vector<T>& x, const Vector<T>& h, Vector<T>& y) -> Status {
    if (state) SIGVEX_TRY(prepare_state<T>(*state, points<T>(h) - 1, x));
    y.delta = x.delta;
    SIGVEX_TRY(shape<T>(y, points<T>(x), x.complex || h.complex));
    SIGVEX_TRY(worth_transforming<T>(x, h) ? filter_by_transform<T>(x, h, y, state)
                                           : filter_directly<T>(x, h, y, state, points<T>(x)));
    if (state) advance<T>(*state, x);
    return kSuccess;
  });
}

}  // namespace dspd
}  // namespace sigvex

SIGVEX_EXPORT(d, fir, 4)
