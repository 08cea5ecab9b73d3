#include "filter/kernels.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "core/kernel_choice.h"
#include "filter/pair_order.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// For the lambdas that work on vectors: an array of them stays in registers only where nothing is called, and no loop
// is left that takes one after the other.
#undef INLINE_ATTR
#define INLINE_ATTR HWY_ATTR __attribute__((always_inline))

HWY_BEFORE_NAMESPACE();
namespace sigvex::filter {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Fills n outputs: run(d, vectors, j) leaves `vectors` vectors of them from j on. Eight vectors hide the latency of the
// multiplier; the last tile stands over the one before it, and what is less than a tile takes smaller ones.
constexpr size_t kTile = 8;
template <size_t M, class D, class Run> HWY_INLINE void in_tiles(D d, size_t n, Run run) {
  constexpr size_t kOutputs = M * hn::MaxLanes(D());
  constexpr std::integral_constant<size_t, M> vectors;
  if (n >= kOutputs) {
    for (size_t j = 0, next = 0; next < n; next = j + kOutputs) {
      j = std::min(next, n - kOutputs);
      run(d, vectors, j);
    }
  } else if constexpr (M > 1) {
    in_tiles<M == 8 ? 4 : 1>(d, n, run);
  } else if constexpr (kOutputs > 1) {
    in_tiles<1>(hn::Half<D>(), n, run);
  }
}

template <class T> constexpr size_t kFull = hn::MaxLanes(hn::ScalableTag<T>());

template <class F, size_t... I> HWY_INLINE void unroll(F f, std::index_sequence<I...>) {
  (f(std::integral_constant<size_t, I>()), ...);
}
template <size_t N, class F> HWY_INLINE void unroll(F f) { unroll(f, std::make_index_sequence<N>()); }

// Every so-manieth of some taps, forwards or backwards.
template <class T> struct Taps {
  const T* h;
  ptrdiff_t step;

  HWY_INLINE T operator[](size_t k) const { return h[static_cast<ptrdiff_t>(k) * step]; }
  HWY_INLINE Taps from(size_t k) const { return {h + static_cast<ptrdiff_t>(k) * step, step}; }
};

// Keeps a vector in its register, where the compiler would read it again from memory for every use.
template <class V> HWY_INLINE V stay(V v) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
  asm("" : "+v"(v.raw));
#endif
  return v;
}

template <size_t M, class D> struct Sums {
  hn::Vec<D> of[M];

  HWY_INLINE explicit Sums(D d) {
    unroll<M>([&](auto i) INLINE_ATTR { of[i] = hn::Zero(d); });
  }
  template <class T> HWY_INLINE void store(D d, T* y) const {
    unroll<M>([&](auto i) INLINE_ATTR { hn::StoreU(of[i], d, y + i * hn::MaxLanes(D())); });
  }
};

// Adds taps 0, period ..., Q of them, where a period of taps moves the samples by one full vector: each vector of
// samples, samples(0) the oldest, serves up to Q sums.
template <size_t Q, size_t M, class D, class T, class Samples>
HWY_INLINE void add_group(D d, Taps<T> taps, size_t period, Sums<M, D>& sums, Samples samples) {
  hn::Vec<D> tap[Q];
  unroll<Q>([&](auto q) INLINE_ATTR { tap[q] = hn::Set(d, taps[q * period]); });
  unroll<M + Q - 1>([&](auto w) INLINE_ATTR {
    const hn::Vec<D> x = samples(w);
    unroll<Q>([&](auto q) INLINE_ATTR {
      constexpr size_t i = decltype(w)::value + decltype(q)::value;
      if constexpr (i >= Q - 1 && i < M + Q - 1) sums.of[i - (Q - 1)] = hn::MulAdd(x, tap[q], sums.of[i - (Q - 1)]);
    });
  });
}

// add(periods, k, count) for taps k .. k + count - 1 of as many periods, side by side: first four periods at a time,
// then two and one, and of the last one what there is of it.
template <class Add> HWY_INLINE void in_groups(size_t count, size_t period, Add add) {
  size_t k = 0;
  const auto groups = [&](auto periods) INLINE_ATTR {
    constexpr size_t Q = decltype(periods)::value;
    for (; k + Q * period <= count; k += Q * period) add(periods, k, period);
  };
  groups(std::integral_constant<size_t, 4>());
  groups(std::integral_constant<size_t, 2>());
  groups(std::integral_constant<size_t, 1>());
  if (k < count) add(std::integral_constant<size_t, 1>(), k, count - k);
}

