#include "filter/resample_kernels.h"

#include <algorithm>
#include <cstddef>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/resample_kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::resample {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Sums of a few samples run in eight lanes on every target, and the lanes are added in pairs: eight outputs at a time
// in interpolate, one in weigh, with the same bits.
template <class T> using GroupTag = hn::CappedTag<T, kGroup>;

template <class T> T sum_of_group(const T* l) {
  return ((l[0] + l[1]) + (l[2] + l[3])) + ((l[4] + l[5]) + (l[6] + l[7]));
}

// y[k] = the sum of group k, for as many groups as a group has lanes.
template <class T> HWY_INLINE void sums_of_groups(const T* lanes, T* y) {
  const GroupTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  HWY_ALIGN T halves[2 * kGroup];
  for (size_t k = 0; k < 2 * kGroup; k += kLanes) {
    hn::Vec<decltype(d)> a, b, c, e;
    hn::LoadInterleaved4(d, lanes + 4 * k, a, b, c, e);
    hn::Store(hn::Add(hn::Add(a, b), hn::Add(c, e)), d, halves + k);
  }
  for (size_t k = 0; k < kGroup; k += kLanes) {
    hn::Vec<decltype(d)> a, b;
    hn::LoadInterleaved2(d, halves + 2 * k, a, b);
    hn::StoreU(hn::Add(a, b), d, y + k);
  }
}

// The first eight points and the last eight; of those the ones that are among the first count as zeros, samples and
// weights both: an infinite sample must not meet a zero weight.
template <class T> T weighted_sum(const T* x, const T* w, size_t n) {
  const GroupTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  T sum = 0;
  if (n < kGroup) {
    for (size_t k = 0; k < n; ++k) sum += x[k] * w[k];
    return sum;
  }
  HWY_ALIGN T lanes[kGroup];
  const size_t rest = n % kGroup, tail = n - kGroup;
  for (size_t i = 0; i < kGroup; i += kLanes) {
    auto lane = hn::Mul(hn::LoadU(d, x + i), hn::LoadU(d, w + i));
    for (size_t k = kGroup; k + kGroup <= n; k += kGroup) {
      lane = hn::MulAdd(hn::LoadU(d, x + k + i), hn::LoadU(d, w + k + i), lane);
    }
    if (rest > 0) {
      const auto done = hn::FirstN(d, std::min(kLanes, kGroup - rest > i ? kGroup - rest - i : 0));
      lane = hn::MulAdd(hn::IfThenZeroElse(done, hn::LoadU(d, x + tail + i)),
                        hn::IfThenZeroElse(done, hn::LoadU(d, w + tail + i)), lane);
    }
    hn::Store(lane, d, lanes + i);
  }
  return sum_of_group(lanes);
}

template <class T> HWY_INLINE T fused(T a, T b, T c) {
  const hn::CappedTag<T, 1> one;
  return hn::GetLane(hn::MulAdd(hn::Set(one, a), hn::Set(one, b), hn::Set(one, c)));
}

// Both parts of a point, weighted by weight(k).
template <class T, class Weight> HWY_INLINE void weighted_point(const T* x, size_t n, Weight weight, T* y) {
  T re = 0, im = 0;
  for (size_t k = 0; k < n; ++k) {
    const T w = weight(k);
    re = fused(x[2 * k], w, re);
    im = fused(x[2 * k + 1], w, im);
  }
  y[0] = re;
  y[1] = im;
}

template <class T> void weigh(const T* x, size_t width, const T* w, size_t n, T* y) {
  if (width == 1) y[0] = weighted_sum(x, w, n);
  else
    weighted_point(
        x, n, [w](size_t k) { return w[k]; }, y);
}

