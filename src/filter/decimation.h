// Which points of a block a decimation keeps, and what its offset vector carries.
#pragma once

#include <algorithm>

#include "filter/state.h"

namespace sigvex {

// Every step-th point of n from `start` on: their number, and where in the next block the following one lies.
struct Kept {
  Kept(size_t n, size_t first, size_t spacing) : start(first), step(spacing) {
    const size_t reach = start < n ? n - start + step - 1 : 0;
    count = reach / step;
    next = reach > 0 ? step - 1 - reach % step : start - n;
  }

  size_t start, step, count, next;
};

inline size_t decimation_step(int32_t factor) { return count(std::max(factor, 1)); }

// The index of the first kept point, rounded from what an offset vector holds: beyond any block where that is huge.
template <class T> size_t start_index(T offset) {
  constexpr double kFar = 0x1p62;
  const double start = static_cast<double>(offset) + 0.5;
  if (!(start > 0)) return 0;
  return static_cast<size_t>(std::min(start, kFar));
}
template <class T> size_t start_index(const Vector<T>* offset) {
  return offset && offset->points >= 1 ? start_index(offset->data[0]) : 0;
}

// The offset has its one point already, which may be storage of the host's: it is written in place.
template <class T> void leave_offset(Vector<T>* offset, size_t next) {
  if (!offset) return;
  offset->data[0] = static_cast<T>(next);
  if (offset->complex) offset->data[1] = 0;
}

}  // namespace sigvex
