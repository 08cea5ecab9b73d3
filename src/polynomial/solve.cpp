// dsps_psolve dsps_pcsolve
#include <algorithm>
#include <limits>
#include <optional>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "polynomial/operations.h"

namespace sigvex {
namespace polynomial {
namespace {

using Here = Value<DoubleDouble>;

// What ends at an m-fold root cannot come nearer than the m-th root of the noise: look for the root itself.
Place sharpened(Evaluator& p, const Place& z, const Here& v, size_t multiplicity) {
  const double reach = static_cast<double>(4 * multiplicity) * v.noise / magnitude(v.denominator);
  Place root = z;
  return multiplicity > 1 && multiple_root(p, root, multiplicity, reach) ? root : z;
}

// A start beyond all roots, brought along its ray to the bound of Fujiwara, Tohoku Math. J. 10, 167-171 (1916):
// Newton's method would come from there step by step, by 1/n of the way each.
Place brought_near(const Polynomial& p, Point<double> start) {
  Place z = p.normalized({as<DoubleDouble>(start), 0});
  double log2_bound = -std::numeric_limits<double>::infinity();
  const size_t n = p.degree();
  for (size_t k = 1; k <= n; ++k) {
    log2_bound = std::max(log2_bound, (p.log2_coefficient(n - k) - p.log2_coefficient(n)) / static_cast<double>(k));
  }
  const double excess = std::log2(magnitude(z.w)) + z.exponent - (1 + log2_bound);
  if (excess > 0 && std::isfinite(excess)) z.exponent -= static_cast<int>(excess);
  return z;
}

// Newton's method, its step halved until |p| falls. A simple root, with all its digits, is found within a few steps and
// some for each degree; who needs more is nearing a multiple root, and is offered multiples of the step.
std::optional<Place> descend(const Polynomial& polynomial, Place z) {
  constexpr int kHalvings = 30;
  constexpr double kSettled = 0x1p-70;  // beyond what the rounding to double can see
  const size_t n = polynomial.degree(), patience = 16 + 2 * n;
  Evaluator p(polynomial);
  Here v = p.at<DoubleDouble>(z);
  size_t multiple = 1;
  for (size_t k = 0; k < 2 * patience; ++k) {
    if (magnitude(v.numerator) <= v.noise) return sharpened(p, z, v, multiple);
    Point<double> step = quotient(as<double>(v.numerator), as<double>(v.denominator));
    if (!std::isfinite(magnitude(step))) return std::nullopt;
    const Place from = z;
    const double radius = magnitude(from.w), size = v.log2_size;
    const auto try_step = [&](double factor) {
      const Place there = polynomial.normalized({from.w - as<DoubleDouble>(step * factor), from.exponent});
      const Here value = p.at<DoubleDouble>(there);
      if (!(value.log2_size < v.log2_size)) return false;
      z = there;
      v = value;
      return true;
    };
    for (int halvings = 0; halvings < kHalvings && !try_step(1); ++halvings) step = step * 0.5;
    if (!(v.log2_size < size)) return std::nullopt;
    for (multiple = 1; k > patience && multiple < n && try_step(static_cast<double>(multiple + 1));) ++multiple;
    if (magnitude(step) * static_cast<double>(multiple) <= kSettled * radius) return z;
  }
  return std::nullopt;
}

std::optional<Point<double>> nearest(Polynomial p, Point<double> start, bool on_real_axis) {
  std::vector<Point<double>> roots(std::min<size_t>(p.take_off_zero_roots(), 1), {0, 0});
  std::vector<Place> places;
  if (p.degree() > 0 && !find_roots(p, places)) return std::nullopt;
  for (const Place& z : places) roots.push_back(rounded(z));
  if (on_real_axis) std::erase_if(roots, [](Point<double> z) { return z.im != 0; });
  if (roots.empty()) return std::nullopt;
  return *std::min_element(roots.begin(), roots.end(), [&](Point<double> a, Point<double> b) {
    const double near = magnitude(a - start), far = magnitude(b - start);
    return near < far || (near == far && before(a, b));
  });
}

template <class T> Status solve(const Vector<T>& v, Point<T>& root, Point<T> start, bool on_real_axis) {
  Polynomial p;
  if (!p.read<T>(v) || p.degree() < 1 || (on_real_axis && !p.real())) return kFailure;
  const Point<double> from = as<double>(start);
  if (!finite(from)) return kFailure;
  std::optional<Point<double>> found;
  const Place place = brought_near(p, from);
  if (const std::optional<Place> z = descend(p, place)) found = rounded(*z);
  else found = nearest(p, rounded(place), on_real_axis);
  if (!found || !finite(as<T>(*found))) return kFailure;
  root = as<T>(*found);
  return kSuccess;
}

}  // namespace
}  // namespace polynomial

namespace dsps {

template <class T> Status psolve(const Vector<T>& p, T& root, T start) {
  if (p.complex) return kFailure;
  Point<T> found;
  SIGVEX_TRY(polynomial::solve<T>(p, found, {start, 0}, true));
  root = found.re;
  return kSuccess;
}

template <class T> Status pcsolve(const Vector<T>& p, Vector<T>& root, const Vector<T>& start) {
  if (points<T>(start) != 1) return kFailure;
  Point<T> found;
  SIGVEX_TRY(polynomial::solve<T>(p, found, complex_point<T>(start, 0), false));
  leave_to_owner<T>(p, root, 2);
  leave_to_owner<T>(start, root, 2);
  SIGVEX_TRY(shape<T>(root, 1, 1));
  set_point<T>(root, 0, found);
  return kSuccess;
}

}  // namespace dsps
}  // namespace sigvex

SIGVEX_EXPORT(s, psolve, 3)
SIGVEX_EXPORT(s, pcsolve, 3)
