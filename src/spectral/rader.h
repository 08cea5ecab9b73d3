// Complex transforms of 65537 points, a prime one above a power of two.
#pragma once

#include "core/vector.h"

namespace sigvex {

inline constexpr int32_t kRaderLength = 65537;

// Of a complex v of that length, forward scaled by 1/N, in storage for 2N - 2 points; delta is left to the operation.
// The caller holds the work lock.
template <class T> Status rader_transform(Vector<T>& v, bool inverse);

template <class T> void release_rader();

}  // namespace sigvex