// Adds to the sums the products of a tap with what lies from a and b on together, or from x on.
template <size_t M, class D, class T> HWY_INLINE void add_pair(D d, const T* a, const T* b, T tap, Sums<M, D>& sums) {
  unroll<M>([&](auto i) INLINE_ATTR {
    const size_t at = i * hn::MaxLanes(D());
    sums.of[i] = hn::MulAdd(hn::LoadU(d, a + at) + hn::LoadU(d, b + at), hn::Set(d, tap), sums.of[i]);
  });
}
template <size_t M, class D, class T> HWY_INLINE void add_centre(D d, const T* x, T tap, Sums<M, D>& sums) {
  unroll<M>([&](auto i) INLINE_ATTR {
    sums.of[i] = hn::MulAdd(hn::LoadU(d, x + i * hn::MaxLanes(D())), hn::Set(d, tap), sums.of[i]);
  });
}

#if HWY_TARGET == HWY_AVX3
// A vector as wide as a cache line takes twice the time to read where no line begins. So a tile's samples are read
// once, and the vectors that begin in between are put together out of two neighbours in registers.
constexpr size_t kInRegisters = kTile;

// The vector that begins R lanes before `here`.
template <size_t R, class D, class V = hn::Vec<D>> HWY_INLINE V shifted(D d, V before, V here) {
  constexpr size_t kLanes = hn::MaxLanes(D());
  const hn::RebindToUnsigned<D> bits;
  const auto a = hn::BitCast(bits, here).raw, b = hn::BitCast(bits, before).raw;
  using Bits = hn::Vec<decltype(bits)>;
  if constexpr (R == 0) return here;
  else if constexpr (R == kLanes) return before;
  else if constexpr (kLanes == 16) return hn::BitCast(d, Bits{_mm512_alignr_epi32(a, b, kLanes - R)});
  else return hn::BitCast(d, Bits{_mm512_alignr_epi64(a, b, kLanes - R)});
}

// Reads N vectors: of the first one only the last `first` lanes, of the last one only the first `last` lanes.
template <size_t N, class D, class T> HWY_INLINE void read(D d, const T* x, size_t first, size_t last, hn::Vec<D>* v) {
  v[0] = hn::MaskedLoad(hn::Not(hn::FirstN(d, kFull<T> - first)), d, x);
  unroll<N - 2>([&](auto w) INLINE_ATTR { v[w + 1] = hn::LoadU(d, x + (w + 1) * kFull<T>); });
  v[N - 1] = hn::MaskedLoad(hn::FirstN(d, last), d, x + (N - 1) * kFull<T>);
}

// Adds `count` taps of each of Q periods; the first output's sample for tap 0 is at x.
template <size_t kStep, size_t Q, class D, class T, size_t... R>
HWY_INLINE void add_periods(D d, const T* x, Taps<T> taps, size_t count, Sums<kTile, D>& sums,
                            std::index_sequence<R...>) {
  hn::Vec<D> v[kTile + Q];
  read<kTile + Q>(d, x - Q * kFull<T>, (count - 1) * kStep, kFull<T>, v);
  const auto add = [&](auto r) INLINE_ATTR {
    const auto samples = [&](size_t w) INLINE_ATTR { return shifted<decltype(r)::value * kStep>(d, v[w], v[w + 1]); };
    add_group<Q>(d, taps.from(r), sizeof...(R), sums, samples);
  };
  ((R < count ? add(std::integral_constant<size_t, R>()) : void()), ...);
}

template <size_t kStep, class D, class T>
HWY_NOINLINE void tile_in_registers(D d, const T* x, Taps<T> taps, size_t count, T* y) {
  constexpr size_t kPeriod = kFull<T> / kStep;
  Sums<kTile, D> sums(d);
  in_groups(count, kPeriod, [&](auto periods, size_t k, size_t taps_each) INLINE_ATTR {
    constexpr size_t Q = decltype(periods)::value;
    add_periods<kStep, Q>(d, x - k * kStep, taps.from(k), taps_each, sums, std::make_index_sequence<kPeriod>());
  });
  sums.store(d, y);
}

