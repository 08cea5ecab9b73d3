#include "filter/kernels.h"

#include <type_traits>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::filter {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Fills n outputs: run(d, vectors, j) leaves `vectors` vectors of them from j on. Eight vectors hide the latency of the
// multiplier; the rest in halves, the last vector over the one before it.
template <class T, class Run> HWY_INLINE void in_tiles(size_t n, Run run) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  size_t j = 0;
  const auto tiles = [&](auto vectors) HWY_ATTR {
    constexpr size_t kVectors = decltype(vectors)::value;
    for (; j + kVectors * kLanes <= n; j += kVectors * kLanes) run(d, vectors, j);
  };
  tiles(std::integral_constant<size_t, 8>());
  tiles(std::integral_constant<size_t, 4>());
  tiles(std::integral_constant<size_t, 2>());
  tiles(std::integral_constant<size_t, 1>());
  if (j < n && n >= kLanes) {
    run(d, std::integral_constant<size_t, 1>(), n - kLanes);
  } else {
    for (; j < n; ++j) run(hn::CappedTag<T, 1>(), std::integral_constant<size_t, 1>(), j);
  }
}

// What the outputs of a convolution have in common; x stands at the newest sample of the first one.
template <class T> struct Taps {
  const T* x;
  size_t x_step;
  const T* h;
  size_t h_step, count;
};

// Keeps a vector in its register, where the compiler would read it again from memory for every use.
template <class V> HWY_INLINE void stay([[maybe_unused]] V& v) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
  asm("" : "+v"(v.raw));
#endif
}

// Adds taps k, k + period ..., Q of them, to M vectors of outputs from the one whose sample for tap k is at x. A period
// of taps moves the samples by one full vector, so that each vector that is read serves up to Q sums.
template <size_t Q, size_t M, class D, class T>
HWY_INLINE void add_group(D d, const Taps<T>& taps, size_t k, size_t period, const T* x, hn::Vec<D>* sum) {
  constexpr size_t kFull = hn::MaxLanes(hn::ScalableTag<T>());
  static_assert(M == 1 || kFull == hn::MaxLanes(D()));
  hn::Vec<D> tap[Q];
  for (size_t q = 0; q < Q; ++q) tap[q] = hn::Set(d, taps.h[(k + q * period) * taps.h_step]);
  const T* const oldest = x - (Q - 1) * kFull;
  for (size_t w = 0; w < M + Q - 1; ++w) {
    auto samples = hn::LoadU(d, oldest + w * kFull);
    if constexpr (Q > 1) stay(samples);
    for (size_t q = 0; q < Q; ++q)
      if (w + q >= Q - 1 && w + q < M + Q - 1) sum[w + q - (Q - 1)] = hn::MulAdd(samples, tap[q], sum[w + q - (Q - 1)]);
  }
}

// Outputs j .. j + M vectors - 1 in registers: each tap is read once for all of them.
template <size_t M, class D, class T> HWY_INLINE void tile(D d, const Taps<T>& taps, T* y, size_t j) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  hn::Vec<D> sum[M];
  for (auto& s : sum) s = hn::Zero(d);
  const size_t period = hn::MaxLanes(hn::ScalableTag<T>()) / taps.x_step;
  const T* x = taps.x + j;
  size_t k = 0;
  const auto groups = [&](auto group) HWY_ATTR {
    constexpr size_t Q = decltype(group)::value;
    for (; period > 0 && k + Q * period <= taps.count; k += (Q - 1) * period, x -= (Q - 1) * period * taps.x_step)
      for (const size_t end = k + period; k < end; ++k, x -= taps.x_step) add_group<Q, M>(d, taps, k, period, x, sum);
  };
  groups(std::integral_constant<size_t, 4>());
  groups(std::integral_constant<size_t, 2>());
  for (; k < taps.count; ++k, x -= taps.x_step) add_group<1, M>(d, taps, k, 0, x, sum);
  for (size_t i = 0; i < M; ++i) hn::StoreU(sum[i], d, y + j + i * kLanes);
}

