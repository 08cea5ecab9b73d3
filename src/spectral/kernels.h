// The loops of the transform engine: raw arrays and counts, no record, no status. Each CPU target fills one table.
#pragma once

#include <cstddef>

#include "spectral/twiddles.h"

namespace sigvex {

template <class T> struct EngineKernels {
  // Complex transforms of n = 2^bits interleaved points, bits > 0, at any address; table and work are aligned to
  // kAlignment bytes. Their sizes in scalars; the table holds the roots laid out in order of use.
  size_t (*table_size)(int bits);
  size_t (*work_size)(int bits);
  void (*fill_table)(int bits, const TripleTable<T>& roots, T* table);  // roots of any length that n divides
  Transform<T> (*forward)(int bits);
  Transform<T> (*inverse)(int bits);

  // The h = 2^bits points that come of transforming h pairs of neighbouring real samples as complex points, scaled by
  // half of what the result is to be: turned into bins 0 .. h of the real transform.
  size_t (*split_size)(int bits);
  void (*fill_split)(int bits, const TripleTable<T>& roots, T* table);
  void (*split)(int bits, const T* table, T* data);
};

inline constexpr size_t kAlignment = 64;

template <class T> const EngineKernels<T>& engine_kernels();  // the best for this CPU

}  // namespace sigvex
