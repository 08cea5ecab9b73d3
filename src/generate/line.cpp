// dspc_line
#include "core/exports.h"
#include "core/scratch.h"

namespace sigvex::dspc {
namespace {

// Each sample at its place, with zeros between where the places are two apart.
template <size_t Width, class T> void running_sum(T* x, size_t n, T value, T step) {
  for (size_t k = 0; k < n; ++k) {
    x[k * Width] = value;
    if constexpr (Width == 2) x[k * Width + 1] = 0;
    const T next = value + step;
    value = next;
  }
}

}  // namespace

template <class T> Status line(Vector<T>& v, double slope, double offset) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  const T step = static_cast<T>(slope * v.delta);
  (v.complex ? running_sum<2, T> : running_sum<1, T>)(v.data, points<T>(v), static_cast<T>(offset), step);
  return kSuccess;
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, line, 3)
