// The loops of evaluation: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

namespace sigvex {

template <class T> struct PolynomialKernels {
  // y[k] = the sum over j < count of p[j] x[k]^j for k < n, count at least 1; with the same bits on every CPU, but for
  // infinities and NaN. Error below 1 ulp plus (2 count eps)^2 times the sum of the magnitudes in double, 1/2 ulp plus
  // 2 count 2^-53 times that sum in single precision. y is x or shares nothing.
  void (*at_samples)(const T* p, size_t count, const T* x, size_t n, T* y);

  // The same for points: p, x and y hold pairs of parts.
  void (*at_points)(const T* p, size_t count, const T* x, size_t n, T* y);
};

template <class T> const PolynomialKernels<T>& polynomial_kernels();  // the best for this CPU

}  // namespace sigvex
