// The loops of filtering: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

namespace sigvex {

// Two samples that share a tap: how far behind an output's x they lie, and the tap behind h.
struct Pair {
  size_t early, late, tap;
};

// Outputs that a convolution is quick with on every CPU; a few ones cost as much.
inline constexpr size_t kWholeTile = 128;

template <class T> struct FilterKernels {
  // y[j] = the sum over k < taps of h[k * h_step] * x[j + (taps - 1 - k) * x_step] for j < n. Each sum runs in
  // one order in one accumulator, wherever j stands: a signal gives the same bits however it is cut. y shares nothing.
  void (*convolve)(const T* x, size_t x_step, const T* h, size_t h_step, size_t taps, T* y, size_t n);

  // y[j] = the sum over the pairs p of h[p.tap] * (x[j + p.early] + x[j + p.late]), one after the other, the first of
  // which is the centre and stands for h[p.tap] * x[j + p.early]; y as above.
  void (*convolve_pairs)(const T* x, const Pair* pairs, size_t count, const T* h, T* y, size_t n);

  // The same for pairs in the order of for_each_pair, where tap k is h[k * h_step] and its early sample x[k * x_step].
  void (*convolve_symmetric)(const T* x, size_t x_step, const Pair* pairs, size_t count, const T* h, size_t h_step,
                             T* y, size_t n);

  // Of complex points, in place: z[k] = a[k] * z[k] + b[k] * conj z[n - k mod n] for k < n; n is even.
  void (*mix)(T* z, const T* a, const T* b, size_t n);
};

template <class T> const FilterKernels<T>& filter_kernels();  // the best for this CPU

}  // namespace sigvex
