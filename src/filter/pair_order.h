// The order in which a symmetric filter adds the pairs of samples that share a tap.
#pragma once

#include <algorithm>
#include <cstddef>

namespace sigvex {

// The places of a vector of 512 bits, on which the order rests for every CPU target, for points of one or two scalars.
template <class T> constexpr size_t pair_period(size_t width) { return 64 / sizeof(T) >> (width - 1); }

// add(e) for the distances 1 .. reach of a pair from the filter's centre. Within one or two periods those follow one
// another whose samples lie alike in a vector: before the centre as many places from a vector's edge as behind it.
template <class Add> [[gnu::always_inline]] inline void for_each_pair(size_t reach, size_t period, Add add) {
  for (size_t first = 0; first <= reach;) {
    const size_t here = reach + 1 - first, periods = here < 2 * period ? 1 : 2;
    for (size_t near = 0; near <= period / 2; ++near) {
      for (size_t q = 0; q < periods; ++q) {
        const size_t start = first + q * period, far = period - near;
        if (near < here && start + near > 0) add(start + near);
        if (far < here && far < period && far > near) add(start + far);
      }
    }
    first += periods * period;
  }
}

}  // namespace sigvex