// Where an output's weights stand: in a row, and the part t of the way to the next one.
template <class T, bool kLinear> class Row {
 public:
  HWY_INLINE Row(const WeightTable<T>& table, Fixed place) {
    constexpr int kDigits = 53;  // those of fraction()
    const int below = kDigits - table.step_bits;
    const uint64_t part = static_cast<uint64_t>(place >> (kFractionBits - kDigits)) & ((uint64_t{1} << kDigits) - 1);
    const uint64_t half = kLinear ? 0 : uint64_t{1} << (below - 1);
    a_ = table.rows + ((part + half) >> below) * kWeightRow;
    const int64_t rest = static_cast<int64_t>(part & ((uint64_t{1} << below) - 1));
    t_ = static_cast<T>(static_cast<double>(rest) / static_cast<double>(int64_t{1} << below));
  }
  // No fused product, so that the weights are those of scalar code.
  template <class D> HWY_INLINE hn::Vec<D> at(D d, size_t k) const {
    const auto low = hn::Load(d, a_ + k);
    if constexpr (!kLinear) return low;
    else return hn::Add(low, hn::Mul(hn::Set(d, t_), hn::Sub(hn::Load(d, a_ + kWeightRow + k), low)));
  }
  HWY_INLINE T at(size_t k) const { return kLinear ? a_[k] + t_ * (a_[kWeightRow + k] - a_[k]) : a_[k]; }

 private:
  const T* a_;
  T t_;
};

template <class T, bool kLinear, bool kTail>
void interpolate_samples(const WeightTable<T>& table, const T* x, Fixed place, Fixed step, T* y, size_t n) {
  const GroupTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const size_t tail = table.length - kGroup, among_first = kWeightRow - table.length;
  HWY_ALIGN T lanes[kGroup * kGroup] = {};
  const auto group = [&](size_t i) HWY_ATTR {
    const Row<T, kLinear> row(table, place);
    const T* const from = x + whole(place);
    for (size_t k = 0; k < kGroup; k += kLanes) {
      auto lane = hn::Mul(hn::LoadU(d, from + k), row.at(d, k));
      if constexpr (kTail) {
        const auto done = hn::FirstN(d, among_first > k ? std::min(kLanes, among_first - k) : 0);
        lane = hn::MulAdd(hn::IfThenZeroElse(done, hn::LoadU(d, from + tail + k)), row.at(d, kGroup + k), lane);
      }
      hn::Store(lane, d, lanes + i * kGroup + k);
    }
    place += step;
  };
  for (; n >= kGroup; n -= kGroup, y += kGroup) {
    for (size_t i = 0; i < kGroup; ++i) group(i);
    sums_of_groups(lanes, y);
  }
  for (size_t i = 0; i < n; ++i) group(i);
  for (size_t i = 0; i < n; ++i) y[i] = sum_of_group(lanes + i * kGroup);
}

template <class T, bool kLinear>
void interpolate_all(const WeightTable<T>& table, const T* x, size_t width, Fixed place, Fixed step, T* y, size_t n) {
  if (width == 1) {
    return table.length == kGroup ? interpolate_samples<T, kLinear, false>(table, x, place, step, y, n)
                                  : interpolate_samples<T, kLinear, true>(table, x, place, step, y, n);
  }
  for (; n > 0; --n, place += step, y += 2) {
    const Row<T, kLinear> row(table, place);
    weighted_point(
        x + 2 * whole(place), table.length, [&](size_t k) { return row.at(weight_place(k, table.length)); }, y);
  }
}

template <class T>
void interpolate(const WeightTable<T>& table, bool linear, const T* x, size_t width, Fixed place, Fixed step, T* y,
                 size_t n) {
  if (linear) interpolate_all<T, true>(table, x, width, place, step, y, n);
  else interpolate_all<T, false>(table, x, width, place, step, y, n);
}

// The four rows around a place between two samples, and what each counts in the cubic through them.
template <class T> struct Mix {
  const T* row;
  size_t stride;
  double weight[4];
};

template <class T> HWY_INLINE Mix<T> mix(const ResampleBank<T>& bank, double place) {
  const double at = place * static_cast<double>(bank.steps);
  const size_t row = std::min(static_cast<size_t>(at), bank.steps - 1);
  const double t = at - static_cast<double>(row), below = t + 1, above = t - 1, far = t - 2;
  return {bank.rows + row * bank.stride,
          bank.stride,
          {-t * above * far / 6, below * above * far / 2, -below * t * far / 2, below * t * above / 6}};
}

