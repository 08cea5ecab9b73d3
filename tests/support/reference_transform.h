// Transforms by their definition in extended precision, and the error of ours against them.
#pragma once

#include <random>

#include "support/twin.h"

namespace sigvex_test {

using Wide = std::complex<long double>;

template <class T> Wide wide(const Vec<T>& v, size_t k) { return v->complex ? Wide(v.at(k)) : Wide(v[k]); }

// Of n samples, each bin summed when asked for.
class ReferenceTransform {
 public:
  template <class T> ReferenceTransform(const Vec<T>& v, bool inverse) : inverse_(inverse) {
    const size_t n = static_cast<size_t>(v->points);
    for (size_t k = 0; k < n; ++k) {
      samples_.push_back(wide(v, k));
      const long double angle = 2 * kPi * static_cast<long double>(k) / static_cast<long double>(n);
      roots_.emplace_back(std::cos(angle), inverse ? std::sin(angle) : -std::sin(angle));
    }
  }
  Wide operator()(size_t k) const {
    const size_t n = samples_.size();
    Wide sum = 0;
    for (size_t j = 0, turn = 0; j < n; ++j, turn = (turn + k) % n) sum += samples_[j] * roots_[turn];
    return inverse_ ? sum : sum / static_cast<long double>(n);
  }

 private:
  bool inverse_;
  std::vector<Wide> samples_, roots_;
};

// Relative error in the mean square of every step-th point; expected(k) is point k in extended precision. It is taken
// relative to all points: few of them may happen to be small.
template <class T, class E> double transform_error(const Vec<T>& v, const E& expected, size_t step = 1) {
  const auto points = static_cast<size_t>(v->points), compared = (points + step - 1) / step;
  long double error = 0, power = 0;
  for (size_t k = 0; k < points; ++k) power += std::norm(wide(v, k));
  for (size_t k = 0; k < points; k += step) error += std::norm(wide(v, k) - expected(k));
  return static_cast<double>(std::sqrt(error / compared * points / power));
}

// The error that any length may have: eps times the root of the number of passes, and a factor.
template <class T> double transform_bound(size_t n) {
  return 4.0 * kEps<T> * std::sqrt(std::max(1.0, std::log2(static_cast<double>(n))));
}

template <class T> Vec<T> noise(size_t n, bool complex) {
  std::mt19937 source(static_cast<unsigned>(n));
  std::normal_distribution<double> normal;
  std::vector<T> samples(complex ? 2 * n : n);
  for (T& x : samples) x = static_cast<T>(normal(source));
  return {samples, complex};
}

// Relative difference of two vectors of one form in the mean square.
template <class T> double difference(const Vec<T>& a, const Vec<T>& b) {
  EXPECT_EQ(a.size(), b.size());
  return transform_error(a, [&](size_t k) { return wide(b, k); });
}

}  // namespace sigvex_test
