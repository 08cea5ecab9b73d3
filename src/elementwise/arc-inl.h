// atan, atan2, asin, acos.
#if defined(SIGVEX_ELEMENTWISE_ARC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_ARC_INL_H
#undef SIGVEX_ELEMENTWISE_ARC_INL_H
#else
#define SIGVEX_ELEMENTWISE_ARC_INL_H
#endif

#include "elementwise/circular-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// quarters pi/2 + sign a, where |a| is at most that many quarters, or the quarters are 0.
template <class T> HWY_INLINE V<T> mirrored(V<T> quarters, V<T> sign, Sum<T> a) {
  const Sum<T> sum = fast_sum<T>(quarters * set<T>(std::numbers::pi / 2), hn::Xor(sign, a.high));
  return sum.high + (sum.low + muladd(quarters, set<T>(kRightAngle<T>[1]), hn::Xor(sign, a.low)));
}

// atan2(y, x) from the smaller magnitude over the larger, mirrored at the diagonal and at the axes. The quotient t is
// near c = j/16: atan t = atan c + atan z, z = (t - c) / (1 + t c), the numerator of which is exact.
template <class T> HWY_INLINE V<T> atan2_of_moderate(V<T> y, V<T> x) {
  const V<T> ax = hn::Abs(x), ay = hn::Abs(y), large = hn::Max(ax, ay), small = hn::Min(ax, ay);
  const Whole<T> j = whole<T>(hn::Min(small * rough_inverse<T>(large), set<T>(15.0 / 16)), 16);
  const V<T> c = j.value * set<T>(1.0 / 16), above = remainder<T>(small, c, large), below = muladd(c, small, large);
  const Sum<T> z = quotient<T>({above, zero<T>()}, {below, muladd(c, small, large - below)});
  const V<T> square = z.high * z.high, tail = muladd(z.high * square, polynomial(kArctan<T>, square), z.low);
  const Sum<T> sum = fast_sum<T>(lookup16(kArctan16<T>, j.bits), z.high);
  const Sum<T> angle = {sum.high, sum.low + (lookup16(kArctan16Error<T>, j.bits) + tail)};
  const M<T> steep = hn::Gt(ay, ax), left = hn::Lt(x, zero<T>());
  const V<T> quarters = hn::IfThenElse(steep, set<T>(1), hn::IfThenElseZero(left, set<T>(2)));
  const V<T> sign = hn::IfThenElseZero(hn::Xor(steep, left), minus<T>());
  return with_sign_of<T>(y, mirrored<T>(quarters, sign, angle));
}

// Moderate is what no step takes out of the range of normal numbers; zeros are, NaN is not.
template <class T> HWY_INLINE M<T> moderate(V<T> y, V<T> x) {
  const V<T> ax = hn::Abs(x), ay = hn::Abs(y), large = hn::Max(ax, ay), small = hn::Min(ax, ay),
             least = set<T>(kDouble<T> ? 0x1p-560 : 0x1p-62);
  const M<T> small_fine = hn::Or(hn::Ge(small, least), hn::Eq(small, zero<T>()));
  return hn::And(hn::And(hn::Ge(large, least), hn::Le(ax + ay, set<T>(kDouble<T> ? 0x1p340 : 0x1p62))), small_fine);
}

template <class T> HWY_INLINE V<T> atan2(V<T> y, V<T> x) {
  const auto by_library = [](double at_y, double at_x) { return std::atan2(at_y, at_x); };
  return patch<T>(moderate<T>(y, x), atan2_of_moderate<T>(y, x), by_library, y, x);
}
template <class T> HWY_INLINE V<T> atan(V<T> x) { return atan2<T>(x, set<T>(1)); }

// The origin has no direction, whatever the signs of its zeros: 0.
template <class T> HWY_INLINE V<T> angle(V<T> y, V<T> x) {
  const M<T> origin = hn::Eq(hn::Or(hn::Abs(x), hn::Abs(y)), zero<T>());
  return hn::IfThenZeroElse(origin, atan2<T>(y, hn::IfThenElse(origin, set<T>(1), x)));
}

// asin |x| as a + a^3 p(a^2): up to 1/2 a is |x|, above it sin(asin(x) / 2) = sqrt((1 - |x|) / 2), doubled.
template <class T> HWY_INLINE Sum<T> half_arcsin(V<T> x, M<T> upper) {
  const V<T> magnitude = hn::Abs(x), half = set<T>(0.5);
  const V<T> square = hn::IfThenElse(upper, negmuladd(magnitude, half, half), magnitude * magnitude);
  const V<T> a = hn::IfThenElse(upper, hn::Sqrt(square), magnitude), tail = a * square * polynomial(kArcsin<T>, square);
  const V<T> rest = remainder<T>(square, a, a) *
                    (half * rough_inverse<T>(hn::Max(a, set<T>(Limits<T>::tiny))));  // what the root lacks
  return {a, hn::IfThenElse(upper, tail + rest, tail)};
}
template <class T> HWY_INLINE Sum<T> doubled(M<T> mask, Sum<T> a) {
  const V<T> factor = hn::IfThenElse(mask, set<T>(2), set<T>(1));
  return {a.high * factor, a.low * factor};
}

// pi/2 - 2 a above 1/2; 0 outside the domain.
template <class T> HWY_INLINE V<T> asin_or_zero(V<T> x) {
  const M<T> upper = hn::Gt(hn::Abs(x), set<T>(0.5));
  const Sum<T> a = doubled<T>(upper, half_arcsin<T>(x, upper));
  const V<T> sign = hn::IfThenElseZero(upper, minus<T>()), quarters = hn::IfThenElseZero(upper, set<T>(1));
  const V<T> y = with_sign_of<T>(x, mirrored<T>(quarters, sign, a));
  return hn::IfThenZeroElse(hn::Gt(hn::Abs(x), set<T>(1)), y);
}

// pi/2 - asin x up to 1/2; 2 a above it, pi - 2 a below -1/2.
template <class T> HWY_INLINE V<T> acos_or_zero(V<T> x) {
  const M<T> upper = hn::Gt(hn::Abs(x), set<T>(0.5));
  const Sum<T> a = doubled<T>(upper, half_arcsin<T>(x, upper));
  const V<T> negative = hn::And(x, minus<T>());
  const V<T> quarters = hn::IfThenElse(upper, hn::IfThenElseZero(hn::Lt(x, zero<T>()), set<T>(2)), set<T>(1));
  const V<T> y = mirrored<T>(quarters, hn::IfThenElse(upper, negative, hn::Xor(negative, minus<T>())), a);
  return hn::IfThenZeroElse(hn::Gt(hn::Abs(x), set<T>(1)), y);
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
