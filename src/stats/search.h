// The search for the first of the best among levels: samples, or capped squared magnitudes of points.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "core/limits.h"
#include "core/widest.h"
#include "stats/blocks.h"
#include "stats/kernels.h"

namespace sigvex {

template <class T> struct Levels {
  const Vector<T>& v;

  size_t count() const { return points<T>(v); }
  T operator[](size_t k) const { return v.complex ? magsq_capped(point<T>(v, k)) : v.data[k]; }
  const T* from(size_t k) const { return v.data + (v.complex ? 2 * k : k); }
};

// The best level so far, none having been better than the start while not found.
template <class T> struct Best {
  T level;
  bool found = false;
  size_t from = 0;  // the first place from here on that has the level

  void take(T better, size_t k) { *this = {better, true, k}; }

  // Its place. Left to the end, so that a rising sequence does not have it looked up in every block.
  size_t index(const Levels<T>& y) const {
    size_t k = from;
    if (!found || level != level) return k;
    if (!y.v.complex)
      on_widest_vectors(y.count() - k, [&k, x = y.v.data, n = y.count(), sought = level] {
        using Flag = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
        constexpr size_t kAtOnce = 64;
        for (Flag here = 0; k + kAtOnce <= n; k += kAtOnce) {
          for (size_t j = k; j < k + kAtOnce; ++j) here |= x[j] == sought;
          if (here) break;
        }
      });
    while (y[k] != level) ++k;
    return k;
  }
};

template <class T> auto improvement(const Levels<T>& y, bool largest) {
  const StatsKernels<T>& k = stats_kernels<T>();
  if (y.v.complex) return largest ? k.largest_point : k.smallest_point;
  return largest ? k.largest : k.smallest;
}

// Where samples are or the best is no number, one_by_one(best, first, n) may see to the block instead.
template <class T, class OneByOne> Best<T> search(const Levels<T>& y, bool largest, T start, OneByOne one_by_one) {
  const auto improve = improvement(y, largest);
  Best<T> best{start};
  for (size_t k = 0, end = y.count(); k < end; k += kBlock) {
    const size_t n = std::min(kBlock, end - k);
    T level = best.level;
    const bool nan = improve(y.from(k), n, level) || best.level != best.level;
    if (nan && one_by_one(best, k, n)) continue;
    if (level != best.level) best.take(level, k);
  }
  return best;
}

}  // namespace sigvex
