// dsps_hist
#include <algorithm>
#include <array>
#include <cstdint>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "stats/kernels.h"

namespace sigvex::dsps {
namespace {

template <class T> void count_few(const Vector<T>& v, const Bins<T>& bins, T* counts) {
  constexpr double kMost = 2 / double{Limits<T>::epsilon};  // adding one does not change it
  Tally tally;
  for (auto& row : tally.counts) std::fill_n(row, 1 + bins.n, 0);
  const auto& kernels = stats_kernels<T>();
  (v.complex ? kernels.count_points : kernels.count_samples)(v.data, points<T>(v), bins, tally);
  for (int32_t bin = 0; bin < bins.n; ++bin) {
    uint32_t sum = 0;
    for (const auto& row : tally.counts) sum += row[1 + bin];
    counts[bin] = static_cast<T>(std::min<double>(sum, kMost));
  }
}

// Each bin takes the place of the one before it that was none: a branch for those would be mispredicted often.
size_t without_none(int32_t* bins, size_t n) {
  size_t found = 0;
  for (size_t k = 0; k < n; ++k) {
    bins[found] = bins[k];
    found += bins[k] >= 0;
  }
  return found;
}

template <class T> void count_many(const Vector<T>& v, const Bins<T>& bins, T* counts) {
  constexpr size_t kBatch = 512;
  std::array<int32_t, kBatch> found;
  const auto& kernels = stats_kernels<T>();
  const auto find = v.complex ? kernels.bins_of_points : kernels.bins_of_samples;
  const size_t width = v.complex ? 2 : 1, n = points<T>(v);
  for (size_t k = 0; k < n; k += kBatch) {
    const size_t batch = std::min(n - k, kBatch);
    find(v.data + width * k, batch, bins, found.data());
    int32_t signs = 0;
    for (size_t i = 0; i < batch; ++i) signs |= found[i];
    const size_t counted = signs < 0 ? without_none(found.data(), batch) : batch;
    for (size_t i = 0; i < counted; ++i) counts[found[i]] += 1;
  }
}

}  // namespace

template <class T> Status hist(const Vector<T>& v, Vector<T>& result, double lo, double width, int32_t bins) {
  Scratch<T> scratch;
  const bool shared = &result == &v || overlap<T>(v, result);
  Vector<T>& out = shared ? scratch : result;
  out.delta = static_cast<T>(width);
  SIGVEX_TRY(shape<T>(out, count(bins), 0));
  SIGVEX_TRY(dspi::zero<T>(out));
  const Bins<T> where{static_cast<T>(lo), static_cast<T>(width), out.points};
  const bool few = count(bins) <= Tally::kMost && points<T>(v) >= 4 * std::max(count(bins), size_t{128});
  few ? count_few<T>(v, where, out.data) : count_many<T>(v, where, out.data);
  return shared ? dsp::copy<T>(result, scratch) : kSuccess;
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, hist, 5)
