// A result that may be one of the inputs, or share storage with one, of an operation that reads its inputs at random.
#pragma once

#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex {

// Calls run(out), which sizes and writes out, with the result itself, or, where that shares storage with an input, with
// a temporary that is copied into it.
template <class T, class Run, class... Input> Status write_apart(Vector<T>& result, Run run, const Input&... inputs) {
  if (!(shares<T>(inputs, result) || ...)) return run(result);
  Scratch<T> apart;
  apart.delta = result.delta;
  SIGVEX_TRY(run(apart));
  (leave_to_owner<T>(inputs, result, size<T>(apart)), ...);
  return dsp::copy<T>(result, apart);
}

}  // namespace sigvex
