#include "stats/kernels.h"

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "stats/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

#include "core/fetch.h"
#include "core/limits.h"
#include "core/streams-inl.h"
#include "stats/blocks.h"
#include "stats/guards-inl.h"
#include "stats/histogram-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::stats {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace streams = sigvex::streams::HWY_NAMESPACE;

// Eight streams at most: more would crowd each other out of the cache, where blocks of a power of two bytes share a
// set; for the same reason the next ones are fetched from their first line to their last. What a point adds to each
// sum: terms(d, x, add), x being its scalars and add(s, term) the addition to sum s.
template <size_t kWidth, size_t kSums, class T, class Terms>
HWY_INLINE void block_sums(const T* x, size_t n, T* totals, Terms terms) {
  std::fill_n(totals, kSums, T(0));
  const auto run = [&](auto d, size_t first, size_t blocks, size_t length, auto at) HWY_ATTR {
    using D = decltype(d);
    constexpr size_t kPiece = streams::kPiece<D>, kTile = std::max(kWidth, kPiece), kLine = kCacheLine<T>,
                     kLanes = hn::MaxLanes(D());
    const T* const from = x + kWidth * first;
    const size_t ahead = n - first >= 2 * blocks * kBlock ? kWidth * blocks * kBlock : 0;  // to the next blocks
    hn::Vec<D> sum[kSums], y[kTile];
    for (auto& s : sum) s = hn::Zero(d);
    const auto add = [&sum](size_t s, auto term) HWY_ATTR { sum[s] = sum[s] + term; };
    for (size_t k = 0; k < kWidth * length; k += kTile) {
      for (size_t b = 0; k % kLine == 0 && b < kLanes; ++b) fetch(from, ahead + k * kLanes + b * kLine);
      for (size_t i = 0; i < kTile; i += kPiece) streams::load(d, from + k + i, at, y + i);
      for (size_t i = 0; i < kTile; i += kWidth) terms(d, y + i, add);
    }
    HWY_ALIGN T lanes[kSums][kLanes];
    for (size_t s = 0; s < kSums; ++s) hn::Store(sum[s], d, lanes[s]);
    for (size_t b = 0; b < blocks; ++b) {
      for (size_t s = 0; s < kSums; ++s) totals[s] += lanes[s][b];
    }
  };
  streams::side_by_side<kBlock, kWidth>(hn::CappedTag<T, 8>(), n, run);
}

template <class T> void samples(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<1, 1>(x, n, totals, [](auto, const auto* y, auto add) HWY_ATTR { add(0, y[0]); });
}
template <class T> void points(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<2, 2>(x, n, totals, [](auto, const auto* y, auto add) HWY_ATTR {
    add(0, y[0]);
    add(1, y[1]);
  });
}
template <class T> void clamped_samples(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<1, 1>(x, n, totals, [](auto d, const auto* y, auto add) HWY_ATTR { add(0, clamped(d, y[0])); });
}
template <class T> void squares(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<1, 1>(x, n, totals, [](auto d, const auto* y, auto add) HWY_ATTR {
    const auto c = clamped(d, y[0]);
    add(0, c * c);
  });
}
template <class T> void squared_magnitudes(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<2, 1>(x, n, totals, [](auto d, const auto* y, auto add) HWY_ATTR {
    const auto re = clamped(d, y[0]), im = clamped(d, y[1]);
    add(0, re * re + im * im);
  });
}
template <class T> void reciprocals(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<1, 2>(x, n, totals, [](auto d, const auto* y, auto add) HWY_ATTR {
    const auto one = hn::Set(d, T(1));
    add(0, one / y[0]);
    add(1, hn::IfThenElseZero(hn::Eq(y[0], hn::Zero(d)), one));
  });
}
template <class T> void reciprocal_points(const T* x, size_t n, Point<T>, T* totals) {
  block_sums<2, 2>(x, n, totals, [](auto d, const auto* y, auto add) HWY_ATTR {
    const auto re = clamped(d, y[0]), im = clamped(d, y[1]), m = re * re + im * im;
    const auto r = hn::IfThenElse(hn::Gt(m, hn::Zero(d)), hn::Set(d, T(1)) / m, hn::Set(d, Limits<T>::huge));
    add(0, r * re);
    add(1, hn::Neg(r * im));
  });
}
template <class T> void deviations(const T* x, size_t n, Point<T> center, T* totals) {
  block_sums<1, 2>(x, n, totals, [center](auto d, const auto* y, auto add) HWY_ATTR {
    const auto by = clamped(d, y[0] - hn::Set(d, center.re));
    add(0, by);
    add(1, by * by);
  });
}
template <class T> void deviations_of_points(const T* x, size_t n, Point<T> center, T* totals) {
  block_sums<2, 4>(x, n, totals, [center](auto d, const auto* y, auto add) HWY_ATTR {
    const auto re = clamped(d, y[0] - hn::Set(d, center.re)), im = clamped(d, y[1] - hn::Set(d, center.im));
    add(0, re);
    add(1, im);
    add(2, re * re);
    add(3, im * im);
  });
}
template <class T> void cubed_deviations(const T* x, size_t n, Point<T> center, T* totals) {
  block_sums<1, 3>(x, n, totals, [center](auto d, const auto* y, auto add) HWY_ATTR {
    const auto by = clamped(d, y[0] - hn::Set(d, center.re)), square = by * by;
    add(0, by);
    add(1, square);
    add(2, square * by);
  });
}
template <class T> void fourth_powers(const T* x, size_t n, Point<T> center, T* totals) {
  block_sums<1, 2>(x, n, totals, [center](auto d, const auto* y, auto add) HWY_ATTR {
    const auto by = clamped(d, y[0] - hn::Set(d, center.re)), square = by * by;
    add(0, square);
    add(1, square * square);
  });
}

