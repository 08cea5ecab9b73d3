// The transform operations that other files of the library build on, generic in the precision.
#pragma once

#include "core/limits.h"
#include "core/vector.h"

namespace sigvex::dspi {

template <class T> Status fft(Vector<T>& v, uint32_t inverse);
template <class T> Status rfft(Vector<T>& v);
template <class T> Status irfft(Vector<T>& v);
template <class T> Status dft(Vector<T>& v, uint32_t inverse);
template <class T> Status rdft(Vector<T>& v);
template <class T> Status irdft(Vector<T>& v, uint32_t odd);

}  // namespace sigvex::dspi

namespace sigvex {

// The spacing of the bins after a transform of n points, or of the samples after the inverse.
template <class T> T bin_spacing(T delta, size_t n) {
  return delta == 0 ? Limits<T>::huge : T(1) / (static_cast<T>(n) * delta);
}

}  // namespace sigvex
