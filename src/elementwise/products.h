// Products of samples and points in every pair of forms: a sample acts as a point without an imaginary part, and its
// share of the product, which is zero, is not computed.
#pragma once

#include <type_traits>

#include "core/vector.h"

namespace sigvex {

inline double conj(double x) { return x; }
inline float conj(float x) { return x; }
template <class T> Point<T> conj(Point<T> z) { return {z.re, -z.im}; }

// A product that is rounded before anything is added to it. GCC 12 fuses the alternating differences and sums of
// complex products in 512-bit vectors, although contraction is off.
template <class T> T rounded_product(T a, T b) {
#if defined(__GNUC__) && !defined(__clang__)
  if constexpr (std::is_floating_point_v<T>) return __builtin_assoc_barrier(a * b);
#endif
  return a * b;
}

template <class T> Point<T> operator*(Point<T> z, T x) { return {z.re * x, z.im * x}; }
template <class T> Point<T> operator*(T x, Point<T> z) { return z * x; }
template <class T> Point<T> operator*(Point<T> a, Point<T> b) {
  return {rounded_product(a.re, b.re) - rounded_product(a.im, b.im),
          rounded_product(a.im, b.re) + rounded_product(a.re, b.im)};
}

}  // namespace sigvex
