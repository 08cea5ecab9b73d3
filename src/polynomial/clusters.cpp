// What the separate approximations of an iteration have in common: multiple roots, conjugate pairs.
#include <algorithm>
#include <numeric>

#include "polynomial/operations.h"

namespace sigvex::polynomial {
namespace {

double distance(const Place& a, const Place& b) { return magnitude(a.w - relative_to(b, a.exponent).w); }

Place mean(const std::vector<Place>& roots, const std::vector<size_t>& group, size_t m) {
  const int exponent = roots[group[0]].exponent;
  Point<DoubleDouble> sum{0, 0};
  for (size_t j = 0; j < m; ++j) sum = sum + relative_to(roots[group[j]], exponent).w;
  const DoubleDouble share = reciprocal(Point<DoubleDouble>{static_cast<double>(m), 0}).re;
  return {{sum.re * share, sum.im * share}, exponent};
}

}  // namespace

// A root of multiplicity m is a simple root of derivative m - 1, and there Newton's method finds it to full accuracy.
// All lower derivatives must then vanish within their noise.
bool multiple_root(Evaluator& p, Place& z, size_t m, double reach) {
  if (magnitude(z.w) > 1) z = {scaled(z.w, -2), z.exponent + 2}, reach /= 4;
  const Place start = z;
  for (int step = 0; step < 3; ++step) {
    const Evaluator::Taylor t = p.taylor(z, m + 1);
    const Point<double> slope = as<double>(t.terms[m]) * static_cast<double>(m);
    z.w = z.w - as<DoubleDouble>(quotient(as<double>(t.terms[m - 1]), slope));
  }
  if (!(distance(start, z) <= reach)) return false;
  const Evaluator::Taylor t = p.taylor(z, m);
  for (size_t j = 0; j < m; ++j) {
    if (!(magnitude(t.terms[j]) < t.noise[j])) return false;
  }
  return true;
}

// One root lies within n |p / p'| of each approximation. Where rounding alone makes that disc reach others, they are
// taken together, as many as pass for one root.
void merge_multiple_roots(Evaluator& p, std::vector<Place>& roots) {
  std::vector<size_t> left(roots.size());
  std::iota(left.begin(), left.end(), size_t{0});
  while (left.size() > 1) {
    const Place z = roots[left.back()];
    const Value<DoubleDouble> v = p.at<DoubleDouble>(z);
    const double count = static_cast<double>(roots.size());
    const double reach = 4 * count * (magnitude(v.numerator) + v.noise) / magnitude(v.denominator);
    std::vector<size_t> group;
    for (const size_t k : left) {
      if (!(distance(z, roots[k]) > reach)) group.push_back(k);
    }
    std::sort(group.begin(), group.end(),
              [&](size_t a, size_t b) { return distance(z, roots[a]) < distance(z, roots[b]); });
    size_t m = group.size();
    for (; m > 1; --m) {
      Place common = mean(roots, group, m);
      if (!multiple_root(p, common, m, reach)) continue;
      for (size_t j = 0; j < m; ++j) roots[group[j]] = common;
      break;
    }
    if (m < 2) left.pop_back();
    else
      std::erase_if(left,
                    [&](size_t k) { return std::find(group.begin(), group.begin() + m, k) != group.begin() + m; });
  }
}

// From the largest imaginary part down: a root nearer to its own conjugate than any other root is to that is real.
void make_self_conjugate(std::vector<Place>& roots) {
  std::vector<size_t> left(roots.size());
  std::iota(left.begin(), left.end(), size_t{0});
  const auto height = [&](size_t k) { return std::abs(scaled(roots[k].w.im, roots[k].exponent).hi); };
  std::sort(left.begin(), left.end(), [&](size_t a, size_t b) { return height(a) < height(b); });
  while (!left.empty()) {
    Place& z = roots[left.back()];
    left.pop_back();
    const Place mirrored{{z.w.re, -z.w.im}, z.exponent};
    const auto nearest = std::min_element(left.begin(), left.end(), [&](size_t a, size_t b) {
      return distance(mirrored, roots[a]) < distance(mirrored, roots[b]);
    });
    if (nearest == left.end() || distance(mirrored, z) <= distance(mirrored, roots[*nearest])) {
      z.w.im = 0;
      continue;
    }
    Place& partner = roots[*nearest];
    const Point<DoubleDouble> other = relative_to(partner, z.exponent).w;
    z.w = scaled({z.w.re + other.re, z.w.im - other.im}, -1);
    partner = {{z.w.re, -z.w.im}, z.exponent};
    left.erase(nearest);
  }
}

Point<double> rounded(const Place& z) {
  constexpr double kAccuracy = 0x1p-90;
  const double least = kAccuracy * magnitude(z.w);
  const auto part = [&](DoubleDouble x) {
    return std::abs(x.hi) > least ? scaled(x, z.exponent).hi + 0.0 : 0.0;
  };  // never -0.0
  return {part(z.w.re), part(z.w.im)};
}

}  // namespace sigvex::polynomial
