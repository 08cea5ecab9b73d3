// dsps_peak
#include <algorithm>
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "stats/operations.h"
#include "stats/search.h"

namespace sigvex::dsps {
namespace {

template <class T> struct Peak {
  T value, position;
  Status status = kSuccess;
};

// A sample replaces the best so far when that does not hold against it: a NaN does, and is replaced by the next sample.
template <class T> size_t chosen(const Levels<T>& y, uint32_t flags, int32_t index) {
  if (flags & DSP_PEAK_AT_INDEX) return std::min(count(index), y.count() - 1);
  const bool largest = !(flags & DSP_PEAK_MINIMUM);
  const auto one_by_one = [&y, largest](Best<T>& best, size_t first, size_t n) {
    for (size_t k = first; k < first + n; ++k) {
      const bool holds = largest ? best.level >= y[k] : best.level <= y[k];
      if (!holds) best.take(y[k], k);
    }
    return true;
  };
  return search(y, largest, largest ? -Limits<T>::huge : Limits<T>::huge, one_by_one).index(y);
}

template <class T> Peak<T> unrefined(const Levels<T>& y, size_t k) { return {y[k], static_cast<T>(k)}; }

// The vertex of the parabola through a sample and its neighbours; a flat top has none and gives what 0/0 gives.
template <class T> Peak<T> parabola(const Levels<T>& y, size_t k) {
  if (k == 0 || k + 1 >= y.count()) return unrefined(y, k);
  const T y0 = y[k - 1], y1 = y[k], y2 = y[k + 1];
  const T a = (y2 - y0) * T(0.5), b = (y2 - 2 * y1 + y0) * T(0.5);
  return {y1 - a * a / (4 * b), static_cast<T>(k) - a / (2 * b)};
}

// A lobe A exp(-c x^2) through the two samples that enclose its top: ln(yb / ya) = c (2 d - 1) gives the offset d of
// the top from the left one, and the larger sample times exp(c x^2) gives its height. The two constants are the 1 / 2c
// and the c of one lobe to within a hundredth.
template <class T> Peak<T> gauss_lobe(const Levels<T>& y, size_t index, bool corrected) {
  constexpr T kOffsetOfLogRatio = T(0.792233201343665), kCurvature = T(0.6260852964868817), kShape = T(0.02036);
  const size_t n = y.count();
  if (n < 2) return unrefined(y, index);
  const bool from_left = index + 1 == n || (index >= 1 && y[index - 1] > y[index + 1]);
  const size_t k = from_left ? index - 1 : index;
  const T ya = y[k], yb = y[k + 1];
  T d = std::log(yb / ya) * kOffsetOfLogRatio;
  if (corrected) d *= 1 - (d * d - T(0.25)) * kShape;
  d += T(0.5);
  const bool valid = d >= T(-0.5) && d <= T(1.5);
  if (!valid) d = d >= T(-0.5) ? T(1.5) : T(-0.5);
  const T e = 1 - d;
  const T value = ya >= yb ? ya * std::exp(kCurvature * (d * d)) : yb * std::exp(kCurvature * (e * e));
  return {value, static_cast<T>(k) + d, valid ? kSuccess : kFailure};
}

template <class T> Peak<T> find_peak(const Levels<T>& y, uint32_t flags, int32_t index) {
  if (y.count() == 0) return {0, 0};
  const size_t k = chosen(y, flags, index);
  switch (flags & DSP_PEAK_REFINEMENT) {
    case DSP_PEAK_PARABOLIC:
      return parabola(y, k);
    case DSP_PEAK_GAUSS:
      return gauss_lobe(y, k, false);
    case DSP_PEAK_GAUSS_CORRECTED:
      return gauss_lobe(y, k, true);
    default:
      return unrefined(y, k);
  }
}

}  // namespace

template <class T> Status peak(const Vector<T>& v, Vector<T>& result, uint32_t flags, int32_t index) {
  if ((flags & DSP_PEAK_REFINEMENT) > DSP_PEAK_GAUSS_CORRECTED) return kFailure;
  const Peak<T> found = find_peak(Levels<T>{v}, flags, index);
  Output<T> out(result, v);
  SIGVEX_TRY(shape<T>(*out, 2, 0));
  out->data[0] = found.value;
  out->data[1] = found.position;
  SIGVEX_TRY(out.finish());
  return found.status;
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, peak, 4)