// a where it is strictly better than b, else b.
struct Above {
  template <class V> HWY_INLINE V lanes(V a, V b) const {
    return kElseSecond ? hn::Max(a, b) : hn::IfThenElse(hn::Gt(a, b), a, b);
  }
  template <class T> T operator()(T a, T b) const { return a > b ? a : b; }
};
struct Below {
  template <class V> HWY_INLINE V lanes(V a, V b) const {
    return kElseSecond ? hn::Min(a, b) : hn::IfThenElse(hn::Lt(a, b), a, b);
  }
  template <class T> T operator()(T a, T b) const { return a < b ? a : b; }
};
template <class D> HWY_INLINE hn::Vec<D> level(D d, const hn::TFromD<D>* x, std::integral_constant<size_t, 1>) {
  return hn::LoadU(d, x);
}
template <class D> HWY_INLINE hn::Vec<D> level(D d, const hn::TFromD<D>* z, std::integral_constant<size_t, 2>) {
  hn::Vec<D> re, im;
  hn::LoadInterleaved2(d, z, re, im);
  return magsq_capped(d, re, im);
}

template <size_t kWidth, class Better, class T> bool improve(const T* x, size_t n, T& best) {
  constexpr std::integral_constant<size_t, kWidth> width;
  constexpr Better better;
  bool nan = false;
  const auto run = [&](auto d, auto vectors) HWY_ATTR {
    using D = decltype(d);
    constexpr size_t kLanes = hn::MaxLanes(D()), kVectors = decltype(vectors)::value;
    hn::Vec<D> top[kVectors];
    auto strange = hn::Ne(hn::Zero(d), hn::Zero(d));
    for (auto& t : top) t = hn::Set(d, best);
    for (; n >= kVectors * kLanes; n -= kVectors * kLanes, x += kWidth * kVectors * kLanes) {
      constexpr size_t kLine = kCacheLine<T>, kAhead = 16 * kLine;  // the CPU fetches too late for points
      for (size_t i = 0; i < kWidth * kVectors * kLanes; i += kLine) fetch(x, kAhead + i);
      for (size_t i = 0; i < kVectors; ++i) {
        const auto y = level(d, x + kWidth * i * kLanes, width);
        top[i] = better.lanes(y, top[i]);
        if constexpr (kWidth == 1) strange = hn::Or(strange, hn::IsNaN(y));  // no capped magnitude is
      }
    }
    HWY_ALIGN T lanes[kVectors][kLanes];
    for (size_t i = 0; i < kVectors; ++i) hn::Store(top[i], d, lanes[i]);
    for (const auto& row : lanes) {
      for (const T y : row) best = better(y, best);
    }
    nan |= !hn::AllFalse(d, strange);
  };
  run(hn::ScalableTag<T>(), std::integral_constant<size_t, 4>());
  run(hn::CappedTag<T, 1>(), std::integral_constant<size_t, 1>());
  return nan;
}

template <class T> const StatsKernels<T>* kernels() {
  static constexpr StatsKernels<T> table = {
      .samples = samples<T>,
      .points = points<T>,
      .clamped = clamped_samples<T>,
      .squares = squares<T>,
      .squared_magnitudes = squared_magnitudes<T>,
      .reciprocals = reciprocals<T>,
      .reciprocal_points = reciprocal_points<T>,
      .deviations = deviations<T>,
      .deviations_of_points = deviations_of_points<T>,
      .cubed_deviations = cubed_deviations<T>,
      .fourth_powers = fourth_powers<T>,
      .largest = improve<1, Above, T>,
      .smallest = improve<1, Below, T>,
      .largest_point = improve<2, Above, T>,
      .smallest_point = improve<2, Below, T>,
      .bins_of_samples = find_bins<1, T>,
      .bins_of_points = find_bins<2, T>,
      .count_samples = count_bins<1, T>,
      .count_points = count_bins<2, T>,
  };
  return &table;
}
const StatsKernels<double>* kernels_double() { return kernels<double>(); }
const StatsKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::stats
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(stats, StatsKernels, stats_kernels)
#endif
