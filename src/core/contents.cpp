// dsp_append dsp_copy dsp_copy_at_most dspu_subvec dsp_insert_subvec dsp_cmp dspu_tof
#include <algorithm>
#include <cstring>
#include <type_traits>

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
void write_points(Vector<T>& destination, size_t position, const T* data, size_t n, int32_t complex) {
  if (destination.complex && !complex) {
    for (size_t k = 0; k < n; ++k) set_point<T>(destination, position + k, {data[k], T(0)});
  } else if (n > 0) {
    const size_t width = complex ? 2 : 1;
    std::memmove(destination.data + position * width, data, n * width * sizeof(T));
  }
}

// The points that an operation reads while it sizes or converts its destination. They are read from a copy where
// another record has them in storage that the destination is about to move or to rewrite in another form; a size that
// is refused moves nothing.
template <class T> class StableSource {
 public:
  StableSource(const Vector<T>& source, Range range)
      : source_(source), range_(range), offset_(range.start * (source.complex ? 2 : 1)) {}

  Status prepare(Vector<T>& destination, size_t need) {
    const bool stays = need <= count(destination.allocated) && !source_.complex == !destination.complex;
    if (&source_ == &destination || stays || !fits(need)) return kSuccess;
    Vector<T> read{};
    read.data = source_.data + offset_;
    read.points = static_cast<int32_t>(range_.count);
    read.complex = source_.complex;
    copied_ = overlap<T>(read, destination);
    return copied_ && dsp::copy<T>(copy_, read) < 0 ? exhausted<T>(destination) : kSuccess;
  }

  const T* data() const { return copied_ ? copy_.data : source_.data + offset_; }

 private:
  const Vector<T>& source_;
  Range range_;
  size_t offset_;
  bool copied_ = false;
  Scratch<T> copy_;
};

}  // namespace

namespace dspu {

template <class T> Status subvec(const Vector<T>& source, Vector<T>& destination, int32_t start, int32_t n) {
  const Range range = cut<T>(source, start, n);
  const int32_t complex = source.complex;
  StableSource<T> stable(source, range);
  SIGVEX_TRY(stable.prepare(destination, range.count * (complex ? 2 : 1)));
  const T* const data = stable.data();  // a view that is its own destination gets a new block and leaves this one
  destination.delta = source.delta;
  SIGVEX_TRY(shape<T>(destination, range.count, complex));
  write_points<T>(destination, 0, data, range.count, complex);
  return kSuccess;
}

template <class T> Status tof(const Vector<T>& source, Vector<float>& destination) {
  if (static_cast<const void*>(&source) == &destination) return kFailure;
  if constexpr (std::is_same_v<T, float>) {
    return subvec<T>(source, destination, 0, source.points);
  } else {
    destination.delta = static_cast<float>(source.delta);
    SIGVEX_TRY(shape<float>(destination, points<T>(source), source.complex));
    for (size_t k = 0, n = size<T>(source); k < n; ++k) destination.data[k] = static_cast<float>(source.data[k]);
    return kSuccess;
  }
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
  const Range range{0, points<T>(source)};  // before the destination grows: it may be the source
  const size_t end = points<T>(destination);
  StableSource<T> stable(source, range);
  SIGVEX_TRY(stable.prepare(destination, (end + range.count) * (source.complex || destination.complex ? 2 : 1)));
  if (source.complex && !destination.complex) SIGVEX_TRY(dspi::rtoc<T>(destination));
  SIGVEX_TRY(reshape<T>(destination, end + range.count, destination.complex));
  write_points<T>(destination, end, stable.data(), range.count, source.complex);
  return kSuccess;
}

template <class T>
Status insert_subvec(const Vector<T>& source, Vector<T>& destination, int32_t start, int32_t n, int32_t position) {
  const Range range = cut<T>(source, start, n);
  const size_t at = std::min(count(position), points<T>(destination));
  const size_t total = std::max(at + range.count, points<T>(destination));
  StableSource<T> stable(source, range);
  SIGVEX_TRY(stable.prepare(destination, total * (source.complex || destination.complex ? 2 : 1)));
  if (source.complex && !destination.complex) {
    if (at > 0 || range.count < points<T>(destination)) {
      SIGVEX_TRY(dspi::rtoc<T>(destination));
    } else {  // every old point is overwritten: nothing to convert
      destination.complex = 1;
      destination.points = 0;
    }
  }
  if (points<T>(destination) < total) SIGVEX_TRY(reshape<T>(destination, total, destination.complex));
  destination.delta = source.delta;
  write_points<T>(destination, at, stable.data(), range.count, source.complex);
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
