// dspd_deci
#include "core/exports.h"
#include "filter/state.h"

namespace sigvex {
namespace {

// The index of the first kept sample, rounded from what the offset vector holds: beyond any block where that is huge.
template <class T> size_t start_index(const Vector<T>* offset) {
  if (!offset || offset->points < 1) return 0;
  constexpr double kFar = 0x1p62;
  const double start = static_cast<double>(offset->data[0]) + 0.5;
  if (!(start > 0)) return 0;
  return static_cast<size_t>(std::min(start, kFar));
}

}  // namespace

namespace dspd {

template <class T> Status deci(const Vector<T>& in, Vector<T>& out, int32_t factor, Vector<T>* offset) {
  const size_t step = count(std::max(factor, 1)), start = start_index<T>(offset);
  return run_block<T>(in, in, out, offset, [=](const Vector<T>& x, const Vector<T>&, Vector<T>& y) -> Status {
    const size_t n = points<T>(x), reach = start < n ? n - start + step - 1 : 0;
    if (offset) SIGVEX_TRY(prepare_state<T>(*offset, 1, x));
    y.delta = static_cast<T>(step) * x.delta;
    SIGVEX_TRY(shape<T>(y, reach / step, x.complex ? 1 : 0));
    for (size_t k = 0, from = start; k < reach / step; ++k, from += step) {
      if (x.complex) set_point<T>(y, k, point<T>(x, from));
      else y.data[k] = x.data[from];
    }
    if (!offset) return kSuccess;
    SIGVEX_TRY(dspi::zero<T>(*offset));
    offset->data[0] = static_cast<T>(reach > 0 ? step - 1 - reach % step : start - n);
    return kSuccess;
  });
}

}  // namespace dspd
}  // namespace sigvex

SIGVEX_EXPORT(d, deci, 4)
