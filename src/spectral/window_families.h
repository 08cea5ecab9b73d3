// What a window is made of before it meets a vector: the choice that type, flags and parameter stand for, its weights
// and the factor of its normalisation.
#pragma once

#include "core/vector.h"
#include "spectral/window_table.h"

namespace sigvex {

// One fully chosen window; only the number of points is left open.
struct WindowShape {
  Family family = Family::cosine_sum;
  uint32_t mode = 0;  // 0 unity mean, 1 unity RMS, 2 unity peak
  const CosineSum* sum = nullptr;
  double constant = 0;     // as in WindowType
  double scale = 0;        // Kaiser: the peak; sinc: the argument at the edge of its width
  double width = 0;        // in samples; 0: the whole frame
  bool symmetric = false;  // about (N-1)/2 instead of N/2

  bool operator==(const WindowShape&) const = default;

  bool stored() const { return sum && width == 0; }  // its coefficients are normalised already
  bool uniform() const { return stored() && sum->terms == 1; }
};

// Each choice is refused with -1 where the family has no such window. Kaiser's beta is taken as it is: its limits
// depend on the precision.
Status choose_window(uint32_t type, uint32_t flags, double parameter, WindowShape& shape);
Status choose_cosine_lobe(uint32_t flags, WindowShape& shape);
Status choose_gauss(uint32_t flags, double width, WindowShape& shape);
Status choose_kaiser(uint32_t flags, double beta, WindowShape& shape);
Status choose_sinc(uint32_t flags, double width, double scale, WindowShape& shape);
Status choose_tukey(uint32_t flags, double fraction, WindowShape& shape);

// The number by which the window of n points with unit peak is multiplied for the shape's mode. Fails where there is
// none: no points, or a mean or RMS of zero.
Status window_factor(const WindowShape& shape, size_t n, double& factor);

// The n weights of a window; computed in double, rounded once.
template <class T> Status window_weights(const WindowShape& shape, size_t n, T* weights);

}  // namespace sigvex
