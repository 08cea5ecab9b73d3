// dspb_cspline_2d
#include "core/exports.h"
#include "elementwise/apart.h"
#include "interpolation/spline_slopes.h"

namespace sigvex {
namespace interpolation {
namespace {

// The product spline of a grid: values and slopes along x, along y and of either along the other.
template <class T> class Surface {
 public:
  Surface(const Abscissae<T>& x, const Abscissae<T>& y, const Vector<T>& values, uint32_t end)
      : x_(x), y_(y), width_(values.complex ? 2 : 1), grid_(size<T>(values)) {
    for (size_t k = 0; k < grid_.size(); ++k) grid_[k].value = values.data[k];
    const SplineSystem along_x(x, end), along_y(y, end);
    for (size_t part = 0; part < width_; ++part) {
      for (size_t j = 0; j < y.size(); ++j) {
        along_x.solve([&](size_t i) { return at(i, j, part).value; },
                      [&](size_t i) -> double& { return at(i, j, part).dx; });
      }
      for (size_t i = 0; i < x.size(); ++i) {
        along_y.solve([&](size_t j) { return at(i, j, part).value; },
                      [&](size_t j) -> double& { return at(i, j, part).dy; });
        along_y.solve([&](size_t j) { return at(i, j, part).dx; },
                      [&](size_t j) -> double& { return at(i, j, part).dxy; });
      }
    }
  }

  // Along x in both rows beside the place, the values and their slopes along y; then along y.
  double operator()(double xi, double yi, size_t i, size_t j, size_t part) const {
    const size_t right = std::min(i + 1, x_.size() - 1), above = std::min(j + 1, y_.size() - 1);
    const auto in_row = [&](size_t row) {
      const Node &a = at(i, row, part), &b = at(right, row, part);
      const double value = Cubic({x_[i], a.value, a.dx}, {x_[right], b.value, b.dx})(xi);
      const double slope = Cubic({x_[i], a.dy, a.dxy}, {x_[right], b.dy, b.dxy})(xi);
      return End{y_[row], value, slope};
    };
    return Cubic(in_row(j), in_row(above))(yi);
  }

 private:
  struct Node {
    double value, dx, dy, dxy;
  };
  Node& at(size_t i, size_t j, size_t part) { return grid_[(j * x_.size() + i) * width_ + part]; }
  const Node& at(size_t i, size_t j, size_t part) const { return grid_[(j * x_.size() + i) * width_ + part]; }

  const Abscissae<T>&x_, &y_;
  size_t width_;
  std::vector<Node> grid_;
};

}  // namespace
}  // namespace interpolation

namespace dspb {

template <class T>
Status cspline_2d(const Vector<T>& xi, const Vector<T>& yi, Vector<T>& result, const Vector<T>& x, const Vector<T>& y,
                  const Vector<T>& surface, uint32_t end) {
  using namespace interpolation;
  const Abscissae<T> columns(&x, 0, points<T>(x)), rows(&y, 0, points<T>(y));
  const uint32_t kind = end & ~uint32_t{DSP_SPLINE_STRICT};
  const bool strict = end & DSP_SPLINE_STRICT;
  const size_t n = points<T>(xi);
  if (kind > DSP_SPLINE_NOT_A_KNOT || points<T>(yi) != n) return kFailure;
  if (points<T>(surface) != columns.size() * rows.size()) return kFailure;
  if (refused<T>(columns, xi, strict) || refused<T>(rows, yi, strict)) return kFailure;
  const Surface<T> f(columns, rows, surface, kind);
  const auto run = [&](Vector<T>& out) {
    SIGVEX_TRY(shape<T>(out, n, surface.complex ? 1 : 0));
    out.delta = xi.delta;
    const size_t width = surface.complex ? 2 : 1;
    size_t i = 0, j = 0;
    for (size_t k = 0; k < n; ++k) {
      i = columns.locate(xi.data[k], i);
      j = rows.locate(yi.data[k], j);
      for (size_t part = 0; part < width; ++part) {
        out.data[k * width + part] = static_cast<T>(f(xi.data[k], yi.data[k], i, j, part));
      }
    }
    return kSuccess;
  };
  return write_apart<T>(result, run, xi, yi, x, y, surface);
}

}  // namespace dspb
}  // namespace sigvex

SIGVEX_EXPORT(b, cspline_2d, 7)
