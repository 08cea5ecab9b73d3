// dspd_rsmp dspd_rsmp2
#include <atomic>
#include <bit>

#include "core/exports.h"
#include "core/locks.h"
#include "filter/operations.h"
#include "filter/resample_kernels.h"
#include "filter/resample_sets.h"
#include "filter/state.h"

namespace sigvex {
namespace {

constexpr uint8_t kNearest = 0, kLinear = 1;

// The state: three scalars that add up to the distance from the next block's start to the next output, then the last
// K - 1 points of the input, oldest first.
constexpr int32_t kPositionPoints = 3;

template <class T> Fixed position(const Vector<T>* state) {
  Fixed sum = 0;
  if (!state) return sum;
  for (size_t k = 0; k < count(kPositionPoints); ++k) {
    sum += to_fixed(static_cast<double>(state->complex ? point<T>(*state, k).re : state->data[k]));
  }
  return sum;
}

template <class T> void set_position(Vector<T>& state, Fixed x) {
  for (size_t k = 0; k < count(kPositionPoints); ++k) {
    const T part = take_leading<T>(x);
    if (state.complex) set_point<T>(state, k, {part, T(0)});
    else state.data[k] = part;
  }
}

template <class T> Vector<T> history(const Vector<T>& state) {
  Vector<T> view = state;
  view.allocated = 0;
  view.points -= kPositionPoints;
  view.data += kPositionPoints * (state.complex ? 2 : 1);
  return view;
}

// One output for each position p, made of the K points up to its whole part, with weights for its fraction: by
// run(x, p, step, y, n) for n of them, where x is the oldest point of an output at position 0.
template <class T, class Run>
Status resample(const Vector<T>& in, Vector<T>& out, size_t length, double ratio, Vector<T>* state, Run run) {
  if (!fits(length)) return kFailure;
  if (state) SIGVEX_TRY(prepare_state<T>(*state, length + 2, in));
  const Fixed step = to_fixed(ratio);
  const Fixed p = position<T>(state);
  const size_t n = points<T>(in), past = length - 1, head = std::min(past, n), width = in.complex ? 2 : 1;
  out.delta = static_cast<T>(ratio * static_cast<double>(in.delta));
  SIGVEX_TRY(shape<T>(out, outputs(p, step, n), in.complex ? 1 : 0));
  Vector<T> before = state ? history<T>(*state) : Vector<T>{};
  Scratch<T> seam;
  SIGVEX_TRY(join<T>(seam, state ? &before : nullptr, past, in, head));
  const size_t all = points<T>(out), at_seam = outputs(p, step, head);
  run(seam.data, p, step, out.data, at_seam);
  if (all > at_seam) {
    run(in.data, p + at_seam * step - to_fixed(past), step, out.data + at_seam * width, all - at_seam);
  }
  if (!state) return kSuccess;
  advance<T>(before, in);
  set_position<T>(*state, p + all * step - to_fixed(n));
  return kSuccess;
}

// The built-in kernels as tables. Constants once they are built, so that a call neither builds nor locks.
template <class T> struct BuiltIn {
  std::atomic<bool> built;
  alignas(64) T rows[(row_place(kMaxResampleSteps) + 1) * kWeightRow];
};
template <class T> constinit BuiltIn<T> built_ins[kResampleSets]{};

template <class T> Status build(uint32_t set) {
  BuiltIn<T>& table = built_ins<T>[set];
  if (table.built.load(std::memory_order_acquire)) return kSuccess;
  const WorkLock lock;
  if (table.built.load(std::memory_order_relaxed)) return kSuccess;
  const size_t length = resample_set(set).length(), steps = resample_set(set).steps;
  Scratch<T> kernel;
  kernel.points = static_cast<int32_t>(2 + steps * length);
  SIGVEX_TRY(dspc::rsmp<T>(kernel, set));
  for (size_t row = 0; row <= steps; ++row) {
    for (size_t k = 0; k < length; ++k) {
      const T* const w = kernel.data + (1 + (length - 1 - k) * steps + row);
      T* const to = table.rows + (row_place(row) * kWeightRow + weight_place(k, length));
      to[0] = w[0];
      to[kGroup] = row < steps ? w[1] - w[0] : T(0);
    }
  }
  table.built.store(true, std::memory_order_release);
  return kSuccess;
}

template <class T> bool supports(uint8_t mode, const Vector<T>& in) {
  return mode == kLinear || (mode == kNearest && !in.complex);
}

// The weights of K points for an output at the fraction f after the newest of them, read from a kernel of `steps` steps
// over K samples. Where K does not divide the steps, the points fall between them each at a place of its own.
template <class T> void read_weights(const Vector<T>& kernel, size_t length, uint8_t mode, double f, T* weights) {
  const T* const table = kernel.data + 1;
  const size_t steps = points<T>(kernel) - 2, last = steps;
  const double k_steps = static_cast<double>(steps) / static_cast<double>(length), shift = f * k_steps;
  size_t base = 0, rest = 0;
  for (size_t k = length; k-- > 0;) {
    const double place = static_cast<double>(rest) / static_cast<double>(length) + shift;
    if (mode == kNearest) {
      weights[k] = table[std::min(base + static_cast<size_t>(place + 0.5), last)];
    } else {
      const size_t whole_steps = static_cast<size_t>(place), at = std::min(base + whole_steps, last);
      const T a = table[at], b = table[std::min(at + 1, last)];
      weights[k] = a + static_cast<T>(place - static_cast<double>(whole_steps)) * (b - a);
    }
    base += steps / length;
    rest += steps % length;
    if (rest >= length) {
      rest -= length;
      ++base;
    }
  }
}

}  // namespace

namespace dspd {

template <class T>
Status rsmp(const Vector<T>& in, Vector<T>& out, uint8_t mode, const Vector<T>& kernel, double ratio,
            Vector<T>* state) {
  if (!(ratio > 0)) return kFailure;
  if (kernel.points < 2) return dsp::copy<T>(out, in);
  const double length = static_cast<double>(kernel.data[0]) + 0.5;
  if (!(length >= 1) || !(length < kMaxScalars) || kernel.complex || !supports<T>(mode, in)) return kFailure;
  const size_t k = static_cast<size_t>(length), width = in.complex ? 2 : 1;
  return run_block<T>(in, kernel, out, state, [=](const Vector<T>& x, const Vector<T>& g, Vector<T>& y) -> Status {
    Scratch<T> weights;
    SIGVEX_TRY(shape<T>(weights, k, 0));
    const auto weigh = resample_kernels<T>().weigh;
    return resample<T>(x, y, k, ratio, state, [&](const T* from, Fixed p, Fixed step, T* to, size_t n) {
      for (; n > 0; --n, p += step, to += width) {
        read_weights<T>(g, k, mode, fraction(p), weights.data);
        weigh(from + whole(p) * width, width, weights.data, k, to);
      }
    });
  });
}

template <class T>
Status rsmp2(const Vector<T>& in, Vector<T>& out, uint8_t mode, uint32_t set, double ratio, Vector<T>* state) {
  if (set >= kResampleSets || !(ratio > 0) || !supports<T>(mode, in)) return kFailure;
  SIGVEX_TRY(build<T>(set));
  const ResampleSet& shape = resample_set(set);
  const size_t length = shape.length(), width = in.complex ? 2 : 1;
  const WeightTable<T> table{built_ins<T>[set].rows, length, std::countr_zero(shape.steps)};
  return run_block<T>(in, in, out, state, [&](const Vector<T>& x, const Vector<T>&, Vector<T>& y) -> Status {
    return resample<T>(x, y, length, ratio, state, [&](const T* from, Fixed p, Fixed step, T* to, size_t n) {
      resample_kernels<T>().interpolate(table, mode == kLinear, from, width, p, step, to, n);
    });
  });
}

}  // namespace dspd
}  // namespace sigvex

SIGVEX_EXPORT(d, rsmp, 6)
SIGVEX_EXPORT(d, rsmp2, 6)
