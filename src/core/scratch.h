// Temporaries and the storage operations the rest of the library builds on.
#pragma once

#include <algorithm>
#include <functional>

#include "core/vector.h"

namespace sigvex::dsp {

// The exported operations of these names, for code that is generic in the precision.
template <class T> Status init(Vector<T>& v);
template <class T> Status destroy(Vector<T>& v);
template <class T> Status alloc(Vector<T>& v);
template <class T> Status realloc(Vector<T>& v, int32_t old_points, int32_t old_complex);
template <class T> Status copy(Vector<T>& destination, const Vector<T>& source);
template <class T> Status cmp(const Vector<T>& a, const Vector<T>& b, T tolerance, int32_t& result);

}  // namespace sigvex::dsp

namespace sigvex::dspu {

template <class T> Status subvec(const Vector<T>& source, Vector<T>& destination, int32_t start, int32_t count);

}  // namespace sigvex::dspu

namespace sigvex {

// Sizes a record for n points of a form; the contents are dropped (shape) or kept (reshape). A count that does not fit
// the record is the same failure as exhausted memory.
template <class T> Status shape(Vector<T>& v, size_t n, int32_t complex);
template <class T> Status reshape(Vector<T>& v, size_t n, int32_t complex);

// Releases owned storage and leaves what exhausted memory leaves: no data, allocated 0, points 0. Always -1.
template <class T> Status exhausted(Vector<T>& v);

// Whether the samples of two records overlap in memory, the records being different or the same.
template <class T> bool overlap(const Vector<T>& a, const Vector<T>& b) {
  const std::less<const T*> before;
  return before(a.data, b.data + std::max(size<T>(b), count(b.allocated))) &&
         before(b.data, a.data + std::max(size<T>(a), count(a.allocated)));
}

// Whether writing one record would disturb the other.
template <class T> bool shares(const Vector<T>& a, const Vector<T>& b) { return &a == &b || overlap<T>(a, b); }

// A record that begins initialised and is destroyed on every path.
template <class T> class Scratch : public Vector<T> {
 public:
  Scratch() : Vector<T>{} { dsp::init<T>(*this); }
  ~Scratch() { dsp::destroy<T>(*this); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
};

// The destination an operation writes while it still reads its inputs: the result itself, or, where that is an input,
// a temporary which finish() copies into it.
template <class T> class Output {
 public:
  Output(Vector<T>& result, const Vector<T>& input) : result_(result), separate_(&result != &input) {}
  Vector<T>& operator*() { return separate_ ? result_ : scratch_; }
  Vector<T>* operator->() { return &**this; }
  Status finish() { return separate_ ? kSuccess : dsp::copy<T>(result_, scratch_); }

 private:
  Vector<T>& result_;
  bool separate_;
  Scratch<T> scratch_;
};

}  // namespace sigvex
