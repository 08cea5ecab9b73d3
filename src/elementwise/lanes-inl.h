// What the elementary functions are written in: vectors of doubles, whatever the precision of the samples. Single
// precision is widened on loading and rounded once on storing; it needs shorter polynomials and no low parts.
#if defined(SIGVEX_ELEMENTWISE_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_ELEMENTWISE_LANES_INL_H
#undef SIGVEX_ELEMENTWISE_LANES_INL_H
#else
#define SIGVEX_ELEMENTWISE_LANES_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/limits.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;
using DI = hn::RebindToUnsigned<D>;
using VI = hn::Vec<DI>;
constexpr D d{};
constexpr DI di{};
constexpr size_t kLanes = hn::MaxLanes(d);

template <class T> constexpr bool kDouble = std::is_same_v<T, double>;

// Whether MulAdd rounds once. Where it does not, a few more steps replace it where that matters.
constexpr bool kFused = HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SSE4;

HWY_INLINE V set(double x) { return hn::Set(d, x); }
HWY_INLINE VI bits(V x) { return hn::BitCast(di, x); }
HWY_INLINE V from_bits(VI x) { return hn::BitCast(d, x); }
HWY_INLINE V muladd(V a, V b, V c) { return hn::MulAdd(a, b, c); }
HWY_INLINE V negmuladd(V a, V b, V c) { return hn::NegMulAdd(a, b, c); }  // c - a b

HWY_INLINE V high_half(V x) { return from_bits(hn::And(bits(x), hn::Set(di, ~uint64_t{0} << 27))); }

// c - a b to full precision where a b is near c.
HWY_INLINE V remainder(V c, V a, V b) {
  if constexpr (kFused) return negmuladd(a, b, c);
  const V ah = high_half(a), al = a - ah, bh = high_half(b), bl = b - bh;
  return (((c - ah * bh) - ah * bl) - al * bh) - al * bl;
}

// A number as the unevaluated sum of two.
struct Sum {
  V high, low;
};
HWY_INLINE V rounded(Sum x) { return x.high + x.low; }
HWY_INLINE Sum fast_sum(V a, V b) {  // exact for |a| >= |b|, and for a = 0
  const V s = a + b;
  return {s, (a - s) + b};
}
// The quotient of two sums, to twice the precision of a number or nearly so.
HWY_INLINE Sum quotient(Sum a, Sum b) {
  const V inverse = set(1) / b.high, q = a.high * inverse;
  return {q, (negmuladd(q, b.low, remainder(a.high, q, b.high)) + a.low) * inverse};
}
HWY_INLINE Sum choose(M mask, Sum yes, Sum no) {
  return {hn::IfThenElse(mask, yes.high, no.high), hn::IfThenElse(mask, yes.low, no.low)};
}

// c[0] + c[1] x + c[2] x^2 + ..., in halves rather than one step after the other.
template <size_t N> HWY_INLINE V halves(const double* c, const V* powers) {
  if constexpr (N == 1) {
    return set(c[0]);
  } else {
    constexpr size_t kLow = size_t{1} << (63 - __builtin_clzll(N - 1));  // the largest power of two below N
    return muladd(halves<N - kLow>(c + kLow, powers), powers[__builtin_ctzll(kLow)], halves<kLow>(c, powers));
  }
}
template <size_t N> HWY_INLINE V polynomial(const std::array<double, N>& c, V x) {
  V powers[5] = {x, x, x, x, x};
  for (size_t k = 1; (size_t{1} << k) < N; ++k) powers[k] = powers[k - 1] * powers[k - 1];
  return halves<N>(c.data(), powers);
}

// x rounded to a whole number as the low bits of a double and as a number: 2^52 leaves no room for a fraction.
struct Whole {
  VI bits;
  V value;
};
HWY_INLINE Whole whole(V x, double factor) {
  const V shifter = set(0x1.8p52), shifted = muladd(x, set(factor), shifter);
  return {bits(shifted), shifted - shifter};
}

// table[index % 16]
HWY_INLINE V lookup16(const double (&table)[16], VI index) {
#if HWY_TARGET == HWY_AVX3
  return V{_mm512_permutex2var_pd(_mm512_load_pd(table), index.raw, _mm512_load_pd(table + 8))};
#else
  const VI masked = hn::And(index, hn::Set(di, 15));
  return hn::GatherIndex(d, table, hn::BitCast(hn::RebindToSigned<D>(), masked));
#endif
}

