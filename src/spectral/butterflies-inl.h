// Complex vectors with separate real and imaginary parts, and the small transforms on them that a pass is made of.
#if defined(SIGVEX_SPECTRAL_BUTTERFLIES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_BUTTERFLIES_INL_H
#undef SIGVEX_SPECTRAL_BUTTERFLIES_INL_H
#else
#define SIGVEX_SPECTRAL_BUTTERFLIES_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

template <class V> struct Complex { V re, im; };
template <class D> using ComplexOf = Complex<hn::VFromD<D>>;
template <class D> constexpr size_t kLanes = hn::MaxLanes(D());

template <class T, size_t count> using Lanes = hn::CappedTag<T, count>;
template <class T> constexpr size_t kMaxLanes = kLanes<hn::ScalableTag<T>>;

// Calls f with vectors of `count` lanes, a power of two, or of as many as there are.
template <class T, class F> HWY_INLINE void with_lanes(size_t count, F f) {
  switch (std::min(count, kMaxLanes<T>)) {
    case 1:
      return f(Lanes<T, 1>());
    case 2:
      return f(Lanes<T, 2>());
    case 4:
      return f(Lanes<T, 4>());
    case 8:
      return f(Lanes<T, 8>());
    default:
      return f(Lanes<T, 16>());
  }
}

