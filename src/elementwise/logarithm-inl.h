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

struct Decomposed {
  V e;
  Sum r;
  VI cell;
};

// For positive normal numbers.
HWY_INLINE Decomposed decompose(V x) {
  const VI from_start = bits(x) - hn::Set(di, std::bit_cast<uint64_t>(kLogStart) - (uint64_t{1023} << 52));
  const VI exponent = hn::ShiftRight<52>(from_start);  // biased
  const V e = from_bits(hn::Or(exponent, hn::Set(di, std::bit_cast<uint64_t>(0x1p52)))) - set(0x1p52 + 1023);
  const V m = from_bits(bits(x) - hn::ShiftLeft<52>(exponent) + hn::Set(di, uint64_t{1023} << 52));
  const VI cell = hn::ShiftRight<48>(from_start);
  const V c = lookup16(kInverse, cell);
  const V product = m * c;
  return {e, {product - set(1), hn::Neg(remainder(product, m, c))}, cell};
}

// What the low part of r adds to log(1 + r).
HWY_INLINE V log1p_slope(Sum r) { return negmuladd(r.low, r.high, r.low); }

template <class T> HWY_INLINE V ln_of_normal(V x) {
  const auto [e, r, cell] = decompose(x);
  const V square = r.high * r.high;
  if constexpr (!kDouble<T>) {
    const V whole_part = muladd(e, set(std::numbers::ln2), lookup16(kLnHigh, cell));
    return whole_part + muladd(square, polynomial(kLog1p<T>, r.high), r.high);
  }
  const V tail = muladd(square, polynomial(kLog1p<T>, r.high), log1p_slope(r));
  const Sum sum = fast_sum(muladd(e, set(0x1.62e42fefa38p-1), lookup16(kLnHigh, cell)), r.high);
  const V low = muladd(e, set(0x1.ef35793c7673p-45), lookup16(kLnLow, cell));
  return sum.high + (tail + (sum.low + low));
}

template <class T> HWY_INLINE V log10_of_normal(V x) {
  const auto [e, r, cell] = decompose(x);
  const V factor = set(std::numbers::log10e), square = r.high * r.high;
  if constexpr (!kDouble<T>) {
    const V whole_part = muladd(e, set(0x1.34413509f79ffp-2), lookup16(kLog10High, cell));
    return muladd(muladd(square, polynomial(kLog1p<T>, r.high), r.high), factor, whole_part);
  }
  const V product = r.high * factor;  // r log10 e, in two parts
  const V low_product = muladd(r.high, set(0x1.95355baaafad3p-57), hn::Neg(remainder(product, r.high, factor)));
  const V tail = muladd(muladd(square, polynomial(kLog1p<T>, r.high), log1p_slope(r)), factor, low_product);
  const Sum sum = fast_sum(muladd(e, set(0x1.34413509f8p-2), lookup16(kLog10High, cell)), product);
  const V low = muladd(e, set(-0x1.80433b83b532ap-44), lookup16(kLog10Low, cell));
  return sum.high + (tail + (sum.low + low));
}

// For x >= tiny; infinity stays.
template <class T> HWY_INLINE V ln(V x) { return hn::IfThenElse(hn::Eq(x, set(HUGE_VAL)), x, ln_of_normal<T>(x)); }
template <class T> HWY_INLINE V log10(V x) {
  return hn::IfThenElse(hn::Eq(x, set(HUGE_VAL)), x, log10_of_normal<T>(x));
}

// Anything below the smallest normal number has the logarithm of that, NaN too.
template <class T> HWY_INLINE V log_or_floor(V x) {
  const M normal = hn::Ge(x, set(Limits<T>::tiny));
  return hn::IfThenElse(normal, ln<T>(x), set(Limits<T>::ln_tiny));
}
template <class T> HWY_INLINE V log10_or_floor(V x) {
  const M normal = hn::Ge(x, set(Limits<T>::tiny));
  return hn::IfThenElse(normal, log10<T>(x), set(Limits<T>::log10_tiny));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
