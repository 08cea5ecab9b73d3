// dspd_sfir dspd_sfir_deci
#include "filter/symmetric_fir.h"

#include <vector>

#include "core/exports.h"
#include "filter/complex_taps.h"
#include "filter/kernels.h"
#include "filter/operations.h"
#include "filter/pair_order.h"

namespace sigvex {
namespace {

// The pairs where point k of those that an output reaches back to lies at place(k), of points of `width` scalars.
template <class T, class Place> std::vector<Pair> pairs_at(const Vector<T>& half, size_t width, Place place) {
  const size_t reach = points<T>(half) - 1, tap_width = half.complex ? 2 : 1;
  std::vector<Pair> pairs;
  pairs.reserve(reach + 1);
  const auto add = [&](size_t e) { pairs.push_back({place(reach - e), place(reach + e), (reach - e) * tap_width}); };
  add(0);
  for_each_pair(reach, pair_period<T>(width), add);
  return pairs;
}

// n outputs y, the oldest sample of the first at x.
template <class T> void convolve(const T* x, int32_t complex, const Vector<T>& half, T* y, size_t n) {
  const size_t width = complex ? 2 : 1, tap_width = half.complex ? 2 : 1;
  const std::vector<Pair> pairs = pairs_at<T>(half, width, [width](size_t k) { return k * width; });
  const auto sums = [&](size_t part, size_t start, T* to, size_t m) {
    filter_kernels<T>().convolve_symmetric(x + start, width, pairs.data(), pairs.size(), half.data + part, tap_width,
                                           to, m);
  };
  if (half.complex) by_parts<T>(complex, y, n, sums);
  else sums(0, 0, y, n * width);
}

// n outputs y, `step` points apart, the oldest sample of the first at x. A decimation computes on the points in the
// order of their place within a step, every step-th one from r on in row r: the samples that one tap meets in
// neighbouring outputs are then neighbours.
template <class T> void convolve(const T* x, int32_t complex, const Vector<T>& half, size_t step, T* y, size_t n) {
  if (step == 1) return convolve<T>(x, complex, half, y, n);
  const size_t width = complex ? 2 : 1, out_width = complex || half.complex ? 2 : 1, past = symmetric_past<T>(half);
  const size_t rows = std::min(step, past + 1), tile = std::min(n, std::max<size_t>(128, 4096 / rows));
  const size_t row = tile + past / step;
  const auto place = [=](size_t k) { return (k % step * row + k / step) * width; };
  const std::vector<Pair> pairs = pairs_at<T>(half, width, place);
  std::vector<T> sorted(rows * row * width);
  const auto sums = [&](size_t part, size_t start, T* to, size_t m) {
    filter_kernels<T>().convolve_pairs(sorted.data() + start, pairs.data(), pairs.size(), half.data + part, to, m);
  };
  for (size_t done = 0; done < n; done += tile) {
    const size_t m = std::min(tile, n - done);
    for (size_t r = 0; r < rows; ++r) {
      const T* from = x + (done * step + r) * width;
      T* to = sorted.data() + r * row * width;
      // The last outputs have no use for the last places of the rows that begin beyond their reach.
      for (size_t k = 0, count = m + (past - r) / step; k < count; ++k, from += step * width)
        for (size_t part = 0; part < width; ++part) *to++ = from[part];
    }
    if (half.complex) by_parts<T>(complex, y + done * out_width, m, sums);
    else sums(0, 0, y + done * out_width, m * width);
  }
}

}  // namespace

template <class T>
Status filter_symmetrically(const Vector<T>& in, const Vector<T>& half, const Vector<T>* history, const Kept& kept,
                            Vector<T>& out) {
  const size_t past = symmetric_past<T>(half), seam_size = kept.step == 1 ? std::max(past, kWholeTile) : past;
  const size_t head = std::min(seam_size, points<T>(in));
  const size_t width = in.complex ? 2 : 1, out_width = out.complex ? 2 : 1;
  const size_t at_seam = Kept(head, kept.start, kept.step).count, rest = kept.start + at_seam * kept.step;
  if (at_seam > 0) {
    Scratch<T> seam;
    SIGVEX_TRY(join<T>(seam, history, past, in, head));
    convolve<T>(seam.data + kept.start * width, in.complex, half, kept.step, out.data, at_seam);
  }
  if (kept.count > at_seam)
    convolve<T>(in.data + (rest - past) * width, in.complex, half, kept.step, out.data + at_seam * out_width,
                kept.count - at_seam);
  return kSuccess;
}
template Status filter_symmetrically<double>(const dsp_vector&, const dsp_vector&, const dsp_vector*, const Kept&,
                                             dsp_vector&);
template Status filter_symmetrically<float>(const dspf_vector&, const dspf_vector&, const dspf_vector*, const Kept&,
                                            dspf_vector&);

namespace dspd {

template <class T> Status sfir(const Vector<T>& in, Vector<T>& out, const Vector<T>& half, Vector<T>* state) {
  if (half.points < 1) return dsp::copy<T>(out, in);
  return run_block<T>(in, half, out, state, [state](const Vector<T>& x, const Vector<T>& h, Vector<T>& y) -> Status {
    if (state) SIGVEX_TRY(prepare_state<T>(*state, symmetric_past<T>(h), x));
    y.delta = x.delta;
    SIGVEX_TRY(shape<T>(y, points<T>(x), x.complex || h.complex));
    SIGVEX_TRY(filter_symmetrically<T>(x, h, state, Kept(points<T>(x), 0, 1), y));
    if (state) advance<T>(*state, x);
    return kSuccess;
  });
}

template <class T>
Status sfir_deci(const Vector<T>& in, Vector<T>& out, const Vector<T>& half, int32_t factor, Vector<T>* state,
                 Vector<T>* offset) {
  if (half.points < 1) return deci<T>(in, out, factor, offset);
  if (state && offset && shares<T>(*state, *offset)) return kFailure;
  const size_t step = decimation_step(factor), start = start_index<T>(offset);
  const auto run = [=](const Vector<T>& x, const Vector<T>& h, Vector<T>& y) -> Status {
    const Kept kept(points<T>(x), start, step);
    if (state) SIGVEX_TRY(prepare_state<T>(*state, symmetric_past<T>(h), x));
    if (offset) SIGVEX_TRY(prepare_state<T>(*offset, 1, x));
    y.delta = static_cast<T>(step) * x.delta;
    SIGVEX_TRY(shape<T>(y, kept.count, x.complex || h.complex));
    SIGVEX_TRY(filter_symmetrically<T>(x, h, state, kept, y));
    if (state) advance<T>(*state, x);
    leave_offset<T>(offset, kept.next);
    return kSuccess;
  };
  return run_block<T>(in, half, out, state, run, offset);
}

}  // namespace dspd
}  // namespace sigvex

SIGVEX_EXPORT(d, sfir, 4)
SIGVEX_EXPORT(d, sfir_deci, 6)
