// The loops of the elementary functions: raw arrays and counts, no record, no status. Each CPU target fills one table.
// Arrays may start anywhere; y may be x. A sample gives the same bits wherever it stands.
#pragma once

#include <cstddef>

namespace sigvex {

template <class T> struct MathKernels {
  // y[k] = f(x[k]) for n samples.
  using Map = void (*)(const T* x, T* y, size_t n);
  Map sin, cos, tan, sinc, atan, sinh, cosh, tanh;
  Map asin_or_zero, acos_or_zero;    // 0 where |x| > 1
  Map exp_capped, exp10_capped;      // huge above the limits of Limits<T>
  Map root_or_zero;                  // 0 for negative numbers and NaN; correctly rounded
  Map log_or_floor, log10_or_floor;  // the floor of Limits<T> below the smallest normal number and for NaN
  void (*db)(const T* x, T* y, size_t n, T factor);  // factor times log10, or its floor

  Map i0_or_huge;          // modified Bessel function; huge beyond +-ln huge and for NaN
  double (*i0)(double x);  // the same of one number, without limits
  Map j0, j1, y0, y1;      // Bessel functions of the first and the second kind

  // The same for n points; those that give angles or magnitudes give one sample for each, and x may be y there too.
  Map exp_of_points, exp10_of_points, log_of_points, root_of_points;
  void (*db_of_points)(const T* x, T* y, size_t n, T factor);
  Map phase, magnitude, magsq_capped, real, imag;
  Map polar, rectangular;  // (re, im) to (magnitude, phase) and back

  // z[k] = (re[k], im[k]) from the last to the first, zeros for what is null: z may start where re or im does.
  void (*weave)(const T* re, const T* im, T* z, size_t n);
};

template <class T> const MathKernels<T>& math_kernels();  // the best for this CPU

}  // namespace sigvex
