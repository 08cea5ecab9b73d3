// The rules of single samples that an operation in place and its form into another vector share, the loops over samples
// and points, real samples alone or on their way to points, and the choice of what moves as one.
#pragma once

#include <cmath>

#include "core/limits.h"
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

template <class T> void store(T* samples, size_t k, T x) { samples[k] = x; }
template <class T> void store(T* points, size_t k, Point<T> z) {
  points[2 * k] = z.re;
  points[2 * k + 1] = z.im;
}

// y = f(x) for n samples, and for n points; y may be x.
template <class T, class F> void map_scalars(const T* x, T* y, size_t n, F f) {
  on_widest_vectors([=] {
    for (size_t k = 0; k < n; ++k) y[k] = f(x[k]);
  });
}
template <class T> void map_points(const T* x, T* y, size_t n, TimesComplex<T> f) {
  on_vectors_for_products(n, [=] {
    for (size_t k = 0; k < n; ++k) store<T>(y, k, f(Point<T>{x[2 * k], x[2 * k + 1]}));
  });
}

// A kernel over real samples, which points are not.
template <class T> Status each_real(Vector<T>& v, void (*kernel)(const T* x, T* y, size_t n)) {
  if (v.complex) return kFailure;
  kernel(v.data, v.data, points<T>(v));
  return kSuccess;
}

// Spreads n samples into points f(x), from the last to the first: the points may grow over the samples themselves, so
// that no second buffer is needed. In blocks that are read whole before they are written.
template <class T, class F> void spread(const T* samples, T* points, size_t n, F f) {
  on_widest_vectors([=]() mutable {
    constexpr size_t kBlock = 16;
    while (n % kBlock > 0) --n, store<T>(points, n, f(samples[n]));
    while (n > 0) {
      n -= kBlock;
      T block[kBlock];
      for (size_t k = 0; k < kBlock; ++k) block[k] = samples[n + k];
      for (size_t k = 0; k < kBlock; ++k) store<T>(points, n + k, f(block[k]));
    }
  });
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
