// The fixed low-pass filters of dspc_fir2.
#pragma once

#include <cstdint>
#include <span>

namespace sigvex {

// The first half of a filter's taps, the centre last; empty for a code that stands for none.
std::span<const double> fir_set(int32_t code);

// Where a set's filter falls below half power, in cycles per sample, cut to three digits; no more than a quarter, half
// of the rate after a decimation by two. The code stands for a set.
double fir_set_passband(int32_t code);

}  // namespace sigvex
