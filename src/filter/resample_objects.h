// The objects of the streaming resampler as its own code sees them.
#pragma once

#include "core/scratch.h"
#include "filter/resample_kernels.h"

namespace sigvex {

template <class T> struct ResampleObjects;
template <> struct ResampleObjects<double> {
  using Coef = dsp_rsmp_coef;
  using State = dsp_rsmp_state;
};
template <> struct ResampleObjects<float> {
  using Coef = dspf_rsmp_coef;
  using State = dspf_rsmp_state;
};
template <class T> using Coef = typename ResampleObjects<T>::Coef;
template <class T> using State = typename ResampleObjects<T>::State;

// Rows begin on a multiple of this; a vector of the widest kind is then loaded from one cache line.
inline constexpr size_t kRowBytes = 64;

// The storage of an object's record, moved up to the next multiple of kRowBytes; kRowBytes more than needed are there.
template <class T> T* aligned(const Vector<T>& v) {
  const size_t over = reinterpret_cast<uintptr_t>(v.data) % kRowBytes;
  return v.data + (over ? kRowBytes - over : 0) / sizeof(T);
}

template <class T> size_t row_stride(size_t length) {
  constexpr size_t kPerRow = kRowBytes / sizeof(T);
  return (length + kPerRow - 1) / kPerRow * kPerRow;
}

template <class T> ResampleBank<T> bank_of(const Coef<T>& coef) {
  const size_t length = count(coef.length);
  return {aligned<T>(coef.bank), row_stride<T>(length), length, count(coef.steps)};
}

// From the next input point to the next output.
template <class T> Fixed position(const State<T>& state) {
  return static_cast<Fixed>(state.position[1]) << 64 | state.position[0];
}
template <class T> void set_position(State<T>& state, Fixed x) {
  state.position[0] = static_cast<uint64_t>(x);
  state.position[1] = static_cast<uint64_t>(x >> 64);
}

}  // namespace sigvex
