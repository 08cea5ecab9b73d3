// dspi_hilbert dspi_analytic
#include <algorithm>

#include "core/exports.h"
#include "elementwise/operations.h"
#include "spectral/operations.h"

namespace sigvex::dspi {

template <class T> Status hilbert(Vector<T>& v) {
  const size_t n = points<T>(v);
  if (n == 0) return kSuccess;
  const bool was_real = !v.complex;
  SIGVEX_TRY(dft<T>(v, 0));
  if (!v.complex) {  // a single real sample, which is its own spectrum
    v.data[0] = 0;
  } else {
    set_point<T>(v, 0, {T(0), T(0)});
    for (size_t k = 1; k < (n + 1) / 2; ++k) {  // positive frequencies: times -i
      const Point<T> z = point<T>(v, k);
      set_point<T>(v, k, {z.im, -z.re});
    }
    if (n % 2 == 0) set_point<T>(v, n / 2, {T(0), T(0)});
    for (size_t k = n / 2 + 1; k < n; ++k) {  // negative frequencies: times +i
      const Point<T> z = point<T>(v, k);
      set_point<T>(v, k, {-z.im, z.re});
    }
  }
  SIGVEX_TRY(dft<T>(v, 1));
  return was_real ? real<T>(v) : kSuccess;
}

template <class T> Status analytic(Vector<T>& v) {
  const int32_t n = v.points;
  if (n < 1) return kSuccess;
  SIGVEX_TRY(dft<T>(v, 0));
  if (v.complex) {
    std::for_each(v.data + 2, v.data + 2 * ((count(n) - 1) / 2 + 1), [](T& x) { x *= 2; });
  }
  v.points = n / 2 + 1;  // the negative frequencies are dropped and come back as zeros
  SIGVEX_TRY(zpad<T>(v, n));
  return dft<T>(v, 1);
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, hilbert, 1)
SIGVEX_EXPORT(i, analytic, 1)
