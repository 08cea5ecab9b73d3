// dspd_deci
#include "core/exports.h"
#include "filter/decimation.h"
#include "filter/operations.h"

namespace sigvex::dspd {

template <class T> Status deci(const Vector<T>& in, Vector<T>& out, int32_t factor, Vector<T>* offset) {
  const size_t step = decimation_step(factor), start = start_index<T>(offset);
  return run_block<T>(in, in, out, offset, [=](const Vector<T>& x, const Vector<T>&, Vector<T>& y) -> Status {
    const Kept kept(points<T>(x), start, step);
    if (offset) SIGVEX_TRY(prepare_state<T>(*offset, 1, x));
    y.delta = static_cast<T>(step) * x.delta;
    SIGVEX_TRY(shape<T>(y, kept.count, x.complex ? 1 : 0));
    for (size_t k = 0, from = start; k < kept.count; ++k, from += step) {
      if (x.complex) set_point<T>(y, k, point<T>(x, from));
      else y.data[k] = x.data[from];
    }
    leave_offset<T>(offset, kept.next);
    return kSuccess;
  });
}

}  // namespace sigvex::dspd

SIGVEX_EXPORT(d, deci, 4)
