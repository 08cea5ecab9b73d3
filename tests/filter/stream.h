// A signal in blocks through an operation with state, as a host runs it.
#pragma once

#include <algorithm>
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
