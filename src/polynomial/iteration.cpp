// All roots at once by the Ehrlich-Aberth iteration, in double and then in 106 bits, as in Bini, Numer. Algorithms 13,
// 179-200 (1996): starting points on the circles of the Newton polygon, each root left alone once |p| is down to what
// rounding may have put there.
#include <algorithm>
#include <limits>
#include <numbers>

#include "polynomial/operations.h"

namespace sigvex::polynomial {
namespace {

// The upper convex hull of the points (k, log2 |a_k|): each edge gives as many roots as it is wide, on a circle whose
// log2 radius is its slope downward.
std::vector<size_t> newton_polygon(const Polynomial& p) {
  std::vector<size_t> hull;
  const auto slope = [&](size_t a, size_t b) {
    return (p.log2_coefficient(b) - p.log2_coefficient(a)) / static_cast<double>(b - a);
  };
  for (size_t k = 0; k <= p.degree(); ++k) {
    if (p.log2_coefficient(k) == -std::numeric_limits<double>::infinity()) continue;
    while (hull.size() > 1 && slope(hull.end()[-2], hull.back()) <= slope(hull.back(), k)) hull.pop_back();
    hull.push_back(k);
  }
  return hull;
}

// Angles that no symmetry of the coefficients shares.
std::vector<Place> starting_points(const Polynomial& p) {
  constexpr double kTurn = 2 * std::numbers::pi, kOffset = 0.7;
  std::vector<Place> roots;
  const std::vector<size_t> hull = newton_polygon(p);
  for (size_t i = 0; i + 1 < hull.size(); ++i) {
    const double width = static_cast<double>(hull[i + 1] - hull[i]);
    const double log2_radius = (p.log2_coefficient(hull[i]) - p.log2_coefficient(hull[i + 1])) / width;
    const int exponent = static_cast<int>(std::lround(log2_radius));
    const double radius = std::exp2(log2_radius - exponent);
    for (size_t j = 0; j < hull[i + 1] - hull[i]; ++j) {
      const double angle =
          kTurn * (static_cast<double>(j) / width + static_cast<double>(i) / static_cast<double>(p.degree())) + kOffset;
      roots.push_back({{radius * std::cos(angle), radius * std::sin(angle)}, exponent});
    }
  }
  return roots;
}

// The sum of 1 / (z_i - z_j) over the other roots, which repels the approximations from each other.
Point<double> repulsion(const std::vector<Place>& roots, size_t i) {
  Point<double> sum{0, 0};
  const Place z = roots[i];
  for (size_t j = 0; j < roots.size(); ++j) {
    const Point<double> distance = as<double>(z.w - relative_to(roots[j], z.exponent).w);
    const double m = magnitude(distance);
    if (j != i && m > 0 && std::isfinite(m)) sum = sum + reciprocal(distance);
  }
  return sum;
}

// One correction; true when the root has come to rest.
template <class R> bool improve(Evaluator& p, std::vector<Place>& roots, size_t i) {
  Place& z = roots[i];
  const Value<R> v = p.at<R>(z);
  const Point<double> value = as<double>(v.numerator), derivative = as<double>(v.denominator);
  if (magnitude(value) <= v.noise) return true;
  Point<double> step = quotient(value, derivative - value * repulsion(roots, i));
  const double radius = magnitude(z.w);
  // Where the step has no value, leave the place by a small turn.
  if (!std::isfinite(magnitude(step))) step = {-0.01 * z.w.im.hi, 0.01 * z.w.re.hi};
  z = p.polynomial().normalized({z.w - as<DoubleDouble>(step), z.exponent});
  return magnitude(step) <= kRounding<R> * radius;
}

template <class R> bool iterate(Evaluator& p, std::vector<Place>& roots, int limit) {
  std::vector<size_t> moving(roots.size());
  for (size_t k = 0; k < moving.size(); ++k) moving[k] = k;
  while (!moving.empty() && limit-- > 0) std::erase_if(moving, [&](size_t i) { return improve<R>(p, roots, i); });
  return moving.empty();
}

}  // namespace

// A cluster of m approximations closes in on an m-fold root by (m - 1) / (m + 1) a step, down to the m-th root of the
// noise: 40 steps whatever m. The limits leave as much again and more for the way there.
bool find_roots(const Polynomial& p, std::vector<Place>& roots) {
  constexpr int kSteps = 500;
  roots = starting_points(p);
  Evaluator evaluator(p);
  iterate<double>(evaluator, roots, kSteps);
  if (!iterate<DoubleDouble>(evaluator, roots, kSteps)) return false;
  merge_multiple_roots(evaluator, roots);
  if (p.real()) make_self_conjugate(roots);
  return true;
}

}  // namespace sigvex::polynomial
