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

// pi/2 and what that lacks.
constexpr double kRightAngle = 0x1.921fb54442d18p+0, kRightAngleRest = 0x1.1a62633145c07p-54;

// quarters pi/2 + sign a, where |a| is at most that many quarters, or the quarters are 0.
template <class T> HWY_INLINE V mirrored(V quarters, V sign, Sum a) {
  if constexpr (!kDouble<T>) return muladd(quarters, set(kRightAngle), hn::Xor(sign, rounded(a)));
  const Sum sum = fast_sum(quarters * set(kRightAngle), hn::Xor(sign, a.high));
  return sum.high + (sum.low + muladd(quarters, set(kRightAngleRest), hn::Xor(sign, a.low)));
}

// Near 1/x, to 12 bits or more.
HWY_INLINE V rough_inverse(V x) {
#if HWY_TARGET == HWY_AVX3
  return V{_mm512_rcp14_pd(x.raw)};
#else
  return set(1) / x;
#endif
}

// atan2(y, x) from the smaller magnitude over the larger, mirrored at the diagonal and at the axes. The quotient t is
// near c = j/16: atan t = atan c + atan z, z = (t - c) / (1 + t c), the numerator of which is exact.
template <class T> HWY_INLINE V atan2_of_moderate(V y, V x) {
  const V ax = hn::Abs(x), ay = hn::Abs(y), large = hn::Max(ax, ay), small = hn::Min(ax, ay);
  const Whole j = whole(hn::Min(small * rough_inverse(large), set(15.0 / 16)), 16);
  const V c = j.value * set(1.0 / 16), above = remainder(small, c, large), below = muladd(c, small, large);
  Sum angle;
  if constexpr (kDouble<T>) {
    const Sum z = quotient({above, hn::Zero(d)}, {below, muladd(c, small, large - below)});
    const V square = z.high * z.high, tail = muladd(z.high * square, polynomial(kArctan<T>, square), z.low);
    const Sum sum = fast_sum(lookup16(kArctan16, j.bits), z.high);
    angle = {sum.high, sum.low + (lookup16(kArctan16Error, j.bits) + tail)};
  } else {
    const V z = above / below, square = z * z;
    angle = {lookup16(kArctan16, j.bits), muladd(z * square, polynomial(kArctan<T>, square), z)};
  }
  const M steep = hn::Gt(ay, ax), left = hn::Lt(x, hn::Zero(d));
  const V quarters = hn::IfThenElse(steep, set(1), hn::IfThenElseZero(left, set(2)));
  const V sign = hn::IfThenElseZero(hn::Xor(steep, left), hn::SignBit(d));
  return with_sign_of(y, mirrored<T>(quarters, sign, angle));
}

// Moderate is what no step takes out of the range of normal numbers; zeros are, NaN is not.
HWY_INLINE M moderate(V y, V x) {
  const V ax = hn::Abs(x), ay = hn::Abs(y), large = hn::Max(ax, ay), small = hn::Min(ax, ay), least = set(0x1p-560);
  const M small_fine = hn::Or(hn::Ge(small, least), hn::Eq(small, hn::Zero(d)));
  return hn::And(hn::And(hn::Ge(large, least), hn::Le(ax + ay, set(0x1p340))), small_fine);
}

template <class T> HWY_INLINE V atan2(V y, V x) {
  const auto by_library = [](double at_y, double at_x) { return std::atan2(at_y, at_x); };
  return patch(moderate(y, x), atan2_of_moderate<T>(y, x), by_library, y, x);
}
template <class T> HWY_INLINE V atan(V x) { return atan2<T>(x, set(1)); }

// The origin has no direction, whatever the signs of its zeros: 0.
template <class T> HWY_INLINE V angle(V y, V x) {
  const M origin = hn::Eq(hn::Or(hn::Abs(x), hn::Abs(y)), hn::Zero(d));
  return hn::IfThenZeroElse(origin, atan2<T>(y, hn::IfThenElse(origin, set(1), x)));
}

// asin |x| as a + a^3 p(a^2): up to 1/2 a is |x|, above it sin(asin(x) / 2) = sqrt((1 - |x|) / 2), doubled.
template <class T> HWY_INLINE Sum half_arcsin(V x, M upper) {
  const V magnitude = hn::Abs(x), half = set(0.5);
  const V square = hn::IfThenElse(upper, negmuladd(magnitude, half, half), magnitude * magnitude);
  const V a = hn::IfThenElse(upper, hn::Sqrt(square), magnitude), tail = a * square * polynomial(kArcsin<T>, square);
  if constexpr (!kDouble<T>) return {a, tail};
  const V rest = remainder(square, a, a) * (half / hn::Max(a, set(0x1p-500)));  // what the root lacks
  return {a, hn::IfThenElse(upper, tail + rest, tail)};
}
HWY_INLINE Sum doubled(M mask, Sum a) {
  const V factor = hn::IfThenElse(mask, set(2), set(1));
  return {a.high * factor, a.low * factor};
}

// pi/2 - 2 a above 1/2; 0 outside the domain.
template <class T> HWY_INLINE V asin_or_zero(V x) {
  const M upper = hn::Gt(hn::Abs(x), set(0.5));
  const Sum a = doubled(upper, half_arcsin<T>(x, upper));
  const V sign = hn::IfThenElseZero(upper, hn::SignBit(d)), quarters = hn::IfThenElseZero(upper, set(1));
  const V y = with_sign_of(x, mirrored<T>(quarters, sign, a));
  return hn::IfThenZeroElse(hn::Gt(hn::Abs(x), set(1)), y);
}

// pi/2 - asin x up to 1/2; 2 a above it, pi - 2 a below -1/2.
template <class T> HWY_INLINE V acos_or_zero(V x) {
  const M upper = hn::Gt(hn::Abs(x), set(0.5));
  const Sum a = doubled(upper, half_arcsin<T>(x, upper));
  const V minus = hn::SignBit(d), negative = hn::And(x, minus);
  const V quarters = hn::IfThenElse(upper, hn::IfThenElseZero(hn::Lt(x, hn::Zero(d)), set(2)), set(1));
  const V y = mirrored<T>(quarters, hn::IfThenElse(upper, negative, hn::Xor(negative, minus)), a);
  return hn::IfThenZeroElse(hn::Gt(hn::Abs(x), set(1)), y);
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
