// The rules of complex points that need elementary functions.
#if defined(SIGVEX_ELEMENTWISE_POINTS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_POINTS_INL_H
#undef SIGVEX_ELEMENTWISE_POINTS_INL_H
#else
#define SIGVEX_ELEMENTWISE_POINTS_INL_H
#endif

#include "elementwise/arc-inl.h"
#include "elementwise/exponential-inl.h"
#include "elementwise/logarithm-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

HWY_INLINE V magsq(Points z) { return z.re * z.re + z.im * z.im; }
template <class T> HWY_INLINE M bounded(Points z) { return hn::And(bounded<T>(z.re), bounded<T>(z.im)); }
template <class T> HWY_INLINE Points clamped(Points z) { return {clamped<T>(z.re), clamped<T>(z.im)}; }
template <class T> HWY_INLINE V magsq_capped(Points z) {
  return hn::IfThenElse(bounded<T>(z), magsq(z), set(Limits<T>::huge));
}

// Out of range the magnitude is capped, |z|^2 counting as huge, and the parts are clamped for the angle only.
template <class T> HWY_INLINE Points log_of_point(Points z) {
  const V m = magsq_capped<T>(z);
  const M normal = hn::Ge(m, set(Limits<T>::tiny));
  const Points c = clamped<T>(z);
  const V re = set(0.5) * ln<T>(m), im = atan2<T>(c.im, hn::IfThenElse(normal, c.re, set(1)));
  return {hn::IfThenElse(normal, re, set(Limits<T>::ln_tiny)), hn::IfThenElseZero(normal, im)};
}

// Unlike the natural logarithm, the parts are clamped first, so that |z|^2 reaches beyond huge.
template <class T> HWY_INLINE Points db_of_point(Points z, V factor) {
  const Points c = clamped<T>(z);
  const V m = magsq(c);
  const M normal = hn::Ge(m, set(Limits<T>::tiny));
  const V re = factor * set(0.5) * log10<T>(m);
  const V im = factor * set(std::numbers::log10e) * atan2<T>(c.im, hn::IfThenElse(normal, c.re, set(1)));
  return {hn::IfThenElse(normal, re, factor * set(Limits<T>::log10_tiny)), hn::IfThenElseZero(normal, im)};
}

// A double root of a float rounds to the root of the float. -0.0 stays.
template <class T> HWY_INLINE V root_or_zero(V x) { return hn::IfThenElseZero(hn::Ge(x, hn::Zero(d)), hn::Sqrt(x)); }

// The principal root.
template <class T> HWY_INLINE Points root_of_point(Points z) {
  const V r = hn::Sqrt(hn::IfThenElse(bounded<T>(z), hn::Sqrt(magsq(z)), set(Limits<T>::huge)));
  const M origin = hn::Not(hn::Gt(r, hn::Zero(d)));
  const Points root = rectangular<T>(r, atan2<T>(z.im, hn::IfThenElse(origin, set(1), z.re)) * set(0.5));
  return {hn::IfThenZeroElse(origin, root.re), hn::IfThenZeroElse(origin, root.im)};
}

// sqrt(re^2 + im^2). In double precision the squares are summed in two parts where that cannot overflow or underflow.
template <class T> HWY_INLINE V hypot(V re, V im) {
  if constexpr (!kDouble<T>) {
    const V magnitude = hn::Sqrt(magsq({re, im})), infinity = set(HUGE_VAL);
    const M infinite = hn::Or(hn::Eq(hn::Abs(re), infinity), hn::Eq(hn::Abs(im), infinity));
    return hn::IfThenElse(infinite, infinity, magnitude);
  } else {
    const V ax = hn::Abs(re), ay = hn::Abs(im), large = hn::Max(ax, ay), small = hn::Min(ax, ay);
    const V square = large * large, other = small * small;
    const Sum sum = fast_sum(square, other);
    const V low = sum.low - (remainder(square, large, large) + remainder(other, small, small));
    const V root = hn::Sqrt(sum.high);
    const V y = muladd(remainder(sum.high, root, root) + low, set(0.5) / hn::Max(root, set(0x1p-500)), root);
    const M large_enough = hn::Or(hn::Ge(large, set(0x1p-400)), hn::Eq(large, hn::Zero(d)));
    const M fine = hn::And(hn::Le(ax + ay, set(0x1p500)), large_enough);  // not NaN
    return patch(
        fine, y, [](double x, double y_) { return std::hypot(x, y_); }, re, im);
  }
}

template <class T> HWY_INLINE Points polar(Points z) {
  const Points c = clamped<T>(z);
  return {hypot<T>(c.re, c.im), angle<T>(c.im, c.re)};
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
