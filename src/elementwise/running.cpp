// dspi_differ dspi_integ dspi_unwrap
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/operations.h"

namespace sigvex::dspi {

// From the last sample to the first: each still finds its predecessor as it was.
template <class T> Status differ(Vector<T>& v) {
  const T rate = v.delta == 0 ? Limits<T>::huge : 1 / v.delta;
  const size_t width = v.complex ? 2 : 1, n = size<T>(v);
  T* const x = v.data;
  for (size_t k = n; k-- > width;) x[k] = (x[k] - x[k - width]) * rate;
  for (size_t k = 0; k < width && k < n; ++k) x[k] *= rate;
  return kSuccess;
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

template <class T> Status unwrap(Vector<T>& v) {
  if (v.complex) return kFailure;
  constexpr T pi = std::numbers::pi_v<T>, turn = 2 * pi;
  T previous = 0;
  return each_scalar<T>(v, [&previous](T x) {
    const T step = x - previous;
    if (step >= -pi && step <= pi) return previous = x;
    T rest = std::fmod(step, turn);
    if (rest > pi) {
      rest -= turn;
    } else if (rest < -pi) {
      rest += turn;
    }
    return previous += rest;
  });
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, differ, 1)
SIGVEX_EXPORT(i, integ, 1)
SIGVEX_EXPORT(i, unwrap, 1)
