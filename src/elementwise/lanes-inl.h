// What the elementary functions are written in: vectors of numbers, sums of two of them where one is not exact enough,
// polynomials, tables, and the loops over samples and points.
#if defined(SIGVEX_ELEMENTWISE_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_LANES_INL_H
#undef SIGVEX_ELEMENTWISE_LANES_INL_H
#else
#define SIGVEX_ELEMENTWISE_LANES_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/limits.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class T> using D = hn::ScalableTag<T>;
template <class T> using V = hn::Vec<D<T>>;
template <class T> using M = hn::Mask<D<T>>;
template <class T> using DI = hn::RebindToUnsigned<D<T>>;
template <class T> using VI = hn::Vec<DI<T>>;
template <class T> using Bits = hn::TFromD<DI<T>>;
template <class T> constexpr size_t kLanes = hn::MaxLanes(D<T>());

template <class T> constexpr bool kDouble = std::is_same_v<T, double>;

// The format of a number: bits of the fraction, the exponent's offset, bits below which a number's high half ends.
template <class T> constexpr int kFraction = std::numeric_limits<T>::digits - 1;
template <class T> constexpr Bits<T> kBias = std::numeric_limits<T>::max_exponent - 1;
template <class T> constexpr int kLowHalf = (kFraction<T> + 2) / 2;

// Whether MulAdd rounds once. Where it does not, a few more steps replace it where that matters.
constexpr bool kFused = HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SSE4;

template <class T> HWY_INLINE V<T> set(double x) { return hn::Set(D<T>(), static_cast<T>(x)); }
template <class T> HWY_INLINE VI<T> set_bits(Bits<T> x) { return hn::Set(DI<T>(), x); }
template <class T> HWY_INLINE VI<T> bits(V<T> x) { return hn::BitCast(DI<T>(), x); }
template <class T> HWY_INLINE V<T> from_bits(VI<T> x) { return hn::BitCast(D<T>(), x); }
template <class T> HWY_INLINE V<T> zero() { return hn::Zero(D<T>()); }
template <class T> HWY_INLINE V<T> minus() { return hn::SignBit(D<T>()); }
template <class Vec> HWY_INLINE Vec muladd(Vec a, Vec b, Vec c) { return hn::MulAdd(a, b, c); }
template <class Vec> HWY_INLINE Vec negmuladd(Vec a, Vec b, Vec c) { return hn::NegMulAdd(a, b, c); }  // c - a b

template <class T> HWY_INLINE V<T> high_half(V<T> x) {
  return from_bits<T>(hn::And(bits<T>(x), set_bits<T>(~Bits<T>{0} << kLowHalf<T>)));
}

// c - a b to full precision where a b is near c.
template <class T> HWY_INLINE V<T> remainder(V<T> c, V<T> a, V<T> b) {
  if constexpr (kFused) return negmuladd(a, b, c);
  const V<T> ah = high_half<T>(a), al = a - ah, bh = high_half<T>(b), bl = b - bh;
  return (((c - ah * bh) - ah * bl) - al * bh) - al * bl;
}

// What the product p = a b lost by rounding.
template <class T> HWY_INLINE V<T> lost_by(V<T> p, V<T> a, V<T> b) {
  if constexpr (kFused) return hn::MulSub(a, b, p);
  return hn::Neg(remainder<T>(p, a, b));
}

// A number as the unevaluated sum of two.
template <class T> struct Sum { V<T> high, low; };
template <class T> HWY_INLINE V<T> rounded(Sum<T> x) { return x.high + x.low; }
template <class T> HWY_INLINE Sum<T> fast_sum(V<T> a, V<T> b) {  // exact for |a| >= |b|, and for a = 0
  const V<T> s = a + b;
  return {s, (a - s) + b};
}
template <class T> HWY_INLINE Sum<T> exact_sum(V<T> a, V<T> b) {
  const V<T> s = a + b, from_b = s - a;
  return {s, (a - (s - from_b)) + (b - from_b)};
}
// Near 1/x, to 12 bits or more, for normal numbers with normal inverses.
template <class T> HWY_INLINE V<T> rough_inverse(V<T> x) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (kDouble<T>) return V<T>{_mm512_rcp14_pd(x.raw)};
  else return V<T>{_mm512_rcp14_ps(x.raw)};
