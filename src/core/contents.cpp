// dsp_append dsp_copy dsp_copy_at_most dspu_subvec dsp_insert_subvec dsp_cmp dspu_tof
#include <algorithm>
#include <cstring>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"

namespace sigvex {
namespace {

// Points start .. start + count - 1 of a vector, cut to those it has.
struct Range {
  size_t start, count;
};
template <class T> Range cut(const Vector<T>& v, int32_t start, int32_t n) {
  const size_t available = points<T>(v), from = std::min(count(start), available);
  return {from, std::min(count(n), available - from)};
}

// Writes points over those of a destination that has room for them, real points into a complex one as (x, 0). Points of
// one form may overlap their destination.
template <class T>
void write_points(Vector<T>& destination, size_t position, const T* data, int32_t complex, Range range) {
  if (destination.complex && !complex) {
    for (size_t k = 0; k < range.count; ++k) set_point<T>(destination, position + k, {data[range.start + k], T(0)});
  } else if (range.count > 0) {
    const size_t width = complex ? 2 : 1;
    std::memmove(destination.data + position * width, data + range.start * width, range.count * width * sizeof(T));
  }
}

// The source of an operation that resizes or converts its destination: where another record shares the destination's
// storage, its samples are read from a copy, since that storage may move.
template <class T> class StableSource {
 public:
  StableSource(const Vector<T>& source, const Vector<T>& destination)
      : source_(source), shares_(&source != &destination && overlap<T>(source, destination)) {}
  Status prepare() { return shares_ ? dsp::copy<T>(copy_, source_) : kSuccess; }
  const Vector<T>& operator*() const { return shares_ ? copy_ : source_; }

 private:
  const Vector<T>& source_;
  bool shares_;
  Scratch<T> copy_;
};

}  // namespace

namespace dspu {

template <class T> Status subvec(const Vector<T>& source, Vector<T>& destination, int32_t start, int32_t n) {
  StableSource<T> stable(source, destination);
  SIGVEX_TRY(stable.prepare());
  const Range range = cut<T>(source, start, n);
  const int32_t complex = source.complex;
  const T* const data = (*stable).data;  // a view that is its own destination gets a new block and leaves this one
  destination.delta = source.delta;
  SIGVEX_TRY(shape<T>(destination, range.count, complex));
  write_points<T>(destination, 0, data, complex, range);
  return kSuccess;
}

template <class T> Status tof(const Vector<T>& source, Vector<float>& destination) {
  if (static_cast<const void*>(&source) == &destination) return kFailure;
  destination.delta = static_cast<float>(source.delta);
  SIGVEX_TRY(shape<float>(destination, points<T>(source), source.complex));
  for (size_t k = 0, n = size<T>(source); k < n; ++k) destination.data[k] = static_cast<float>(source.data[k]);
  return kSuccess;
}

}  // namespace dspu

namespace dsp {

template <class T> Status copy_at_most(Vector<T>& destination, const Vector<T>& source, int32_t n) {
  return dspu::subvec<T>(source, destination, 0, n);
}

template <class T> Status copy(Vector<T>& destination, const Vector<T>& source) {
  return copy_at_most<T>(destination, source, source.points);
}

template <class T> Status append(Vector<T>& destination, const Vector<T>& source) {
  StableSource<T> stable(source, destination);
  SIGVEX_TRY(stable.prepare());
  if (source.complex && !destination.complex) SIGVEX_TRY(dspi::rtoc<T>(destination));
  const Range range{0, points<T>(source)};  // before the destination grows: it may be the source
  const size_t end = points<T>(destination);
  SIGVEX_TRY(reshape<T>(destination, end + range.count, destination.complex));
  write_points<T>(destination, end, (*stable).data, source.complex, range);
  return kSuccess;
}

template <class T>
Status insert_subvec(const Vector<T>& source, Vector<T>& destination, int32_t start, int32_t n, int32_t position) {
  StableSource<T> stable(source, destination);
  SIGVEX_TRY(stable.prepare());
  const Range range = cut<T>(source, start, n);
  const size_t at = std::min(count(position), points<T>(destination));
  if (source.complex && !destination.complex) {
    if (at > 0 || range.count < points<T>(destination)) {
      SIGVEX_TRY(dspi::rtoc<T>(destination));
    } else {  // every old point is overwritten: nothing to convert
      destination.complex = 1;
      destination.points = 0;
    }
  }
  if (points<T>(destination) < at + range.count) {
    SIGVEX_TRY(reshape<T>(destination, at + range.count, destination.complex));
  }
  destination.delta = source.delta;
  write_points<T>(destination, at, (*stable).data, source.complex, range);
  return kSuccess;
}

namespace {

// -1, 0 or 1; a NaN difference counts as below.
template <class T> int32_t compare(T a, T b, T tolerance) {
  const T difference = a - b;
  if (difference > tolerance) return 1;
  return difference >= -tolerance ? 0 : -1;
}

}  // namespace

template <class T> Status cmp(const Vector<T>& a, const Vector<T>& b, T tolerance, int32_t& result) {
  if (a.points != b.points) return kFailure;
  result = compare(a.delta, b.delta, tolerance);
  const bool imaginary = a.complex || b.complex;
  for (size_t k = 0, n = points<T>(a); k < n && result == 0; ++k) {
    const Point<T> x = complex_point<T>(a, k), y = complex_point<T>(b, k);
    result = compare(x.re, y.re, tolerance);
    if (result == 0 && imaginary) result = compare(x.im, y.im, tolerance);
  }
  return kSuccess;
}

}  // namespace dsp
}  // namespace sigvex

SIGVEX_EXPORT(u, subvec, 4)
SIGVEX_EXPORT(u, tof, 2)
SIGVEX_EXPORT(, copy_at_most, 3)
SIGVEX_EXPORT(, copy, 2)
SIGVEX_EXPORT(, append, 2)
SIGVEX_EXPORT(, insert_subvec, 5)
SIGVEX_EXPORT(, cmp, 4)
