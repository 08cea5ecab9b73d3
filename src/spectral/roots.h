// Points of the unit circle, accurate to the last place.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "core/vector.h"

namespace sigvex {

// The precision that tables are computed in before they are rounded once.
template <class T> struct WiderThan;
template <> struct WiderThan<double> { using type = long double; };
template <> struct WiderThan<float> { using type = double; };
template <class T> using Wider = typename WiderThan<T>::type;

// e^(2 pi i k/n), the angle brought into the first octant by integers, where it costs no accuracy.
template <class T> Point<T> unit_root(size_t k, size_t n) {
  const size_t eighths = 8 * (k % n), octant = eighths / n, past = eighths % n;
  const size_t within = octant % 2 ? n - past : past;
  const Wider<T> angle = std::numbers::pi_v<Wider<T>> / 4 * static_cast<Wider<T>>(within) / static_cast<Wider<T>>(n);
  Point<T> z{static_cast<T>(std::cos(angle)), static_cast<T>(std::sin(angle))};
  if ((octant + 1) & 2) std::swap(z.re, z.im);
  if ((octant + 2) & 4) z.re = -z.re;
  if (octant & 4) z.im = -z.im;
  return z;
}

}  // namespace sigvex
