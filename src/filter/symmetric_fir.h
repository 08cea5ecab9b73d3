// Filters given by the first half of their taps, with or without a decimation: what the operations build on.
#pragma once

#include "filter/decimation.h"

namespace sigvex {

// Points of a whole filter but one: what it reaches back.
template <class T> size_t symmetric_past(const Vector<T>& half) { return 2 * points<T>(half) - 2; }

// The kept outputs alone, into an output sized for them that shares nothing. The history, of symmetric_past points in
// the input's form, may be missing; half has a point or more.
template <class T>
Status filter_symmetrically(const Vector<T>& in, const Vector<T>& half, const Vector<T>* history, const Kept& kept,
                            Vector<T>& out);

}  // namespace sigvex
