// dspd_rsmp dspd_rsmp2
#include <atomic>
#include <cmath>

#include "core/exports.h"
#include "core/locks.h"
#include "filter/kernels.h"
#include "filter/operations.h"
#include "filter/resample_position.h"
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

// One output for each position p: the K points up to the whole part of p, each weighted as apply(x, f, y) does for the
// fractional part f. x is the oldest of the points.
template <class T, class Apply>
Status resample(const Vector<T>& in, Vector<T>& out, size_t length, double ratio, Vector<T>* state, Apply apply) {
  if (!fits(length)) return kFailure;
  if (state) SIGVEX_TRY(prepare_state<T>(*state, length + 2, in));
  const Fixed step = to_fixed(ratio);
  Fixed p = position<T>(state);
  const size_t n = points<T>(in), past = length - 1, width = in.complex ? 2 : 1;
  out.delta = static_cast<T>(ratio * static_cast<double>(in.delta));
  SIGVEX_TRY(shape<T>(out, outputs(p, step, n), in.complex ? 1 : 0));
  Vector<T> before = state ? history<T>(*state) : Vector<T>{};
  Scratch<T> seam;
  SIGVEX_TRY(join<T>(seam, state ? &before : nullptr, past, in, std::min(past, n)));
  T* y = out.data;
  for (size_t m = points<T>(out); m-- > 0; p += step, y += width) {
    const size_t newest = whole(p);
    apply(newest >= past ? in.data + (newest - past) * width : seam.data + newest * width, fraction(p), y);
  }
  if (!state) return kSuccess;
  advance<T>(before, in);
  set_position<T>(*state, p - to_fixed(n));
  return kSuccess;
}

// The built-in kernels, reordered: for each step between two samples, and for the last step's end, the weights of the K
// points in the order of the points. Constants once they are built, so that a call neither builds nor locks.
template <class T> struct WeightRows {
  std::atomic<bool> built;
  T weights[(kMaxResampleSteps + 1) * kMaxResampleLength];
};
template <class T> constinit WeightRows<T> weight_rows[kResampleSets]{};

template <class T> Status build_rows(uint32_t set) {
  WeightRows<T>& rows = weight_rows<T>[set];
  if (rows.built.load(std::memory_order_acquire)) return kSuccess;
  const WorkLock lock;
  if (rows.built.load(std::memory_order_relaxed)) return kSuccess;
  const size_t length = resample_set(set).length(), steps = resample_set(set).steps;
  Scratch<T> kernel;
  kernel.points = static_cast<int32_t>(2 + steps * length);
  SIGVEX_TRY(dspc::rsmp<T>(kernel, set));
  for (size_t row = 0; row <= steps; ++row) {
    for (size_t k = 0; k < length; ++k) {
      rows.weights[row * length + k] = kernel.data[1 + (length - 1 - k) * steps + row];
    }
  }
  rows.built.store(true, std::memory_order_release);
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
    const auto weigh = filter_kernels<T>().weigh;
    return resample<T>(x, y, k, ratio, state, [&](const T* from, double f, T* to) {
      read_weights<T>(g, k, mode, f, weights.data);
      weigh(from, width, weights.data, k, to);
    });
  });
}

template <class T>
Status rsmp2(const Vector<T>& in, Vector<T>& out, uint8_t mode, uint32_t set, double ratio, Vector<T>* state) {
  if (set >= kResampleSets || !(ratio > 0) || !supports<T>(mode, in)) return kFailure;
  SIGVEX_TRY(build_rows<T>(set));
  const size_t length = resample_set(set).length(), width = in.complex ? 2 : 1;
  const double steps = static_cast<double>(resample_set(set).steps);
  const T* const rows = weight_rows<T>[set].weights;
  const FilterKernels<T>& kernels = filter_kernels<T>();
  return run_block<T>(in, in, out, state, [&](const Vector<T>& x, const Vector<T>&, Vector<T>& y) -> Status {
    if (mode == kNearest) {
      return resample<T>(x, y, length, ratio, state, [&](const T* from, double f, T* to) {
        kernels.weigh(from, width, rows + static_cast<size_t>(f * steps + 0.5) * length, length, to);
      });
    }
    return resample<T>(x, y, length, ratio, state, [&](const T* from, double f, T* to) {
      const size_t row = static_cast<size_t>(f * steps);
      const T* const a = rows + row * length;
      kernels.blend(from, width, a, a + length, static_cast<T>(f * steps - static_cast<double>(row)), length, to);
    });
  });
}

}  // namespace dspd
}  // namespace sigvex

SIGVEX_EXPORT(d, rsmp, 6)
SIGVEX_EXPORT(d, rsmp2, 6)
