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

  // Real transforms of 2h samples, h = 2^bits: the samples to bins 0 .. h and back, which needs room for h + 1 points.
  // The table is what they need beside that of the complex transform of h points.
  size_t (*split_size)(int bits);
  void (*fill_split)(int bits, const TripleTable<T>& roots, T* table);
  RealTransform<T> (*real_forward)(int bits);
  RealTransform<T> (*real_inverse)(int bits);
};

inline constexpr size_t kAlignment = 64;

template <class T> const EngineKernels<T>& engine_kernels();  // the best for this CPU

}  // namespace sigvex
