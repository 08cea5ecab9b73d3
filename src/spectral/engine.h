// The power-of-two transforms under every spectral operation. Forward is scaled by 1/n, inverse is not; delta is left
// to the operation.
#pragma once

#include "core/vector.h"
#include "spectral/convolution.h"

namespace sigvex {

inline bool power_of_two(int32_t n) { return n > 0 && (n & (n - 1)) == 0; }  // 1 is one

// v becomes complex first if it is real. The point count must be a power of two above 2.
template <class T> Status complex_transform(Vector<T>& v, bool inverse);

// Of a real v: leaves bins 0 .. n/2, complex, in storage for n complex points. n is a power of two above 2.
template <class T> Status real_transform(Vector<T>& v);

// Of n/2 + 1 complex bins: leaves the n real samples, in storage for n complex points. The imaginary parts of the first
// and the last bin count for nothing. n is a power of two above 2.
template <class T> Status real_inverse_transform(Vector<T>& v);

// Circular convolutions with a kernel that is kept as its spectrum, which stands in an order of the engine's own: no
// transform is put in natural order, and nothing is done for zeros behind the input or points nobody wants.
//
// Turns the complex kernel, a power of two above 2 points, into its spectrum, in place and in the work space of
// convolutions with so many kernels at once. It serves until the caches are released.
template <class T> Status kernel_spectrum(T* kernel, size_t n, size_t kernels);

// Of n points, as many as the spectrum has; the result is scaled by nothing but c.factor. With a real kernel, real and
// imaginary parts of the points are convolved independently: two real sequences go through one call.
template <class T> Status convolve(size_t n, const Convolution<T>& c);

// The real transform of c.points samples, scaled by c.factor, through spectra of m points, a power of two above 2.
template <class T> Status real_chirp(size_t m, const RealChirp<T>& c);

}  // namespace sigvex
