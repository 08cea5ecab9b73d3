// The loops of filtering: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

namespace sigvex {

template <class T> struct FilterKernels {
  // y[j] = the sum over k < taps of h[k * h_step] * x[j + (taps - 1 - k) * x_step] for j < n. Each sum runs in
  // one order in one accumulator, wherever j stands: a signal gives the same bits however it is cut. y shares nothing.
  void (*convolve)(const T* x, size_t x_step, const T* h, size_t h_step, size_t taps, T* y, size_t n);

  // y[j] = the sum over k < taps - 1 of h[k * h_step] * (x[j + early[k]] + x[j + late[k]]), and last the centre tap's
  // product with x[j + early[taps - 1]]; the order and y as above.
  void (*convolve_pairs)(const T* x, const size_t* early, const size_t* late, const T* h, size_t h_step, size_t taps,
                         T* y, size_t n);

  // Of complex points, in place: z[k] = a[k] * z[k] + b[k] * conj z[n - k mod n] for k < n; n is even.
  void (*mix)(T* z, const T* a, const T* b, size_t n);
};

template <class T> const FilterKernels<T>& filter_kernels();  // the best for this CPU

}  // namespace sigvex
