// dsps_proots dspi_proots
#include <algorithm>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "polynomial/operations.h"

namespace sigvex {
namespace polynomial {
namespace {

// False if the roots cannot be found or do not fit the precision.
template <class T> bool ordered_roots(const Vector<T>& v, std::vector<Point<T>>& roots) {
  Polynomial p;
  if (!p.read<T>(v)) return false;
  roots.assign(p.take_off_zero_roots(), {0, 0});
  std::vector<Place> places;
  if (p.degree() > 0 && !find_roots(p, places)) return false;
  for (const Place& z : places) roots.push_back(as<T>(rounded(z)));
  std::sort(roots.begin(), roots.end(), before<T>);
  return std::all_of(roots.begin(), roots.end(), finite<T>);
}

}  // namespace
}  // namespace polynomial

namespace dsps {

// p is read before roots, which may be the same record or share its storage, is sized.
template <class T> Status proots(const Vector<T>& p, Vector<T>& roots) {
  std::vector<Point<T>> found;
  if (!polynomial::ordered_roots<T>(p, found)) return kFailure;
  leave_to_owner<T>(p, roots, 2 * found.size());
  SIGVEX_TRY(shape<T>(roots, found.size(), 1));
  for (size_t k = 0; k < found.size(); ++k) set_point<T>(roots, k, found[k]);
  return kSuccess;
}

}  // namespace dsps

namespace dspi {

template <class T> Status proots(Vector<T>& v) { return dsps::proots<T>(v, v); }

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(s, proots, 2)
SIGVEX_EXPORT(i, proots, 1)
