// dspb_pmul dspbs_dot
#include "elementwise/products.h"

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex {
namespace {

// Calls f with a function that gives the vector's sample or point k.
template <class T, class F> void with_elements(const Vector<T>& v, F f) {
  if (v.complex) {
    f([&v](size_t k) { return point<T>(v, k); });
  } else {
    f([&v](size_t k) { return v.data[k]; });
  }
}

template <class T> void add_to(Vector<T>& v, size_t k, T x) { v.data[k] += x; }
template <class T> void add_to(Vector<T>& v, size_t k, Point<T> z) {
  v.data[2 * k] += z.re;
  v.data[2 * k + 1] += z.im;
}

template <class T> void add_to(Point<T>& sum, T x) { sum.re += x; }
template <class T> void add_to(Point<T>& sum, Point<T> z) {
  sum.re += z.re;
  sum.im += z.im;
}

}  // namespace

namespace dspb {

template <class T> Status pmul(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  const size_t n = points<T>(a), m = points<T>(b), total = n > 0 && m > 0 ? n + m - 1 : 0;
  const int32_t complex = a.complex || b.complex;
  const size_t need = total * (complex ? 2 : 1);
  leave_to_owner<T>(a, result, need);
  leave_to_owner<T>(b, result, need);
  if (fits(need) && (overlap<T>(a, result) || overlap<T>(b, result))) {
    Scratch<T> x, y;
    SIGVEX_TRY(dsp::copy<T>(x, a));
    SIGVEX_TRY(dsp::copy<T>(y, b));
    return pmul<T>(x, y, result);
  }
  result.delta = a.delta;
  result.complex = complex;
  if (!fits(need)) return exhausted<T>(result);
  result.points = static_cast<int32_t>(total);
  SIGVEX_TRY(dspi::zero<T>(result));
  with_elements<T>(a, [&](auto x) {
    with_elements<T>(b, [&](auto y) {
      for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < m; ++j) add_to<T>(result, i + j, x(i) * y(j));
      }
    });
  });
  return kSuccess;
}

}  // namespace dspb

namespace dspbs {

template <class T> Status dot(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  const size_t n = points<T>(a);
  if (n != points<T>(b)) return kFailure;
  const int32_t complex = a.complex || b.complex;
  Point<T> sum{0, 0};  // complete before the result, which may be an input, is touched
  with_elements<T>(a, [&](auto x) {
    with_elements<T>(b, [&](auto y) {
      for (size_t k = 0; k < n; ++k) add_to<T>(sum, x(k) * y(k));
    });
  });
  SIGVEX_TRY(size_result<T>(a, b, 1, complex, result));
  result.data[0] = sum.re;
  if (complex) result.data[1] = sum.im;
  return kSuccess;
}

}  // namespace dspbs
}  // namespace sigvex

SIGVEX_EXPORT(b, pmul, 3)
SIGVEX_EXPORT(bs, dot, 3)
