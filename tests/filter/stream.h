// A signal in blocks through an operation with state, as a host runs it.
#pragma once

#include <numeric>

#include "support/reference_transform.h"

namespace sigvex_test {

// Points first .. last - 1.
template <class T> Vec<T> cut(const Vec<T>& v, size_t first, size_t last) {
  const size_t width = v->complex ? 2 : 1;
  Vec<T> part({v->data + first * width, v->data + last * width}, v->complex);
  part->delta = v->delta;
  return part;
}

// The definition, on the last points of `past` as the history.
template <class T> std::vector<T> defined(const Vec<T>& past, const Vec<T>& in, const Vec<T>& taps) {
  std::vector<T> result;
  for (int n = 0; n < in->points; ++n) {
    Wide sum = 0;
    for (int k = 0; k < taps->points && n - k >= -past->points; ++k) {
      sum += wide(taps, k) * (n >= k ? wide(in, n - k) : wide(past, past->points + n - k));
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

// Calls run(block, output, state), given the state as a pointer, for blocks of random sizes below `longest`, none
// included, and joins the outputs. A block of odd size is its own output; one of even size is not changed.
template <class T, class Run> std::vector<T> in_blocks(const Vec<T>& in, size_t longest, Run run) {
  std::minstd_rand random(static_cast<unsigned>(longest));
  Vec<T> state;
  std::vector<T> joined;
  const size_t n = static_cast<size_t>(in->points);
  for (size_t first = 0, last; first < n; first = last) {
    last = std::min(n, first + random() % longest);
    const Vec<T> before = cut(in, first, last);
    Vec<T> block = before, separate, &out = before->points % 2 ? block : separate;
    EXPECT_EQ(run(block, out, state.get()), 0);
    EXPECT_TRUE(&out == &block || exactly(block, before.samples()));
    for (const T x : out.samples()) joined.push_back(x);
  }
  return joined;
}

// What one call without a state gives for the whole signal, to the bit or within a tolerance.
template <class T, class Run>
Vec<T> expect_same_in_blocks(const Vec<T>& in, size_t longest, Run run, double tolerance = 0) {
  Vec<T> signal = in, whole;
  EXPECT_EQ(run(signal, whole, nullptr), 0);
  const std::vector<T> blocks = in_blocks(in, longest, run);
  EXPECT_TRUE(tolerance == 0 ? exactly(whole, blocks) : close(whole, blocks, tolerance, 1));
  return whole;
}

// A filter beside its definition with the taps that whole() writes out: in every form, with and without a history, into
// an output of its own and into each input. inspect(in, taps, past, out, state) looks further.
template <class T, class Filter, class Whole, class Inspect>
void expect_filter(size_t count, size_t n, Filter filter, Whole whole, Inspect inspect) {
  for (const unsigned forms : {0U, 1U, 2U, 3U}) {
    SCOPED_TRACE(::testing::Message() << count << " taps, " << n << " points, forms " << forms);
    Vec<T> in = noise<T>(n + 1, forms & 1), taps = noise<T>(count, forms & 2);
    const Vec<T> all = whole(taps);
    in->points = static_cast<int32_t>(n);
    in->delta = 3;
    in->complex *= 5;  // any number but 0 says complex; what a result gets is 1
    // A state of either form that may be a point short or too long, and what the filter takes it for.
    Vec<T> state = noise<T>(static_cast<size_t>(all->points) + n % 3, (count + n) & 1);
    state->points -= 2;
    std::vector<T> stream;
    for (int k = 0; k + 1 < all->points; ++k) {
      const Wide z = k < state->points ? wide(state, k) : 0;
      stream.push_back(static_cast<T>(z.real()));
      if (in->complex) stream.push_back(static_cast<T>(z.imag()));
    }
    Vec<T> past(stream, in->complex), out{7}, silent, into = in, into_taps = taps;
    for (const T x : in.samples()) stream.push_back(x);
    EXPECT_EQ(filter(in, out, taps, state), 0);
    EXPECT_TRUE(right(out, past, in, all));
    EXPECT_TRUE(out->points == in->points && out->complex == (forms != 0) && out->delta == 3 && state->delta == 3);
    EXPECT_TRUE(exactly(state, {stream.end() - static_cast<long>(past.size()), stream.end()}));
    inspect(in, taps, past, out, state);
    EXPECT_EQ(filter(in, silent, taps, nullptr), 0);
    EXPECT_TRUE(right(silent, Vec<T>(), in, all));
    EXPECT_TRUE(same(in, into) && same(taps, into_taps));
    EXPECT_EQ(filter(into, into, taps, nullptr) | filter(in, into_taps, into_taps, nullptr), 0);
    EXPECT_TRUE(exactly(into, silent.samples()) && exactly(into_taps, silent.samples()));
  }
}

}  // namespace sigvex_test
