// The passes of a transform that sorts itself. A pass of radix R takes n points, seen as R rows of n/R; each column is
// transformed, multiplied by its roots and written so that the R results stand side by side (in units of `stride`,
// the product of the radices so far), which leaves the points in natural order after the last pass.
//
// Between passes, points stand in blocks: the real parts of as many points as a vector has lanes, then their imaginary
// parts.
#if defined(SIGVEX_SPECTRAL_PASSES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_PASSES_INL_H
#undef SIGVEX_SPECTRAL_PASSES_INL_H
#else
#define SIGVEX_SPECTRAL_PASSES_INL_H
#endif

#include "spectral/butterflies-inl.h"
#include "spectral/twiddles.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Block k of an array in that layout.
template <class D> HWY_INLINE ComplexOf<D> load_block(D d, const hn::TFromD<D>* x, size_t k) {
  const hn::TFromD<D>* const re = x + 2 * kLanes<D> * k;
  return {hn::LoadU(d, re), hn::LoadU(d, re + kLanes<D>)};
}
template <class D> HWY_INLINE void store_block(D d, ComplexOf<D> z, hn::TFromD<D>* x, size_t k) {
  hn::TFromD<D>* const re = x + 2 * kLanes<D> * k;
  hn::StoreU(z.re, d, re);
  hn::StoreU(z.im, d, re + kLanes<D>);
}
template <class D> HWY_INLINE ComplexOf<D> broadcast(D d, const hn::TFromD<D>* pair) {
  return {hn::Set(d, pair[0]), hn::Set(d, pair[1])};
}

template <class T> Point<T> root_of(const TripleTable<T>& roots, size_t k, size_t n) {
  return roots.root(k * (static_cast<size_t>(roots.n) / n));
}

// A block of roots of order n, those by which result k of the columns from c on, which are lanes, is multiplied; the
// next one follows.
template <class D, class T = hn::TFromD<D>>
T* fill_roots(D, size_t k, size_t c, size_t n, const TripleTable<T>& roots, T* to) {
  constexpr size_t L = kLanes<D>;
  for (size_t l = 0; l < L; ++l) {
    const Point<T> w = root_of(roots, k * (c + lane_point<D>(l)), n);
    to[l] = w.re;
    to[l + L] = w.im;
  }
  return to + 2 * L;
}

// The roots of a pass of a radix over n points in order of use: by groups of columns, then by result.
template <class D, class T = hn::TFromD<D>>
T* fill_pass(D d, size_t n, size_t radix, const TripleTable<T>& roots, T* to) {
  for (size_t c = 0; c < n / radix; c += kLanes<D>) {
    for (size_t k = 1; k < radix; ++k) to = fill_roots(d, k, c, n, roots, to);
  }
  return to;
}

// The first pass, from interleaved points; its columns are the lanes, so the results are transposed on their way out.
// roots: for each group of columns, R - 1 blocks.
template <size_t R, bool kInverse, class D, class T = hn::TFromD<D>>
HWY_INLINE void first_pass(D d, const T* HWY_RESTRICT in, T* HWY_RESTRICT out, size_t n, const T* HWY_RESTRICT roots) {
  constexpr size_t L = kLanes<D>;
  static_assert(R % L == 0);
  const size_t columns = n / R;
  for (size_t p = 0; p < columns; p += L, roots += 2 * L * (R - 1)) {
    ComplexOf<D> x[R], y[L];
    for (size_t k = 0; k < R; ++k) x[k] = load_points<kInverse>(d, in + 2 * (p + columns * k));
    transform(d, x);
    for (size_t k = 1; k < R; ++k) x[k] = x[k] * load_block(d, roots, k - 1);
    for (size_t k = 0; k < R; k += L) {
      transpose_points(d, x + k, y);
      for (size_t j = 0; j < L; ++j) store_block(d, y[j], out, ((p + j) * R + k) / L);
    }
  }
}

// A pass in the middle, over blocks; stride counts blocks. roots: for each column, R - 1 pairs.
template <size_t R, class D, class T = hn::TFromD<D>>
HWY_INLINE void middle_pass(D d, const T* HWY_RESTRICT in, T* HWY_RESTRICT out, size_t blocks, size_t stride,
                            const T* HWY_RESTRICT roots) {
  const size_t columns = blocks / R / stride;
  for (size_t p = 0; p < columns; ++p, roots += 2 * (R - 1)) {
    for (size_t q = 0; q < stride; ++q) {
      ComplexOf<D> x[R];
      for (size_t k = 0; k < R; ++k) x[k] = load_block(d, in, q + stride * (p + columns * k));
      transform(d, x);
      for (size_t k = 1; k < R; ++k) x[k] = x[k] * broadcast(d, roots + 2 * (k - 1));
      for (size_t k = 0; k < R; ++k) store_block(d, x[k], out, q + stride * (R * p + k));
    }
  }
}

// The last pass, to interleaved points; may work in place.
template <size_t R, bool kInverse, class D, class T = hn::TFromD<D>>
HWY_INLINE void last_pass(D d, const T* in, T* out, size_t blocks, T factor) {
  const auto scale = hn::Set(d, factor);
  const size_t stride = blocks / R;
  for (size_t q = 0; q < stride; ++q) {
    ComplexOf<D> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load_block(d, in, q + stride * k);
    transform(d, x);
    for (size_t k = 0; k < R; ++k) {
      store_points<kInverse>(d, kInverse ? x[k] : x[k] * scale, out + 2 * kLanes<D> * (q + stride * k));
    }
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
