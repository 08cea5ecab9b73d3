// The power-of-two transforms under every spectral operation. Forward is scaled by 1/n, inverse is not; delta is left
// to the operation.
#pragma once

#include "core/vector.h"

namespace sigvex {

bool power_of_two(int32_t n);  // 1 is one; 0 and negative counts are not

// v becomes complex first if it is real. The point count must be a power of two above 2.
template <class T> Status complex_transform(Vector<T>& v, bool inverse);

// Of a real v: leaves bins 0 .. n/2, complex, in storage for n complex points. n is a power of two above 2.
template <class T> Status real_transform(Vector<T>& v);

}  // namespace sigvex
