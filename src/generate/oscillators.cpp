// dspc_cexp dspc_cos
#include <array>
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex::dspc {
namespace {

// A phasor turned sample by sample drifts by its rounding; computed afresh every so many samples, it cannot go far.
constexpr size_t kRestart = 256;

// The angles are double in both precisions: in float, k0 w would have lost its fraction long before the end of a
// record.
template <class T> class Oscillator {
 public:
  Oscillator(double delta, double frequency, double phase)
      : w_((std::numbers::pi * delta + std::numbers::pi * delta) * frequency),
        phase_(phase),
        step_{static_cast<T>(std::cos(w_)), static_cast<T>(std::sin(w_))} {}

  // store(k, z) for each of n samples. Stretches do not depend on one another: several side by side hide the latency of
  // the rotation.
  template <class F> void run(size_t n, F store) const {
    constexpr size_t kSide = 4;
    size_t k = 0;
    for (; n - k >= kSide * kRestart; k += kSide * kRestart) stretches<kSide>(k, kRestart, store);
    for (; k < n; k += kRestart) stretches<1>(k, n - k < kRestart ? n - k : kRestart, store);
  }

 private:
  Point<T> start(size_t first) const {
    const double angle = static_cast<double>(first) * w_ + phase_;
    return {static_cast<T>(std::cos(angle)), static_cast<T>(std::sin(angle))};
  }

  template <size_t Side, class F> void stretches(size_t first, size_t length, F store) const {
    std::array<Point<T>, Side> z;
    for (size_t s = 0; s < Side; ++s) z[s] = start(first + s * kRestart);
    for (size_t k = first; k < first + length; ++k) {
      for (size_t s = 0; s < Side; ++s) {
        store(k + s * kRestart, z[s]);
        z[s] = {z[s].re * step_.re - z[s].im * step_.im, z[s].re * step_.im + z[s].im * step_.re};
      }
    }
  }

  double w_, phase_;
  Point<T> step_;
};

}  // namespace

template <class T> Status cos(Vector<T>& v, double frequency, double phase) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  T* const x = v.data;
  Oscillator<T>(v.delta, frequency, phase).run(points<T>(v), [x](size_t k, Point<T> z) { x[k] = z.re; });
  if (!v.complex) return kSuccess;
  v.complex = 0;
  return dspi::rtoc<T>(v);
}

template <class T> Status cexp(Vector<T>& v, double frequency, double phase) {
  if (!v.complex) return cos<T>(v, frequency, phase);
  SIGVEX_TRY(dsp::alloc<T>(v));
  Oscillator<T>(v.delta, frequency, phase).run(points<T>(v), [&v](size_t k, Point<T> z) { set_point<T>(v, k, z); });
  return kSuccess;
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, cexp, 3)
SIGVEX_EXPORT(c, cos, 3)
