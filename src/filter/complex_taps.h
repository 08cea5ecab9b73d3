// Sums with complex taps from sums with real ones.
#pragma once

#include <algorithm>

#include "core/vector.h"
#include "core/widest.h"

namespace sigvex {

// n outputs y by complex taps: sums(part, start, to, m) leaves in `to` the scalars start .. start + m - 1 of the sums
// by the taps' real (0) or imaginary parts (1) on the samples as they lie, which are complex points or real.
template <class T, class Sums> void by_parts(int32_t complex, T* y, size_t n, Sums sums) {
  constexpr size_t kBlock = 512;
  T by_re[kBlock], by_im[kBlock];
  const size_t width = complex ? 2 : 1;
  for (size_t start = 0; start < n * width; start += kBlock) {
    const size_t m = std::min(kBlock, n * width - start);
    sums(0, start, by_re, m);
    sums(1, start, by_im, m);
    on_widest_vectors(m, [=, re = by_re, im = by_im] {
      if (complex) {
        for (size_t k = 0; k < m; k += 2) {
          y[k] = re[k] - im[k + 1];
          y[k + 1] = re[k + 1] + im[k];
        }
      } else {
        for (size_t k = 0; k < m; ++k) {
          y[2 * k] = re[k];
          y[2 * k + 1] = im[k];
        }
      }
    });
    y += complex ? m : 2 * m;
  }
}

}  // namespace sigvex
