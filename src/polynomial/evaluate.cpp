// dsps_peval
#include <algorithm>

#include "core/exports.h"
#include "elementwise/apart.h"
#include "polynomial/kernels.h"

namespace sigvex::dsps {
namespace {

// A complex polynomial at real places is two real ones.
template <class T> Status by_parts(const Vector<T>& p, const Vector<T>& x, Vector<T>& result) {
  const size_t count = points<T>(p), n = points<T>(x);
  Scratch<T> coefficients, values;
  SIGVEX_TRY(shape<T>(coefficients, count, 0));
  SIGVEX_TRY(shape<T>(values, n, 0));
  for (const size_t part : {0, 1}) {
    for (size_t k = 0; k < count; ++k) coefficients.data[k] = p.data[2 * k + part];
    polynomial_kernels<T>().at_samples(coefficients.data, count, x.data, n, values.data);
    for (size_t k = 0; k < n; ++k) result.data[2 * k + part] = values.data[k];
  }
  return kSuccess;
}

template <class T> Status at_points(const Vector<T>& p, const Vector<T>& x, Vector<T>& result) {
  if (p.complex) {
    polynomial_kernels<T>().at_points(p.data, points<T>(p), x.data, points<T>(x), result.data);
    return kSuccess;
  }
  Scratch<T> coefficients;
  SIGVEX_TRY(dsp::copy<T>(coefficients, p));
  SIGVEX_TRY(dspi::rtoc<T>(coefficients));
  return at_points<T>(coefficients, x, result);
}

template <class T> Status evaluate(const Vector<T>& p, const Vector<T>& x, Vector<T>& result) {
  SIGVEX_TRY(shape<T>(result, points<T>(x), p.complex || x.complex));
  result.delta = x.delta;
  if (points<T>(p) == 0) return std::fill_n(result.data, size<T>(result), T(0)), kSuccess;
  if (x.complex) return at_points<T>(p, x, result);
  if (p.complex) return by_parts<T>(p, x, result);
  polynomial_kernels<T>().at_samples(p.data, points<T>(p), x.data, points<T>(x), result.data);
  return kSuccess;
}

}  // namespace

template <class T> Status peval(const Vector<T>& p, const Vector<T>& x, Vector<T>& result) {
  return write_apart<T>(
      result, [&](Vector<T>& out) { return evaluate<T>(p, x, out); }, p, x);
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, peval, 3)
