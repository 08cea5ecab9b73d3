// dspc_rsmp dspc_rsmp_cos dspc_rsmp_pcos
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "filter/operations.h"
#include "filter/resample_sets.h"
#include "filter/state.h"

namespace sigvex::dspc {
namespace {

// The angles are running sums, in double for both precisions: the sums of thousands of float angles would miss the
// kernel's ends by some thousand times the precision of its values.
template <class T> double cosine_series(const Vector<T>& c, double theta) {
  double sum = c.data[1], angle = 0;
  for (size_t m = 2; m < points<T>(c); ++m) {
    angle += theta;
    sum += c.data[m] * std::cos(angle);
  }
  return sum;
}

template <class T> double polynomial_in_cosine(const Vector<T>& c, double theta) {
  const double u = std::cos(theta);
  double value = 0;
  for (size_t m = points<T>(c); m-- > 1;) value = value * u + c.data[m];
  return value;
}

template <class T> Status tabulate(Vector<T>& kernel, const Vector<T>& c, double (*value)(const Vector<T>&, double)) {
  if (shares<T>(kernel, c)) {
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, c));
    return tabulate<T>(kernel, copy, value);
  }
  SIGVEX_TRY(dsp::alloc<T>(kernel));
  const size_t n = points<T>(kernel);
  if (n < 2 || points<T>(c) < 2) {
    SIGVEX_TRY(dspi::zero<T>(kernel));
    if (n > 0 && points<T>(c) > 0) kernel.data[0] = c.data[0];
    return kSuccess;
  }
  if (n % 2 != 0 || c.complex) return kFailure;
  const bool complex = kernel.complex;
  kernel.complex = 0;
  kernel.data[0] = c.data[0];
  const size_t half = (n - 2) / 2;
  const double step = half > 0 ? 2 * std::numbers::pi / static_cast<double>(n - 2) : 0;
  double theta = 0;
  for (size_t i = 0; i <= half; ++i, theta += step) {
    kernel.data[1 + half - i] = kernel.data[1 + half + i] = static_cast<T>(value(c, theta));
  }
  return complex ? dspi::rtoc<T>(kernel) : kSuccess;
}

}  // namespace

template <class T> Status rsmp_cos(Vector<T>& kernel, const Vector<T>& coefficients) {
  return tabulate<T>(kernel, coefficients, cosine_series<T>);
}

template <class T> Status rsmp_pcos(Vector<T>& kernel, const Vector<T>& coefficients) {
  return tabulate<T>(kernel, coefficients, polynomial_in_cosine<T>);
}

template <class T> Status rsmp(Vector<T>& kernel, uint32_t set) {
  if (set >= kResampleSets) {
    SIGVEX_TRY(dsp::alloc<T>(kernel));
    return kFailure;
  }
  const ResampleSet& chosen = resample_set(set);
  T values[kMaxResampleCoefficients];
  std::copy(chosen.coefficients.begin(), chosen.coefficients.end(), values);
  Vector<T> coefficients{};
  coefficients.data = values;
  coefficients.points = static_cast<int32_t>(chosen.coefficients.size());
  return chosen.series == Series::cosine ? rsmp_cos<T>(kernel, coefficients) : rsmp_pcos<T>(kernel, coefficients);
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, rsmp_cos, 2)
SIGVEX_EXPORT(c, rsmp_pcos, 2)
SIGVEX_EXPORT(c, rsmp, 2)
