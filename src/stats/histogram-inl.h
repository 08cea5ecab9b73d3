// The bins of a histogram that samples and points fall into, and how many fall into each of a few.
#if defined(SIGVEX_STATS_HISTOGRAM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_STATS_HISTOGRAM_INL_H
#undef SIGVEX_STATS_HISTOGRAM_INL_H
#else
#define SIGVEX_STATS_HISTOGRAM_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "core/limits.h"
#include "stats/guards-inl.h"
#include "stats/kernels.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::stats {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// A vector of samples or of the magnitudes of points.
template <size_t kWidth, class D, class T> HWY_INLINE hn::Vec<D> levels(D d, const T* x) {
  if constexpr (kWidth == 1) {
    return hn::LoadU(d, x);
  } else {
    hn::Vec<D> re, im;
    hn::LoadInterleaved2(d, x, re, im);
    return hn::IfThenElse(bounded(d, re, im), hn::Sqrt(re * re + im * im), hn::Set(d, Limits<T>::huge));
  }
}

// Cut to integers; what is too large gives the largest.
template <class DI, class V> HWY_INLINE hn::Vec<DI> cut(DI di, V x) {
  if constexpr (sizeof(hn::TFromD<hn::DFromV<V>>) == sizeof(double)) return hn::DemoteTo(di, x);
  else return hn::ConvertTo(di, x);
}

// The bins of levels; -1 is none. A level on the top edge, found just outside by rounding, belongs to the last bin.
template <class D, class T>
HWY_INLINE hn::Vec<hn::Rebind<int32_t, D>> find(D d, hn::Vec<D> level, const Bins<T>& bins) {
  const hn::Rebind<int32_t, D> di;
  const auto zero = hn::Zero(d), none = hn::Set(d, T(-1)), beyond = hn::Set(d, Limits<T>::huge);
  const T edge = static_cast<T>(bins.n);
  const auto end = hn::Set(d, edge), top = hn::Set(d, edge * (1 + 10 * Limits<T>::epsilon));
  const auto from_lo = level - hn::Set(d, bins.lo);
  const auto position =
      bins.width != 0 ? from_lo / hn::Set(d, bins.width) : hn::IfThenElse(hn::Eq(from_lo, zero), zero, beyond);
  const auto counted = hn::And(hn::Ge(position, zero), hn::Lt(position, top));
  const auto inside = hn::IfThenElse(hn::Lt(position, end), position, beyond);
  return hn::Min(cut(di, hn::IfThenElse(counted, inside, none)), hn::Set(di, bins.n - 1));
}

constexpr size_t kGroup = 16;  // of samples or points whose bins are found at a time

// The bins of the first kGroup of n samples or points; those that are missing have none.
template <size_t kWidth, class T> HWY_INLINE void find_group(const T* x, size_t n, const Bins<T>& bins, int32_t* to) {
  const hn::ScalableTag<T> d;
  const hn::Rebind<int32_t, decltype(d)> di;
  const auto group = [&](const T* from) HWY_ATTR {
    for (size_t i = 0; i < kGroup; i += hn::MaxLanes(d))
      hn::StoreU(find(d, levels<kWidth>(d, from + kWidth * i), bins), di, to + i);
  };
  if (HWY_LIKELY(n >= kGroup)) return group(x);
  T rest[kWidth * kGroup] = {};
  std::copy_n(x, kWidth * n, rest);
  group(rest);
  std::fill(to + n, to + kGroup, -1);
}

template <size_t kWidth, class T> void find_bins(const T* x, size_t n, Bins<T> bins, int32_t* to) {
  for (size_t k = 0; k < n; k += kGroup) find_group<kWidth>(x + kWidth * k, n - k, bins, to + k);
}

// The bins of some samples are counted while those of later ones are found: neither waits for the other.
template <size_t kWidth, class T> void count_bins(const T* x, size_t n, Bins<T> bins, Tally& tally) {
  constexpr size_t kLater = 128;
  HWY_ALIGN int32_t found[kLater];
  std::fill_n(found, kLater, -1);
  const auto count = [&](const int32_t* group) HWY_ATTR {
    for (size_t i = 0; i < kGroup; ++i) ++*(tally.counts[i % Tally::kTurns] + 1 + group[i]);
  };
  for (size_t k = 0; k < n; k += kGroup) {
    int32_t* const group = found + k % kLater;
    count(group);
    find_group<kWidth>(x + kWidth * k, n - k, bins, group);
  }
  for (size_t k = 0; k < kLater; k += kGroup) count(found + k);
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::stats
HWY_AFTER_NAMESPACE();

#endif
