// The windows that other files of the library apply, generic in the precision. A filter design takes window_fir: with
// DSP_WINFLAG_PARAMETER the Gauss types take any width there too.
#pragma once

#include "core/vector.h"

namespace sigvex::dspi {

template <class T> Status window(Vector<T>& v, uint32_t type, uint32_t flags);
template <class T> Status window2(Vector<T>& v, uint32_t type, uint32_t flags, T parameter);
template <class T> Status window_fir(Vector<T>& v, uint32_t type, uint32_t flags, T parameter);
template <class T> Status window_gauss(Vector<T>& v, uint32_t flags, T width);
template <class T> Status window_kaiser(Vector<T>& v, uint32_t flags, T beta);

}  // namespace sigvex::dspi
