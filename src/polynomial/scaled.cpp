#include "polynomial/scaled.h"

#include <algorithm>
#include <climits>
#include <limits>

namespace sigvex::polynomial {
namespace {

int exponent_of(Point<double> z) {
  const double larger = std::max(std::abs(z.re), std::abs(z.im));
  return larger > 0 ? std::ilogb(larger) : 0;
}

// Exponents beyond these reach zero or infinity from any double.
int clipped(int64_t exponent) { return static_cast<int>(std::clamp<int64_t>(exponent, -4096, 4096)); }

Point<double> ldexp(Point<double> z, int64_t exponent) {
  return {std::ldexp(z.re, clipped(exponent)), std::ldexp(z.im, clipped(exponent))};
}

bool zero(Point<double> z) { return z.re == 0 && z.im == 0; }

}  // namespace

Place relative_to(Place z, int exponent) {
  if (z.exponent == exponent) return z;
  return {scaled(z.w, clipped(int64_t{z.exponent} - exponent)), exponent};
}

template <class T> bool Polynomial::read(const Vector<T>& p) {
  for (size_t k = 0; k < size<T>(p); ++k) {
    if (!std::isfinite(p.data[k])) return false;
  }
  for (size_t k = 0; k < points<T>(p); ++k) {
    const Point<double> a = as<double>(complex_point<T>(p, k));
    const int e = exponent_of(a);
    fractions_.push_back(ldexp(a, -e));
    exponents_.push_back(e);
    real_ = real_ && a.im == 0;
  }
  while (!fractions_.empty() && zero(fractions_.back())) fractions_.pop_back(), exponents_.pop_back();
  return true;
}
template bool Polynomial::read<double>(const dsp_vector&);
template bool Polynomial::read<float>(const dspf_vector&);

size_t Polynomial::take_off_zero_roots() {
  const auto first = std::find_if_not(fractions_.begin(), fractions_.end(), zero) - fractions_.begin();
  fractions_.erase(fractions_.begin(), fractions_.begin() + first);
  exponents_.erase(exponents_.begin(), exponents_.begin() + first);
  return static_cast<size_t>(first);
}

Place Polynomial::normalized(Place z) const {
  const double m = magnitude(z.w);
  if (m >= 0.5 && m <= 2) return z;
  if (m > 0) {
    const int e = exponent_of(as<double>(z.w));
    return {scaled(z.w, -e), z.exponent + e};
  }
  double log2_radius = 0;  // within it the constant is the largest term
  for (size_t k = 1; k <= degree(); ++k) {
    log2_radius = std::min(log2_radius, (log2_coefficient(0) - log2_coefficient(k)) / static_cast<double>(k));
  }
  return {z.w, std::isfinite(log2_radius) ? static_cast<int>(log2_radius) : 0};
}

double Polynomial::log2_coefficient(size_t k) const { return std::log2(magnitude(fractions_[k])) + exponents_[k]; }

// The coefficient of w^k is a_k 2^(k exponent); what underflows beside the largest does not matter to the value.
void Evaluator::scale_to(int exponent) {
  if (ready_ && exponent == exponent_) return;
  const auto exponent_at = [&](size_t k) { return p_.exponents_[k] + static_cast<int64_t>(k) * exponent; };
  unit_ = std::numeric_limits<int64_t>::min();
  for (size_t k = 0; k < scaled_.size(); ++k) {
    if (!zero(p_.fractions_[k])) unit_ = std::max(unit_, exponent_at(k));
  }
  for (size_t k = 0; k < scaled_.size(); ++k) {
    scaled_[k] = ldexp(p_.fractions_[k], exponent_at(k) - unit_);
    sizes_[k] = magnitude(scaled_[k]);
  }
  exponent_ = exponent;
  ready_ = true;
}

// Horner's rule; beyond the unit circle for the reversed polynomial q(t) = t^n p(1/t), t = 1/w, so that no power grows:
// p'/p = t (n - t q'/q). The noise bound is the usual one of Horner's rule (Bini, Numer. Algorithms 13, 179-200, 1996).
template <class R> Value<R> Evaluator::at(const Place& z) {
  scale_to(z.exponent);
  const size_t n = p_.degree();
  const bool reversed = magnitude(z.w) > 1;
  const Point<R> w = as<R>(z.w), t = reversed ? reciprocal(w) : w;
  const double radius = magnitude(t);
  Point<R> value{0, 0}, derivative{0, 0};
  double size = 0;
  for (size_t j = 0; j <= n; ++j) {
    const size_t k = reversed ? j : n - j;
    derivative = derivative * t + value;
    value = value * t + as<R>(scaled_[k]);
    size = size * radius + sizes_[k];
  }
  const double degree = static_cast<double>(n), noise = 4 * (degree + 1) * kRounding<R> * size;
  double log2_size = std::log2(magnitude(value)) + static_cast<double>(unit_);
  if (!reversed) return {value, derivative, noise, log2_size};
  log2_size -= degree * std::log2(radius);
  const Point<R> whole{value.re * R(degree), value.im * R(degree)};
  return {value, t * (whole - t * derivative), noise, log2_size};
}
template Value<double> Evaluator::at<double>(const Place&);
template Value<DoubleDouble> Evaluator::at<DoubleDouble>(const Place&);

// Repeated synthetic division, of the coefficients and, for the bounds, of their sizes.
Evaluator::Taylor Evaluator::taylor(const Place& z, size_t count) {
  scale_to(z.exponent);
  const size_t n = p_.degree();
  const double radius = magnitude(z.w), bound = 32 * static_cast<double>(n + 1) * kRounding<DoubleDouble>;
  Taylor t{std::vector<Point<DoubleDouble>>(n + 1), sizes_};
  for (size_t k = 0; k <= n; ++k) t.terms[k] = as<DoubleDouble>(scaled_[k]);
  for (size_t j = 0; j < count; ++j) {
    for (size_t k = n; k-- > j;) {
      t.terms[k] = t.terms[k + 1] * z.w + t.terms[k];
      t.noise[k] = t.noise[k + 1] * radius + t.noise[k];
    }
  }
  t.terms.resize(count);
  t.noise.resize(count);
  for (double& noise : t.noise) noise *= bound;
  return t;
}

}  // namespace sigvex::polynomial