template <class T> HWY_INLINE T mixed_sum(const Mix<T>& m, const T* x, size_t n) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  hn::Vec<decltype(d)> even[4], odd[4];
  for (size_t i = 0; i < 4; ++i) even[i] = odd[i] = hn::Zero(d);
  const auto add = [&](auto* sums, auto samples, size_t k) HWY_ATTR {
    for (size_t i = 0; i < 4; ++i) sums[i] = hn::MulAdd(samples, hn::LoadU(d, m.row + i * m.stride + k), sums[i]);
  };
  size_t k = 0;
  for (; k + 2 * kLanes <= n; k += 2 * kLanes) {
    add(even, hn::LoadU(d, x + k), k);
    add(odd, hn::LoadU(d, x + k + kLanes), k + kLanes);
  }
  for (; k + kLanes <= n; k += kLanes) add(even, hn::LoadU(d, x + k), k);
  if (k < n) add(odd, hn::IfThenElseZero(hn::FirstN(d, n - k), hn::LoadU(d, x + k)), k);
  auto sum = hn::Zero(d);
  for (size_t i = 0; i < 4; ++i) {
    sum = hn::MulAdd(hn::Set(d, static_cast<T>(m.weight[i])), hn::Add(even[i], odd[i]), sum);
  }
  return hn::GetLane(hn::SumOfLanes(d, sum));
}

template <class T>
void gather(const ResampleBank<T>& bank, const T* x, size_t part, size_t parts, Fixed place, Fixed step, T* y,
            size_t n) {
  for (; n > 0; --n, place += step) {
    const Mix<T> m = mix(bank, fraction(place));
    const T* const from = x + whole(place);
    for (size_t k = 0; k < parts; ++k) *y++ = mixed_sum(m, from + k * part, bank.length);
  }
}

template <class D> HWY_INLINE hn::Vec<D> load(D d, const double* x) { return hn::LoadU(d, x); }
template <class D> HWY_INLINE hn::Vec<D> load(D d, const float* x) {
  return hn::PromoteTo(d, hn::LoadU(hn::Rebind<float, D>(), x));
}

// y[k] += x times the mix of the rows from `first` on, for k < n.
template <class T> HWY_INLINE void spread(const Mix<T>& m, double x, size_t first, double* y, size_t n) {
  const hn::ScalableTag<double> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  hn::Vec<decltype(d)> factor[4];
  for (size_t i = 0; i < 4; ++i) factor[i] = hn::Set(d, m.weight[i] * x);
  const auto sum = [&](size_t k, auto old) HWY_ATTR {
    for (size_t i = 0; i < 4; ++i) old = hn::MulAdd(factor[i], load(d, m.row + i * m.stride + first + k), old);
    return old;
  };
  size_t k = 0;
  for (; k + kLanes <= n; k += kLanes) hn::StoreU(sum(k, hn::LoadU(d, y + k)), d, y + k);
  if (k < n) {
    const auto old = hn::LoadU(d, y + k);
    hn::StoreU(hn::IfThenElse(hn::FirstN(d, n - k), sum(k, old), old), d, y + k);
  }
}

// In the spacing of the outputs the kernel has the length it has in the bank, and the places of the outputs have one
// fraction for all that a point enters: one row of weights, onto outputs that lie side by side.
template <class T> void scatter(const ResampleBank<T>& bank, const T* x, Fixed edge, Fixed step, double* y, size_t n) {
  const double scale = 1 / to_double(step);
  const Fixed one = to_fixed(size_t{1});
  const size_t reach = bank.length - 1;  // outputs before the first of y that its points may still enter
  const Fixed begin = edge - reach * step;
  size_t k = whole(begin - step) + 1, m = 0;  // m counts from `reach` outputs before y
  Fixed next = begin;                         // the edge of output m, the first that reaches point k
  for (; next < to_fixed(k); ++m) next += step;
  for (Fixed past = next - to_fixed(k); m < n + reach; ++k) {
    const size_t first = m < reach ? reach - m : 0, last = std::min(bank.length, n + reach - m);
    spread(mix(bank, 1 - to_double(past) * scale), static_cast<double>(x[k]) * scale, first, y + (m + first - reach),
           last - first);
    if (past >= one) {
      past -= one;
    } else {
      past += step - one;
      ++m;
    }
  }
}

template <class T> const ResampleKernels<T>* kernels() {
  static constexpr ResampleKernels<T> table = {weigh<T>, interpolate<T>, gather<T>, scatter<T>};
  return &table;
}
const ResampleKernels<double>* kernels_double() { return kernels<double>(); }
const ResampleKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::resample
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(resample, ResampleKernels, resample_kernels)
#endif
