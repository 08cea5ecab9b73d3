// dsp_interp
#include "core/exports.h"
#include "elementwise/apart.h"
#include "interpolation/table.h"

namespace sigvex::interpolation {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Nearest {
  End left, right;
  double operator()(double at) const { return at - left.x < right.x - at ? left.y : right.y; }
};

struct Linear {
  End left, right;
  double operator()(double at) const {
    return at == left.x ? left.y : std::lerp(left.y, right.y, (at - left.x) / (right.x - left.x));
  }
};

// Monotone between the ends, so that nothing but rounding can leave them.
struct ShapePreserving {
  double low = 0, high = 0;
  Cubic cubic;
  ShapePreserving() = default;
  ShapePreserving(const End& left, const End& right)
      : low(std::min(left.y, right.y)), high(std::max(left.y, right.y)), cubic(left, right) {}
  double operator()(double at) const { return std::clamp(cubic(at), low, high); }
};

bool same_sign(double a, double b) { return (a > 0 && b > 0) || (a < 0 && b < 0); }

// Slope at a point of the table: the harmonic mean of the chords beside it, weighted by their widths, or 0 at an
// extreme (Fritsch and Butland, SIAM J. Sci. Stat. Comput. 5, 300-304, 1984).
double inner_slope(double h0, double h1, double chord0, double chord1) {
  if (!same_sign(chord0, chord1)) return chord0 * chord1 <= 0 ? 0 : kNaN;
  const double w0 = 2 * h1 + h0, w1 = h1 + 2 * h0;
  return (w0 + w1) / (w0 / chord0 + w1 / chord1);
}

// Slope at an end: that of the parabola through three points, kept from overshooting (Moler, Numerical Computing with
// MATLAB, section 3.6, 2004). h0 and chord0 are those at the end.
double end_slope(double h0, double h1, double chord0, double chord1) {
  const double slope = ((2 * h0 + h1) * chord0 - h0 * chord1) / (h0 + h1);
  if (slope * chord0 <= 0) return 0;
  if (!same_sign(chord0, chord1) && std::abs(slope) > 3 * std::abs(chord0)) return 3 * chord0;
  return slope;
}

template <class T> double slope(const Table<T>& t, size_t k, size_t part) {
  const auto chord = [&](size_t j) { return (t.value(j + 1, part) - t.value(j, part)) / t.x.width(j); };
  const size_t last = t.x.size() - 1;
  if (last == 1) return chord(0);
  if (k == 0) return end_slope(t.x.width(0), t.x.width(1), chord(0), chord(1));
  if (k == last) return end_slope(t.x.width(k - 1), t.x.width(k - 2), chord(k - 1), chord(k - 2));
  return inner_slope(t.x.width(k - 1), t.x.width(k), chord(k - 1), chord(k));
}

// The piece of an interval, and the end values held outside.
template <class Piece> struct Held {
  End left, right;
  Piece piece;
  double operator()(double at) const {
    if (std::isnan(at)) return at;
    if (at <= left.x) return left.y;
    return at >= right.x ? right.y : piece(at);
  }
};

template <class Piece, class T> void interpolate(const Table<T>& t, const Vector<T>& xi, T* out) {
  evaluate(t, xi, out, [&](size_t k, size_t part) {
    const bool sloped = std::is_same_v<Piece, ShapePreserving> && t.x.size() > 1;
    const auto end = [&](size_t j) { return End{t.x[j], t.value(j, part), sloped ? slope(t, j, part) : 0}; };
    const End left = end(k), right = end(std::min(k + 1, t.x.size() - 1));
    return Held<Piece>{left, right, Piece{left, right}};
  });
}

}  // namespace
}  // namespace sigvex::interpolation

namespace sigvex::dsp {

template <class T>
Status interp(const Vector<T>* x, const Vector<T>& y, const Vector<T>& xi, Vector<T>& yi, uint32_t mode) {
  using namespace interpolation;
  const Table<T> table(x, y);
  const uint32_t kind = mode & ~uint32_t{DSP_INTERP_STRICT};
  if (kind > DSP_INTERP_CUBIC || refused<T>(table.x, xi, mode & DSP_INTERP_STRICT)) return kFailure;
  const auto run = [&](Vector<T>& out) {
    SIGVEX_TRY(shape<T>(out, points<T>(xi), y.complex ? 1 : 0));
    out.delta = xi.delta;
    if (kind == DSP_INTERP_NEAREST) interpolate<Nearest, T>(table, xi, out.data);
    else if (kind == DSP_INTERP_LINEAR) interpolate<Linear, T>(table, xi, out.data);
    else interpolate<ShapePreserving, T>(table, xi, out.data);
    return kSuccess;
  };
  return write_apart<T>(yi, run, x ? *x : y, y, xi);
}

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, interp, 5)
