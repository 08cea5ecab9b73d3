// Convolutions on the transform engine: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

#include "spectral/kernels.h"

namespace sigvex {

// What is convolved: out[k] = factor * w[k] * (sum over j of kernel[(k - j) mod n] * w[j] * in[j]). Input and result
// may be one array.
template <class T> struct Convolution {
  const T* in;  // interleaved points, or real samples; zero from in_points on, which nobody reads
  size_t in_points;
  bool real;
  const T* weights;  // points w, or null for ones
  bool conjugate;    // takes the conjugates of w and of the spectrum
  T* out;            // the first out_points of the n points of the result
  size_t out_points;
  T factor;
};

template <class T> struct ConvolutionKernels {
  // Of the tables' n points, n > 2; work is aligned to kAlignment bytes, its size in scalars. A spectrum is n points in
  // an order of its own, for convolve alone, at any address.
  size_t (*work_size)(const ComplexTables<T>& tables);
  void (*spectrum)(const ComplexTables<T>& tables, T* data, T* work);  // in place
  void (*convolve)(const ComplexTables<T>& tables, const T* spectrum, const Convolution<T>& convolution, T* work);
};

template <class T> const ConvolutionKernels<T>& convolution_kernels();  // the best for this CPU

}  // namespace sigvex
