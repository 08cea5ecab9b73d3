// dsph_fft dsph_dft dsph_avg
#include <cmath>
#include <limits>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/operations.h"
#include "spectral/window.h"

namespace sigvex {
namespace {

constexpr uint32_t kModes = 15;

template <class T> size_t strongest(const Vector<T>& v) {
  size_t found = 0;
  T most = 0;
  for (size_t k = 0, n = points<T>(v); k < n; ++k) {
    if (const T m = magsq_capped(complex_point<T>(v, k)); m > most) {
      most = m;
      found = k;
    }
  }
  return found;
}

// z / |z|; 0 where that is no direction.
template <class T> Point<T> direction(Point<T> z) {
  const T magnitude = std::hypot(z.re, z.im);
  if (!(magnitude > 0 && std::isfinite(magnitude))) return {0, 0};
  return {z.re / magnitude, z.im / magnitude};
}

// The current result on its way into the accumulator: where it is changed, it is so in the workspace.
template <class T> class Current {
 public:
  Current(const Vector<T>& given, Vector<T>& work) : now_(&given), work_(work) {}

  const Vector<T>& operator*() const { return *now_; }

  Status prepare(uint32_t flags) {
    if (flags & DSP_AVG_POWER) SIGVEX_TRY(moved(dspu::magsq<T>(*now_, work_)));
    if (flags & DSP_AVG_MAGNITUDE) SIGVEX_TRY(moved(dspu::mag<T>(*now_, work_)));
    return flags & DSP_AVG_LOG ? apply(dspi::log<T>) : kSuccess;
  }

  Status apply(Status (*operation)(Vector<T>&)) {
    SIGVEX_TRY(own());
    return operation(work_);
  }

  // Turns the phase of a bin to the average's.
  Status turn(size_t bin, const Vector<T>& average) {
    const Point<T> from = direction(complex_point<T>(*now_, bin)), to = direction(complex_point<T>(average, bin));
    const Point<T> turn{to.re * from.re + to.im * from.im, to.im * from.re - to.re * from.im};
    if (turn.re == 0 && turn.im == 0) return kSuccess;
    SIGVEX_TRY(own());
    if (!work_.complex && !average.complex) return dspi::scale<T>(work_, turn.re);
    return dspi::cscale<T>(work_, turn.re, turn.im);
  }

 private:
  Status moved(Status status) {
    now_ = &work_;
    return status;
  }
  Status own() { return now_ == &work_ ? kSuccess : moved(dsp::copy<T>(work_, *now_)); }

  const Vector<T>* now_;
  Vector<T>& work_;
};

template <class T> T frame_weight(uint32_t flags, int32_t n, T weight, T length) {
  if (weight >= 0) return weight;
  const T frames = static_cast<T>(n);
  return T(1) / (flags & DSP_AVG_EXPONENTIAL && length > 0 && frames >= length ? length : frames);
}

// A weighted mean on another scale: there and back.
template <class T>
Status mean_through(Status (*there)(Vector<T>&), Status (*back)(Vector<T>&), Current<T>& c, Vector<T>& a, T weight) {
  SIGVEX_TRY(c.apply(there));
  SIGVEX_TRY(there(a));
  SIGVEX_TRY(dspb::avg_add<T>(*c, a, a, weight));
  return back(a);
}

template <class T> Status frame_spectrum(const Vector<T>& x, Vector<T>& y, uint32_t type, uint32_t flags) {
  SIGVEX_TRY(dsp::copy<T>(y, x));
  if (flags & DSP_SPECTRUM_RAW) return dspi::dft<T>(y, 0);
  const bool centred = flags & (DSP_SPECTRUM_SUM | DSP_SPECTRUM_CENTRED);
  if (!(flags & DSP_SPECTRUM_NO_WINDOW)) {
    SIGVEX_TRY(dspi::window<T>(y, type, centred ? DSP_WINFLAG_ROTATE : DSP_WINFLAG_MEAN));
  } else if (type != DSP_WINDOW_UNIFORM || centred) {
    SIGVEX_TRY(dspi::swap_halves2<T>(y));
  }
  const bool two_sided = flags & DSP_SPECTRUM_TWO_SIDED;
  if (flags & DSP_SPECTRUM_SUM) {
    SIGVEX_TRY(dspi::scale<T>(y, static_cast<T>(points<T>(y))));
  } else if (!two_sided) {
    SIGVEX_TRY(dspi::scale<T>(y, T(2)));
  }
  if (!two_sided && !y.complex) return dspi::rdft<T>(y);
  SIGVEX_TRY(dspi::dft<T>(y, 0));
  return dspi::swap_halves<T>(y);
}

template <class T> Status two_reals(Vector<T>& state) {
  SIGVEX_TRY(dspi::real<T>(state));
  SIGVEX_TRY(dspi::zpad<T>(state, 2));
  state.points = 2;
  return kSuccess;
}

// The number of the frame after `so_far` others.
template <class T> int32_t next_frame(T so_far) {
  constexpr int32_t kLast = std::numeric_limits<int32_t>::max();
  if (!(so_far >= 0)) return 1;
  return so_far < static_cast<T>(kLast) ? static_cast<int32_t>(so_far) + 1 : kLast;
}

}  // namespace

namespace dsph {

template <class T>
Status avg(const Vector<T>& current, Vector<T>& accumulator, Vector<T>* work, uint32_t flags, int32_t count,
           int32_t reference, T weight, T length) {
  if (!work || shares<T>(*work, current) || shares<T>(*work, accumulator)) {
    Scratch<T> own;
    return avg<T>(current, accumulator, &own, flags, count, reference, weight, length);
  }
  const uint32_t mode = flags & kModes;
  const bool first = count <= 1;
  if (!first && mode > DSP_AVG_SYNCHRONOUS) return kSuccess;
  const size_t n = points<T>(current);
  if (!first && mode != DSP_AVG_LAST && points<T>(accumulator) != n) return kFailure;
  const bool turned = mode == DSP_AVG_SYNCHRONOUS && !first && n > 0;
  if (turned && reference >= current.points) return kFailure;

  Current<T> c(current, *work);
  SIGVEX_TRY(c.prepare(flags));
  if (turned) {
    SIGVEX_TRY(c.turn(reference < 0 ? strongest<T>(accumulator) : static_cast<size_t>(reference), accumulator));
  }
  if (first || mode == DSP_AVG_LAST) return dsp::copy<T>(accumulator, *c);
  const T w = frame_weight(flags, count, weight, length);
  switch (mode) {
    case DSP_AVG_MAX:
      return dspb::max<T>(accumulator, *c, accumulator);
    case DSP_AVG_MIN:
      return dspb::min<T>(accumulator, *c, accumulator);
    case DSP_AVG_HARMONIC:
      return mean_through<T>(dspi::recip<T>, dspi::recip<T>, c, accumulator, w);
    case DSP_AVG_GEOMETRIC:
      return mean_through<T>(dspi::log<T>, dspi::exp<T>, c, accumulator, w);
    default:
      return dspb::avg_add<T>(*c, accumulator, accumulator, w);
  }
}

template <class T>
Status dft(const Vector<T>& x, Vector<T>& y, Vector<T>* accumulator, Vector<T>* state, uint32_t type, uint32_t flags) {
  if (!(flags & DSP_SPECTRUM_AVERAGE)) return frame_spectrum<T>(x, y, type, flags);
  if (!accumulator || !state || shares<T>(*state, x) || shares<T>(*state, y) || shares<T>(*state, *accumulator)) {
    return kFailure;
  }
  if (shares<T>(y, *accumulator)) {  // the average so far must outlive the spectrum
    Scratch<T> own;
    SIGVEX_TRY(dft<T>(x, own, accumulator, state, type, flags));
    return dsp::copy<T>(y, own);
  }
  SIGVEX_TRY(frame_spectrum<T>(x, y, type, flags));
  SIGVEX_TRY(two_reals<T>(*state));
  const int32_t count = next_frame(state->data[0]);
  const uint32_t averaging = flags / DSP_SPECTRUM_AVG_FACTOR & 0xFF;
  SIGVEX_TRY(avg<T>(y, *accumulator, nullptr, averaging, count, -1, T(-1), state->data[1]));
  state->data[0] = static_cast<T>(count);
  return dsp::copy<T>(y, *accumulator);
}

template <class T>
Status fft(const Vector<T>& x, Vector<T>& y, Vector<T>* accumulator, Vector<T>* state, uint32_t type, uint32_t flags) {
  return dft<T>(x, y, accumulator, state, type, flags);
}

}  // namespace dsph
}  // namespace sigvex

SIGVEX_EXPORT(h, fft, 6)
SIGVEX_EXPORT(h, dft, 6)
SIGVEX_EXPORT(h, avg, 8)
