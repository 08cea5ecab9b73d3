// Convolutions on the transform engine: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

#include "spectral/kernels.h"

namespace sigvex {

// What is convolved: out[k] = factor * w[k] * (sum over j of kernel[(k - j) mod n] * w[j] * in[j]). Input and result
// may be one array.
template <class T> struct Convolution {
  const T* spectrum;  // of the kernel, n points
  const T* in;        // interleaved points, or real samples with weights; zero from in_points on, which nobody reads
  size_t in_points;
  bool real;
  const T* weights;  // points w, or null for ones
  bool conjugate;    // takes the conjugates of w and of the spectrum
  T* out;            // the first out_points of the n points of the result
  size_t out_points;
  T factor;
};

// What a real transform of any length is made of. With z[j] = x[j] + x[N-j] + i (x[j] - x[N-j]) for j up to N/2,
// samples that are their own image once, and F its transform, bin k is Re(F[k] + F[-k]) / 2 - i Re(F[k] - F[-k]) / 2:
// two convolutions of half the length of a complex one, which begin alike, are enough. With the chirp w, which is even,
// F[k] = w[k] sum conj w[k-j] (w z)[j] and F[-k] = w[k] sum conj w[k+j] (w z)[j].
template <class T> struct RealChirp {
  const T* sums;  // spectrum of conj w[l] at places N/2 - l, l = 1 .. 2 (N/2) the j + k: result k comes at N/2 - k
  const T* differences;  // that of conj w[l] at places l and -l up to N/2, which are the k - j
  const T* chirp;        // w, N points
  size_t points;         // N, with N - 1 no more than those of a spectrum
  T* data;               // the samples, then bins 0 .. N/2, in room for twice the points of a spectrum
  T factor;
};

template <class T> struct ConvolutionKernels {
  // Of the tables' n points, n > 2; work is aligned to kAlignment bytes, its size in scalars depends on the number of
  // kernels: two for real_chirp, otherwise one. A spectrum is n points in an order of its own, for these alone, at any
  // address.
  size_t (*work_size)(const ComplexTables<T>& tables, size_t kernels);
  void (*spectrum)(const ComplexTables<T>& tables, T* data, T* work);  // in place
  void (*convolve)(const ComplexTables<T>& tables, const Convolution<T>& convolution, T* work);
  void (*real_chirp)(const ComplexTables<T>& tables, const RealChirp<T>& chirp, T* work);
};

template <class T> const ConvolutionKernels<T>& convolution_kernels();  // the best for this CPU

}  // namespace sigvex
