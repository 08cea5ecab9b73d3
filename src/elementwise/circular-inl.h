// sin, cos, tan: |x| = n pi/2 + r, one polynomial each for the sine and the cosine of r, chosen by the quadrant n.
#if defined(SIGVEX_ELEMENTWISE_CIRCULAR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_CIRCULAR_INL_H
#undef SIGVEX_ELEMENTWISE_CIRCULAR_INL_H
#else
#define SIGVEX_ELEMENTWISE_CIRCULAR_INL_H
#endif

#include <cmath>
#include <numbers>

#include "elementwise/lanes-inl.h"
#include "elementwise/math_tables.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// |x| less its quadrants, n of them: r in two parts, |r| <= pi/4, the low one at most half a unit of the high one. Fine
// is what this reduction serves: where the products of n are exact, and r not so small beside x that digits are
// missing.
template <class T> struct Reduced {
  VI<T> n;
  Sum<T> r;
  M<T> fine;
};

// x - n pi/2, where that is within pi/2 or so and the products of n are exact.
template <class T> HWY_INLINE Sum<T> less_right_angles(V<T> x, V<T> n) {
  if constexpr (kFused) {
    const V<T> second = set<T>(kRightAngle<T>[1]), rest = negmuladd(n, set<T>(kRightAngle<T>[0]), x);
    const V<T> high = negmuladd(n, second, rest);
    return {high, negmuladd(n, set<T>(kRightAngle<T>[2]), negmuladd(n, second, rest - high))};
  } else {
    const V<T> rest = x - n * set<T>(kRightAngleUnfused<T>[0]);
    const V<T> second = n * set<T>(kRightAngleUnfused<T>[1]), high = rest - second;
    return fast_sum<T>(high, ((rest - high) - second) - n * set<T>(kRightAngleUnfused<T>[2]));
  }
}

template <class T> HWY_INLINE Reduced<T> reduced(V<T> magnitude) {
  const Whole<T> n = whole<T>(magnitude, 2 * std::numbers::inv_pi);
  constexpr double kFar = kDouble<T> ? 0x1.9p+20 : kFused ? 0x1p17 : 0x1.9p12, kNear = kDouble<T> ? 0x1p-33 : 0x1p-24;
  const Sum<T> r = less_right_angles<T>(magnitude, n.value);
  const M<T> near = hn::Le(magnitude, set<T>(kFar));
  return {n.bits, r, hn::And(near, hn::Ge(hn::Abs(r.high), magnitude * set<T>(kNear)))};
}

// The sine and the cosine of r, each in two parts.
template <class T> struct SinCos { Sum<T> sin, cos; };

// r + r^3 p(r^2) and 1 - r^2/2 + r^4 q(r^2) where the last bit counts: the cosine's second part is small, and what the
// low part of r does to the sine is not rounded to it.
template <class T, class P, class Q> HWY_INLINE SinCos<T> precise_sin_cos(Sum<T> r, const P& p, const Q& q) {
  const V<T> square = r.high * r.high, half = r.high * set<T>(0.5), one = set<T>(1);
  const V<T> near_cos = negmuladd(half, r.high, one), lost = remainder<T>(one - near_cos, half, r.high);
  const V<T> sin_tail = muladd(square * r.high, polynomial(p, square), r.low * near_cos);
  const V<T> cos_tail = muladd(square * square, polynomial(q, square), hn::Neg(r.high * r.low));
  return {{r.high, sin_tail}, {near_cos, lost + cos_tail}};
}

// Otherwise the cosine is 1 and the rest of it.
template <class T> HWY_INLINE SinCos<T> sin_cos(Sum<T> r) {
  if constexpr (!kFused) return precise_sin_cos<T>(r, kSin<T>, kCos<T>);
  const V<T> square = r.high * r.high, half = r.high * set<T>(0.5);
  const V<T> cos_tail = muladd(square * square, polynomial(kCos<T>, square), hn::Neg(r.high * r.low));
  return {{r.high, muladd(square * r.high, polynomial(kSin<T>, square), r.low)},
          {set<T>(1), negmuladd(half, r.high, cos_tail)}};
}

template <class T> HWY_INLINE M<T> odd(VI<T> n) { return hn::RebindMask(D<T>(), hn::TestBit(n, set_bits<T>(1))); }
template <class T> HWY_INLINE V<T> negated_by_bit_1(VI<T> n, V<T> x) {
  return hn::Xor(x, hn::And(from_bits<T>(hn::ShiftLeft<8 * sizeof(T) - 2>(n)), minus<T>()));
}
template <class T> HWY_INLINE V<T> with_sign_of(V<T> x, V<T> y) {  // y, its sign changed where x is negative
  return hn::Xor(y, hn::And(x, minus<T>()));
}

