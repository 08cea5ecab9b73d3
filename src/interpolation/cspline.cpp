// dsp_cspline
#include "core/exports.h"
#include "elementwise/apart.h"
#include "interpolation/spline_slopes.h"

namespace sigvex::dsp {

template <class T>
Status cspline(const Vector<T>* x, const Vector<T>& y, const Vector<T>& xi, Vector<T>& yi, uint32_t end) {
  using namespace interpolation;
  const Table<T> t(x, y);
  const uint32_t kind = end & ~uint32_t{DSP_SPLINE_STRICT};
  if (kind > DSP_SPLINE_NOT_A_KNOT || refused<T>(t.x, xi, end & DSP_SPLINE_STRICT)) return kFailure;
  std::vector<double> slopes(size<T>(y));
  if (!slopes.empty()) {
    const SplineSystem system(t.x, kind);
    for (size_t part = 0; part < t.width; ++part) {
      system.solve([&](size_t k) { return t.value(k, part); },
                   [&](size_t k) -> double& { return slopes[k * t.width + part]; });
    }
  }
  const auto run = [&](Vector<T>& out) {
    SIGVEX_TRY(shape<T>(out, points<T>(xi), y.complex ? 1 : 0));
    out.delta = xi.delta;
    evaluate(t, xi, out.data, [&](size_t k, size_t part) {
      const auto at = [&](size_t j) { return End{t.x[j], t.value(j, part), slopes[j * t.width + part]}; };
      return Cubic(at(k), at(std::min(k + 1, t.x.size() - 1)));
    });
    return kSuccess;
  };
  return write_apart<T>(yi, run, x ? *x : y, y, xi);
}

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, cspline, 5)
