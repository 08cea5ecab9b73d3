// The guards every operation shares, and the only home of their numbers: one table of limits per precision.
#pragma once

#include <cfloat>
#include <cmath>

#include "core/vector.h"

namespace sigvex {

template <class T> struct Limits;

template <> struct Limits<double> {
  static constexpr double huge = 1e100;    // stands for an infinite or unbounded result
  static constexpr double tiny = DBL_MIN;  // below it a logarithm has no meaning
  static constexpr double epsilon = DBL_EPSILON;
  static constexpr double ln_huge = 230.25850929940458;  // ln huge
  static constexpr double log10_huge = 100.0;
  static constexpr double ln_tiny = -708.3964185322641;  // ln tiny
  static constexpr double log10_tiny = -307.6526555685888;
};

template <> struct Limits<float> {
  static constexpr float huge = 999999986991104.0F;  // the float nearest 1e15
  static constexpr float tiny = FLT_MIN;
  static constexpr float epsilon = FLT_EPSILON;
  static constexpr float ln_huge = 34.538776381388636F;  // ln huge
  static constexpr float log10_huge = 15.0F;             // log10 huge, rounded
  static constexpr float ln_tiny = -87.33654475055310F;  // ln tiny
  static constexpr float log10_tiny = -37.92977945366163F;
};

// Within +-huge; false for NaN.
template <class T> bool bounded(T x) { return std::abs(x) <= Limits<T>::huge; }
template <class T> bool bounded(Point<T> z) { return bounded(z.re) && bounded(z.im); }

// Brought into +-huge. NaN is neither above nor inside, so it counts as below.
template <class T> T clamped(T x) {
  if (x > Limits<T>::huge) return Limits<T>::huge;
  return x >= -Limits<T>::huge ? x : -Limits<T>::huge;
}
template <class T> Point<T> clamped(Point<T> z) { return {clamped(z.re), clamped(z.im)}; }

template <class T> T magsq(Point<T> z) { return z.re * z.re + z.im * z.im; }

// |z|^2, or huge itself (not its square) when a part is out of range.
template <class T> T magsq_capped(Point<T> z) { return bounded(z) ? magsq(z) : Limits<T>::huge; }

}  // namespace sigvex
