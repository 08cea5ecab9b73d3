// dsps_hist
#include <algorithm>
#include <array>
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "core/widest.h"
#include "elementwise/operations.h"

namespace sigvex::dsps {
namespace {

template <class T> T magnitude(Point<T> z) { return bounded(z) ? std::sqrt(magsq(z)) : Limits<T>::huge; }

// Adds one to the count of the bin that a sample falls into, if there is one.
template <class T> class Bins {
 public:
  Bins(Vector<T>& counts, T lo, T width)
      : counts_(counts.data), n_(counts.points), lo_(lo), width_(width), end_(static_cast<T>(n_)) {}

  // Their bins first, in vectors, then the counts one by one.
  void add(const T* samples, size_t n) {
    std::array<int32_t, kBatch> bins;
    for (; n > 0; n -= std::min(n, kBatch)) {
      const size_t batch = std::min(n, kBatch);
      int32_t signs = 0;
      on_widest_vectors([=, *this, &signs, to = bins.data()] {
        int32_t all = 0;
        for (size_t k = 0; k < batch; ++k) {
          to[k] = bin(position(samples[k]));
          all |= to[k];
        }
        signs = all;
      });
      const size_t found = signs < 0 ? without_none(bins.data(), batch) : batch;
      for (size_t k = 0; k < found; ++k) counts_[bins[k]] += 1;
      samples += batch;
    }
  }
  void add(const Point<T>* z, size_t n) {
    std::array<T, kBatch> levels;
    for (; n > 0; n -= std::min(n, kBatch)) {
      const size_t batch = std::min(n, kBatch);
      on_widest_vectors([=, to = levels.data()] {
        for (size_t k = 0; k < batch; ++k) to[k] = magnitude(z[k]);
      });
      add(levels.data(), batch);
      z += batch;
    }
  }

 private:
  static constexpr size_t kBatch = 512;
  // A sample on the top edge, found just outside by rounding, belongs to the last bin.
  static constexpr T kTop = 1 + 10 * Limits<T>::epsilon;

  T position(T sample) const {
    const T v = sample - lo_;
    if (width_ != 0) return v / width_;
    return v == 0 ? T(0) : Limits<T>::huge;
  }

  // Each bin takes the place of the one before it that was none: a branch for those would be mispredicted often.
  static size_t without_none(int32_t* bins, size_t n) {
    size_t found = 0;
    for (size_t k = 0; k < n; ++k) {
      bins[found] = bins[k];
      found += bins[k] >= 0;
    }
    return found;
  }

  // -1 is none.
  int32_t bin(T v) const {
    const int32_t inside = static_cast<int32_t>(v >= 0 && v < end_ ? v : T(-1));
    return v >= end_ && v < end_ * kTop ? n_ - 1 : inside;
  }

  T* counts_;
  int32_t n_;
  T lo_, width_, end_;
};

}  // namespace

template <class T> Status hist(const Vector<T>& v, Vector<T>& result, double lo, double width, int32_t bins) {
  Scratch<T> scratch;
  const bool shared = &result == &v || overlap<T>(v, result);
  Vector<T>& out = shared ? scratch : result;
  out.delta = static_cast<T>(width);
  SIGVEX_TRY(shape<T>(out, count(bins), 0));
  SIGVEX_TRY(dspi::zero<T>(out));
  Bins<T> histogram(out, static_cast<T>(lo), static_cast<T>(width));
  if (v.complex) histogram.add(reinterpret_cast<const Point<T>*>(v.data), points<T>(v));
  else histogram.add(v.data, points<T>(v));
  return shared ? dsp::copy<T>(result, scratch) : kSuccess;
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, hist, 5)
