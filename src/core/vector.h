// The record as the library's own code sees it: one name for both precisions, counts that cannot overflow, loops over
// samples and points, and temporaries that release themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "core/widest.h"
#include "sigvex.h"

namespace sigvex {

using Status = int32_t;
inline constexpr Status kSuccess = 0;
inline constexpr Status kFailure = -1;

// Passes the negative status of a called operation up to the caller.
#define SIGVEX_TRY(call)                                                                        \
  do {                                                                                          \
    if (const ::sigvex::Status sigvex_status = (call); sigvex_status < 0) return sigvex_status; \
  } while (false)

template <class T> struct RecordOf;
template <> struct RecordOf<double> { using type = dsp_vector; };
template <> struct RecordOf<float> { using type = dspf_vector; };

// The C record itself, so that nothing has to be converted or kept in step.
template <class T> using Vector = typename RecordOf<T>::type;

template <class T> struct Point { T re, im; };

// A negative count counts as none.
inline size_t count(int32_t points) { return points > 0 ? static_cast<size_t>(points) : 0; }
template <class T> size_t points(const Vector<T>& v) { return count(v.points); }

// Scalars in `points` points of a form.
inline size_t scalars(int32_t points, int32_t complex) { return count(points) * (complex ? 2 : 1); }
template <class T> size_t size(const Vector<T>& v) { return scalars(v.points, v.complex); }

inline constexpr size_t kMaxScalars = std::numeric_limits<int32_t>::max();
inline bool fits(size_t n) { return n <= kMaxScalars; }

template <class T> Point<T> point(const Vector<T>& v, size_t k) { return {v.data[2 * k], v.data[2 * k + 1]}; }
// A real sample counts as (x, 0).
template <class T> Point<T> complex_point(const Vector<T>& v, size_t k) {
  return v.complex ? point<T>(v, k) : Point<T>{v.data[k], T(0)};
}
template <class T> void set_point(Vector<T>& v, size_t k, Point<T> z) {
  v.data[2 * k] = z.re;
  v.data[2 * k + 1] = z.im;
}

// x = f(x) for every scalar: the samples of a real vector, both parts of a complex one.
template <class T, class F> Status each_scalar(Vector<T>& v, F f) {
  T* const x = v.data;
  const size_t n = size<T>(v);
  on_widest_vectors(n, [=]() mutable {
    for (size_t k = 0; k < n; ++k) x[k] = f(x[k]);
  });
  return kSuccess;
}

// z = f(z) for every point of a complex vector.
template <class T, class F> Status each_point(Vector<T>& v, F f) {
  T* const x = v.data;
  const size_t n = points<T>(v);
  on_widest_vectors(n, [=]() mutable {
    for (size_t k = 0; k < n; ++k) {
      const Point<T> y = f(Point<T>{x[2 * k], x[2 * k + 1]});
      x[2 * k] = y.re;
      x[2 * k + 1] = y.im;
    }
  });
  return kSuccess;
}

}  // namespace sigvex
