// Short transforms that never leave the registers, on vectors of interleaved points: the parts of a point stay side by
// side, so that nothing is parted on the way in nor joined on the way out, and 16 points fill four vectors. What a
// product with i costs is an exchange of neighbours.
#if defined(SIGVEX_SPECTRAL_PAIRS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_PAIRS_INL_H
#undef SIGVEX_SPECTRAL_PAIRS_INL_H
#else
#define SIGVEX_SPECTRAL_PAIRS_INL_H
#endif

#include <type_traits>

#include "spectral/passes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

// Interleaved points. Of the inverse transform, i stands for -i.
template <class D, bool kInverse> struct Pairs { hn::VFromD<D> v; };

template <class D> HWY_INLINE hn::VFromD<D> parts_exchanged(D, hn::VFromD<D> v) {
  if constexpr (sizeof(hn::TFromD<D>) == 8) return hn::Shuffle01(v);
  else return hn::Shuffle2301(v);
}
template <class D> HWY_INLINE hn::VFromD<D> alternating(D d, hn::TFromD<D> even, hn::TFromD<D> odd) {
  return hn::OddEven(hn::Set(d, odd), hn::Set(d, even));
}

template <class D, bool kInverse> HWY_INLINE Pairs<D, kInverse> operator+(Pairs<D, kInverse> a, Pairs<D, kInverse> b) {
  return {hn::Add(a.v, b.v)};
}
template <class D, bool kInverse> HWY_INLINE Pairs<D, kInverse> operator-(Pairs<D, kInverse> a, Pairs<D, kInverse> b) {
  return {hn::Sub(a.v, b.v)};
}
// b with the signs of its even lanes changed, or of its odd ones, added to a. The first is an instruction of its own.
template <bool kOdd, class D> HWY_INLINE hn::VFromD<D> plus_alternating(D d, hn::VFromD<D> a, hn::VFromD<D> b) {
#if HWY_TARGET <= HWY_AVX2
  using V = hn::VFromD<D>;
  if constexpr (!kOdd && std::is_same_v<V, hn::Vec256<double>>) return V{_mm256_addsub_pd(a.raw, b.raw)};
  if constexpr (!kOdd && std::is_same_v<V, hn::Vec256<float>>) return V{_mm256_addsub_ps(a.raw, b.raw)};
  if constexpr (!kOdd && std::is_same_v<V, hn::Vec128<float>>) return V{_mm_addsub_ps(a.raw, b.raw)};
#endif
  return hn::MulAdd(b, kOdd ? alternating(d, 1, -1) : alternating(d, -1, 1), a);
}
template <class D, bool kInverse> HWY_INLINE Pairs<D, kInverse> plus_i(Pairs<D, kInverse> a, Pairs<D, kInverse> b) {
  const D d;
  return {plus_alternating<kInverse>(d, a.v, parts_exchanged(d, b.v))};
}
template <class D, bool kInverse> HWY_INLINE Pairs<D, kInverse> minus_i(Pairs<D, kInverse> a, Pairs<D, kInverse> b) {
  const D d;
  return {plus_alternating<!kInverse>(d, a.v, parts_exchanged(d, b.v))};
}
template <class D, bool kInverse>
HWY_INLINE Pairs<D, kInverse> plus_scaled(Pairs<D, kInverse> a, hn::VFromD<D> factor, Pairs<D, kInverse> b) {
  return {hn::MulAdd(factor, b.v, a.v)};
}
template <class D, bool kInverse>
HWY_INLINE Pairs<D, kInverse> minus_scaled(Pairs<D, kInverse> a, hn::VFromD<D> factor, Pairs<D, kInverse> b) {
  return {hn::NegMulAdd(factor, b.v, a.v)};
}

// A square of P vectors of P points, transposed.
template <class D, bool kInverse> HWY_INLINE void transpose_pairs(D d, Pairs<D, kInverse>* x) {
  constexpr size_t P = kLanes<D> / 2;
  if constexpr (sizeof(hn::TFromD<D>) == 4) {
    const hn::Repartition<double, D> dw;
    hn::VFromD<decltype(dw)> y[P];
    for (size_t k = 0; k < P; ++k) y[k] = hn::BitCast(dw, x[k].v);
    transpose(dw, y);
    for (size_t k = 0; k < P; ++k) x[k].v = hn::BitCast(d, y[k]);
  } else {
    hn::VFromD<D> y[P];
    for (size_t k = 0; k < P; ++k) y[k] = x[k].v;
    transpose_blocks<1>(d, y);
    for (size_t k = 0; k < P; ++k) x[k].v = y[k];
  }
}

// w as factors of P points to come, at the place of one of them.
template <class T> void put_root(Point<T> w, T* to, size_t P) {
  to[0] = to[1] = w.re;
  to[2 * P] = -w.im;
  to[2 * P + 1] = w.im;
}

// A transform of R rows of C points, in vectors of P: across the rows, and after the transposition of squares of P
// across the columns; R and C are multiples of P. The table holds each root twice, as factors of a point and of the
// point with its parts exchanged.
template <class T, size_t R, size_t C, size_t P> struct InPairs {
  static constexpr size_t n = R * C;
  using D = Lanes<T, 2 * P>;
  static constexpr D d{};

  static size_t table_size() { return 4 * (R - 1) * C; }
  static size_t work_size() { return 0; }
  static void fill(const TripleTable<T>& roots, T* to) {
    for (size_t column = 0; column < C; column += P) {
      for (size_t k = 1; k < R; ++k, to += 4 * P) {
        for (size_t p = 0; p < P; ++p) put_root(root_of(roots, k * (column + p), n), to + 2 * p, P);
      }
    }
  }

  template <bool kInverse> static void run(int, const T* table, T* data, T*, T factor) {
    in_registers<kInverse>(
        table, factor, [&](size_t k) HWY_ATTR { return hn::LoadU(d, data + 2 * k); },
        [&](size_t k, hn::VFromD<D> z) HWY_ATTR { hn::StoreU(z, d, data + 2 * k); });
  }

  // load(k) gives and store(k, z) takes points k to k + P - 1. The scale joins the roots, which wait for nothing.
  template <bool kInverse, class Load, class Store>
  static HWY_INLINE void in_registers(const T* table, T factor, Load load, Store store) {
    using Z = Pairs<D, kInverse>;
    const auto scale = hn::Set(d, factor);
    Z x[C / P][R];
    for (size_t g = 0; g < C / P; ++g) {
      for (size_t k = 0; k < R; ++k) x[g][k].v = load(C * k + P * g);
      transform(d, x[g]);
      if (!kInverse) x[g][0].v = hn::Mul(x[g][0].v, scale);
      for (size_t k = 1; k < R; ++k, table += 4 * P) {
        auto same = hn::LoadU(d, table), crossed = hn::LoadU(d, table + 2 * P);
        if (!kInverse) {
          same = hn::Mul(same, scale);
          crossed = hn::Mul(crossed, scale);
        }
        const auto z = x[g][k].v, y = hn::Mul(z, same), exchanged = parts_exchanged(d, z);  // side by side
        x[g][k].v = kInverse ? hn::NegMulAdd(exchanged, crossed, y) : hn::MulAdd(exchanged, crossed, y);
      }
    }
    for (size_t k = 0; k < R; k += P) {
      Z y[C];
      for (size_t g = 0; g < C / P; ++g) {
        for (size_t p = 0; p < P; ++p) y[P * g + p] = x[g][k + p];
        transpose_pairs(d, y + P * g);
      }
      transform(d, y);
      for (size_t c = 0; c < C; ++c) store(k + R * c, y[c].v);
    }
  }
};

#endif

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
