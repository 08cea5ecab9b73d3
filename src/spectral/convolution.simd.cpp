#include "spectral/convolution.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "spectral/convolution.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

#include "spectral/convolver-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Real samples in the lanes where load_points puts points.
template <class D, class T = hn::TFromD<D>> HWY_INLINE hn::VFromD<D> load_samples(D d, const T* from) {
  constexpr size_t L = kLanes<D>;
  if constexpr (lane_point<D>(L / 2) != L / 2) {
    alignas(kAlignment) hn::TFromD<hn::RebindToSigned<D>> order[L];
    for (size_t l = 0; l < L; ++l) order[l] = static_cast<hn::TFromD<hn::RebindToSigned<D>>>(lane_point<D>(l));
    return hn::TableLookupLanes(hn::LoadU(d, from), hn::SetTableIndices(d, order));
  } else {
    return hn::LoadU(d, from);
  }
}

template <class T, size_t S> using Convolutions = std::array<Convolution<T>, S>;

// What goes into a convolution, a vector of weighted points at a time, and what comes out of it.
template <class D, bool kReal, bool kWeighted> class Ends {
  using T = hn::TFromD<D>;
  using C = ComplexOf<D>;
  static constexpr size_t L = kLanes<D>, kWidth = kReal ? 1 : 2;
  static constexpr D d{};

 public:
  explicit Ends(const Convolution<T>& c) : c_(c), sign_(c.conjugate ? T(-1) : T(1)) {}

  // Points k, k + 1, ...
  HWY_INLINE C load(size_t k) const {
    if (HWY_LIKELY(k + L <= c_.in_points)) return weighted(c_.in + kWidth * k, weights(k));
    if (k >= c_.in_points) return {hn::Zero(d), hn::Zero(d)};
    alignas(kAlignment) T points[2 * L] = {}, weights_left[2 * L] = {};
    std::copy_n(c_.in + kWidth * k, kWidth * (c_.in_points - k), points);
    if (kWeighted) std::copy_n(weights(k), 2 * (c_.in_points - k), weights_left);
    return weighted(points, weights_left);
  }

  // Points k, k + 1, ... of the result, their parts exchanged.
  HWY_INLINE void store(size_t k, C z) const {
    z = C{z.im, z.re} * hn::Set(d, c_.factor);
    if (HWY_LIKELY(k + L <= c_.out_points)) {
      if (kWeighted) z = z * weight(weights(k));
      return store_points<false>(d, z, c_.out + 2 * k);
    }
    if (k >= c_.out_points) return;
    const size_t rest = 2 * (c_.out_points - k);
    alignas(kAlignment) T points[2 * L], weights_left[2 * L] = {};
    if (kWeighted) {
      std::copy_n(weights(k), rest, weights_left);
      z = z * weight(weights_left);
    }
    store_points<false>(d, z, points);
    std::copy_n(points, rest, c_.out + 2 * k);
  }

 private:
  HWY_INLINE const T* weights(size_t k) const { return kWeighted ? c_.weights + 2 * k : nullptr; }
  HWY_INLINE C weight(const T* from) const {
    C w = load_points<false>(d, from);
    w.im = hn::Mul(w.im, hn::Set(d, sign_));
    return w;
  }
  HWY_INLINE C weighted(const T* from, const T* weights) const {
    if constexpr (kReal) {
      const auto x = load_samples(d, from);
      return weight(weights) * x;
    } else {
      const C z = load_points<false>(d, from);
      if constexpr (!kWeighted) return z;
      else return z * weight(weights);
    }
  }

  const Convolution<T>& c_;
  T sign_;
};

// Calls f with the ends of a convolution.
template <class D, class F> HWY_INLINE void with_ends(D, const Convolution<hn::TFromD<D>>& c, F f) {
  if (!c.weights) return f(Ends<D, false, false>(c));
  c.real ? f(Ends<D, true, true>(c)) : f(Ends<D, false, true>(c));
}

// In the nearest cache the transforms in natural order cost no more, and the ends and the products are passes of their
// own.
template <size_t S, class D, class T = hn::TFromD<D>>
void convolve_short(D d, const ComplexTables<T>& tables, const Convolutions<T, S>& c, T* work) {
  const size_t n = size_t{1} << tables.bits;
  T* const rest = work + 2 * n * S;
  with_ends(d, c[0], [&](auto ends) HWY_ATTR {
    for (size_t k = 0; k < n; k += kLanes<D>) store_points<false>(d, ends.load(k), work + 2 * k);
    tables.forward(tables.bits, tables.roots, work, rest, 1);
    const auto sign = hn::Set(d, c[0].conjugate ? T(-1) : T(1));
    for (size_t s = S; s-- > 0;) {
      T* const x = work + 2 * n * s;
      for (size_t k = 0; k < n; k += kLanes<D>) {
        ComplexOf<D> w = load_points<false>(d, c[s].spectrum + 2 * k);
        w.im = hn::Mul(w.im, sign);
        store_points<false>(d, load_points<false>(d, work + 2 * k) * w, x + 2 * k);
      }
      tables.inverse(tables.bits, tables.roots, x, rest, 1);
      const decltype(ends) out(c[s]);
      for (size_t k = 0; k < c[s].out_points; k += kLanes<D>) out.store(k, load_points<true>(d, x + 2 * k));
    }
  });
}

template <class T> size_t work_size(const ComplexTables<T>& tables, size_t kernels) {
  if (tables.bits < kLong<T>) return (kernels + 1) * (size_t{2} << tables.bits);
  return Convolver<T>(tables.bits).work_size(kernels);
}

