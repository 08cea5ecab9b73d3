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

template <class T> HWY_INLINE V<T> magsq(Points<T> z) { return z.re * z.re + z.im * z.im; }
template <class T> HWY_INLINE M<T> bounded(Points<T> z) { return hn::And(bounded<T>(z.re), bounded<T>(z.im)); }
template <class T> HWY_INLINE Points<T> clamped(Points<T> z) { return {clamped<T>(z.re), clamped<T>(z.im)}; }
template <class T> HWY_INLINE V<T> magsq_capped(Points<T> z) {
  return hn::IfThenElse(bounded<T>(z), magsq(z), set<T>(Limits<T>::huge));
}

// Out of range the magnitude is capped, |z|^2 counting as huge, and the parts are clamped for the angle only.
template <class T> HWY_INLINE Points<T> log_of_point(Points<T> z) {
  const V<T> m = magsq_capped<T>(z);
  const M<T> normal = hn::Ge(m, set<T>(Limits<T>::tiny));
  const Points<T> c = clamped<T>(z);
  const V<T> re = set<T>(0.5) * ln<T>(m), im = atan2<T>(c.im, hn::IfThenElse(normal, c.re, set<T>(1)));
  return {hn::IfThenElse(normal, re, set<T>(Limits<T>::ln_tiny)), hn::IfThenElseZero(normal, im)};
}

// Unlike the natural logarithm, the parts are clamped first, so that |z|^2 reaches beyond huge.
template <class T> HWY_INLINE Points<T> db_of_point(Points<T> z, V<T> factor) {
  const Points<T> c = clamped<T>(z);
  const V<T> m = magsq(c);
  const M<T> normal = hn::Ge(m, set<T>(Limits<T>::tiny));
  const V<T> re = factor * set<T>(0.5) * log10<T>(m);
  const V<T> im = factor * set<T>(std::numbers::log10e) * atan2<T>(c.im, hn::IfThenElse(normal, c.re, set<T>(1)));
  return {hn::IfThenElse(normal, re, factor * set<T>(Limits<T>::log10_tiny)), hn::IfThenElseZero(normal, im)};
}

// -0.0 stays.
template <class T> HWY_INLINE V<T> root_or_zero(V<T> x) {
  return hn::IfThenElseZero(hn::Ge(x, zero<T>()), hn::Sqrt(x));
}

// The principal root as magnitude and angle.
template <class T> HWY_INLINE Points<T> polar_root_of_point(Points<T> z) {
  const V<T> r = hn::Sqrt(hn::IfThenElse(bounded<T>(z), hn::Sqrt(magsq(z)), set<T>(Limits<T>::huge)));
  const M<T> origin = hn::Not(hn::Gt(r, zero<T>()));
  const V<T> angle = atan2<T>(z.im, hn::IfThenElse(origin, set<T>(1), z.re)) * set<T>(0.5);
  return {hn::IfThenZeroElse(origin, r), hn::IfThenZeroElse(origin, angle)};
}

// sqrt(re^2 + im^2), the squares summed in two parts where that neither overflows nor underflows.
template <class T> HWY_INLINE V<T> hypot(V<T> re, V<T> im) {
  const V<T> ax = hn::Abs(re), ay = hn::Abs(im), large = hn::Max(ax, ay), small = hn::Min(ax, ay);
  const V<T> square = large * large, other = small * small;
  const Sum<T> sum = fast_sum<T>(square, other);
  const V<T> low = sum.low - (remainder<T>(square, large, large) + remainder<T>(other, small, small));
  const V<T> root = hn::Sqrt(sum.high),
             half_inverse = set<T>(0.5) * rough_inverse<T>(hn::Max(root, set<T>(Limits<T>::tiny)));
  const V<T> y = muladd(remainder<T>(sum.high, root, root) + low, half_inverse, root);
  const M<T> large_enough = hn::Or(hn::Ge(large, set<T>(kDouble<T> ? 0x1p-400 : 0x1p-40)), hn::Eq(large, zero<T>()));
  const M<T> fine = hn::And(hn::Le(ax + ay, set<T>(kDouble<T> ? 0x1p500 : 0x1p60)), large_enough);  // not NaN
  return patch<T>(
      fine, y, [](double x, double y_) { return std::hypot(x, y_); }, re, im);
}

template <class T> HWY_INLINE Points<T> polar(Points<T> z) {
  const Points<T> c = clamped<T>(z);
  return {hypot<T>(c.re, c.im), angle<T>(c.im, c.re)};
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
