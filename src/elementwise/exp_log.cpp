// dspi_exp dspi_exp10 dspi_log dspi_log10 dspi_db dspi_sqrt
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex::dspi {
namespace {

template <class T> constexpr T kLn10 = T(2.302585092994046);
template <class T> constexpr T kLog10E = T(0.4342944819032518);

template <class T> T exp_capped(T x) { return x > Limits<T>::ln_huge ? Limits<T>::huge : std::exp(x); }

// A part out of range counts as huge, and so does its power: below -huge and NaN give huge as well.
template <class T> T exp10_capped(T x) {
  const bool inside = x <= Limits<T>::log10_huge && x >= -Limits<T>::huge;
  return inside ? std::exp(x * kLn10<T>) : Limits<T>::huge;
}

}  // namespace

template <class T> Status exp(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, exp_capped<T>);
  return each_point<T>(v, [](Point<T> z) { return rectangular(exp_capped(z.re), z.im); });
}

template <class T> Status exp10(Vector<T>& v) {
  if (!v.complex) return each_scalar<T>(v, exp10_capped<T>);
  return each_point<T>(v, [](Point<T> z) { return rectangular(exp10_capped(z.re), z.im * kLn10<T>); });
}

// Out of range the magnitude is capped, |z|^2 counting as huge, and the parts are clamped for the angle only.
template <class T> Status log(Vector<T>& v) {
  using L = Limits<T>;
  if (!v.complex) return each_scalar<T>(v, [](T x) { return x >= L::tiny ? std::log(x) : L::ln_tiny; });
  return each_point<T>(v, [](Point<T> z) -> Point<T> {
    const T m = magsq_capped(z);
    if (m < L::tiny) return {L::ln_tiny, 0};
    const Point<T> c = clamped(z);
    return {T(0.5) * std::log(m), std::atan2(c.im, c.re)};
  });
}

// Unlike log, the parts are clamped first, so that |z|^2 reaches beyond huge.
template <class T> Status db(Vector<T>& v, T factor) {
  using L = Limits<T>;
  if (!v.complex) {
    return each_scalar<T>(v, [=](T x) { return factor * (x >= L::tiny ? std::log10(x) : L::log10_tiny); });
  }
  return each_point<T>(v, [=](Point<T> z) -> Point<T> {
    const Point<T> c = clamped(z);
    const T m = magsq(c);
    if (m < L::tiny) return {factor * L::log10_tiny, 0};
    return {factor * T(0.5) * std::log10(m), factor * kLog10E<T> * std::atan2(c.im, c.re)};
  });
}

template <class T> Status log10(Vector<T>& v) { return db<T>(v, 1); }

template <class T> Status sqrt(Vector<T>& v) {
  return v.complex ? each_point<T>(v, RootOrZero()) : each_scalar<T>(v, RootOrZero());
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, exp, 1)
SIGVEX_EXPORT(i, exp10, 1)
SIGVEX_EXPORT(i, log, 1)
SIGVEX_EXPORT(i, log10, 1)
SIGVEX_EXPORT(i, db, 2)
SIGVEX_EXPORT(i, sqrt, 1)
