// The filtering and resampling operations that other files of the library build on, generic in the precision.
#pragma once

#include "core/vector.h"

namespace sigvex::dspc {

template <class T> Status fir2(Vector<T>& v, int32_t set);
template <class T> Status rsmp(Vector<T>& kernel, uint32_t set);

}  // namespace sigvex::dspc

namespace sigvex::dspd {

template <class T> Status fir(const Vector<T>& in, Vector<T>& out, const Vector<T>& taps, Vector<T>* state);
template <class T> Status deci(const Vector<T>& in, Vector<T>& out, int32_t factor, Vector<T>* offset);

}  // namespace sigvex::dspd
