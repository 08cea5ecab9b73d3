#include "filter/resample_kernels.h"

#include <algorithm>
#include <cstddef>

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/resample_kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::resample {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

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
  static constexpr ResampleKernels<T> table = {gather<T>, scatter<T>};
  return &table;
}
const ResampleKernels<double>* kernels_double() { return kernels<double>(); }
const ResampleKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::resample
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace sigvex {
namespace resample {
HWY_EXPORT(kernels_double);
HWY_EXPORT(kernels_float);
const ResampleKernels<double>& best(double) { return *HWY_DYNAMIC_DISPATCH(kernels_double)(); }
const ResampleKernels<float>& best(float) { return *HWY_DYNAMIC_DISPATCH(kernels_float)(); }
}  // namespace resample

template <> const ResampleKernels<double>& resample_kernels<double>() { return resample::best(0.0); }
template <> const ResampleKernels<float>& resample_kernels<float>() { return resample::best(0.0F); }

}  // namespace sigvex
#endif
