// A signal in blocks through an operation with state, as a host runs it.
#pragma once

#include <algorithm>
#include <numeric>
#include <random>

#include "support/reference_transform.h"

namespace sigvex_test {

// Points first .. last - 1.
template <class T> Vec<T> cut(const Vec<T>& v, size_t first, size_t last) {
  const size_t width = v->complex ? 2 : 1;
  Vec<T> part(std::vector<T>(v->data + first * width, v->data + last * width));
  if (v->complex) part->points /= 2;
  part->complex = v->complex;
  part->delta = v->delta;
  return part;
}

template <class T> std::complex<long double> value(const Vec<T>& v, size_t k) {
  if (v->complex) return {v.at(k).real(), v.at(k).imag()};
  return {v[k], 0};
}

// The definition, on the last points of `past` as the history.
template <class T> std::vector<T> defined(const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  std::vector<T> result;
  for (int n = 0; n < in->points; ++n) {
    std::complex<long double> sum = 0;
    for (int k = 0; k < taps->points && n - k >= -past->points; ++k) {
      sum += value(taps, k) * (n >= k ? value(in, n - k) : value(past, past->points + n - k));
    }
    result.push_back(static_cast<T>(sum.real()));
    if (in->complex || taps->complex) result.push_back(static_cast<T>(sum.imag()));
  }
  return result;
}

template <class T> double norm(const Vec<T>& v) {
  return std::sqrt(std::inner_product(v->data, v->data + v.size(), v->data, 0.0));
}

// N products and sums err by 2 N eps of the norms' product, after Cauchy and Schwarz; three transforms by 4 eps
// sqrt(log2 4096) of their output's norm, which the N taps raise by no more than sqrt(N).
template <class T> double bound(const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  const double n = taps->points, gain = 2 * n + 3 * 4 * std::sqrt(12.0 * n);
  return gain * kEps<T> * norm(taps) * (norm(past) + norm(in));
}

template <class T> AssertionResult right(const Vec<T>& out, const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  return close(out, defined(past, in, taps), bound(past, in, taps), 1);
}

// Calls run(block, output, state) for blocks of random sizes below `longest`, none included, and joins the outputs.
template <class T, class Run> std::vector<T> in_blocks(const Vec<T>& in, size_t longest, unsigned seed, Run run) {
  std::minstd_rand random(seed);
  Vec<T> state;
  std::vector<T> joined;
  const size_t n = static_cast<size_t>(in->points);
  for (size_t first = 0, last; first < n; first = last) {
    last = std::min(n, first + random() % longest);
    Vec<T> block = cut(in, first, last), out;
    EXPECT_EQ(run(block, out, state), 0);
    for (const T x : out.samples()) joined.push_back(x);
  }
  return joined;
}

}  // namespace sigvex_test
