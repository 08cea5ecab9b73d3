// dspi_rtoc dspi_real dspi_imag dspi_conj dspi_mag dspi_magsq dspi_phase dspi_rtop dspi_ptor
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex::dspi {

// Spread from the last sample to the first, so that no second buffer is needed.
template <class T> Status rtoc(Vector<T>& v) {
  if (v.complex) return kSuccess;
  SIGVEX_TRY(reshape<T>(v, points<T>(v), 1));
  for (size_t k = points<T>(v); k-- > 0;) set_point<T>(v, k, {v.data[k], T(0)});
  return kSuccess;
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, rtoc, 1)
