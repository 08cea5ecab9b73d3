// Numbers of about 106 bits, as the unevaluated sum of two doubles, and points of them. Sums and products are the
// accurate ones of Joldes, Muller and Popescu, ACM Trans. Math. Softw. 44 (2), 15 (2017); their errors are below 4 *
// 2^-106.
#pragma once

#include <cmath>

#include "elementwise/products.h"

namespace sigvex::polynomial {

struct DoubleDouble {
  double hi = 0, lo = 0;

  DoubleDouble() = default;
  DoubleDouble(double high, double low = 0) : hi(high), lo(low) {}
  explicit operator double() const { return hi; }
};

inline DoubleDouble two_sum(double a, double b) {
  const double s = a + b, t = s - a;
  return {s, (a - (s - t)) + (b - t)};
}
inline DoubleDouble fast_two_sum(double a, double b) {  // |a| >= |b|
  const double s = a + b;
  return {s, b - (s - a)};
}
inline DoubleDouble operator+(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble s = two_sum(a.hi, b.hi), t = two_sum(a.lo, b.lo), v = fast_two_sum(s.hi, s.lo + t.hi);
  return fast_two_sum(v.hi, t.lo + v.lo);
}
inline DoubleDouble operator-(DoubleDouble a) { return {-a.hi, -a.lo}; }
inline DoubleDouble operator-(DoubleDouble a, DoubleDouble b) { return a + -b; }
inline DoubleDouble operator*(DoubleDouble a, DoubleDouble b) {
  const double p = a.hi * b.hi;
  return fast_two_sum(p, std::fma(a.hi, b.hi, -p) + (a.hi * b.lo + a.lo * b.hi));
}

// What one rounding costs at most, with the operations on points in mind.
template <class R> inline constexpr double kRounding = 0x1p-53;
template <> inline constexpr double kRounding<DoubleDouble> = 0x1p-103;

template <class R> Point<R> operator+(Point<R> a, Point<R> b) { return {a.re + b.re, a.im + b.im}; }
template <class R> Point<R> operator-(Point<R> a, Point<R> b) { return {a.re - b.re, a.im - b.im}; }

template <class R, class S> Point<R> as(Point<S> z) { return {static_cast<R>(z.re), static_cast<R>(z.im)}; }

inline DoubleDouble scaled(DoubleDouble x, int exponent) {
  return {std::ldexp(x.hi, exponent), std::ldexp(x.lo, exponent)};
}
inline Point<DoubleDouble> scaled(Point<DoubleDouble> z, int exponent) {
  return {scaled(z.re, exponent), scaled(z.im, exponent)};
}

// Within the range of doubles; the quotient's parts are accurate to a few roundings of its magnitude.
inline double magnitude(Point<double> z) { return std::hypot(z.re, z.im); }
inline double magnitude(Point<DoubleDouble> z) { return std::hypot(z.re.hi, z.im.hi); }
inline Point<double> quotient(Point<double> a, Point<double> b) {
  const double m = magnitude(b);
  const Point<double> turned = a * Point<double>{b.re / m, -b.im / m};
  return {turned.re / m, turned.im / m};
}

// 1 / z: the quotient in double, and one step of Newton's method for the rest.
inline Point<double> reciprocal(Point<double> z) { return quotient({1, 0}, z); }
inline Point<DoubleDouble> reciprocal(Point<DoubleDouble> z) {
  const Point<DoubleDouble> r = as<DoubleDouble>(reciprocal(as<double>(z)));
  return r + r * (Point<DoubleDouble>{1, 0} - z * r);
}

}  // namespace sigvex::polynomial
