// The statistics that other files of the library build on, generic in the precision.
#pragma once

#include "core/vector.h"

namespace sigvex::dsps {

template <class T> Status sum(const Vector<T>& v, Vector<T>& result);
template <class T> Status mean(const Vector<T>& v, Vector<T>& result);
template <class T> Status rms(const Vector<T>& v, Vector<T>& result);
template <class T> Status magsq_sum(const Vector<T>& v, Vector<T>& result);
template <class T> Status max(const Vector<T>& v, Vector<T>& result);
template <class T> Status min(const Vector<T>& v, Vector<T>& result);
template <class T> Status pop_var(const Vector<T>& v, Vector<T>& result);
template <class T> Status peak(const Vector<T>& v, Vector<T>& result, uint32_t flags, int32_t index);

}  // namespace sigvex::dsps
