// Real transforms as complex ones of half as many points, h: neighbouring samples are the parts of a point, and a split
// turns the h points of the transform into bins 0 .. h. With a = z[k] + conj z[h-k] and d = -i w^k (z[k] - conj
// z[h-k]), w = e^(-i pi/h): bin k is a + d, bin h-k the conjugate of a - d. For k = 0, z[h] is z[0]; the bin in the
// middle is twice the conjugate of its point. The way back is the same with the conjugate roots, bin h standing for
// z[h], and the imaginary parts of bins 0 and h, which no real transform has, counting as 0.
#if defined(SIGVEX_SPECTRAL_REAL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_REAL_INL_H
#undef SIGVEX_SPECTRAL_REAL_INL_H
#else
#define SIGVEX_SPECTRAL_REAL_INL_H
#endif

#include "spectral/pairs-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// -i w^k
template <class T> Point<T> split_root(const TripleTable<T>& roots, size_t k, size_t h) {
  const Point<T> w = root_of(roots, k, 2 * h);
  return {w.im, -w.re};
}

template <class D, class T = hn::TFromD<D>> void fill_split(D, size_t h, const TripleTable<T>& roots, T* to) {
  constexpr size_t L = kLanes<D>;
  for (size_t k = 0; k < h / 2; k += L, to += 2 * L) {
    for (size_t l = 0; l < L; ++l) {
      const Point<T> w = split_root(roots, k + lane_point<D>(l), h);
      to[l] = w.re;
      to[l + L] = w.im;
    }
  }
}

// Of the points, scaled by half of what the bins are to be, makes the bins; inverse, of the bins the points.
template <bool kInverse, class D, class T = hn::TFromD<D>> void split(D d, size_t h, const T* roots, T* x) {
  constexpr size_t L = kLanes<D>;
  if constexpr (kInverse) {
    x[1] = x[2 * h + 1] = 0;
  } else {
    x[2 * h] = x[0];
    x[2 * h + 1] = x[1];
  }
  x[h] = 2 * x[h];
  x[h + 1] = -2 * x[h + 1];
  for (size_t k = 0; k < h / 2; k += L) {
    T *const front = x + 2 * k, *const back = x + 2 * (h - k - (L - 1));
    const ComplexOf<D> z = load_points<false>(d, front), mirrored = load_points<false>(d, back);
    const ComplexOf<D> y{hn::Reverse(d, mirrored.re), hn::Neg(hn::Reverse(d, mirrored.im))};
    ComplexOf<D> w = load_block(d, roots, k / L);
    if constexpr (kInverse) w.im = hn::Neg(w.im);
    const ComplexOf<D> sum = z + y, turned = (z - y) * w, mirror = sum - turned;
    store_points<false>(d, sum + turned, front);
    store_points<false>(d, {hn::Reverse(d, mirror.re), hn::Neg(hn::Reverse(d, mirror.im))}, back);
  }
}

#if HWY_TARGET != HWY_SCALAR

// A transform of R * C points together with its split, which never leaves the registers, two points a vector. Its
// table: the roots of the transform, then -i w^k for k < h as factors.
template <class T, size_t R, size_t C> struct RealInPairs {
  using Points = InPairs<T, R, C, 2>;
  using D = typename Points::D;
  using V = hn::VFromD<D>;
  static constexpr D d{};
  static constexpr size_t h = R * C;

  static void fill(const TripleTable<T>& roots, T* to) {
    Points::fill(roots, to);
    to += Points::table_size();
    for (size_t k = 0; k < h; k += 2, to += 8) {
      for (size_t p = 0; p < 2; ++p) put_root(split_root(roots, k + p, h), to + 2 * p, 2);
    }
  }

  template <bool kInverse> static void run(const RealTables<T>& tables, T* data, T*, T scale) {
    const T *const roots = tables.roots, *const split_roots = roots + Points::table_size();
    const auto real_at_first = [](V v)
                                   HWY_ATTR { return hn::IfThenZeroElse(hn::Eq(hn::Iota(d, 0), hn::Set(d, 1)), v); };
    V z[h / 2], points[h / 2];
    if constexpr (kInverse) {
      for (size_t k = 0; k < h; k += 2) z[k / 2] = hn::LoadU(d, data + 2 * k);
      z[0] = real_at_first(z[0]);
      const V last = hn::LoadU(d, data + 2 * (h - 1));
      const V mirrored = real_at_first(hn::ConcatLowerUpper(d, last, last));
      points[0] = term<true>(z[0], mirrored, split_roots);
      for (size_t k = 1; k < h / 2; ++k) points[k] = term<true>(z[k], mirror(z, k), split_roots + 8 * k);
      Points::template in_registers<true>(
          roots, scale, [&](size_t k) HWY_ATTR { return points[k / 2]; },
          [&](size_t k, V v) HWY_ATTR { hn::StoreU(v, d, data + 2 * k); });
    } else {
      Points::template in_registers<false>(
          roots, scale / 2, [&](size_t k) HWY_ATTR { return hn::LoadU(d, data + 2 * k); },
          [&](size_t k, V v) HWY_ATTR { z[k / 2] = v; });
      const V mirrored = hn::ConcatUpperLower(d, z[h / 2 - 1], z[0]);
      hn::StoreU(term<false>(z[0], mirrored, split_roots), d, data);
      for (size_t k = 1; k < h / 2; ++k) {
        hn::StoreU(term<false>(z[k], mirror(z, k), split_roots + 8 * k), d, data + 4 * k);
      }
      const V parts_apart = hn::Sub(z[0], parts_exchanged(d, z[0]));
      data[2 * h] = 2 * hn::GetLane(parts_apart);
      data[2 * h + 1] = 0;
    }
  }

 private:
  // Points h - 2k and h - 2k - 1.
  static HWY_INLINE V mirror(const V (&z)[h / 2], size_t k) {
    return hn::ConcatUpperLower(d, z[h / 2 - 1 - k], z[h / 2 - k]);
  }

  // a + d of two points.
  template <bool kInverse> static HWY_INLINE V term(V z, V mirrored, const T* roots) {
    const V sum = plus_alternating<true>(d, z, mirrored), difference = plus_alternating<false>(d, z, mirrored);
    const V exchanged = parts_exchanged(d, difference), crossed = hn::LoadU(d, roots + 4);
    const V part = hn::MulAdd(difference, hn::LoadU(d, roots), sum);
    return kInverse ? hn::NegMulAdd(exchanged, crossed, part) : hn::MulAdd(exchanged, crossed, part);
  }
};

#endif

// Whether a transform of 2^bits points and its split are one.
template <class T> bool real_in_registers(int bits) { return kMaxLanes<T> >= 4 && bits >= 2 && bits <= 5; }

// Calls f with the transform that is one with its split; false if there is none for 2^bits points.
template <class T, class F> bool with_real_in_registers([[maybe_unused]] int bits, [[maybe_unused]] F f) {
#if HWY_TARGET != HWY_SCALAR
  if constexpr (kMaxLanes<T> >= 4) {
    if (bits == 2) return f(RealInPairs<T, 2, 2>()), true;
    if (bits == 3) return f(RealInPairs<T, 4, 2>()), true;
    if (bits == 4) return f(RealInPairs<T, 4, 4>()), true;
    if (bits == 5) return f(RealInPairs<T, 8, 4>()), true;
  }
#endif
  return false;
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
