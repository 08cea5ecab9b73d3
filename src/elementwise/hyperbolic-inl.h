// sinh, cosh, tanh from e^|x| and e^-|x|, each in two parts; near 0, where these cancel, from a polynomial.
#if defined(SIGVEX_ELEMENTWISE_HYPERBOLIC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_HYPERBOLIC_INL_H
#undef SIGVEX_ELEMENTWISE_HYPERBOLIC_INL_H
#else
#define SIGVEX_ELEMENTWISE_HYPERBOLIC_INL_H
#endif

#include "elementwise/circular-inl.h"
#include "elementwise/exponential-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// Half of e^x and of e^-x, x >= 0; the latter is not needed to full precision, nor below what counts beside the former.
struct Halves {
  Exponential growing, falling;
};
template <class T> HWY_INLINE Halves halves_of(V x) {
  return {exponential<T>(x, -1), exponential<T>(hn::Neg(hn::Min(x, set(40))), -1)};
}
HWY_INLINE V low_part(Exponential e) { return e.scale * e.fraction; }

template <class T> HWY_INLINE V cosh(V x) {
  const V a = hn::Abs(x);
  const auto [growing, falling] = halves_of<T>(a);
  const Sum sum = fast_sum(growing.scale, falling.scale);
  const V y = sum.high + (sum.low + (low_part(growing) + low_part(falling)));
  return patch(
      hn::Le(a, set(709)), y, [](double at) { return std::cosh(at); }, x);
}

template <class T> HWY_INLINE V sinh(V x) {
  const V a = hn::Abs(x), square = a * a;
  const auto [growing, falling] = halves_of<T>(a);
  const Sum sum = fast_sum(growing.scale, hn::Neg(falling.scale));
  const V far = sum.high + (sum.low + (low_part(growing) - low_part(falling)));
  const V near = muladd(a * square, polynomial(kSinh<T>, square), a);
  const V y = with_sign_of(x, hn::IfThenElse(hn::Lt(a, set(1)), near, far));
  return patch(
      hn::Le(a, set(709)), y, [](double at) { return std::sinh(at); }, x);
}

// 1 - 2 / (e^2x + 1) away from 0
template <class T> HWY_INLINE V tanh(V x) {
  const V a = hn::Abs(x), square = a * a, one = set(1);
  const Exponential power = exponential<T>(hn::Min(a + a, set(40)));
  V far;
  if constexpr (kDouble<T>) {
    const Sum below = fast_sum(power.scale, one), sum = fast_sum(below.high, below.low + low_part(power));
    const V inverse = one / sum.high;  // what it lacks, times two: the second factor of the last product
    const V rest = (remainder(one, inverse, sum.high) - inverse * sum.low) * (inverse + inverse);
    const Sum difference = fast_sum(one, hn::Neg(inverse + inverse));
    far = difference.high + (difference.low - rest);
  } else {
    far = one - set(2) / (rounded(power) + one);
  }
  const V near = muladd(a * square, polynomial(kTanh<T>, square), a);
  return with_sign_of(x, hn::IfThenElse(hn::Lt(a, set(0.5625)), near, hn::IfThenElse(hn::Eq(x, x), far, x)));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
