// Logarithms: x = 2^e m, log x = e log 2 + log(1/c) + log(1 + r) with c from a table near 1/m and r = m c - 1.
#if defined(SIGVEX_ELEMENTWISE_LOGARITHM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_LOGARITHM_INL_H
#undef SIGVEX_ELEMENTWISE_LOGARITHM_INL_H
#else
#define SIGVEX_ELEMENTWISE_LOGARITHM_INL_H
#endif

#include <bit>
#include <cmath>
#include <numbers>

#include "elementwise/lanes-inl.h"
#include "elementwise/math_tables.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

template <class T> struct Decomposed {
  V<T> e;
  Sum<T> r;
  VI<T> cell;
};

// The exponent, as a number, of what the bits are those of 1 less.
template <class T> HWY_INLINE V<T> exponent_of(VI<T> from_one) {
  if constexpr (!kDouble<T> || HWY_TARGET == HWY_AVX3) {
    const hn::RebindToSigned<D<T>> di;
    return hn::ConvertTo(D<T>(), hn::ShiftRight<kFraction<T>>(hn::BitCast(di, from_one)));
  } else {
    constexpr T kShifter = T(Bits<T>{1} << kFraction<T>);  // its unit is 1
    const VI<T> biased = hn::ShiftRight<kFraction<T>>(from_one + set_bits<T>(kBias<T> << kFraction<T>));
    return from_bits<T>(hn::Or(biased, set_bits<T>(std::bit_cast<Bits<T>>(kShifter)))) - set<T>(kShifter + T(kBias<T>));
  }
}

// For positive normal numbers.
template <class T> HWY_INLINE Decomposed<T> decompose(V<T> x) {
  const VI<T> start = set_bits<T>(std::bit_cast<Bits<T>>(kLogStart<T>)), from_start = bits<T>(x) - start;
  const VI<T> fraction = hn::And(from_start, set_bits<T>((Bits<T>{1} << kFraction<T>)-1));
  const V<T> m = from_bits<T>(fraction + start);
  const VI<T> cell = hn::ShiftRight<kFraction<T> - 4>(from_start);
  const V<T> c = lookup16(kInverse<T>, cell), product = m * c;
  return {exponent_of<T>(from_start), {product - set<T>(1), lost_by<T>(product, m, c)}, cell};
}

// log(1 + r) - r
template <class T> HWY_INLINE V<T> log1p_tail(Sum<T> r) {
  return muladd(r.high * r.high, polynomial(kLog1p<T>, r.high), negmuladd(r.low, r.high, r.low));
}

// e log 2 + log(1/c) + term, the latter small beside the former two unless these are 0.
template <class T>
HWY_INLINE Sum<T> log_sum(const Decomposed<T>& x, Log2Parts<T> log2, V<T> high, V<T> low, Sum<T> term) {
  const Sum<T> sum = fast_sum<T>(muladd(x.e, set<T>(log2.high), high), term.high);
  return {sum.high, term.low + (sum.low + muladd(x.e, set<T>(log2.low), low))};
}

template <class T> HWY_INLINE V<T> ln_of_normal(V<T> x) {
  const Decomposed<T> parts = decompose<T>(x);
  const V<T> high = lookup16(kLnHigh<T>, parts.cell), low = lookup16(kLnLow<T>, parts.cell);
  return rounded(log_sum<T>(parts, kLn2<T>, high, low, {parts.r.high, log1p_tail<T>(parts.r)}));
}

template <class T> HWY_INLINE V<T> log10_of_normal(V<T> x) {
  const Decomposed<T> parts = decompose<T>(x);
  const V<T> high = lookup16(kLog10High<T>, parts.cell), low = lookup16(kLog10Low<T>, parts.cell);
  const V<T> r = parts.r.high, factor = set<T>(std::numbers::log10e), product = r * factor;
  const V<T> low_r = negmuladd(parts.r.low, r, parts.r.low),
             rest = muladd(low_r, factor, lost_by<T>(product, r, factor));
  const V<T> tail = muladd(r * r, polynomial(kLog10Of1p<T>, r), rest);
  return rounded(log_sum<T>(parts, kLog10Of2<T>, high, low, {product, tail}));
}

// For x >= tiny; infinity stays.
template <class T> HWY_INLINE V<T> ln(V<T> x) {
  return hn::IfThenElse(hn::Lt(x, set<T>(HUGE_VAL)), ln_of_normal<T>(x), x);
}
template <class T> HWY_INLINE V<T> log10(V<T> x) {
  return hn::IfThenElse(hn::Lt(x, set<T>(HUGE_VAL)), log10_of_normal<T>(x), x);
}

// Anything below the smallest normal number has the logarithm of that, NaN too.
template <class T> HWY_INLINE V<T> log_or_floor(V<T> x) { return ln<T>(at_least<T>(set<T>(Limits<T>::tiny), x)); }
template <class T> HWY_INLINE V<T> log10_or_floor(V<T> x) { return log10<T>(at_least<T>(set<T>(Limits<T>::tiny), x)); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