template <class V> HWY_INLINE Complex<V> operator+(Complex<V> a, Complex<V> b) {
  return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
template <class V> HWY_INLINE Complex<V> operator-(Complex<V> a, Complex<V> b) {
  return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}
template <class V> HWY_INLINE Complex<V> operator*(Complex<V> a, Complex<V> w) {
  return {hn::NegMulAdd(a.im, w.im, hn::Mul(a.re, w.re)), hn::MulAdd(a.im, w.re, hn::Mul(a.re, w.im))};
}
template <class V> HWY_INLINE Complex<V> operator*(Complex<V> a, V factor) {
  return {hn::Mul(a.re, factor), hn::Mul(a.im, factor)};
}
template <class V> HWY_INLINE Complex<V> plus_i(Complex<V> a, Complex<V> b) {  // a + i b
  return {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
}
template <class V> HWY_INLINE Complex<V> minus_i(Complex<V> a, Complex<V> b) {  // a - i b
  return {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
}
template <class V> HWY_INLINE Complex<V> plus_scaled(Complex<V> a, V factor, Complex<V> b) {
  return {hn::MulAdd(factor, b.re, a.re), hn::MulAdd(factor, b.im, a.im)};
}
template <class V> HWY_INLINE Complex<V> minus_scaled(Complex<V> a, V factor, Complex<V> b) {
  return {hn::NegMulAdd(factor, b.re, a.re), hn::NegMulAdd(factor, b.im, a.im)};
}

#if HWY_TARGET != HWY_SCALAR
// Lanes 0 2 (1 3) of each block of a, then those of b.
HWY_INLINE hn::Vec128<float> even_in_blocks(hn::Vec128<float> a, hn::Vec128<float> b) {
  return hn::ConcatEven(hn::Full128<float>(), b, a);
}
HWY_INLINE hn::Vec128<float> odd_in_blocks(hn::Vec128<float> a, hn::Vec128<float> b) {
  return hn::ConcatOdd(hn::Full128<float>(), b, a);
}
#if HWY_TARGET <= HWY_AVX2
HWY_INLINE hn::Vec256<float> even_in_blocks(hn::Vec256<float> a, hn::Vec256<float> b) {
  return hn::Vec256<float>{_mm256_shuffle_ps(a.raw, b.raw, 0x88)};
}
HWY_INLINE hn::Vec256<float> odd_in_blocks(hn::Vec256<float> a, hn::Vec256<float> b) {
  return hn::Vec256<float>{_mm256_shuffle_ps(a.raw, b.raw, 0xDD)};
}
#endif
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE hn::Vec512<float> even_in_blocks(hn::Vec512<float> a, hn::Vec512<float> b) {
  return hn::Vec512<float>{_mm512_shuffle_ps(a.raw, b.raw, 0x88)};
}
HWY_INLINE hn::Vec512<float> odd_in_blocks(hn::Vec512<float> a, hn::Vec512<float> b) {
  return hn::Vec512<float>{_mm512_shuffle_ps(a.raw, b.raw, 0xDD)};
}
#endif
#endif

// The forward transform of 4 points, in place, in natural order. Of half: the last two are zero and not read.
template <bool kHalf = false, class C> HWY_INLINE void transform4(C& x0, C& x1, C& x2, C& x3) {
  if constexpr (kHalf) {
    const C a = x0, b = x1;
    x0 = a + b;
    x1 = minus_i(a, b);
    x2 = a - b;
    x3 = plus_i(a, b);
    return;
  }
  const C s02 = x0 + x2, d02 = x0 - x2, s13 = x1 + x3, d13 = x1 - x3;
  x0 = s02 + s13;
  x1 = minus_i(d02, d13);
  x2 = s02 - s13;
  x3 = plus_i(d02, d13);
}

// The forward transform of R points per lane, in place, in natural order. Of half: the second half of them is zero and
// not read.
template <class D, class C> HWY_INLINE void transform(D, C (&x)[2]) {
  const C a = x[0];
  x[0] = a + x[1];
  x[1] = a - x[1];
}

template <bool kHalf = false, class D, class C> HWY_INLINE void transform(D, C (&x)[4]) {
  transform4<kHalf>(x[0], x[1], x[2], x[3]);
}

// Even and odd points apart. The eighth turns are one factor, which joins the additions behind it.
template <bool kHalf = false, class D, class C> HWY_INLINE void transform(D d, C (&x)[8]) {
  transform4<kHalf>(x[0], x[2], x[4], x[6]);
  transform4<kHalf>(x[1], x[3], x[5], x[7]);
  const auto r = hn::Set(d, static_cast<hn::TFromD<D>>(0.70710678118654752440L));
  const C e0 = x[0], e1 = x[2], e2 = x[4], e3 = x[6], o0 = x[1], o1 = x[3], o2 = x[5], o3 = x[7];
  x[0] = e0 + o0;
  x[4] = e0 - o0;
  x[2] = minus_i(e2, o2);
  x[6] = plus_i(e2, o2);
  const C a = minus_i(o1, o1), b = plus_i(o3, o3);  // o1 (1 - i), o3 (1 + i)
  x[1] = plus_scaled(e1, r, a);
  x[5] = minus_scaled(e1, r, a);
  x[3] = minus_scaled(e3, r, b);
  x[7] = plus_scaled(e3, r, b);
}

// Four times four.
template <bool kHalf = false, class D> HWY_INLINE void transform(D d, ComplexOf<D> (&x)[16]) {
  using C = ComplexOf<D>;
  using T = hn::TFromD<D>;
  for (size_t j = 0; j < 4; ++j) transform4<kHalf>(x[j], x[j + 4], x[j + 8], x[j + 12]);
  const auto c = hn::Set(d, static_cast<T>(0.92387953251128675613L)),
             s = hn::Set(d, static_cast<T>(0.38268343236508977173L));
  const auto r = hn::Set(d, static_cast<T>(0.70710678118654752440L));
  const auto nc = hn::Neg(c), ns = hn::Neg(s);
  x[5] = x[5] * C{c, ns};
  x[6] = minus_i(x[6], x[6]) * r;
  x[7] = x[7] * C{s, nc};
  x[9] = minus_i(x[9], x[9]) * r;
  x[10] = {x[10].im, hn::Neg(x[10].re)};
  x[11] = plus_i(x[11], x[11]) * hn::Neg(r);
  x[13] = x[13] * C{s, nc};
  x[14] = plus_i(x[14], x[14]) * hn::Neg(r);
  x[15] = x[15] * C{nc, s};
  for (size_t k = 0; k < 16; k += 4) transform4(x[k], x[k + 1], x[k + 2], x[k + 3]);
  // x[4k + j] holds point k + 4j.
  const auto swap = [](C& a, C& b) HWY_ATTR {
    const C t = a;
    a = b;
    b = t;
  };
  swap(x[1], x[4]);
  swap(x[2], x[8]);
  swap(x[3], x[12]);
  swap(x[6], x[9]);
  swap(x[7], x[13]);
  swap(x[11], x[14]);
}

// Parting and joining the parts of interleaved points is one instruction each as long as nothing leaves its block of
// 128 bits. The lanes then hold the points in an order of their own: lane l of a vector holds point lane_point(l), in
// every vector of points that a transform works on. Reversing the lanes still reverses the points.
template <class D> constexpr size_t lane_point(size_t l) {
  constexpr size_t L = kLanes<D>, kPairs = 8 / sizeof(hn::TFromD<D>);  // points of one load in a block
  if (L <= 2 * kPairs) return l;
  return l / (2 * kPairs) * kPairs + l % kPairs + l / kPairs % 2 * (L / 2);
}

// Interleaved points at any address. Inverse exchanges the parts at both ends, which turns a forward transform into
// the inverse one.
template <bool kInverse, class D> HWY_INLINE ComplexOf<D> load_points(D d, const hn::TFromD<D>* from) {
  const auto a = hn::LoadU(d, from), b = hn::LoadU(d, from + kLanes<D>);
  hn::VFromD<D> re = a, im = b;
#if HWY_TARGET != HWY_SCALAR
  if constexpr (kLanes < D >> 1 && sizeof(hn::TFromD<D>) == 8) {
    re = hn::InterleaveLower(d, a, b);
    im = hn::InterleaveUpper(d, a, b);
  } else if constexpr (kLanes<D> == 2) {
    re = hn::ConcatEven(d, b, a);
    im = hn::ConcatOdd(d, b, a);
  } else if constexpr (kLanes<D> > 2) {
    re = even_in_blocks(a, b);
    im = odd_in_blocks(a, b);
  }
#endif
  if constexpr (kInverse) return {im, re};
  return {re, im};
}

template <bool kInverse, class D> HWY_INLINE void store_points(D d, ComplexOf<D> z, hn::TFromD<D>* to) {
  hn::VFromD<D> a = kInverse ? z.im : z.re, b = kInverse ? z.re : z.im;
#if HWY_TARGET != HWY_SCALAR
  if constexpr (kLanes < D >> 1) {
    const hn::VFromD<D> lower = hn::InterleaveLower(d, a, b);
    b = hn::InterleaveUpper(d, a, b);
    a = lower;
  }
#endif
  hn::StoreU(a, d, to);
  hn::StoreU(b, d, to + kLanes<D>);
}

// A square of 128-bit blocks, transposed; of every kStep-th vector, kStep times.
template <size_t kStep, class D>
HWY_INLINE void transpose_blocks([[maybe_unused]] D d, [[maybe_unused]] hn::VFromD<D>* x) {
#if HWY_TARGET != HWY_SCALAR
  using V = hn::VFromD<D>;
  constexpr size_t kBlocks = kLanes<D> * sizeof(hn::TFromD<D>) / 16;
  if constexpr (kBlocks == 2) {
    for (size_t k = 0; k < kStep; ++k) {
      const V a = x[k], b = x[k + kStep];
      x[k] = hn::ConcatLowerLower(d, b, a);
      x[k + kStep] = hn::ConcatUpperUpper(d, b, a);
    }
  }
#if HWY_TARGET <= HWY_AVX3
  if constexpr (kBlocks == 4) {  // blocks 0 2 | 0 2 and 1 3 | 1 3 of two vectors, twice
    const auto even = [](V a, V b) HWY_ATTR {
      return V{(decltype(a.raw))_mm512_shuffle_f64x2((__m512d)a.raw, (__m512d)b.raw, 0x88)};
    };
    const auto odd = [](V a, V b) HWY_ATTR {
      return V{(decltype(a.raw))_mm512_shuffle_f64x2((__m512d)a.raw, (__m512d)b.raw, 0xDD)};
    };
    for (size_t k = 0; k < kStep; ++k) {
      const V a = x[k], b = x[k + kStep], e = x[k + 2 * kStep], f = x[k + 3 * kStep];
      x[k] = even(even(a, b), even(e, f));
      x[k + kStep] = even(odd(a, b), odd(e, f));
      x[k + 2 * kStep] = odd(even(a, b), even(e, f));
      x[k + 3 * kStep] = odd(odd(a, b), odd(e, f));
    }
  }
#endif
#endif
}

// A square of lanes by lanes, transposed.
template <class D> HWY_INLINE void transpose([[maybe_unused]] D d, [[maybe_unused]] hn::VFromD<D>* x) {
#if HWY_TARGET != HWY_SCALAR
  using V = hn::VFromD<D>;
  using T = hn::TFromD<D>;
  constexpr size_t kBlock = 16 / sizeof(T) < kLanes<D> ? 16 / sizeof(T) : kLanes<D>;  // lanes of 128 bits
  if constexpr (kBlock == 2) {
    for (size_t k = 0; k < kLanes<D>; k += 2) {
      const V a = x[k], b = x[k + 1];
      x[k] = hn::InterleaveLower(d, a, b);
      x[k + 1] = hn::InterleaveUpper(d, a, b);
    }
  } else if constexpr (kBlock == 4) {
    const hn::Repartition<double, D> dw;
    for (size_t k = 0; k < kLanes<D>; k += 4) {
      const auto a = hn::BitCast(dw, hn::InterleaveLower(d, x[k], x[k + 1]));
      const auto b = hn::BitCast(dw, hn::InterleaveUpper(d, x[k], x[k + 1]));
      const auto e = hn::BitCast(dw, hn::InterleaveLower(d, x[k + 2], x[k + 3]));
      const auto f = hn::BitCast(dw, hn::InterleaveUpper(d, x[k + 2], x[k + 3]));
      x[k] = hn::BitCast(d, hn::InterleaveLower(dw, a, e));
      x[k + 1] = hn::BitCast(d, hn::InterleaveUpper(dw, a, e));
      x[k + 2] = hn::BitCast(d, hn::InterleaveLower(dw, b, f));
      x[k + 3] = hn::BitCast(d, hn::InterleaveUpper(dw, b, f));
    }
  }
  transpose_blocks<kBlock>(d, x);
#endif
}

// L vectors of points, their point k standing in x[k]: afterwards y[p] holds point p of each, in the order of lanes.
template <class D> HWY_INLINE void transpose_points(D d, const ComplexOf<D>* x, ComplexOf<D> (&y)[kLanes<D>]) {
  constexpr size_t L = kLanes<D>;
  hn::VFromD<D> re[L], im[L];
  for (size_t l = 0; l < L; ++l) re[l] = x[lane_point<D>(l)].re;
  transpose(d, re);
  for (size_t l = 0; l < L; ++l) im[l] = x[lane_point<D>(l)].im;
  transpose(d, im);
  for (size_t l = 0; l < L; ++l) y[lane_point<D>(l)] = {re[l], im[l]};
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
