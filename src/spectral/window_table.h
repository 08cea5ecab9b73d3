// The 32 window types: the family of each, and the numbers it is made of.
#pragma once

#include <array>
#include <cstdint>

namespace sigvex {

enum class Family : uint8_t { cosine_sum, triangle, kaiser, gauss, sinc, tukey, cosine_lobe };

// w = sum of a[k] cos(2 pi k d / N) over the distance d from the centre, with one set of a[k] for each normalisation.
struct CosineSum {
  int terms;
  std::array<std::array<double, 7>, 3> modes;  // unity mean, unity RMS, unity peak
};

struct WindowType {
  Family family;
  double constant;       // Kaiser: beta; Gauss: width; sinc: width; Tukey: fraction
  const CosineSum* sum;  // the family of that name only
};

// By the value of the type.
extern const std::array<WindowType, 32> kWindowTypes;

}  // namespace sigvex
