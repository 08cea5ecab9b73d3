// The table of roots of unity of one length.
#pragma once

#include "core/table_cache.h"

namespace sigvex {

// 3n/2 scalars of triples (c, -c-s, s-c), which serve a complex product of three multiplications: with c and s the
// cosine and sine of k turns / n,
//   first (1, -1, -1), then k = 0 .. n/4-1 (from k = n/8 on mirrored: the triple (s, -c-s, c-s) of n/4-k),
//   then the same triples by their use in the shorter passes: every second, every fourth, ... down to one alone.
template <class T> struct TripleTable : TableHead {
  const T* triples;
  int32_t n;

  // exp(-i k turns / n) for k < n/2, each part as exact as the table.
  Point<T> root(size_t k) const {
    const size_t quarter = static_cast<size_t>(n) / 4;
    return k < quarter ? Point<T>{cosine(k), -sine(k)} : Point<T>{-sine(k - quarter), -cosine(k - quarter)};
  }

 private:
  T cosine(size_t k) const { return triples[3 * (k + 1)]; }
  T sine(size_t k) const { return k == 0 ? T(0) : cosine(static_cast<size_t>(n) / 4 - k); }
};

// The table for length n = 2^bits > 2, in use as long as the lease lives; empty when memory is exhausted.
template <class T> Lease<TripleTable<T>> triple_table(int bits);

}  // namespace sigvex