// Adds the pairs at distances kNear and at what of a period is left behind it, in each of Q periods, of which the first
// `count` distances exist. lower[Q] are the samples of output 0 before the centre at distance 0, upper[0] those behind.
template <size_t kStep, size_t Q, bool kCentre, size_t kNear, class D, class T>
HWY_INLINE void add_pairs(D d, Taps<T> taps, size_t count, const hn::Vec<D>* lower, const hn::Vec<D>* upper,
                          Sums<kTile, D>& sums) {
  constexpr size_t kPeriod = pair_period<T>(kStep), kFar = kPeriod - kNear;
  hn::Vec<D> near[Q], far[Q];
  const auto add = [&](size_t i, size_t q, auto distance, hn::Vec<D> by) INLINE_ATTR {
    constexpr size_t kShift = decltype(distance)::value * kStep;
    const auto before = shifted<kShift>(d, lower[Q + i - q - 1], lower[Q + i - q]);
    const auto behind = shifted<kFull<T> - kShift>(d, upper[i + q], upper[i + q + 1]);
    sums.of[i] = hn::MulAdd(before + behind, by, sums.of[i]);
  };
  const auto add_all = [&](auto both) INLINE_ATTR {
    unroll<kTile * Q>([&](auto k) INLINE_ATTR {
      constexpr size_t i = decltype(k)::value / Q, q = decltype(k)::value % Q;
      if constexpr (kNear > 0 || q > 0 || !kCentre) add(i, q, std::integral_constant<size_t, kNear>(), near[q]);
      if constexpr (both) add(i, q, std::integral_constant<size_t, kFar>(), far[q]);
    });
  };
  if (kNear >= count) return;
  unroll<Q>([&](auto q) INLINE_ATTR { near[q] = hn::Set(d, taps[q * kPeriod + kNear]); });
  if constexpr (kNear < kFar && kFar < kPeriod) {
    if (kFar < count) {
      unroll<Q>([&](auto q) INLINE_ATTR { far[q] = hn::Set(d, taps[q * kPeriod + kFar]); });
      return add_all(std::true_type());
    }
  }
  add_all(std::false_type());
}

// Adds the pairs at `count` distances in each of Q periods; lower and upper are the first output's at distance 0.
template <size_t kStep, size_t Q, bool kCentre, class D, class T, size_t... Near>
HWY_INLINE void add_pair_periods(D d, const T* lower, const T* upper, Taps<T> taps, size_t count, Sums<kTile, D>& sums,
                                 std::index_sequence<Near...>) {
  const size_t reach = (count - 1) * kStep;
  if constexpr (kCentre) {
    hn::Vec<D> v[kTile + 2 * Q];
    read<kTile + 2 * Q>(d, lower - Q * kFull<T>, reach, reach, v);
    (add_pairs<kStep, Q, kCentre, Near>(d, taps, count, v, v + Q, sums), ...);
  } else {
    hn::Vec<D> below[kTile + Q], above[kTile + Q];
    read<kTile + Q>(d, lower - Q * kFull<T>, reach, kFull<T>, below);
    read<kTile + Q>(d, upper, kFull<T>, reach, above);
    (add_pairs<kStep, Q, kCentre, Near>(d, taps, count, below, above, sums), ...);
  }
}

template <size_t kStep, class D, class T>
HWY_NOINLINE void symmetric_tile_in_registers(D d, const T* x, Taps<T> taps, size_t reach, T* y) {
  constexpr size_t kPeriod = pair_period<T>(kStep);
  Sums<kTile, D> sums(d);
  add_centre(d, x, taps[0], sums);
  size_t first = 0;
  const auto add = [&](auto centre) INLINE_ATTR {
    constexpr bool kCentre = decltype(centre)::value;
    constexpr std::make_index_sequence<kPeriod / 2 + 1> near;
    const T *const lower = x - first * kStep, *const upper = x + first * kStep;
    const size_t left = reach + 1 - first;
    if (left >= 2 * kPeriod) {
      add_pair_periods<kStep, 2, kCentre>(d, lower, upper, taps.from(first), kPeriod, sums, near);
      first += 2 * kPeriod;
    } else {
      add_pair_periods<kStep, 1, kCentre>(d, lower, upper, taps.from(first), std::min(left, kPeriod), sums, near);
      first += kPeriod;
    }
  };
  if (reach > 0) add(std::true_type());
  while (first > 0 && first <= reach) add(std::false_type());
  sums.store(d, y);
}
#else
constexpr size_t kInRegisters = 0;
#endif