template <class T> void convolve(const T* x, size_t x_step, const T* h, size_t h_step, size_t count, T* y, size_t n) {
  const Taps<T> taps{x + (count - 1) * x_step, x_step, h, h_step, count};
  in_tiles<T>(n, [&](auto d, auto vectors, size_t j) HWY_ATTR { tile<decltype(vectors)::value>(d, taps, y, j); });
}

template <class T>
void convolve_pairs(const T* x, const size_t* early, const size_t* late, const T* h, size_t h_step, size_t taps, T* y,
                    size_t n) {
  in_tiles<T>(n, [&](auto d, auto vectors, size_t j) HWY_ATTR {
    constexpr size_t M = decltype(vectors)::value, kLanes = hn::MaxLanes(d);
    hn::Vec<decltype(d)> sum[M];
    for (auto& s : sum) s = hn::Zero(d);
    const T* tap = h;
    for (size_t k = 0; k + 1 < taps; ++k, tap += h_step) {
      const T *const a = x + early[k] + j, *const b = x + late[k] + j;
      for (size_t i = 0; i < M; ++i)
        sum[i] =
            hn::MulAdd(hn::Add(hn::LoadU(d, a + i * kLanes), hn::LoadU(d, b + i * kLanes)), hn::Set(d, *tap), sum[i]);
    }
    const T* const centre = x + early[taps - 1] + j;
    for (size_t i = 0; i < M; ++i)
      hn::StoreU(hn::MulAdd(hn::LoadU(d, centre + i * kLanes), hn::Set(d, *tap), sum[i]), d, y + j + i * kLanes);
  });
}

template <class D> struct Points {
  hn::Vec<D> re, im;

  static HWY_INLINE Points load(D d, const hn::TFromD<D>* from) {
    Points z;
    hn::LoadInterleaved2(d, from, z.re, z.im);
    return z;
  }
  HWY_INLINE void store(D d, hn::TFromD<D>* to) const { hn::StoreInterleaved2(re, im, d, to); }
  HWY_INLINE Points reversed(D d) const { return {hn::Reverse(d, re), hn::Reverse(d, im)}; }
};

// a z + b conj w
template <class D> HWY_INLINE Points<D> mixed(Points<D> a, Points<D> z, Points<D> b, Points<D> w) {
  return {hn::MulAdd(a.re, z.re, hn::NegMulAdd(a.im, z.im, hn::MulAdd(b.re, w.re, hn::Mul(b.im, w.im)))),
          hn::MulAdd(a.re, z.im, hn::MulAdd(a.im, z.re, hn::NegMulAdd(b.re, w.im, hn::Mul(b.im, w.re))))};
}

// From both ends to the middle; points 0 and n / 2 are their own mirror.
template <class T> void mix(T* z, const T* a, const T* b, size_t n) {
  const hn::ScalableTag<T> all;
  const hn::CappedTag<T, 1> one;
  const auto at = [=](auto d, size_t front, size_t back) HWY_ATTR {
    using P = Points<decltype(d)>;
    const P x = P::load(d, z + 2 * front), y = P::load(d, z + 2 * back);
    const P low = mixed(P::load(d, a + 2 * front), x, P::load(d, b + 2 * front), y.reversed(d));
    const P high = mixed(P::load(d, a + 2 * back), y, P::load(d, b + 2 * back), x.reversed(d));
    low.store(d, z + 2 * front);
    high.store(d, z + 2 * back);
  };
  constexpr size_t kLanes = hn::MaxLanes(all);
  size_t k = 1;
  for (; k + kLanes <= n / 2; k += kLanes) at(all, k, n - k - (kLanes - 1));
  for (; k < n / 2; ++k) at(one, k, n - k);
  at(one, 0, 0);
  at(one, n / 2, n / 2);
}

template <class T> const FilterKernels<T>* kernels() {
  static constexpr FilterKernels<T> table = {convolve<T>, convolve_pairs<T>, mix<T>};
  return &table;
}
const FilterKernels<double>* kernels_double() { return kernels<double>(); }
const FilterKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::filter
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(filter, FilterKernels, filter_kernels)
#endif