template <class T> HWY_INLINE V<T> sin_of_quadrant(VI<T> n, const SinCos<T>& s) {
  return negated_by_bit_1<T>(n, rounded(choose<T>(odd<T>(n), s.cos, s.sin)));
}
template <class T> HWY_INLINE V<T> cos_of_quadrant(VI<T> n, const SinCos<T>& s) {
  return negated_by_bit_1<T>(n + set_bits<T>(1), rounded(choose<T>(odd<T>(n), s.sin, s.cos)));
}

// The sine of r or, where the mask says so, its cosine: with fused steps it is cheaper to choose coefficients and
// factors than to compute both.
template <class T> HWY_INLINE V<T> sin_or_cos(M<T> cosine, Sum<T> r) {
  if constexpr (!kFused) {
    const SinCos<T> s = sin_cos<T>(r);
    return rounded(choose<T>(cosine, s.cos, s.sin));
  } else {
    const V<T> one = set<T>(1), square = r.high * r.high;
    const V<T> scale = square * hn::IfThenElse(cosine, square, r.high);
    const V<T> low = hn::IfThenElse(cosine, hn::NegMulSub(r.low, r.high, zero<T>()), r.low);
    const V<T> tail = muladd(scale, polynomial(cosine, kCos<T>, kSin<T>, square), low);
    const V<T> half = hn::IfThenElseZero(cosine, r.high * set<T>(0.5));
    return hn::IfThenElse(cosine, one, r.high) + negmuladd(half, r.high, tail);
  }
}

template <class T> HWY_INLINE V<T> sin(V<T> x) {
  const Reduced<T> a = reduced<T>(hn::Abs(x));
  const V<T> y = with_sign_of<T>(x, negated_by_bit_1<T>(a.n, sin_or_cos<T>(odd<T>(a.n), a.r)));
  return patch<T>(
      a.fine, y, [](double at) { return std::sin(at); }, x);
}
template <class T> HWY_INLINE V<T> cos(V<T> x) {
  const Reduced<T> a = reduced<T>(hn::Abs(x));
  const V<T> y = negated_by_bit_1<T>(a.n + set_bits<T>(1), sin_or_cos<T>(hn::Not(odd<T>(a.n)), a.r));
  return patch<T>(
      a.fine, y, [](double at) { return std::cos(at); }, x);
}

// magnitude (cos angle, sin angle)
template <class T> HWY_INLINE Points<T> rectangular(V<T> magnitude, V<T> angle) {
  const Reduced<T> a = reduced<T>(hn::Abs(angle));
  const SinCos<T> s = sin_cos<T>(a.r);
  const V<T> cosine = cos_of_quadrant<T>(a.n, s), sine = with_sign_of<T>(angle, sin_of_quadrant<T>(a.n, s));
  return {magnitude * patch<T>(
                          a.fine, cosine, [](double at) { return std::cos(at); }, angle),
          magnitude * patch<T>(
                          a.fine, sine, [](double at) { return std::sin(at); }, angle)};
}

template <class T> HWY_INLINE V<T> tan(V<T> x) {
  const Reduced<T> a = reduced<T>(hn::Abs(x));
  const SinCos<T> s = precise_sin_cos<T>(a.r, kTanAbove<T>, kTanBelow<T>);  // not these, but their quotient
  const M<T> swap = odd<T>(a.n);
  const Sum<T> above = choose<T>(swap, s.cos, s.sin), below = choose<T>(swap, s.sin, s.cos);
  const V<T> inverse = set<T>(1) / rounded<T>(below), q = rounded<T>(above) * inverse;
  const V<T> rest = remainder<T>(above.high, q, below.high) + negmuladd(q, below.low, above.low);
  const V<T> y = muladd(rest, inverse, q);
  const V<T> mirrored = negated_by_bit_1<T>(hn::ShiftLeft<1>(a.n), with_sign_of<T>(x, y));  // -1/tan in odd quadrants
  return patch<T>(
      a.fine, mirrored, [](double at) { return std::tan(at); }, x);
}

// sin(x) / x
template <class T> HWY_INLINE V<T> sinc(V<T> x) {
  return hn::IfThenElse(hn::Eq(x, zero<T>()), set<T>(1), sin<T>(x) / x);
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
