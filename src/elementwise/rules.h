// The rules of single samples that an operation in place and its form into another vector share, kernels over real
// samples, and the choice of what moves as one.
#pragma once

#include <cmath>

#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/products.h"

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
  Point<T> operator()(Point<T> z) const { return z * Point<T>{re, im}; }
};

struct Absolute {
  template <class T> T operator()(T x) const {
    return std::abs(x);  // clears the sign bit, of NaN too
  }
};

struct MagsqCapped {
  template <class T> T operator()(T x) const { return bounded(x) ? x * x : Limits<T>::huge; }
};

// A kernel over real samples, which points are not.
template <class T> Status each_real(Vector<T>& v, void (*kernel)(const T* x, T* y, size_t n)) {
  if (v.complex) return kFailure;
  kernel(v.data, v.data, points<T>(v));
  return kSuccess;
}

// Gives a real vector the form and the storage of a complex one, its samples not yet in their places; a negative count
// stays what it is.
template <class T> Status spread(Vector<T>& v) {
  v.complex = 1;
  return dsp::realloc<T>(v, v.points, 0);
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
