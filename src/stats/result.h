// How a statistic writes its one point. The result may be the input or share its storage, so these are called with
// everything already read; delta stays as it was.
#pragma once

#include "core/scratch.h"

namespace sigvex {

template <class T> Status write_real(Vector<T>& result, T value) {
  SIGVEX_TRY(shape<T>(result, 1, 0));
  result.data[0] = value;
  return kSuccess;
}

// One point of the form that the input had.
template <class T> Status write_point(Vector<T>& result, int32_t complex, Point<T> value) {
  SIGVEX_TRY(shape<T>(result, 1, complex ? 1 : 0));
  result.data[0] = value.re;
  if (complex) result.data[1] = value.im;
  return kSuccess;
}

}  // namespace sigvex
