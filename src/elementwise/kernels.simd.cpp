#include "elementwise/kernels.h"

#include <algorithm>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "elementwise/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "elementwise/arc-inl.h"
#include "elementwise/bessel-inl.h"
#include "elementwise/bessel_jy-inl.h"
#include "elementwise/circular-inl.h"
#include "elementwise/exponential-inl.h"
#include "elementwise/hyperbolic-inl.h"
#include "elementwise/logarithm-inl.h"
#include "elementwise/points-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::elementwise {
namespace HWY_NAMESPACE {

template <class T, V<T> (*function)(V<T>)> void map(const T* x, T* y, size_t n) {
  each_sample(x, y, n, [](V<T> at) HWY_ATTR { return function(at); });
}
template <class T, Points<T> (*function)(Points<T>)> void map_points(const T* x, T* y, size_t n) {
  each_point(x, y, n, [](Points<T> z) HWY_ATTR { return function(z); });
}
template <class T, V<T> (*function)(V<T>, V<T>)> void map_to_real(const T* x, T* y, size_t n) {
  each_point_to_real(x, y, n, [](Points<T> z) HWY_ATTR { return function(z.re, z.im); });
}

template <class T> void db(const T* x, T* y, size_t n, T factor) {
  each_sample(x, y, n, [by = set<T>(factor)](V<T> at) HWY_ATTR { return by * log10_or_floor<T>(at); });
}
template <class T> void db_of_points(const T* x, T* y, size_t n, T factor) {
  each_point(x, y, n, [by = set<T>(factor)](Points<T> z) HWY_ATTR { return db_of_point<T>(z, by); });
}

double i0_of_one(double x) { return hn::GetLane(i0(set<double>(x))); }

template <class T> HWY_INLINE V<T> phase(V<T> re, V<T> im) { return angle<T>(im, re); }
template <class T> HWY_INLINE V<T> magsq_of(V<T> re, V<T> im) { return magsq_capped<T>({re, im}); }
template <class T> HWY_INLINE V<T> first(V<T> re, V<T>) { return re; }
template <class T> HWY_INLINE V<T> second(V<T>, V<T> im) { return im; }
template <class T> HWY_INLINE Points<T> exp_of_point(Points<T> z) { return rectangular<T>(exp_capped<T>(z.re), z.im); }
template <class T> HWY_INLINE Points<T> exp10_of_point(Points<T> z) {
  return rectangular<T>(exp10_capped<T>(z.re), z.im * set<T>(std::numbers::ln10));
}
template <class T> HWY_INLINE Points<T> rectangular_of(Points<T> z) { return rectangular<T>(z.re, z.im); }

// In two passes over some points at a time: of the long chain of steps in one, no two vectors would overlap.
template <class T> void root_of_points(const T* x, T* y, size_t n) {
  constexpr size_t kSome = 256;
  for (size_t k = 0; k < n; k += kSome) {
    const size_t some = std::min(kSome, n - k);
    map_points<T, polar_root_of_point<T>>(x + 2 * k, y + 2 * k, some);
    map_points<T, rectangular_of<T>>(y + 2 * k, y + 2 * k, some);
  }
}

// The rest that fills no vector is at the end, so that each vector is read before anything is written over it.
template <class T> void weave(const T* re, const T* im, T* z, size_t n) {
  for (; n % kLanes<T> != 0; --n) {
    const T real = re ? re[n - 1] : T(0), imaginary = im ? im[n - 1] : T(0);
    z[2 * n - 2] = real;
    z[2 * n - 1] = imaginary;
  }
  for (; n != 0; n -= kLanes<T>) {
    const size_t k = n - kLanes<T>;
    store_points<T>({re ? load(re + k) : zero<T>(), im ? load(im + k) : zero<T>()}, z + 2 * k);
  }
}

template <class T> const MathKernels<T>* kernels() {
  static constexpr MathKernels<T> table = {
      .sin = map<T, sin<T>>,
      .cos = map<T, cos<T>>,
      .tan = map<T, tan<T>>,
      .sinc = map<T, sinc<T>>,
      .atan = map<T, atan<T>>,
      .sinh = map<T, sinh<T>>,
      .cosh = map<T, cosh<T>>,
      .tanh = map<T, tanh<T>>,
      .asin_or_zero = map<T, asin_or_zero<T>>,
      .acos_or_zero = map<T, acos_or_zero<T>>,
      .exp_capped = map<T, exp_capped<T>>,
      .exp10_capped = map<T, exp10_capped<T>>,
      .root_or_zero = map<T, root_or_zero<T>>,
      .log_or_floor = map<T, log_or_floor<T>>,
      .log10_or_floor = map<T, log10_or_floor<T>>,
      .db = db<T>,
      .i0_or_huge = map_i0_or_huge<T>,
      .i0 = i0_of_one,
      .j0 = map_bessel<T, 0, false>,
      .j1 = map_bessel<T, 1, false>,
      .y0 = map_bessel<T, 0, true>,
      .y1 = map_bessel<T, 1, true>,
      .exp_of_points = map_points<T, exp_of_point<T>>,
      .exp10_of_points = map_points<T, exp10_of_point<T>>,
      .log_of_points = map_points<T, log_of_point<T>>,
      .root_of_points = root_of_points<T>,
      .db_of_points = db_of_points<T>,
      .phase = map_to_real<T, phase<T>>,
      .magnitude = map_to_real<T, hypot<T>>,
      .magsq_capped = map_to_real<T, magsq_of<T>>,
      .real = map_to_real<T, first<T>>,
      .imag = map_to_real<T, second<T>>,
      .polar = map_points<T, polar<T>>,
      .rectangular = map_points<T, rectangular_of<T>>,
      .weave = weave<T>,
  };
  return &table;
}
const MathKernels<double>* kernels_double() { return kernels<double>(); }
const MathKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::elementwise
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(elementwise, MathKernels, math_kernels)
#endif
