// e^x: x = n ln 2 / 16 + r, e^x = 2^(n div 16) 2^((n mod 16)/16) e^r, the middle factor from a table.
#if defined(SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#undef SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#else
#define SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#endif

#include <algorithm>
#include <cmath>
#include <numbers>

#include "elementwise/lanes-inl.h"
#include "elementwise/math_tables.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// e^x as scale + scale * fraction, |fraction| < 0.022, times 2^power. For results, and scales, that are normal numbers.
template <class T> struct Exponential { V<T> scale, fraction; };

template <class T, int kPower = 0> HWY_INLINE Exponential<T> exponential(V<T> x) {
  const Whole<T> n = whole<T>(x, 16 * std::numbers::log2e);
  const V<T> rest = negmuladd(n.value, set<T>(kLn2Over16<T>[0]), x);
  const V<T> r = negmuladd(n.value, set<T>(kLn2Over16<T>[1]), rest);
  VI<T> scale = bits<T>(lookup16(kExp2<T>, n.bits)) + hn::ShiftLeft<kFraction<T> - 4>(n.bits);
  if constexpr (kPower != 0) scale = scale + set_bits<T>(static_cast<Bits<T>>(kPower) << kFraction<T>);
  const V<T> fraction = muladd(r * r, polynomial(kExp<T>, r), r);
  return {from_bits<T>(scale), fraction + lookup16(kExp2Error<T>, n.bits)};
}
template <class T> HWY_INLINE V<T> rounded(Exponential<T> e) { return muladd(e.scale, e.fraction, e.scale); }

// The largest argument whose exponential, and its inverse, are well inside the range of normal numbers.
template <class T> constexpr T kExpLimit = kDouble<T> ? 708 : 87;

// e^x for x up to a limit, the smaller of kExpLimit and what is given; denormals included, NaN stays.
template <class T> HWY_INLINE V<T> exp_up_to(T limit, V<T> x) {
  const M<T> fine = hn::Ge(x, set<T>(-kExpLimit<T>));
  const V<T> y = rounded(exponential<T>(hn::Min(x, set<T>(std::min(limit, kExpLimit<T>)))));
  return patch<T>(
      fine, y, [](double at) { return std::exp(at); }, x);
}

// The rules of dspi_exp and dspi_exp10.
template <class T> HWY_INLINE V<T> exp_capped(V<T> x) {
  constexpr T kLimit = Limits<T>::ln_huge;
  return hn::IfThenElse(hn::Gt(x, set<T>(kLimit)), set<T>(Limits<T>::huge), exp_up_to<T>(kLimit, x));
}
// A part out of range counts as huge, and so does its power: below -huge and NaN give huge as well.
template <class T> HWY_INLINE V<T> exp10_capped(V<T> x) {
  const M<T> inside = hn::And(hn::Le(x, set<T>(Limits<T>::log10_huge)), hn::Ge(x, set<T>(-Limits<T>::huge)));
  const V<T> power = exp_up_to<T>(kExpLimit<T>, hn::IfThenElseZero(inside, x) * set<T>(std::numbers::ln10));
  return hn::IfThenElse(inside, power, set<T>(Limits<T>::huge));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
