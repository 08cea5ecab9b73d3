// dsph_rsmp dsph_rsmp_get_delay_pts dsph_rsmp_get_in_pts dsph_rsmp_get_out_pts dsph_rsmp_get_settle_pts
#include <algorithm>
#include <utility>

#include "core/exports.h"
#include "elementwise/operations.h"
#include "filter/resample_objects.h"

namespace sigvex {
namespace {

template <class T> bool serves(const Coef<T>& coef, double ratio) {
  return coef.length > 0 && ratio > 0 && ratio <= coef.max_ratio;
}

// A count of halves of the input's spacing.
Fixed halves(size_t n) { return to_fixed(n) >> 1; }

// Where the kernel ends that an output at position 0 is made with: so much later than the middle of the span.
template <class T> Fixed half_kernel(const Coef<T>& coef, Fixed step) {
  return count(coef.length) * std::max(step, to_fixed(size_t{1})) / 2;
}

// The history of a state: for each part of a point a row of the last span points and of a piece of the next block.
template <class T> class History {
 public:
  explicit History(State<T>& state) : data_(state.history.data), span_(count(state.span)), parts_(count(state.parts)) {}

  // Long enough that the points which two pieces share weigh little.
  static size_t piece(size_t span) { return std::max<size_t>(1024, 2 * span); }
  static size_t row_length(size_t span) { return span + piece(span) + kResampleSlack; }

  size_t piece() const { return piece(span_); }
  size_t row_length() const { return row_length(span_); }
  size_t parts() const { return parts_; }
  T* row(size_t part) const { return data_ + part * row_length(); }

  void append(const T* x, size_t n) const {
    for (size_t part = 0; part < parts_; ++part) {
      T* const to = row(part) + span_;
      for (size_t k = 0; k < n; ++k) to[k] = x[k * parts_ + part];
    }
  }
  void drop_oldest(size_t n) const {
    for (size_t part = 0; part < parts_; ++part) std::copy_n(row(part) + n, span_, row(part));
  }

 private:
  T* data_;
  size_t span_, parts_;
};

// Brings a state to the span of the coefficients and to a form; the last points stay.
template <class T> Status prepare(State<T>& state, const Coef<T>& coef, int32_t parts) {
  if (state.span == coef.span && state.parts == parts) return kSuccess;
  State<T> fresh = state;
  fresh.span = coef.span;
  fresh.parts = parts;
  Scratch<T> rows;
  SIGVEX_TRY(shape<T>(rows, count(parts) * History<T>::row_length(count(coef.span)), 0));
  std::fill_n(rows.data, size<T>(rows), T(0));
  fresh.history = rows;
  const size_t old = count(state.span), span = count(coef.span), kept = std::min(old, span);
  for (size_t part = 0; part < count(std::min(parts, state.parts)); ++part) {
    std::copy_n(History<T>(state).row(part) + (old - kept), kept, History<T>(fresh).row(part) + (span - kept));
  }
  static_cast<Vector<T>&>(rows) = std::exchange(state, fresh).history;
  return kSuccess;
}

// The outputs of a piece, the first at position q behind its first point. Up to a ratio of 1 each output is gathered;
// above, the points are scattered over the outputs.
template <class T> class Resampler {
 public:
  Resampler(const Coef<T>& coef, const History<T>& history, Fixed step)
      : bank_(bank_of<T>(coef)),
        history_(history),
        step_(step),
        half_(half_kernel<T>(coef, step)),
        span_(count(coef.span)) {}

  Status reserve(size_t outputs_of_piece) {
    const size_t sums = outputs_of_piece + kResampleSlack;
    return stretched() ? shape<T>(sums_, (sums * sizeof(double) + kRowBytes) / sizeof(T), 0) : kSuccess;
  }

  void run(Fixed q, T* y, size_t n) {
    if (n == 0) return;
    const Fixed middle = q + halves(span_);  // counted from the oldest point of the history
    if (!stretched()) {
      const Fixed oldest = middle - half_ + to_fixed(size_t{1});
      return kernels_.gather(bank_, history_.row(0), history_.row_length(), history_.parts(), oldest, step_, y, n);
    }
    double* const sums = reinterpret_cast<double*>(aligned<T>(sums_));
    for (size_t part = 0; part < history_.parts(); ++part) {
      std::fill_n(sums, n + kResampleSlack, 0.0);
      kernels_.scatter(bank_, history_.row(part), middle + half_, step_, sums, n);
      for (size_t k = 0; k < n; ++k) y[k * history_.parts() + part] = static_cast<T>(sums[k]);
    }
  }

 private:
  bool stretched() const { return step_ > to_fixed(size_t{1}); }

  const ResampleBank<T> bank_;
  const History<T> history_;
  const Fixed step_, half_;
  const size_t span_;
  const ResampleKernels<T>& kernels_ = resample_kernels<T>();
  Scratch<T> sums_;
};

// Into an output that shares nothing with the input.
template <class T>
Status resample(const Vector<T>& in, Vector<T>& out, const Coef<T>& coef, double ratio, State<T>& state) {
  const Fixed step = to_fixed(ratio);
  Fixed q = position<T>(state);
  const size_t n = points<T>(in);
  out.delta = static_cast<T>(ratio * static_cast<double>(in.delta));
  SIGVEX_TRY(shape<T>(out, outputs(q, step, n), in.complex ? 1 : 0));
  const auto emptied = [&] {
    out.points = 0;
    return kFailure;
  };
  if (prepare<T>(state, coef, in.complex ? 2 : 1) < 0) return emptied();
  const History<T> history(state);
  Resampler<T> resampler(coef, history, step);
  const size_t piece = std::min(history.piece(), n);
  if (resampler.reserve(std::min(points<T>(out), outputs(0, step, piece))) < 0) return emptied();
  T* y = out.data;
  for (size_t at = 0; at < n; at += piece) {
    const size_t fresh = std::min(piece, n - at), made = outputs(q, step, fresh);
    history.append(in.data + at * history.parts(), fresh);
    resampler.run(q, y, made);
    y += made * history.parts();
    q += made * step - to_fixed(fresh);
    history.drop_oldest(fresh);
  }
  set_position<T>(state, q);
  return kSuccess;
}

}  // namespace

namespace dsph {

template <class T>
Status rsmp(const Vector<T>& in, Vector<T>& out, const Coef<T>& coef, double ratio, State<T>& state) {
  if (!serves<T>(coef, ratio)) return kFailure;
  if (!shares<T>(in, out)) return resample<T>(in, out, coef, ratio, state);
  Scratch<T> result;
  SIGVEX_TRY(resample<T>(in, result, coef, ratio, state));
  // The state has taken the block: what is left to do cannot fail.
  leave_to_owner<T>(in, out, size<T>(result));
  if (size<T>(result) > count(out.allocated)) {
    std::swap(out, static_cast<Vector<T>&>(result));
    out.reserved = result.reserved;
    return kSuccess;
  }
  return dsp::copy<T>(out, result);
}

template <class T> Status rsmp_get_delay_pts(const Coef<T>& coef, double& delay) {
  if (coef.length <= 0) return kFailure;
  delay = 0.5 * coef.span;
  return kSuccess;
}

template <class T> Status rsmp_get_in_pts(const State<T>& state, double ratio, int32_t out_points, int32_t& in_points) {
  if (!(ratio > 0)) return kFailure;
  const size_t n = count(out_points), earlier = n > 0 ? n - 1 : 0;
  const Fixed q = position<T>(state), step = to_fixed(ratio), most = to_fixed(kMaxScalars);
  if (n > 0 && (q >= most || (earlier > 0 && step > (most - q - 1) / earlier))) return kFailure;
  in_points = n > 0 ? static_cast<int32_t>(whole(q + earlier * step) + 1) : 0;
  return kSuccess;
}

template <class T>
Status rsmp_get_out_pts(const State<T>& state, double ratio, int32_t in_points, int32_t& out_points) {
  if (!(ratio > 0)) return kFailure;
  const size_t n = outputs(position<T>(state), to_fixed(ratio), count(in_points));
  if (!fits(n)) return kFailure;
  out_points = static_cast<int32_t>(n);
  return kSuccess;
}

template <class T>
Status rsmp_get_settle_pts(const Coef<T>& coef, const State<T>& state, double ratio, int32_t& settle_points) {
  if (!serves<T>(coef, ratio)) return kFailure;
  // An output at q begins behind q - span / 2 - half a kernel; a point at -1 must no longer be in it.
  const Fixed step = to_fixed(ratio), touched = halves(count(coef.span)) + half_kernel<T>(coef, step),
              one = to_fixed(size_t{1}), q = position<T>(state);
  const Fixed steps = touched < one || q >= touched - one ? 0
                      : step > 0                          ? (touched - one - q + step - 1) / step
                                                          : touched;
  if (steps > kMaxScalars) return kFailure;
  settle_points = static_cast<int32_t>(steps);
  return kSuccess;
}

}  // namespace dsph
}  // namespace sigvex

SIGVEX_EXPORT(h, rsmp, 5)
SIGVEX_EXPORT(h, rsmp_get_delay_pts, 2)
SIGVEX_EXPORT(h, rsmp_get_in_pts, 4)
SIGVEX_EXPORT(h, rsmp_get_out_pts, 4)
SIGVEX_EXPORT(h, rsmp_get_settle_pts, 4)
