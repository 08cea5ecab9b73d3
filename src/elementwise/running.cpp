// dspi_differ dspi_pdiffer dspi_integ dspi_unwrap dspi_unwrap_wnd
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/operations.h"

namespace sigvex::dspi {
namespace {

template <class T> constexpr T kTurn = 2 * std::numbers::pi_v<T>;

// A step of a periodic quantity, by the shorter way; half a period stays as it is.
template <class T> T wrapped(T step, T period) {
  const T half = period / 2;
  if (step >= -half && step <= half) return step;
  const T rest = std::fmod(step, period);
  if (rest > half) return rest - period;
  return rest < -half ? rest + period : rest;
}

// rule(step) / delta for the step to each scalar from the one `width` before it, which is 0 at the start. From the last
// to the first: each still finds its predecessor as it was.
template <class T, class F> Status differences(Vector<T>& v, F rule) {
  const T rate = v.delta == 0 ? Limits<T>::huge : 1 / v.delta;
  const size_t width = v.complex ? 2 : 1, n = size<T>(v);
  T* const x = v.data;
  for (size_t k = n; k-- > width;) x[k] = rule(x[k] - x[k - width]) * rate;
  for (size_t k = 0; k < width && k < n; ++k) x[k] = rule(x[k]) * rate;
  return kSuccess;
}

}  // namespace

template <class T> Status differ(Vector<T>& v) {
  return differences<T>(v, [](T step) { return step; });
}

template <class T> Status pdiffer(Vector<T>& v) {
  if (v.complex) return kFailure;
  return differences<T>(v, [](T step) { return wrapped(step, kTurn<T>); });
}

template <class T> Status integ(Vector<T>& v) {
  const T step = v.delta;
  if (v.complex) {
    Point<T> sum{0, 0};
    return each_point<T>(v, [&sum, step](Point<T> z) -> Point<T> {
      sum = {sum.re + z.re, sum.im + z.im};
      return {step * sum.re, step * sum.im};
    });
  }
  T sum = 0;
  return each_scalar<T>(v, [&sum, step](T x) { return step * (sum += x); });
}

// A step within half a period leaves the sample as it is, to the bit.
template <class T> Status unwrap_wnd(Vector<T>& v, T period) {
  if (v.complex || !(period > 0)) return kFailure;
  T previous = 0;
  return each_scalar<T>(v, [&previous, period](T x) {
    const T step = x - previous, shorter = wrapped(step, period);
    return previous = shorter == step ? x : previous + shorter;
  });
}

template <class T> Status unwrap(Vector<T>& v) { return unwrap_wnd<T>(v, kTurn<T>); }

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, differ, 1)
SIGVEX_EXPORT(i, pdiffer, 1)
SIGVEX_EXPORT(i, integ, 1)
SIGVEX_EXPORT(i, unwrap_wnd, 2)
SIGVEX_EXPORT(i, unwrap, 1)
