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

// |x| less its quadrants, n of them: r in two parts, |r| <= pi/4. Fine is what this reduction serves: |x| up to 2^20
// quadrants, the products of n with the first two parts of pi/2 being exact that far, and r not so small beside x that
// the third part has too few bits.
struct Reduced {
  VI n;
  Sum r;
  M fine;
};

template <class T> HWY_INLINE Reduced reduced(V magnitude) {
  const Whole n = whole(magnitude, 2 * std::numbers::inv_pi);
  const V rest = negmuladd(n.value, set(0x1.921fb544p+0), magnitude);  // exact
  const M near = hn::Le(magnitude, set(0x1.9p+20));
  if constexpr (!kDouble<T>) return {n.bits, {negmuladd(n.value, set(0x1.0b4611a626331p-34), rest), hn::Zero(d)}, near};
  const V second = n.value * set(0x1.0b4611a8p-34), r = rest - second;
  const V low = negmuladd(n.value, set(-0x1.d9cceba3f91f2p-66), (rest - r) - second);
  return {n.bits, {r, low}, hn::And(near, hn::Ge(hn::Abs(r), magnitude * set(0x1p-60)))};
}

// The sine and the cosine of r, each in two parts.
struct SinCos {
  Sum sin, cos;
};

template <class T> HWY_INLINE SinCos sin_cos(Sum r) {
  const V square = r.high * r.high, half = r.high * set(0.5), one = set(1);
  const V near_cos = negmuladd(half, r.high, one);
  const V sin_tail = square * r.high * polynomial(kSin<T>, square);
  const V cos_tail = square * square * polynomial(kCos<T>, square);
  if constexpr (!kDouble<T>) return {{r.high, sin_tail}, {near_cos, cos_tail}};
  const V lost = remainder(one - near_cos, half, r.high);  // by near_cos
  return {{r.high, muladd(r.low, near_cos + cos_tail, sin_tail)},
          {near_cos, lost + negmuladd(r.low, r.high + sin_tail, cos_tail)}};
}

HWY_INLINE M odd(VI n) { return hn::RebindMask(d, hn::TestBit(n, hn::Set(di, 1))); }
HWY_INLINE V negated_by_bit_1(VI n, V x) {
  return from_bits(hn::Xor(bits(x), hn::ShiftLeft<62>(hn::And(n, hn::Set(di, 2)))));
}
HWY_INLINE V with_sign_of(V x, V y) {  // y, its sign changed where x is negative
  return hn::Xor(y, hn::And(x, hn::SignBit(d)));
}

HWY_INLINE V sin_of_quadrant(VI n, const SinCos& s) {
  return negated_by_bit_1(n, rounded(choose(odd(n), s.cos, s.sin)));
}
HWY_INLINE V cos_of_quadrant(VI n, const SinCos& s) {
  return negated_by_bit_1(n + hn::Set(di, 1), rounded(choose(odd(n), s.sin, s.cos)));
}

template <class T> HWY_INLINE V sin(V x) {
  const Reduced a = reduced<T>(hn::Abs(x));
  const V y = with_sign_of(x, sin_of_quadrant(a.n, sin_cos<T>(a.r)));
  return patch(
      a.fine, y, [](double at) { return std::sin(at); }, x);
}
template <class T> HWY_INLINE V cos(V x) {
  const Reduced a = reduced<T>(hn::Abs(x));
  return patch(
      a.fine, cos_of_quadrant(a.n, sin_cos<T>(a.r)), [](double at) { return std::cos(at); }, x);
}

// magnitude (cos angle, sin angle)
template <class T> HWY_INLINE Points rectangular(V magnitude, V angle) {
  const Reduced a = reduced<T>(hn::Abs(angle));
  const SinCos s = sin_cos<T>(a.r);
  const V re = patch(
      a.fine, cos_of_quadrant(a.n, s), [](double at) { return std::cos(at); }, angle);
  const V im = patch(
      a.fine, with_sign_of(angle, sin_of_quadrant(a.n, s)), [](double at) { return std::sin(at); }, angle);
  return {magnitude * re, magnitude * im};
}

template <class T> HWY_INLINE V tan(V x) {
  const Reduced a = reduced<T>(hn::Abs(x));
  const SinCos s = sin_cos<T>(a.r);
  V y;
  if constexpr (kDouble<T>) {
    const Sum sine = fast_sum(s.sin.high, s.sin.low), cosine = fast_sum(s.cos.high, s.cos.low);
    y = rounded(quotient(choose(odd(a.n), cosine, sine), choose(odd(a.n), sine, cosine)));
  } else {
    const V sine = rounded(s.sin), cosine = rounded(s.cos);
    y = hn::IfThenElse(odd(a.n), cosine, sine) / hn::IfThenElse(odd(a.n), sine, cosine);
  }
  y = negated_by_bit_1(hn::ShiftLeft<1>(a.n), with_sign_of(x, y));  // -1/tan in the odd quadrants
  return patch(
      a.fine, y, [](double at) { return std::tan(at); }, x);
}

// sin(x) / x
template <class T> HWY_INLINE V sinc(V x) { return hn::IfThenElse(hn::Eq(x, hn::Zero(d)), set(1), sin<T>(x) / x); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
