// Where a result may be an input record, or another record over the same storage.
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex {

template <class T> void leave_to_owner(const Vector<T>& input, Vector<T>& result, size_t need) {
  const bool owned = &input != &result && result.data == input.data && input.allocated > 0;
  if (owned && count(result.allocated) < need) result.allocated = 0;
}

template <class T>
Status size_result(const Vector<T>& a, const Vector<T>& b, size_t n, bool complex, Vector<T>& result) {
  if (fits(n) && n * (complex ? 2 : 1) <= count(result.allocated)) {  // nothing moves
    result.points = static_cast<int32_t>(n);
    result.complex = complex;
    return kSuccess;
  }
  const bool on_a = result.data == a.data, on_b = result.data == b.data;
  if (!on_a && !on_b) return shape<T>(result, n, complex);
  // Not more than an input holds, whatever form another record over its storage was left with.
  const int32_t old_complex = result.complex && ((on_a && a.complex) || (on_b && b.complex));
  const int32_t old_points = (&result != &b && on_a ? a : b).points;
  result.points = static_cast<int32_t>(n);
  result.complex = complex;
  if (on_a && &result != &a) result.allocated = 0;
  leave_to_owner<T>(b, result, size<T>(result));
  return dsp::realloc<T>(result, old_points, old_complex);
}

template <class T> Status prepare_result(const Vector<T>& a, const Vector<T>& b, bool complex, Vector<T>& result) {
  const size_t n = points<T>(a);
  if (n != points<T>(b)) return kFailure;
  result.delta = (a.delta + b.delta) * T(0.5);
  return size_result<T>(a, b, n, complex, result);
}

template <class T> Status prepare_result(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return prepare_result<T>(a, b, a.complex || b.complex, result);
}

#define SIGVEX_INSTANTIATE(T)                                                                   \
  template void leave_to_owner<T>(const Vector<T>&, Vector<T>&, size_t);                        \
  template Status size_result<T>(const Vector<T>&, const Vector<T>&, size_t, bool, Vector<T>&); \
  template Status prepare_result<T>(const Vector<T>&, const Vector<T>&, bool, Vector<T>&);      \
  template Status prepare_result<T>(const Vector<T>&, const Vector<T>&, Vector<T>&);
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
