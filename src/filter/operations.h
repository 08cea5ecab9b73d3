// The filtering and resampling operations that other files of the library build on, generic in the precision.
#pragma once

#include "core/vector.h"

namespace sigvex::dspc {

template <class T> Status rsmp(Vector<T>& kernel, uint32_t set);

}  // namespace sigvex::dspc

namespace sigvex::dspd {

template <class T> Status fir(const Vector<T>& in, Vector<T>& out, const Vector<T>& taps, Vector<T>* state);

}  // namespace sigvex::dspd