// y, but f(x...) by the C library in the lanes that are not fine: rare ones, far out or special.
template <class F, class... X> HWY_NOINLINE V patched(M fine, V y, F f, X... x) {
  constexpr size_t kInputs = sizeof...(X);
  HWY_ALIGN double in[kInputs][kLanes], out[kLanes], good[kLanes];
  size_t input = 0;
  (hn::Store(x, d, in[input++]), ...);
  hn::Store(y, d, out);
  hn::Store(hn::IfThenElseZero(fine, set(1)), d, good);
  for (size_t k = 0; k < kLanes; ++k) {
    if (good[k] != 0) continue;
    if constexpr (kInputs == 1) out[k] = f(in[0][k]);
    else out[k] = f(in[0][k], in[1][k]);
  }
  return hn::Load(d, out);
}
template <class F, class... X> HWY_INLINE V patch(M fine, V y, F f, X... x) {
  if (HWY_LIKELY(hn::AllTrue(d, fine))) return y;
  return patched(fine, y, f, x...);
}

// The guards of core/limits.h on lanes.
template <class T> HWY_INLINE M bounded(V x) { return hn::Le(hn::Abs(x), set(Limits<T>::huge)); }
template <class T> HWY_INLINE V clamped(V x) {  // NaN counts as below
  const V huge = set(Limits<T>::huge), low = hn::Neg(huge), capped = hn::IfThenElse(hn::Gt(x, huge), huge, x);
  return hn::IfThenElse(hn::Ge(capped, low), capped, low);
}

template <class T> HWY_INLINE V load(const T* x) {
  if constexpr (kDouble<T>) return hn::LoadU(d, x);
  else return hn::PromoteTo(d, hn::LoadU(hn::Rebind<float, D>(), x));
}
template <class T> HWY_INLINE void store(V y, T* to) {
  if constexpr (kDouble<T>) hn::StoreU(y, d, to);
  else hn::StoreU(hn::DemoteTo(hn::Rebind<float, D>(), y), hn::Rebind<float, D>(), to);
}

struct Points {
  V re, im;
};

template <class T> HWY_INLINE Points load_points(const T* z) {
  const hn::Rebind<T, D> dt;
  hn::Vec<decltype(dt)> re, im;
  hn::LoadInterleaved2(dt, z, re, im);
  if constexpr (kDouble<T>) return {re, im};
  else return {hn::PromoteTo(d, re), hn::PromoteTo(d, im)};
}
template <class T> HWY_INLINE void store_points(Points y, T* to) {
  const hn::Rebind<T, D> dt;
  if constexpr (kDouble<T>) hn::StoreInterleaved2(y.re, y.im, dt, to);
  else hn::StoreInterleaved2(hn::DemoteTo(dt, y.re), hn::DemoteTo(dt, y.im), dt, to);
}

// The loops: y[k] = f(x[k]) for n samples or points. y may be x; a complex x may give a real y in its own place. The
// rest that fills no vector goes through a buffer, so that a sample gives the same bits wherever it stands.
template <size_t kIn, size_t kOut, class T, class F> HWY_INLINE void each_vector(const T* x, T* y, size_t n, F f) {
  size_t k = 0;
  for (; k + kLanes <= n; k += kLanes) f(x + kIn * k, y + kOut * k);
  if (k == n) return;
  HWY_ALIGN T buffer[2 * kLanes];
  std::fill_n(buffer, 2 * kLanes, T(1));
  std::copy_n(x + kIn * k, kIn * (n - k), buffer);
  f(buffer, buffer);
  std::copy_n(buffer, kOut * (n - k), y + kOut * k);
}
template <class T, class F> HWY_INLINE void each_sample(const T* x, T* y, size_t n, F f) {
  each_vector<1, 1>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store(f(load(from)), to); });
}
template <class T, class F> HWY_INLINE void each_point(const T* x, T* y, size_t n, F f) {
  each_vector<2, 2>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store_points(f(load_points(from)), to); });
}
template <class T, class F> HWY_INLINE void each_point_to_real(const T* x, T* y, size_t n, F f) {
  each_vector<2, 1>(x, y, n, [f](const T* from, T* to) HWY_ATTR { store(f(load_points(from)), to); });
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#endif
