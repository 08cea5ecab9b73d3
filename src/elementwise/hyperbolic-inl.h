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
template <class T> struct Halves { Exponential<T> growing, falling; };
template <class T> HWY_INLINE Halves<T> halves_of(V<T> x) {
  return {exponential<T, -1>(x), exponential<T, -1>(hn::Neg(hn::Min(x, set<T>(40))))};
}
template <class T> HWY_INLINE V<T> low_part(Exponential<T> e) { return e.scale * e.fraction; }

template <class T> HWY_INLINE V<T> cosh(V<T> x) {
  const V<T> a = hn::Abs(x);
  const auto [growing, falling] = halves_of<T>(a);
  const Sum<T> sum = fast_sum<T>(growing.scale, falling.scale);
  const V<T> y = sum.high + (sum.low + (low_part(growing) + low_part(falling)));
  return patch<T>(
      hn::Le(a, set<T>(kExpLimit<T>)), y, [](double at) { return std::cosh(at); }, x);
}

template <class T> HWY_INLINE V<T> sinh(V<T> x) {
  const V<T> a = hn::Abs(x), square = a * a;
  const auto [growing, falling] = halves_of<T>(a);
  const Sum<T> sum = fast_sum<T>(growing.scale, hn::Neg(falling.scale));
  const V<T> far = sum.high + (sum.low + (low_part(growing) - low_part(falling)));
  const V<T> near = muladd(a * square, polynomial(kSinh<T>, square), a);
  const V<T> y = with_sign_of<T>(x, hn::IfThenElse(hn::Lt(a, set<T>(1)), near, far));
  return patch<T>(
      hn::Le(a, set<T>(kExpLimit<T>)), y, [](double at) { return std::sinh(at); }, x);
}

// 1 - 2 / (e^2x + 1) away from 0
template <class T> HWY_INLINE V<T> tanh(V<T> x) {
  const V<T> a = hn::Abs(x), square = a * a, one = set<T>(1);
  const Exponential<T> power = exponential<T>(hn::Min(a + a, set<T>(40)));
  const Sum<T> below = fast_sum<T>(power.scale, one), sum = fast_sum<T>(below.high, below.low + low_part<T>(power));
  const V<T> inverse = one / sum.high, twice = inverse + inverse;
  const V<T> rest = (remainder<T>(one, inverse, sum.high) - inverse * sum.low) * twice;  // what twice lacks
  const Sum<T> difference = fast_sum<T>(one, hn::Neg(twice));
  const V<T> far = difference.high + (difference.low - rest);
  const V<T> near = muladd(a * square, polynomial(kTanh<T>, square), a);
  return with_sign_of<T>(x, hn::IfThenElse(hn::Lt(a, set<T>(0.5625)), near, hn::IfThenElse(hn::Eq(x, x), far, x)));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
