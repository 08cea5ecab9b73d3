// What the block-wise operations share: their records may overlap, a state of the caller's carries what one block
// leaves for the next, and the points at the seam between two blocks are brought into one row.
#pragma once

#include <algorithm>

#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex {

// Calls run(in, fixed, out), where fixed is the operation's second input (taps, a kernel), so that out shares nothing
// with what is still read, nor the inputs with the states that run prepares. An output that shares is written at the
// end.
template <class T, class Run>
Status run_block(const Vector<T>& in, const Vector<T>& fixed, Vector<T>& out, const Vector<T>* state, Run run,
                 const Vector<T>* further_state = nullptr) {
  const auto shares_state = [&](const Vector<T>& v) {
    return (state && shares<T>(v, *state)) || (further_state && shares<T>(v, *further_state));
  };
  if (shares_state(in) || shares_state(fixed)) {
    Scratch<T> in_copy, fixed_copy;
    SIGVEX_TRY(dsp::copy<T>(in_copy, in));
    SIGVEX_TRY(dsp::copy<T>(fixed_copy, fixed));
    return run_block<T>(in_copy, fixed_copy, out, state, run, further_state);
  }
  if (!shares<T>(in, out) && !shares<T>(fixed, out) && !shares_state(out)) return run(in, fixed, out);
  Scratch<T> result;
  SIGVEX_TRY(run(in, fixed, result));
  leave_to_owner<T>(in, out, size<T>(result));
  return dsp::copy<T>(out, result);
}

// Brings a state to n points, by zeros or a cut at its end, and to the input's spacing and form.
template <class T> Status prepare_state(Vector<T>& state, size_t n, const Vector<T>& in) {
  if (!fits(n)) return exhausted<T>(state);
  const int32_t wanted = static_cast<int32_t>(n);
  SIGVEX_TRY(dspi::zpad<T>(state, wanted));
  state.points = wanted;
  state.delta = in.delta;
  return in.complex ? dspi::rtoc<T>(state) : dspi::real<T>(state);
}

// A row of the last `past` points before the block, oldest first, and the first `head` of the block. Without a history
// they are zeros.
template <class T>
Status join(Vector<T>& row, const Vector<T>* history, size_t past, const Vector<T>& in, size_t head) {
  SIGVEX_TRY(shape<T>(row, past + head, in.complex));
  const size_t width = in.complex ? 2 : 1;
  if (history) std::copy_n(history->data, past * width, row.data);
  else std::fill_n(row.data, past * width, T(0));
  std::copy_n(in.data, head * width, row.data + past * width);
  return kSuccess;
}

// Appends a block to a history of its form, which keeps its length: the oldest points leave it.
template <class T> void advance(Vector<T>& history, const Vector<T>& in) {
  const size_t keeps = size<T>(history), comes = size<T>(in), fresh = std::min(keeps, comes);
  std::copy(history.data + fresh, history.data + keeps, history.data);
  std::copy_n(in.data + (comes - fresh), fresh, history.data + (keeps - fresh));
}

}  // namespace sigvex
