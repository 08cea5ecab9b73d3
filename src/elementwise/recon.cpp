// dspi_orecon dspi_recon
#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex::dspi {

// The mirrored points lie behind the given ones, so they are written in place.
template <class T> Status orecon(Vector<T>& v, uint32_t odd) {
  SIGVEX_TRY(rtoc<T>(v));
  const size_t given = points<T>(v), end_points = odd ? 1 : 2;  // those that have no mirror image
  const size_t n = 2 * given > end_points ? 2 * given - end_points : 0;
  SIGVEX_TRY(reshape<T>(v, n, 1));
  for (size_t k = given; k < n; ++k) {
    const Point<T> mirrored = point<T>(v, n - k);
    set_point<T>(v, k, {mirrored.re, -mirrored.im});
  }
  return kSuccess;
}

template <class T> Status recon(Vector<T>& v) { return orecon<T>(v, 0); }

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, orecon, 2)
SIGVEX_EXPORT(i, recon, 1)