#else
  return set<T>(1) / x;
#endif
}
// The quotient of two sums, to twice the precision of a number or nearly so.
template <class T> HWY_INLINE Sum<T> quotient(Sum<T> a, Sum<T> b) {
  const V<T> inverse = set<T>(1) / b.high, q = a.high * inverse;
  return {q, (negmuladd(q, b.low, remainder<T>(a.high, q, b.high)) + a.low) * inverse};
}
template <class T> HWY_INLINE Sum<T> choose(M<T> mask, Sum<T> yes, Sum<T> no) {
  return {hn::IfThenElse(mask, yes.high, no.high), hn::IfThenElse(mask, yes.low, no.low)};
}

// c[0] + c[1] x + c[2] x^2 + ..., in halves rather than one step after the other.
template <class T, size_t N, class C> HWY_INLINE V<T> halves(const C* c, const V<T>* powers) {
  if constexpr (N == 1) {
    if constexpr (std::is_same_v<C, T>) return set<T>(c[0]);
    else return c[0];
  } else {
    // Five or six end a step no later, and need no fourth power, where the first two stand apart.
    constexpr size_t kLow = N == 5 || N == 6 ? 2 : std::bit_floor(N - 1);
    const V<T> high = halves<T, N - kLow>(c + kLow, powers), low = halves<T, kLow>(c, powers);
    return muladd(high, powers[std::countr_zero(kLow)], low);
  }
}
template <class T, size_t N, class C> HWY_INLINE V<T> polynomial_in(const C* c, V<T> x) {
  V<T> powers[4] = {x, x, x, x};
  for (size_t k = 1; (size_t{1} << k) < N; ++k) powers[k] = powers[k - 1] * powers[k - 1];
  return halves<T, N>(c, powers);
}
template <class T, size_t N> HWY_INLINE V<T> polynomial(const std::array<T, N>& c, V<T> x) {
  return polynomial_in<T, N>(c.data(), x);
}
// One of two polynomials, lane by lane.
template <class T, size_t N>
HWY_INLINE V<T> polynomial(M<T> mask, const std::array<T, N>& yes, const std::array<T, N>& no, V<T> x) {
  V<T> c[N];
  for (size_t k = 0; k < N; ++k) c[k] = hn::IfThenElse(mask, set<T>(yes[k]), set<T>(no[k]));
  return polynomial_in<T, N>(c, x);
}

// x times a factor, rounded to a whole number, in the low bits and as a number: the shifter leaves no room for a
// fraction.
template <class T> struct Whole {
  VI<T> bits;
  V<T> value;
};
template <class T> HWY_INLINE Whole<T> whole(V<T> x, double factor) {
  const V<T> shifter = set<T>(kDouble<T> ? 0x1.8p52 : 0x1.8p23), shifted = muladd(x, set<T>(factor), shifter);
  return {bits<T>(shifted), shifted - shifter};
}

// table[index % 16]
template <class T> HWY_INLINE V<T> lookup16(const T (&table)[16], VI<T> index) {
#if HWY_TARGET == HWY_AVX3
  if constexpr (kDouble<T>) {
    return V<T>{_mm512_permutex2var_pd(_mm512_load_pd(table), index.raw, _mm512_load_pd(table + 8))};
  } else {
    return V<T>{_mm512_permutexvar_ps(index.raw, _mm512_load_ps(table))};
  }
#else
  const hn::RebindToSigned<D<T>> signed_index;
  return hn::GatherIndex(D<T>(), table, hn::BitCast(signed_index, hn::And(index, set_bits<T>(15))));
#endif
}

