// The slopes of a cubic spline at the points of its table.
#pragma once

#include <vector>

#include "interpolation/table.h"

namespace sigvex::interpolation {

// The continuity of the second derivative as equations for the slopes (de Boor, A Practical Guide to Splines, chapter
// IV), eliminated once for the abscissae and solved for any number of tables over them.
class SplineSystem {
 public:
  template <class T> SplineSystem(const Abscissae<T>& x, uint32_t end) : widths_(intervals(x.size())) {
    for (size_t k = 0; k < widths_.size(); ++k) widths_[k] = x.width(k);
    eliminate(end);
  }

  // d(k) = the slope of the spline through the values y(k).
  template <class Y, class D> void solve(Y y, D d) const {
    const size_t last = widths_.size();
    if (last == 0) {
      d(0) = 0;
      return;
    }
    const auto chord = [&](size_t k) { return (y(k + 1) - y(k)) / widths_[k]; };
    const auto at_end = [&](const Row& row, size_t k, size_t next) {
      return row.near * chord(k) + (row.far != 0 ? row.far * chord(next) : 0);
    };
    d(0) = at_end(first_, 0, 1) / pivots_[0];
    for (size_t k = 1; k < last; ++k) {
      const double share = shares_[k];
      const double right = 3 * (share * chord(k - 1) + (1 - share) * chord(k));
      d(k) = (right - share * d(k - 1)) / pivots_[k];
    }
    d(last) = (at_end(last_, last - 1, last - 2) - last_.neighbour * d(last - 1)) / pivots_[last];
    for (size_t k = last; k-- > 0;) d(k) -= uppers_[k] * d(k + 1);
  }

 private:
  // own d(end) + neighbour d(beside it) = near chord(at the end) + far chord(beside it)
  struct Row {
    double own, neighbour, near, far;
  };
  static size_t intervals(size_t points) { return points > 0 ? points - 1 : 0; }
  static Row end_row(uint32_t end, size_t intervals, double width_ratio);
  void eliminate(uint32_t end);

  std::vector<double> widths_, shares_, pivots_, uppers_;
  Row first_{}, last_{};
};

}  // namespace sigvex::interpolation
