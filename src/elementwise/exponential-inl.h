// e^x: x = n ln 2 / 16 + r, e^x = 2^(n div 16) 2^((n mod 16)/16) e^r, the middle factor from a table.
#if defined(SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#undef SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#else
#define SIGVEX_ELEMENTWISE_EXPONENTIAL_INL_H
#endif

#include <cmath>
#include <numbers>

#include "elementwise/lanes-inl.h"
#include "elementwise/math_tables.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// e^x as scale + scale * fraction, |fraction| < 0.022, times 2^power. For results, and scales, that are normal numbers.
struct Exponential {
  V scale, fraction;
};

template <class T> HWY_INLINE Exponential exponential(V x, int power = 0) {
  const Whole n = whole(x, 16 * std::numbers::log2e);
  // The first part of ln 2 / 16 has so few bits that its product with n is exact.
  const V r = negmuladd(n.value, set(0x1.cf79abc9e3b3ap-44), negmuladd(n.value, set(0x1.62e42fefap-5), x));
  const VI two_to_n = hn::ShiftLeft<52>(hn::ShiftRight<4>(n.bits) + hn::Set(di, static_cast<uint64_t>(power)));
  const V scale = from_bits(bits(lookup16(kExp2, n.bits)) + two_to_n);
  V fraction = muladd(r * r, polynomial(kExp<T>, r), r);
  if constexpr (kDouble<T>) fraction = fraction + lookup16(kExp2Error, n.bits);
  return {scale, fraction};
}
HWY_INLINE V rounded(Exponential e) { return muladd(e.scale, e.fraction, e.scale); }

// e^x, infinity and denormals included.
template <class T> HWY_INLINE V exp(V x) {
  const M fine = hn::Le(hn::Abs(x), set(kDouble<T> ? 708 : 200));
  return patch(
      fine, rounded(exponential<T>(x)), [](double at) { return std::exp(at); }, x);
}

// The rules of dspi_exp and dspi_exp10.
template <class T> HWY_INLINE V exp_capped(V x) {
  const M over = hn::Gt(x, set(Limits<T>::ln_huge));
  const V within = hn::IfThenElse(over, hn::Zero(d), x);
  return hn::IfThenElse(over, set(Limits<T>::huge), exp<T>(within));
}
// A part out of range counts as huge, and so does its power: below -huge and NaN give huge as well.
template <class T> HWY_INLINE V exp10_capped(V x) {
  const M inside = hn::And(hn::Le(x, set(Limits<T>::log10_huge)), hn::Ge(x, set(-Limits<T>::huge)));
  const V within = hn::IfThenElseZero(inside, x);
  return hn::IfThenElse(inside, exp<T>(within * set(std::numbers::ln10)), set(Limits<T>::huge));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
