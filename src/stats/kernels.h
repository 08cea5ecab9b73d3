// The loops of the statistics: raw arrays and counts, no record, no status. Each CPU target fills one table, and all of
// them give the same bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/vector.h"

namespace sigvex {

// The bins of a histogram: from lo on, each of the width. A width of 0 counts what is lo.
template <class T> struct Bins {
  T lo, width;
  int32_t n;
};

// Counts of a few bins. An increment waits for the last one of the same count, and samples that follow each other often
// share a bin: each of eight in turn has a row of counts, its first for what has no bin. Rows differ in the last 12
// bits of their addresses, by which the CPU tells at first whether it must wait.
struct Tally {
  static constexpr size_t kTurns = 8, kMost = 511, kLine = 16;
  uint32_t counts[kTurns][1 + kMost + kLine];
};

template <class T> struct StatsKernels {
  // Sums over n samples or points, under the block rule of stats/blocks.h; each block is one lane of a vector.
  // Deviations are from `center`, and like all that is called clamped stay within huge.
  using Sums = void (*)(const T* x, size_t n, Point<T> center, T* totals);
  Sums samples, points;                   // x; re and im
  Sums clamped;                           // x
  Sums squares, squared_magnitudes;       // of clamped parts
  Sums reciprocals;                       // 1/x, and how many x are 0
  Sums reciprocal_points;                 // re and im of clamped 1/z; 1/|z|^2 counts as huge where it has no value
  Sums deviations, deviations_of_points;  // d and d^2; re, im and the square of each
  Sums cubed_deviations;                  // d, d^2 and d^3
  Sums fourth_powers;                     // d^2 and d^4

  // Takes into `best` what is strictly better among n samples, or capped squared magnitudes of points. A NaN never is;
  // true if there was one.
  using Improve = bool (*)(const T* x, size_t n, T& best);
  Improve largest, smallest, largest_point, smallest_point;

  // The bin that each sample, or the magnitude of each point, falls into; -1 is none. Writes a multiple of 16.
  using Find = void (*)(const T* x, size_t n, Bins<T> bins, int32_t* to);
  Find bins_of_samples, bins_of_points;
  // The same, counted into what `tally` holds.
  using Count = void (*)(const T* x, size_t n, Bins<T> bins, Tally& tally);
  Count count_samples, count_points;
};

template <class T> const StatsKernels<T>& stats_kernels();  // the best for this CPU

template <size_t Count, class T>
std::array<T, Count> sums(typename StatsKernels<T>::Sums kernel, const T* x, size_t n, Point<T> center = {}) {
  std::array<T, Count> totals;
  kernel(x, n, center, totals.data());
  return totals;
}

}  // namespace sigvex
