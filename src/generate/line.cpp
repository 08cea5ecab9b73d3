// dspc_line
#include "core/exports.h"
#include "core/scratch.h"

namespace sigvex::dspc {

template <class T> Status line(Vector<T>& v, double slope, double offset) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  const T step = static_cast<T>(slope * v.delta);
  T value = static_cast<T>(offset);
  for (size_t k = 0, n = points<T>(v); k < n; ++k, value += step) {
    if (v.complex) {
      set_point<T>(v, k, {value, T(0)});
    } else {
      v.data[k] = value;
    }
  }
  return kSuccess;
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, line, 3)
