// dspb_add dspb_sub dspb_mul dspb_conj_mul dspb_div dspb_avg_add dspb_max dspb_min
#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/blocks.h"
#include "elementwise/operations.h"
#include "elementwise/products.h"

namespace sigvex::dspb {
namespace {

// result[k] = f(a[k], b[k]). The rule f has one overload for each pair of forms.
template <class T, class F> Status combine(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, F f) {
  const int32_t complex = a.complex || b.complex;
  const size_t need = scalars(a.points, complex);
  if (fits(need) && endangered<T>(a, result, 0)) {  // the result leaves a block that a shares rather than moving it
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, a));
    return combine<T>(copy, b, result, f);
  }
  if (endangered<T>(b, result, need)) {
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, b));
    return combine<T>(a, copy, result, f);
  }
  const bool real_a = !a.complex, real_b = !b.complex;  // before the result, which may be one of them, gets its form
  SIGVEX_TRY(prepare_result<T>(a, b, result));
  const size_t n = points<T>(result);
  const T *const x = a.data, *const y = b.data;
  T* const z = result.data;
  if (real_a) {
    real_b ? combine_samples(x, y, z, n, f) : combine_blocks<T, Point<T>>(x, y, z, n, f);
  } else {
    real_b ? combine_blocks<Point<T>, T>(x, y, z, n, f) : combine_blocks<Point<T>, Point<T>>(x, y, z, n, f);
  }
  return kSuccess;
}

// The same with the shorter input extended by zeros.
template <class T, class F> Status combine_padded(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, F f) {
  if (points<T>(a) == points<T>(b)) return combine<T>(a, b, result, f);
  const bool pad_a = points<T>(a) < points<T>(b);
  const Vector<T>&shorter = pad_a ? a : b, &longer = pad_a ? b : a;
  const bool complex = a.complex || b.complex;
  const size_t need = scalars(longer.points, complex);
  if (!fits(need)) return size_result<T>(a, b, points<T>(longer), complex, result);  // refused before any padding
  Scratch<T> padded;
  SIGVEX_TRY(dsp::copy<T>(padded, shorter));
  SIGVEX_TRY(dspi::zpad<T>(padded, longer.points));
  leave_to_owner<T>(shorter, result, need);
  return pad_a ? combine<T>(padded, b, result, f) : combine<T>(a, padded, result, f);
}

template <class T> struct Sum {
  T operator()(T a, T b) const { return a + b; }
  Point<T> operator()(T a, Point<T> b) const { return {a + b.re, b.im}; }
  Point<T> operator()(Point<T> a, T b) const { return {a.re + b, a.im}; }
  Point<T> operator()(Point<T> a, Point<T> b) const { return {a.re + b.re, a.im + b.im}; }
};

template <class T> struct Difference {
  T operator()(T a, T b) const { return a - b; }
  Point<T> operator()(T a, Point<T> b) const { return {a - b.re, -b.im}; }
  Point<T> operator()(Point<T> a, T b) const { return {a.re - b, a.im}; }
  Point<T> operator()(Point<T> a, Point<T> b) const { return {a.re - b.re, a.im - b.im}; }
};

// A zero divisor gives huge (always positive), or 0 over 0. Both results are made and one chosen, which vectorises.
template <class T> struct Quotient {
  static T by_zero(bool any_nonzero) { return any_nonzero ? Limits<T>::huge : T(0); }
  static Point<T> choose(bool divides, Point<T> quotient, T otherwise) {
    return {divides ? quotient.re : otherwise, divides ? quotient.im : otherwise};
  }
  static bool nonzero(Point<T> z) { return z.re != 0 || z.im != 0; }

  T operator()(T a, T b) const { return b != 0 ? a / b : by_zero(a != 0); }
  Point<T> operator()(Point<T> a, T b) const { return choose(b != 0, a * (1 / b), by_zero(nonzero(a))); }
  Point<T> operator()(T a, Point<T> b) const {
    const T m = magsq(b);
    return choose(m > 0, conj(b) * a * (1 / m), by_zero(a != 0 || nonzero(b)));
  }
  Point<T> operator()(Point<T> a, Point<T> b) const {
    const T m = magsq(b);
    return choose(m > 0, a * conj(b) * (1 / m), by_zero(nonzero(a) || nonzero(b)));
  }
};

// (a - b) * weight + b: one step of an exponential average with the new data a and the running mean b.
template <class T> struct AverageStep {
  T weight;

  T operator()(T a, T b) const { return (a - b) * weight + b; }
  Point<T> operator()(T a, Point<T> b) const { return {(*this)(a, b.re), (1 - weight) * b.im}; }
  Point<T> operator()(Point<T> a, T b) const { return {(*this)(a.re, b), a.im * weight}; }
  Point<T> operator()(Point<T> a, Point<T> b) const { return {(*this)(a.re, b.re), (*this)(a.im, b.im)}; }
};

// Takes b wherever the comparison prefer(a, b) does not hold: ties, and NaN between real samples. Points are compared
// by magnitude and taken whole.
template <class T, bool (*prefer)(T, T)> struct Choice {
  T operator()(T a, T b) const { return prefer(a, b) ? a : b; }
  Point<T> operator()(T a, Point<T> b) const { return (*this)(Point<T>{a, 0}, b); }
  Point<T> operator()(Point<T> a, T b) const { return (*this)(a, Point<T>{b, 0}); }
  Point<T> operator()(Point<T> a, Point<T> b) const {
    const bool first = prefer(magsq_capped(a), magsq_capped(b));
    return {first ? a.re : b.re, first ? a.im : b.im};
  }
};
template <class T> bool greater(T a, T b) { return a > b; }
template <class T> bool less(T a, T b) { return a < b; }

}  // namespace

template <class T> Status add(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine_padded<T>(a, b, result, Sum<T>{});
}

template <class T> Status sub(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine_padded<T>(a, b, result, Difference<T>{});
}

template <class T> Status mul(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine<T>(a, b, result, [](auto x, auto y) { return x * y; });
}

template <class T> Status conj_mul(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine<T>(a, b, result, [](auto x, auto y) { return x * conj(y); });
}

template <class T> Status div(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine<T>(a, b, result, Quotient<T>{});
}

template <class T> Status avg_add(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, T weight) {
  return combine<T>(a, b, result, AverageStep<T>{weight});
}

template <class T> Status max(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine<T>(a, b, result, Choice<T, greater<T>>{});
}

template <class T> Status min(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  return combine<T>(a, b, result, Choice<T, less<T>>{});
}

}  // namespace sigvex::dspb

SIGVEX_EXPORT(b, add, 3)
SIGVEX_EXPORT(b, sub, 3)
SIGVEX_EXPORT(b, mul, 3)
SIGVEX_EXPORT(b, conj_mul, 3)
SIGVEX_EXPORT(b, div, 3)
SIGVEX_EXPORT(b, avg_add, 4)
SIGVEX_EXPORT(b, max, 3)
SIGVEX_EXPORT(b, min, 3)