// y, but f(x...) by the C library in the lanes that are not fine: rare ones, far out or special.
template <class T, class F, class... X> HWY_NOINLINE V<T> patched(M<T> fine, V<T> y, F f, X... x) {
  constexpr D<T> d;
  constexpr size_t kInputs = sizeof...(X);
  HWY_ALIGN T in[kInputs][kLanes<T>], out[kLanes<T>], good[kLanes<T>];
  size_t input = 0;
  (hn::Store(x, d, in[input++]), ...);
  hn::Store(y, d, out);
  hn::Store(hn::IfThenElseZero(fine, set<T>(1)), d, good);
  for (size_t k = 0; k < kLanes<T>; ++k) {
    if (good[k] != 0) continue;
    if constexpr (kInputs == 1) out[k] = static_cast<T>(f(in[0][k]));
    else out[k] = static_cast<T>(f(in[0][k], in[1][k]));
  }
  return hn::Load(d, out);
}
template <class T, class F, class... X> HWY_INLINE V<T> patch(M<T> fine, V<T> y, F f, X... x) {
  if (HWY_LIKELY(hn::AllTrue(D<T>(), fine))) return y;
  return patched<T>(fine, y, f, x...);
}

// The guards of core/limits.h on lanes.
template <class T> HWY_INLINE M<T> bounded(V<T> x) { return hn::Le(hn::Abs(x), set<T>(Limits<T>::huge)); }
template <class T> HWY_INLINE V<T> clamped(V<T> x) {  // NaN counts as below
  const V<T> huge = set<T>(Limits<T>::huge), low = hn::Neg(huge), capped = hn::IfThenElse(hn::Gt(x, huge), huge, x);
  return hn::IfThenElse(hn::Ge(capped, low), capped, low);
}

template <class T> HWY_INLINE V<T> at_least(V<T> least, V<T> x) {  // NaN counts as below
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
  return hn::Max(x, least);  // the instruction gives its second operand for NaN
#else
  return hn::IfThenElse(hn::Ge(x, least), x, least);
#endif
}

template <class T> HWY_INLINE V<T> load(const T* x) { return hn::LoadU(D<T>(), x); }
template <class T> HWY_INLINE void store(V<T> y, T* to) { hn::StoreU(y, D<T>(), to); }

template <class T> struct Points { V<T> re, im; };
template <class T> HWY_INLINE Points<T> load_points(const T* z) {
  Points<T> y;
  hn::LoadInterleaved2(D<T>(), z, y.re, y.im);
  return y;
}
template <class T> HWY_INLINE void store_points(Points<T> y, T* to) { hn::StoreInterleaved2(y.re, y.im, D<T>(), to); }

// The loops: y[k] = f(x[k]) for n samples or points. y may be x; a complex x may give a real y in its own place. The
// rest that fills no vector goes through a buffer, so that a sample gives the same bits wherever it stands.
template <size_t kIn, size_t kOut, class T, class F> HWY_INLINE void each_vector(const T* x, T* y, size_t n, F f) {
  size_t k = 0;
  for (; k + kLanes<T> <= n; k += kLanes<T>) f(x + kIn * k, y + kOut * k);
  if (k == n) return;
  HWY_ALIGN T buffer[2 * kLanes<T>];
  std::fill_n(buffer, 2 * kLanes<T>, T(1));
  std::copy_n(x + kIn * k, kIn * (n - k), buffer);
  f(buffer, buffer);
  std::copy_n(buffer, kOut * (n - k), y + kOut * k);
}
template <class T, class F> HWY_INLINE void each_sample(const T* x, T* y, size_t n, F f) {
  each_vector<1, 1>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store<T>(f(load(from)), to); });
}
template <class T, class F> HWY_INLINE void each_point(const T* x, T* y, size_t n, F f) {
  each_vector<2, 2>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store_points<T>(f(load_points(from)), to); });
}
template <class T, class F> HWY_INLINE void each_point_to_real(const T* x, T* y, size_t n, F f) {
  each_vector<2, 1>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store<T>(f(load_points(from)), to); });
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
