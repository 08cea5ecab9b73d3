// dspd_hwfilt dspi_hwfilt
#include <array>
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "filter/fir_sets.h"
#include "filter/operations.h"
#include "filter/symmetric_fir.h"

namespace sigvex {
namespace {

constexpr int32_t kMaxOctaves = 30;  // the chain's whole step is then the largest power of two that a count can be
bool known_chain(int32_t set, int32_t octaves) {
  return !fir_set(set).empty() && octaves >= 0 && octaves <= kMaxOctaves;
}

// Of a chain's state, by stages: the offset of its decimation, and the history of its filter.
template <class T> class StageState {
 public:
  StageState(const Vector<T>& chain, size_t stage, size_t points) {
    const size_t width = chain.complex ? 2 : 1;
    offset_ = chain.data + stage * points * width;
    history_.data = offset_ + width;
    history_.points = static_cast<int32_t>(points - 1);
    history_.complex = chain.complex;
  }

  Status run(const Vector<T>& in, const Vector<T>& half, Vector<T>& out) {
    const Kept kept(points<T>(in), start_index(*offset_), 2);
    out.delta = 2 * in.delta;
    SIGVEX_TRY(shape<T>(out, kept.count, in.complex ? 1 : 0));
    SIGVEX_TRY(filter_symmetrically<T>(in, half, &history_, kept, out));
    advance<T>(history_, in);
    *offset_ = static_cast<T>(kept.next);
    return kSuccess;
  }

 private:
  T* offset_;
  Vector<T> history_{};
};

// The zero-phase response of a chain, for some frequencies at once.
class ChainResponse {
 public:
  static constexpr size_t kAtOnce = 8;
  using Values = std::array<double, kAtOnce>;

  ChainResponse(int32_t set, int32_t octaves, double rate)
      : half_(fir_set(set)),
        octaves_(octaves),
        rate_(rate),
        out_rate_(std::ldexp(rate, -octaves)),
        passband_(fir_set_passband(set) * 2 * out_rate_) {}

  double folded(double frequency) const { return frequency > out_rate_ / 2 ? frequency - out_rate_ : frequency; }
  bool passes(double folded) const { return std::abs(folded) <= passband_; }

  Values at(const Values& folded) const {
    Values product, turn;
    product.fill(1);
    for (int stage = 0; stage < octaves_; ++stage) {
      for (size_t l = 0; l < kAtOnce; ++l) {
        const double cycles = std::ldexp(folded[l] / rate_, stage);
        turn[l] = std::cos(2 * std::numbers::pi * (cycles - std::nearbyint(cycles)));
      }
      multiply_response(turn, product);
    }
    return product;
  }

 private:
  // One stage: centre tap + the sum of 2 h[d] cos(d w), by Clenshaw's recurrence in cos(w).
  void multiply_response(const Values& turn, Values& product) const {
    Values b{}, before{};
    for (size_t k = 0; k + 1 < half_.size(); ++k) {
      for (size_t l = 0; l < kAtOnce; ++l) {
        const double next = 2 * (half_[k] + turn[l] * b[l]) - before[l];
        before[l] = b[l];
        b[l] = next;
      }
    }
    for (size_t l = 0; l < kAtOnce; ++l) product[l] *= half_.back() + turn[l] * b[l] - before[l];
  }

  std::span<const double> half_;
  int octaves_;
  double rate_, out_rate_, passband_;
};

}  // namespace

namespace dspd {

// The stages work on a copy of the state, so that one that fails leaves none of them ahead of the others.
template <class T> Status hwfilt(const Vector<T>& in, Vector<T>& out, int32_t set, int32_t octaves, Vector<T>* state) {
  if (!known_chain(set, octaves)) return kFailure;
  return run_block<T>(in, in, out, state, [=](const Vector<T>& x, const Vector<T>&, Vector<T>& y) -> Status {
    Scratch<T> half, carried, between[2];
    SIGVEX_TRY(dspc::fir2<T>(half, set));
    const size_t stages = count(octaves), stage_points = symmetric_past<T>(half) + 1;
    if (state) {
      SIGVEX_TRY(prepare_state<T>(*state, stages * stage_points, x));
      SIGVEX_TRY(dsp::copy<T>(carried, *state));
    } else {
      SIGVEX_TRY(shape<T>(carried, stages * stage_points, x.complex ? 1 : 0));
      SIGVEX_TRY(dspi::zero<T>(carried));
    }
    if (stages == 0) return dsp::copy<T>(y, x);
    for (size_t stage = 0; stage < stages; ++stage) {
      const Vector<T>& from = stage == 0 ? x : between[stage % 2];
      Vector<T>& to = stage + 1 == stages ? y : between[(stage + 1) % 2];
      SIGVEX_TRY(StageState<T>(carried, stage, stage_points).run(from, half, to));
    }
    if (state) std::copy_n(carried.data, size<T>(carried), state->data);
    return kSuccess;
  });
}

}  // namespace dspd

namespace dspi {

template <class T> Status hwfilt(Vector<T>& v, int32_t set, int32_t octaves, T sample_rate, int32_t compensate) {
  if (!known_chain(set, octaves) || !(sample_rate > 0) || std::isinf(sample_rate)) return kFailure;
  if (compensate != 0 && compensate != 1) return kFailure;
  const ChainResponse chain(set, octaves, static_cast<double>(sample_rate));
  const size_t n = points<T>(v), width = v.complex ? 2 : 1;
  for (size_t first = 0; first < n; first += ChainResponse::kAtOnce) {
    const size_t m = std::min(n - first, ChainResponse::kAtOnce);
    ChainResponse::Values folded{};
    for (size_t l = 0; l < m; ++l)
      folded[l] = chain.folded(static_cast<double>(first + l) * static_cast<double>(v.delta));
    const ChainResponse::Values gain = chain.at(folded);
    for (size_t l = 0; l < m; ++l) {
      T* const bin = v.data + (first + l) * width;
      for (size_t part = 0; part < width; ++part) {
        if (!compensate) bin[part] *= static_cast<T>(gain[l]);
        else if (chain.passes(folded[l])) bin[part] /= static_cast<T>(gain[l]);
      }
    }
  }
  return kSuccess;
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(d, hwfilt, 5)
SIGVEX_EXPORT(i, hwfilt, 5)
