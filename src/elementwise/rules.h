// The rules of single samples that an operation in place and its form into another vector share, the loop that turns
// real samples into points, and the choice of what moves as one.
#pragma once

#include <cmath>

#include "core/limits.h"

namespace sigvex {

template <class T> struct Times {
  T factor;
  T operator()(T x) const { return x * factor; }
  Point<T> operator()(Point<T> z) const { return {z.re * factor, z.im * factor}; }
};

// Times re + j im.
template <class T> struct TimesComplex {
  T re, im;
  Point<T> operator()(T x) const { return {x * re, x * im}; }
  Point<T> operator()(Point<T> z) const { return {z.re * re - z.im * im, z.im * re + z.re * im}; }
};

template <class T> Point<T> rectangular(T magnitude, T angle) {
  return {magnitude * std::cos(angle), magnitude * std::sin(angle)};
}

// Negative numbers and NaN have no real root: 0. The complex root is the principal one.
struct RootOrZero {
  template <class T> T operator()(T x) const { return x >= 0 ? std::sqrt(x) : T(0); }
  template <class T> Point<T> operator()(Point<T> z) const {
    const T r = std::sqrt(bounded(z) ? std::sqrt(magsq(z)) : Limits<T>::huge);
    if (!(r > 0)) return {0, 0};
    return rectangular(r, std::atan2(z.im, z.re) / 2);
  }
};

struct Magnitude {
  template <class T> T operator()(T x) const {
    return std::abs(x);  // clears the sign bit, of NaN too
  }
  template <class T> T operator()(Point<T> z) const { return std::hypot(z.re, z.im); }
};

struct MagsqCapped {
  template <class T> T operator()(T x) const { return bounded(x) ? x * x : Limits<T>::huge; }
  template <class T> T operator()(Point<T> z) const { return magsq_capped(z); }
};

template <class T> void store(T* samples, size_t k, T x) { samples[k] = x; }
template <class T> void store(T* points, size_t k, Point<T> z) {
  points[2 * k] = z.re;
  points[2 * k + 1] = z.im;
}

// Spreads n samples into points f(x), from the last to the first: the points may grow over the samples themselves, so
// that no second buffer is needed.
template <class T, class F> void spread(const T* samples, T* points, size_t n, F f) {
  while (n-- > 0) store<T>(points, n, f(samples[n]));
}

// Calls f with the elements that move as one: samples, or whole points.
template <class T, class F> Status rearrange(Vector<T>& v, F f) {
  if (v.complex) {
    f(reinterpret_cast<Point<T>*>(v.data), points<T>(v));
  } else {
    f(v.data, points<T>(v));
  }
  return kSuccess;
}

}  // namespace sigvex
