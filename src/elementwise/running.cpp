// dspi_differ dspi_pdiffer dspi_integ dspi_unwrap dspi_unwrap_wnd
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "core/exports.h"
#include "core/fetch.h"
#include "core/limits.h"
#include "elementwise/operations.h"

namespace sigvex::dspi {
namespace {

template <class T> constexpr T kTurn = 2 * std::numbers::pi_v<T>;

// std::fmod by one period, and exact as that is: the period in two parts, of which a quotient of up to 22 bits makes
// exact products; as the upper part is rounded up, the differences are exact too.
template <class T> class Modulo {
 public:
  explicit Modulo(T period) : period_(period) {
    constexpr uint64_t kLower = (uint64_t{1} << 22) - 1;
    upper_ = std::bit_cast<double>((std::bit_cast<uint64_t>(period_) + kLower) & ~kLower);
    lower_ = period_ - upper_;
    limit_ = std::isfinite(upper_) ? 0x1p22 : 0;
  }
  T operator()(T x) const {
    const double size = std::abs(x), quotient = size / period_;
    if (!(quotient < limit_)) return std::fmod(x, static_cast<T>(period_));
    const double q = static_cast<int>(quotient);
    const double rest = (size - q * upper_) - q * lower_;
    return std::copysign(static_cast<T>(rest < 0 ? rest + period_ : rest), x);  // the quotient may be rounded up
  }

  // A whole number of periods, in the two parts.
  struct Multiple {
    double upper = 0, lower = 0;
  };
  Multiple multiple_in(T x) const {
    const double q = std::nearbyint(static_cast<double>(x) / period_);
    return std::abs(q) < limit_ ? Multiple{q * upper_, q * lower_} : Multiple{};
  }

 private:
  double period_, upper_, lower_, limit_;
};

// A step of a periodic quantity, by the shorter way; half a period stays as it is.
template <class T> T wrapped(T step, T period, const Modulo<T>& modulo) {
  const T half = period / 2;
  if (step >= -half && step <= half) return step;
  const T rest = modulo(step);
  if (rest > half) return rest - period;
  return rest < -half ? rest + period : rest;
}

// rule(step) / delta for the step to each scalar from the one `width` before it, which is 0 at the start. From the last
// to the first: each still finds its predecessor as it was. The CPU fetches too late for wide vectors that go
// backwards.
template <class T, class F> Status differences(Vector<T>& v, F rule) {
  const T rate = v.delta == 0 ? Limits<T>::huge : 1 / v.delta;
  const size_t width = v.complex ? 2 : 1, n = size<T>(v);
  T* const x = v.data;
  on_widest_vectors(n, [=] {
    constexpr size_t kSome = 16 * kCacheLine<T>, kAhead = 6 * kSome;
    for (size_t end = n, first; end > width; end = first) {
      first = end > width + kSome ? end - kSome : width;
      for (size_t k = 0; k < kSome; k += kCacheLine<T>) fetch(x, first - kAhead + k);
      for (size_t k = end; k-- > first;) x[k] = rule(x[k] - x[k - width]) * rate;
    }
  });
  for (size_t k = 0; k < width && k < n; ++k) x[k] = rule(x[k]) * rate;
  return kSuccess;
}

}  // namespace

template <class T> Status differ(Vector<T>& v) {
  return differences<T>(v, [](T step) { return step; });
}

template <class T> Status pdiffer(Vector<T>& v) {
  if (v.complex) return kFailure;
  const Modulo<T> turns(kTurn<T>);
  return differences<T>(v, [&turns](T step) { return wrapped(step, kTurn<T>, turns); });
}

template <class T> Status integ(Vector<T>& v) {
  const T step = v.delta;
  T* const x = v.data;
  const size_t n = size<T>(v);
  T re = 0, im = 0;
  if (v.complex) {
    for (size_t k = 0; k < n; k += 2) {
      x[k] = step * (re += x[k]);
      x[k + 1] = step * (im += x[k + 1]);
    }
  } else {
    for (size_t k = 0; k < n; ++k) x[k] = step * (re += x[k]);
  }
  return kSuccess;
}

// A step within half a period leaves the sample as it is, to the bit.
template <class T> Status unwrap_wnd(Vector<T>& v, T period) {
  if (v.complex || !(period > 0)) return kFailure;
  const Modulo<T> modulo(period);
  const T half = period / 2;
  T* const x = v.data;
  T previous = 0;
  typename Modulo<T>::Multiple turns;  // of the last long step: mostly those of the next one
  for (size_t k = 0, n = points<T>(v); k < n; ++k) {
    const T step = x[k] - previous;
    if (std::abs(step) <= half) {
      previous = x[k];
      continue;
    }
    // A step of half a period or more less its turns is exact, as the modulo is; ties and zeros go by the step's sign.
    T shorter = static_cast<T>((step - turns.upper) - turns.lower);
    if (!(std::abs(shorter) < half) || shorter == 0) {
      shorter = wrapped(step, period, modulo);
      turns = modulo.multiple_in(step - shorter);
    }
    x[k] = previous += shorter;
  }
  return kSuccess;
}

template <class T> Status unwrap(Vector<T>& v) { return unwrap_wnd<T>(v, kTurn<T>); }

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, differ, 1)
SIGVEX_EXPORT(i, pdiffer, 1)
SIGVEX_EXPORT(i, integ, 1)
SIGVEX_EXPORT(i, unwrap_wnd, 2)
SIGVEX_EXPORT(i, unwrap, 1)
