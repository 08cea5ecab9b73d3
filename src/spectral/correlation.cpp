// dsph_corr dspb_corr
#include <bit>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/operations.h"

namespace sigvex {
namespace {

template <class T> Status to_spectrum(Vector<T>& v, int32_t n, bool complex) {
  SIGVEX_TRY(dspi::zpad<T>(v, n));
  if (!complex) return dspi::rfft<T>(v);
  SIGVEX_TRY(dspi::rtoc<T>(v));
  return dspi::fft<T>(v, 0);
}

}  // namespace

namespace dsph {

// The product of one spectrum with the conjugate of another is the spectrum of their circular correlation, which is the
// wanted one at the lags kept: there the m points of a stay inside those of b.
template <class T>
Status corr(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, Vector<T>* work, int32_t m, uint32_t halve) {
  if (m < 1 || m > a.points || m > b.points) return kFailure;
  if (!work || shares<T>(*work, a) || shares<T>(*work, b) || shares<T>(*work, result)) {
    Scratch<T> own;
    return corr<T>(a, b, result, &own, m, halve);
  }
  const size_t padded = std::bit_ceil(points<T>(b));
  if (!fits(padded)) return exhausted<T>(result);
  const int32_t n = static_cast<int32_t>(padded), lags = b.points - m + 1;
  const bool complex = a.complex || b.complex;
  const T delta = (a.delta + b.delta) * T(0.5);
  SIGVEX_TRY(dsp::copy<T>(*work, b));
  SIGVEX_TRY(dspu::subvec<T>(a, result, 0, m));
  if (n > 1) {  // one point is its own transform, real or complex
    SIGVEX_TRY(to_spectrum<T>(result, n, complex));
    SIGVEX_TRY(to_spectrum<T>(*work, n, complex));
  }
  SIGVEX_TRY(dspb::conj_mul<T>(*work, result, result));
  if (n > 1) SIGVEX_TRY(complex ? dspi::fft<T>(result, 1) : dspi::irfft<T>(result));
  result.delta = delta;
  result.points = lags;
  return halve ? dspi::scale<T>(result, T(0.5)) : kSuccess;
}

}  // namespace dsph

namespace dspb {

template <class T> Status corr(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, Vector<T>* work, int32_t m) {
  return dsph::corr<T>(a, b, result, work, m, 0);
}

}  // namespace dspb
}  // namespace sigvex

SIGVEX_EXPORT(h, corr, 6)
SIGVEX_EXPORT(b, corr, 5)
