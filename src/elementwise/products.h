// Products of samples and points in every pair of forms: a sample acts as a point without an imaginary part, and its
// share of the product, which is zero, is not computed.
#pragma once

#include "core/vector.h"

namespace sigvex {

inline double conj(double x) { return x; }
inline float conj(float x) { return x; }
template <class T> Point<T> conj(Point<T> z) { return {z.re, -z.im}; }

template <class T> Point<T> operator*(Point<T> z, T x) { return {z.re * x, z.im * x}; }
template <class T> Point<T> operator*(T x, Point<T> z) { return z * x; }
template <class T> Point<T> operator*(Point<T> a, Point<T> b) {
  return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
}

}  // namespace sigvex