template <class T> void spectrum(const ComplexTables<T>& tables, T* data, T* work) {
  const T scale = 1 / static_cast<T>(size_t{1} << tables.bits);
  if (tables.bits < kLong<T>) return tables.forward(tables.bits, tables.roots, data, work, scale);
  Convolver<T>(tables.bits).spectrum(tables.roots, data, work, scale);
}

// One input, that of the first, with one kernel or several.
template <class T, size_t S> void convolve_all(const ComplexTables<T>& tables, const Convolutions<T, S>& c, T* work) {
  const size_t n = size_t{1} << tables.bits;
  if (tables.bits < kLong<T>) {
    return with_lanes<T>(n, [&](auto d) HWY_ATTR { convolve_short<S>(d, tables, c, work); });
  }
  Turns<T, S> turns;
  for (size_t s = 0; s < S; ++s) turns[s] = {c[s].spectrum, c[s].conjugate ? T(-1) : T(1)};
  with_ends(hn::ScalableTag<T>(), c[0], [&](auto ends) HWY_ATTR {
    using V = hn::VFromD<hn::ScalableTag<T>>;
    const auto store = [&](size_t s, size_t k, Complex<V> z) HWY_ATTR { decltype(ends)(c[s]).store(k, z); };
    Convolver<T>(tables.bits)
        .convolve(
            tables.roots, work, c[0].in_points, [&](size_t k) HWY_ATTR { return ends.load(k); }, turns, c[0].out_points,
            store);
  });
}

template <class T> void convolve(const ComplexTables<T>& tables, const Convolution<T>& c, T* work) {
  convolve_all<T, 1>(tables, {c}, work);
}

// Points j, j + 1, ... of w (a + ib).
template <class D, class T = hn::TFromD<D>> HWY_INLINE void fold(D d, const RealChirp<T>& c, size_t j, T* folded) {
  const auto x = load_samples(d, c.data + j);
  const auto mirrored = hn::Reverse(d, load_samples(d, c.data + c.points - j - (kLanes<D> - 1)));
  const ComplexOf<D> z{hn::Add(x, mirrored), hn::Sub(x, mirrored)};
  store_points<false>(d, z * load_points<false>(d, c.chirp + 2 * j), folded + 2 * j);
}

// Bins k, k + 1, ... of F[k], ..., and F[-k], ..., which stand in reverse order before `back`.
template <class D, class T = hn::TFromD<D>>
HWY_INLINE void unfold(D d, const RealChirp<T>& c, size_t k, const T* there, const T* back, T factor) {
  const ComplexOf<D> w = load_points<false>(d, c.chirp + 2 * k);
  const ComplexOf<D> g = load_points<false>(d, back - 2 * (k + kLanes<D> - 1));
  const auto f = (load_points<false>(d, there + 2 * k) * w).re;
  const auto mirrored = (ComplexOf<D>{hn::Reverse(d, g.re), hn::Reverse(d, g.im)} * w).re;
  store_points<false>(d, ComplexOf<D>{hn::Add(mirrored, f), hn::Sub(mirrored, f)} * hn::Set(d, factor), c.data + 2 * k);
}

// The folded samples stand behind those that are still to be folded; of the two results, the one in order makes room
// for the bins as they come.
template <class T> void real_chirp(const ComplexTables<T>& tables, const RealChirp<T>& c, T* work) {
  const size_t m = size_t{1} << tables.bits, half = c.points / 2;
  T *const folded = c.data + 2 * m, *const bins = c.data;
  with_lanes<T>(m, [&](auto d) HWY_ATTR {
    constexpr size_t L = kLanes<decltype(d)>;
    const Lanes<T, 1> one;
    size_t j = 1;
    for (; j + L <= half + 1; j += L) fold(d, c, j, folded);
    for (; j <= half; ++j) fold(one, c, j, folded);
    folded[0] = c.data[0];
    folded[1] = 0;
    if (c.points % 2 == 0) {  // the sample in the middle is its own mirror image
      folded[2 * half] *= T(0.5);
      folded[2 * half + 1] *= T(0.5);
    }
    Convolution<T> there{c.differences, folded, half + 1, false, nullptr, false, bins, half + 1, 1}, back = there;
    back.spectrum = c.sums;
    back.out = folded;
    convolve_all<T, 2>(tables, {there, back}, work);
    const T factor = c.factor / 2, *const mirrored = folded + 2 * half;
    bins[0] *= 2 * factor;
    bins[1] = 0;
    size_t k = 1;
    for (; k + L <= half + 1; k += L) unfold(d, c, k, bins, mirrored, factor);
    for (; k <= half; ++k) unfold(one, c, k, bins, mirrored, factor);
  });
}

template <class T> const ConvolutionKernels<T>* convolution_table() {
  static constexpr ConvolutionKernels<T> table = {work_size<T>, spectrum<T>, convolve<T>, real_chirp<T>};
  return &table;
}
const ConvolutionKernels<double>* convolution_double() { return convolution_table<double>(); }
const ConvolutionKernels<float>* convolution_float() { return convolution_table<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace sigvex {

HWY_EXPORT(convolution_double);
HWY_EXPORT(convolution_float);

template <> const ConvolutionKernels<double>& convolution_kernels<double>() {
  return *HWY_DYNAMIC_DISPATCH(convolution_double)();
}
template <> const ConvolutionKernels<float>& convolution_kernels<float>() {
  return *HWY_DYNAMIC_DISPATCH(convolution_float)();
}

}  // namespace sigvex
#endif
