// The loops of the generators: raw arrays and counts. Each CPU target fills one table, and all give the same bits.
#pragma once

#include <cstddef>

namespace sigvex {

template <class T> struct GenerateKernels {
  // A phasor that turns by w from point to point: its real parts as samples, or points. Computed afresh every 256
  // points and turned between, each product and sum rounded.
  using Phasor = void (*)(T* y, size_t n, double w, double phase);
  Phasor cosine, circle;
};

template <class T> const GenerateKernels<T>& generate_kernels();  // the best for this CPU

}  // namespace sigvex
