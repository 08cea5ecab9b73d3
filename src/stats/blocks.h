// Reductions over the points of a vector in blocks of 2048. Each block starts afresh and runs in order, and the
// finished blocks are joined in order: that bounds the rounding of long sums and fixes every bit of them. Since no
// block depends on another, several are reduced side by side, which hides the latency of the additions and changes no
// result.
#pragma once

#include <array>

#include "core/vector.h"

namespace sigvex {

inline constexpr size_t kBlock = 2048;

// `Side` neighbouring blocks of `length` points each, the first from point `first` on.
template <size_t Side, class State, class Step, class Join>
void reduce_side_by_side(State& total, const State& start, size_t first, size_t length, Step step, Join join) {
  std::array<State, Side> block;
  block.fill(start);
  for (size_t k = first; k < first + length; ++k) {
    for (size_t b = 0; b < Side; ++b) step(block[b], k + b * kBlock);
  }
  for (const State& finished : block) join(total, finished);
}

// step(state, k) takes point k into the state of its block, join(total, state) a finished block into the total; every
// block and the total begin as `start`.
template <class State, class Step, class Join> State reduce_blocks(size_t n, const State& start, Step step, Join join) {
  State total = start;
  size_t k = 0;
  for (; n - k >= 8 * kBlock; k += 8 * kBlock) reduce_side_by_side<8>(total, start, k, kBlock, step, join);
  for (; n - k >= 2 * kBlock; k += 2 * kBlock) reduce_side_by_side<2>(total, start, k, kBlock, step, join);
  for (; k < n; k += kBlock) reduce_side_by_side<1>(total, start, k, n - k < kBlock ? n - k : kBlock, step, join);
  return total;
}

template <class T, size_t Count> using Sums = std::array<T, Count>;

// Several sums in one pass: terms(k) gives what point k adds to each.
template <class T, size_t Count, class Terms> Sums<T, Count> block_sums(size_t n, Terms terms) {
  const auto add = [](Sums<T, Count>& sums, const Sums<T, Count>& more) {
    for (size_t s = 0; s < Count; ++s) sums[s] += more[s];
  };
  return reduce_blocks(
      n, Sums<T, Count>{}, [&](Sums<T, Count>& sums, size_t k) { add(sums, terms(k)); }, add);
}

}  // namespace sigvex
