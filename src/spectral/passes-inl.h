// The passes of a transform that sorts itself. A pass of radix R takes n points, seen as R rows of n/R; each column is
// transformed, multiplied by its roots and written so that the R results stand side by side (in units of `stride`,
// the product of the radices so far), which leaves the points in natural order after the last pass.
//
// Between passes, points stand in blocks of F real parts followed by F imaginary parts.
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

template <size_t F> constexpr size_t block_offset(size_t point) { return 2 * F * (point / F) + point % F; }

template <size_t F, class D> HWY_INLINE ComplexOf<D> load_block(D d, const hn::TFromD<D>* x, size_t point) {
  const hn::TFromD<D>* const re = x + block_offset<F>(point);
  return {hn::LoadU(d, re), hn::LoadU(d, re + F)};
}
template <size_t F, class D> HWY_INLINE void store_block(D d, ComplexOf<D> z, hn::TFromD<D>* x, size_t point) {
  hn::TFromD<D>* const re = x + block_offset<F>(point);
  hn::StoreU(z.re, d, re);
  hn::StoreU(z.im, d, re + F);
}

template <class T> Point<T> root_of(const TripleTable<T>& roots, size_t k, size_t n) {
  return roots.root(k * (static_cast<size_t>(roots.n) / n));
}

// The roots of a pass in order of use: by column groups of `lanes`, then by result.
template <class T> T* fill_pass(size_t n, size_t radix, size_t lanes, const TripleTable<T>& roots, T* to) {
  for (size_t p = 0; p < n / radix; p += lanes) {
    for (size_t k = 1; k < radix; ++k, to += 2 * lanes) {
      for (size_t l = 0; l < lanes; ++l) {
        const Point<T> w = root_of(roots, (p + l) * k, n);
        to[l] = w.re;
        to[l + lanes] = w.im;
      }
    }
  }
  return to;
}

// The first pass, from interleaved points; its columns are the lanes, so the results are transposed on their way out.
// roots: for each group of columns, R - 1 blocks.
template <size_t R, size_t F, bool kInverse, class D, class T = hn::TFromD<D>>
HWY_INLINE void first_pass(D d, const T* HWY_RESTRICT in, T* HWY_RESTRICT out, size_t n, const T* HWY_RESTRICT roots) {
  constexpr size_t L = kLanes<D>;
  static_assert(R % L == 0 && F % L == 0);
  const size_t columns = n / R;
  for (size_t p = 0; p < columns; p += L) {
    ComplexOf<D> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load_points<kInverse>(d, in + 2 * (p + columns * k));
    transform(d, x);
    for (size_t k = 1; k < R; ++k, roots += 2 * L)
      x[k] = x[k] * ComplexOf<D>{hn::LoadU(d, roots), hn::LoadU(d, roots + L)};
    for (size_t k = 0; k < R; k += L) {
      hn::VFromD<D> part[L];
      for (size_t j = 0; j < L; ++j) part[j] = x[k + j].re;
      transpose(d, part);
      for (size_t j = 0; j < L; ++j) hn::StoreU(part[j], d, out + block_offset<F>((p + j) * R + k));
      for (size_t j = 0; j < L; ++j) part[j] = x[k + j].im;
      transpose(d, part);
      for (size_t j = 0; j < L; ++j) hn::StoreU(part[j], d, out + block_offset<F>((p + j) * R + k) + F);
    }
  }
}

// A pass in the middle; roots: for each column, R - 1 pairs.
template <size_t R, size_t FIn, size_t FOut, class D, class T = hn::TFromD<D>>
HWY_INLINE void middle_pass(D d, const T* HWY_RESTRICT in, T* HWY_RESTRICT out, size_t n, size_t stride,
                            const T* HWY_RESTRICT roots) {
  constexpr size_t L = kLanes<D>;
  const size_t columns = n / R / stride;
  for (size_t p = 0; p < columns; ++p, roots += 2 * (R - 1)) {
    for (size_t q = 0; q < stride; q += L) {
      ComplexOf<D> x[R];
      for (size_t k = 0; k < R; ++k) x[k] = load_block<FIn>(d, in, q + stride * (p + columns * k));
      transform(d, x);
      for (size_t k = 1; k < R; ++k)
        x[k] = x[k] * ComplexOf<D>{hn::Set(d, roots[2 * k - 2]), hn::Set(d, roots[2 * k - 1])};
      for (size_t k = 0; k < R; ++k) store_block<FOut>(d, x[k], out, q + stride * (R * p + k));
    }
  }
}

// The last pass, to interleaved points; may work in place.
template <size_t R, size_t F, bool kInverse, class D, class T = hn::TFromD<D>>
HWY_INLINE void last_pass(D d, const T* in, T* out, size_t n, T factor) {
  constexpr size_t L = kLanes<D>;
  const size_t stride = n / R;
  const auto scale = hn::Set(d, factor);
  for (size_t q = 0; q < stride; q += L) {
    ComplexOf<D> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load_block<F>(d, in, q + stride * k);
    transform(d, x);
    for (size_t k = 0; k < R; ++k) {
      store_points<kInverse>(d, kInverse ? x[k] : x[k] * scale, out + 2 * (q + stride * k));
    }
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
