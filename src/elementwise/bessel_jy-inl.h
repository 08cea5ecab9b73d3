// J0, J1, Y0, Y1. Below 2 polynomials and, for Y, a logarithm; from there on the amplitude times the sine or cosine of
// the phase. Both are smooth where the functions cross zero, so that the error is small beside the amplitude and, as
// the phase is reduced in two parts, smaller still near the zeros.
#if defined(SIGVEX_ELEMENTWISE_BESSEL_JY_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_BESSEL_JY_INL_H
#undef SIGVEX_ELEMENTWISE_BESSEL_JY_INL_H
#else
#define SIGVEX_ELEMENTWISE_BESSEL_JY_INL_H
#endif

#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++

#include <numbers>

#include "elementwise/bessel-inl.h"
#include "elementwise/bessel_tables.h"
#include "elementwise/circular-inl.h"
#include "elementwise/logarithm-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

// J of 0 <= x < 2.
template <int kOrder> HWY_INLINE V<double> first_near(V<double> x) {
  const V<double> t = x * x;
  if constexpr (kOrder == 1) return muladd(x * t, polynomial(kJ1Near, t), x * set<double>(0.5));
  const V<double> quarter = set<double>(0.25);
  const Sum<double> parabola = fast_sum<double>(set<double>(1), hn::Neg(quarter * t));
  const V<double> low = negmuladd(quarter, lost_by<double>(t, x, x), parabola.low);
  return parabola.high + muladd(t * t, polynomial(kJ0Near, t), low);
}

// ln(x/z) for a positive normal x.
HWY_INLINE Sum<double> ln_over(V<double> x, const double (&ln_z)[2]) {
  const Decomposed<double> parts = decompose<double>(x);
  const V<double> high = lookup16(kLnHigh<double>, parts.cell) - set<double>(ln_z[0]);
  const V<double> low = lookup16(kLnLow<double>, parts.cell) - set<double>(ln_z[1]);
  return log_sum<double>(parts, kLn2<double>, high, low, {parts.r.high, log1p_tail<double>(parts.r)});
}

// Y of 0 < x < 2. The logarithm is counted from the zero, where the two terms vanish together.
template <int kOrder> HWY_INLINE V<double> second_near(V<double> x) {
  const V<double> t = x * x, factor = set<double>(2 * std::numbers::inv_pi), rest = set<double>(k2OverPiRest);
  const Sum<double> ln = ln_over(x, kLnOfZeroOfY[kOrder]);
  const V<double> scaled = ln.high * factor, first = first_near<kOrder>(x);
  const V<double> low = muladd(ln.high, rest, muladd(ln.low, factor, lost_by<double>(scaled, ln.high, factor)));
  if constexpr (kOrder == 0) {
    const V<double> lost = lost_by<double>(t, x, x) - set<double>(kSquaredZeroOfY0[1]);
    const V<double> rise = ((t - set<double>(kSquaredZeroOfY0[0])) + lost) * polynomial(kY0Near, t);
    return muladd(scaled, first, muladd(low, first, rise));
  } else {
    const Sum<double> pole = quotient<double>({factor, rest}, {x, zero<double>()});
    const V<double> rise = hn::MulSub(x, polynomial(kY1Near, t), pole.low);
    return muladd(scaled, first, muladd(low, first, rise)) - pole.high;
  }
}

template <size_t N> HWY_INLINE V<double> ratio(const std::array<double, N> (&c)[2], V<double> u) {
  return polynomial(c[0], u) / polynomial(c[1], u);
}

// J or Y of x >= 2, as amplitude * sin(x - pi/4 + shift + quarters pi/2).
template <int kOrder, bool kSecond> HWY_INLINE V<double> far(V<double> x) {
  constexpr auto kQuarters = static_cast<Bits<double>>((kSecond ? 0 : 1) - kOrder);
  const Wave& wave = kWave[kOrder];
  const V<double> inverse = set<double>(1) / x, u = inverse * inverse;
  const V<double> missing = remainder<double>(set<double>(1), x, inverse);  // of the inverse, relative to it
  const V<double> root = hn::Sqrt(inverse * set<double>(2 * std::numbers::inv_pi));
  const V<double> amplitude = muladd(root, muladd(u, ratio(wave.amplitude, u), missing * set<double>(0.5)), root);

  const V<double> c = set<double>(wave.c), shift = c * inverse;
  const V<double> rest =
      muladd(shift, missing, muladd(inverse * u, ratio(wave.phase, u), lost_by<double>(shift, c, inverse)));
  const V<double> start = shift + rest - set<double>(std::numbers::pi / 4);
  const Whole<double> n = whole<double>(x + start, 2 * std::numbers::inv_pi);
  const Sum<double> angle = less_right_angles<double>(x, n.value + set<double>(0.5));
  const Sum<double> sum = exact_sum<double>(angle.high, shift);
  const Sum<double> r = fast_sum<double>(sum.high, sum.low + (angle.low + rest));
  const VI<double> quadrant = n.bits + set_bits<double>(kQuarters);
  return amplitude * negated_by_bit_1<double>(quadrant, sin_or_cos<double>(odd<double>(quadrant), r));
}

template <int kOrder, bool kSecond> HWY_INLINE V<double> bessel(V<double> x) {
  constexpr D<double> d;
  const V<double> y = kSecond ? x : hn::Abs(x);
  const M<double> is_near = hn::Lt(y, set<double>(2));
  V<double> near = zero<double>(), value = near;
  if (!hn::AllTrue(d, is_near)) value = far<kOrder, kSecond>(y);
  if (!hn::AllFalse(d, is_near)) {
    if constexpr (kSecond) near = second_near<kOrder>(y);
    else near = first_near<kOrder>(y);
    value = hn::IfThenElse(is_near, near, value);
  }
  if constexpr (kOrder == 1 && !kSecond) value = with_sign_of<double>(x, value);
  M<double> fine = hn::Le(y, set<double>(kFused ? 0x1p40 : 0x1p19));  // where right angles are taken off exactly
  if constexpr (kSecond) fine = hn::And(fine, hn::Ge(y, set<double>(0x1p-1000)));
  return patch<double>(
      fine, value,
      [](double at) {
        if constexpr (kSecond) return kOrder == 0 ? ::y0(at) : ::y1(at);
        else return kOrder == 0 ? ::j0(at) : ::j1(at);
      },
      x);
}

template <class T, int kOrder, bool kSecond> void map_bessel(const T* x, T* y, size_t n) {
  each_in_double(x, y, n, [](V<double> at) HWY_ATTR { return bessel<kOrder, kSecond>(at); });
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
