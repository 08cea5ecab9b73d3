// The tables that transforms run on, by length.
#pragma once

#include "core/table_cache.h"
#include "spectral/workspace.h"

namespace sigvex {

// 3n/2 scalars of triples (c, -c-s, s-c), which serve a complex product of three multiplications: with c and s the
// cosine and sine of k turns / n,
//   first (1, -1, -1), then k = 0 .. n/4-1 (from k = n/8 on mirrored: the triple (s, -c-s, c-s) of n/4-k),
//   then the same triples by their use in the shorter passes: every second, every fourth, ... down to one alone.
template <class T> struct TripleTable : TableHead {
  const T* triples;
  int32_t n;

  // exp(-i k turns / n) for k < n, each part as exact as the table.
  Point<T> root(size_t k) const {
    const size_t quarter = static_cast<size_t>(n) / 4, rest = k % quarter;
    const T c = cosine(rest), s = sine(rest);
    switch (k / quarter) {
      case 0:
        return {c, -s};
      case 1:
        return {-s, -c};
      case 2:
        return {-c, s};
      default:
        return {s, c};
    }
  }

 private:
  T cosine(size_t k) const { return triples[3 * (k + 1)]; }
  T sine(size_t k) const { return k == 0 ? T(0) : cosine(static_cast<size_t>(n) / 4 - k); }
};

template <class T> struct EngineKernels;

// A transform of 2^bits points in place, every point of the result times scale.
template <class T> using Transform = void (*)(int bits, const T* roots, T* data, T* work, T scale);

// What a complex transform of 2^bits points runs on.
template <class T> struct ComplexTables : TableHead {
  const EngineKernels<T>* kernels;  // those that laid out the roots
  int bits;
  size_t work_size;  // of one transform, in scalars
  const T* roots;
  Transform<T> forward, inverse;
  mutable WorkspacePool pool, convolution_pools[2];  // for convolutions with one kernel, with two

  void release_parts() {
    pool.release();
    for (WorkspacePool& each : convolution_pools) each.release();
  }
};

// A real transform in place, its result times scale; work is that of the complex one of half the length.
template <class T> struct RealTables;
template <class T> using RealTransform = void (*)(const RealTables<T>& tables, T* data, T* work, T scale);

// What a real transform of 2^bits samples runs on: half as many complex points, and the roots that split them.
template <class T> struct RealTables : TableHead {
  const ComplexTables<T>* half;
  const T* roots;
  RealTransform<T> forward, inverse;
};

// Leases for n = 2^bits > 2; empty when memory is exhausted.
template <class T> Lease<ComplexTables<T>> complex_tables(int bits);
template <class T> Lease<RealTables<T>> real_tables(int bits);

}  // namespace sigvex
