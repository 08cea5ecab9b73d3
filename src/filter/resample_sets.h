// The built-in resampling kernels as the coefficients of their series.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace sigvex {

enum class Series { polynomial, cosine };

struct ResampleSet {
  Series series;
  std::span<const double> coefficients;  // the kernel's length K in input samples, then the series
  size_t steps;                          // table steps to an input sample, a power of two

  size_t length() const { return static_cast<size_t>(coefficients[0]); }
};

inline constexpr uint32_t kResampleSets = 5;
inline constexpr size_t kMaxResampleCoefficients = 40, kMaxResampleSteps = 1024;

// set is below kResampleSets.
const ResampleSet& resample_set(uint32_t set);

}  // namespace sigvex