// The same by reading every vector of samples; eight of them still share what they read.
template <size_t M, class D, class T>
HWY_INLINE void tile(D d, const T* x, size_t step, Taps<T> taps, size_t count, T* y) {
  const size_t period = std::max<size_t>(1, kFull<T> >> (step - 1));
  Sums<M, D> sums(d);
  in_groups(count, period, [&](auto periods, size_t first, size_t taps_each) INLINE_ATTR {
    constexpr size_t kAll = decltype(periods)::value, Q = M == kTile && kFull < T >> 1 ? kAll : 1;
    const T* newest = x - first * step;
    Taps<T> from = taps.from(first);
    for (size_t r = 0; r < taps_each; ++r, newest -= step, from = from.from(1)) {
      for (size_t q = kAll; q > 0; q -= Q) {
        const T* const oldest = newest - (q - 1) * period * step;
        add_group<Q>(d, from.from((q - Q) * period), period, sums, [&](size_t w) INLINE_ATTR {
          const auto samples = hn::LoadU(d, oldest + w * hn::MaxLanes(D()));
          return Q > 1 ? stay(samples) : samples;
        });
      }
    }
  });
  sums.store(d, y);
}

template <class T> void convolve(const T* x, size_t x_step, const T* h, size_t h_step, size_t count, T* y, size_t n) {
  const Taps<T> taps{h, static_cast<ptrdiff_t>(h_step)};
  x += (count - 1) * x_step;
  in_tiles<kTile>(hn::ScalableTag<T>(), n, [&](auto d, auto vectors, size_t j) HWY_ATTR {
    constexpr size_t M = decltype(vectors)::value;
    if constexpr (M != kInRegisters) tile<M>(d, x + j, x_step, taps, count, y + j);
    else if (x_step == 1) tile_in_registers<1>(d, x + j, taps, count, y + j);
    else tile_in_registers<2>(d, x + j, taps, count, y + j);
  });
}

template <class T> void convolve_pairs(const T* x, const Pair* pairs, size_t count, const T* h, T* y, size_t n) {
  in_tiles<kTile>(hn::ScalableTag<T>(), n, [&](auto d, auto vectors, size_t j) HWY_ATTR {
    Sums<decltype(vectors)::value, decltype(d)> sums(d);
    add_centre(d, x + j + pairs->early, h[pairs->tap], sums);
    for (const Pair* p = pairs + 1; p < pairs + count; ++p)
      add_pair(d, x + j + p->early, x + j + p->late, h[p->tap], sums);
    sums.store(d, y + j);
  });
}

template <class T>
void convolve_symmetric(const T* x, size_t x_step, const Pair* pairs, size_t count, const T* h, size_t h_step, T* y,
                        size_t n) {
  const size_t reach = count - 1;
  const Taps<T> taps{h + reach * h_step, -static_cast<ptrdiff_t>(h_step)};
  if (n < kInRegisters * kFull<T> || kInRegisters == 0) return convolve_pairs(x, pairs, count, h, y, n);
  in_tiles<kTile>(hn::ScalableTag<T>(), n, [&](auto d, auto vectors, size_t j) HWY_ATTR {
    if constexpr (decltype(vectors)::value == kInRegisters) {
      const T* const centre = x + j + reach * x_step;
      if (x_step == 1) symmetric_tile_in_registers<1>(d, centre, taps, reach, y + j);
      else symmetric_tile_in_registers<2>(d, centre, taps, reach, y + j);
    }
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
  const auto at = [=](auto d, size_t front, size_t back) INLINE_ATTR {
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
  static constexpr FilterKernels<T> table = {convolve<T>, convolve_pairs<T>, convolve_symmetric<T>, mix<T>};
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
