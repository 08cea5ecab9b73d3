#include "interpolation/spline_slopes.h"

namespace sigvex::interpolation {

// width_ratio: the end interval over its neighbour.
SplineSystem::Row SplineSystem::end_row(uint32_t end, size_t intervals, double width_ratio) {
  if (end == DSP_SPLINE_CLAMPED) return {1, 0, 0, 0};
  if (end == DSP_SPLINE_NATURAL || intervals < 2) return {2, 1, 3, 0};
  if (intervals == 2) return {1, 1, 2, 0};  // no cubic term: both intervals are one parabola
  const double whole = 1 + width_ratio;
  return {1, whole, (2 + 3 * width_ratio) / whole, width_ratio * width_ratio / whole};
}

void SplineSystem::eliminate(uint32_t end) {
  const size_t last = widths_.size();
  if (last == 0) return;
  const auto ratio = [&](size_t k, size_t next) { return last > 1 ? widths_[k] / widths_[next] : 1; };
  first_ = end_row(end, last, ratio(0, 1));
  last_ = end_row(end, last, ratio(last - 1, last - 2));
  shares_.resize(last);
  pivots_.resize(last + 1);
  uppers_.resize(last);
  pivots_[0] = first_.own;
  uppers_[0] = first_.neighbour / pivots_[0];
  for (size_t k = 1; k < last; ++k) {
    shares_[k] = 1 / (1 + widths_[k - 1] / widths_[k]);
    pivots_[k] = 2 - shares_[k] * uppers_[k - 1];
    uppers_[k] = (1 - shares_[k]) / pivots_[k];
  }
  pivots_[last] = last_.own - last_.neighbour * uppers_[last - 1];
}

}  // namespace sigvex::interpolation
