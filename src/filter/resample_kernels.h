// The loops of the resamplers: raw arrays and positions, no record, no status. Each CPU target fills one
// table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "filter/resample_position.h"

namespace sigvex {

// Weights of the kernel, length of them in a row, rows `stride` apart: row k for places (k - 1) / steps of a sample, k
// up to steps + 2, so that a cubic has two rows on either side of every place from 0 to 1. The rows begin on a cache
// line, and a vector may be read beyond the last one.
template <class T> struct ResampleBank {
  const T* rows;
  size_t stride, length, steps;
};

// Scalars that the kernels may read beyond the end of their arrays.
inline constexpr size_t kResampleSlack = 16;

// A row of a built-in kernel of 8 to 16 points: the weights of the first eight and what those of the next row are more,
// then both for the last eight, where 0 stands for points that are among the first.
inline constexpr size_t kGroup = 8, kWeightRow = 4 * kGroup;
inline size_t weight_place(size_t k, size_t length) { return k < kGroup ? k : k + 3 * kGroup - length; }

// Where a row stands, counted in rows: those at equal distances, which ratios of small numbers come back to, fall into
// different sets of the first cache and stay there.
constexpr size_t row_place(size_t row) { return row ^ row >> 5; }

// The rows for each of 2^step_bits steps between two samples, 2 to 2^15 of them, and for the last one's end; on a cache
// line, each at its place.
template <class T> struct WeightTable {
  const T* rows;
  size_t length;
  int step_bits;
};

template <class T> struct ResampleKernels {
  // One point, the sum over k < n of w[k] * x[k], each x[k] of width 1 (a sample) or 2 (both parts of a point).
  void (*weigh)(const T* x, size_t width, const T* w, size_t n, T* y);

  // y[m] for m < n, every output the sum of `length` points of x from the whole part of place + m * step on, with the
  // weights at its fraction: between two rows, a + t * (b - a), or of the nearest one. The bits of weigh of those.
  void (*interpolate)(const WeightTable<T>& table, bool linear, const T* x, size_t width, Fixed place, Fixed step, T* y,
                      size_t n);

  // y[m] for m < n, every output the sum over length points of x from the whole part of place + m * step on, weighted
  // by the bank at its fraction. Each of the `parts` rows of x, `part` scalars apart, gives one scalar of a point of y.
  void (*gather)(const ResampleBank<T>& bank, const T* x, size_t part, size_t parts, Fixed place, Fixed step, T* y,
                 size_t n);

  // Adds to y[m], for m < n, what the kernel stretched by the step (1 or more) makes of the points of x up to its edge,
  // edge + m * step. Every output is summed in the order of the points, whichever outputs are asked for with it; the
  // sums grow with the ratio, so that they take a double. n > 0.
  void (*scatter)(const ResampleBank<T>& bank, const T* x, Fixed edge, Fixed step, double* y, size_t n);
};

template <class T> const ResampleKernels<T>& resample_kernels();  // the best for this CPU

}  // namespace sigvex
