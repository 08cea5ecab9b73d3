// dspi_zero dspi_zpad dspi_zpad2 dspi_unzpad dspi_shift dspi_swap_halves dspi_swap_halves2 dspi_rev dspi_sort
// dspi_shuffle
#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "core/exports.h"
#include "core/limits.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "core/widest.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"
#include "elementwise/sort_key.h"
#include "generate/random_source.h"

namespace sigvex::dspi {
namespace {

// NaN counts as below every number.
template <class T> int compare(T a, T b) {
  if (a < b) return -1;
  if (a > b) return 1;
  return (a == a) - (b == b);
}

// By squared magnitude, then real part, then imaginary part.
template <class T> bool before(Point<T> a, Point<T> b) {
  int order = compare(magsq(a), magsq(b));
  if (order == 0) order = compare(a.re, b.re);
  if (order == 0) order = compare(a.im, b.im);
  return order < 0;
}

}  // namespace

template <class T> Status zpad(Vector<T>& v, int32_t n) {
  if (count(n) <= points<T>(v)) return kSuccess;
  const size_t end = size<T>(v);
  SIGVEX_TRY(reshape<T>(v, count(n), v.complex));
  std::fill(v.data + end, v.data + size<T>(v), T(0));
  return kSuccess;
}

template <class T> Status zpad2(Vector<T>& v, int32_t n) {
  const size_t given = points<T>(v), front = given - given / 2;
  if (count(n) <= given) return kSuccess;
  SIGVEX_TRY(reshape<T>(v, count(n), v.complex));
  return rearrange<T>(v, [given, front](auto* x, size_t end) {
    auto* const back = std::move_backward(x + front, x + given, x + end);
    std::fill(x + front, back, std::remove_reference_t<decltype(*x)>{});
  });
}

template <class T> Status unzpad(Vector<T>& v, int32_t n) {
  const size_t left = count(n), front = left - left / 2;
  if (left >= points<T>(v)) return kSuccess;
  SIGVEX_TRY(
      rearrange<T>(v, [left, front](auto* x, size_t end) { std::move(x + end - left / 2, x + end, x + front); }));
  v.points = static_cast<int32_t>(left);
  return kSuccess;
}

template <class T> Status zero(Vector<T>& v) {
  const int32_t n = v.points;
  v.points = 0;
  return zpad<T>(v, n);
}

template <class T> Status shift(Vector<T>& v, int32_t n) {
  const int64_t rest = int64_t{v.points} - n;
  constexpr int64_t low = std::numeric_limits<int32_t>::min(), high = std::numeric_limits<int32_t>::max();
  return dspu::subvec<T>(v, v, n, static_cast<int32_t>(std::clamp(rest, low, high)));
}

// One pass each. For an odd count the place that the longer half gives up first is saved; every other element has been
// read before its place is written.
template <class T> Status swap_halves(Vector<T>& v) {
  return rearrange<T>(v, [](auto* x, size_t n) {
    const size_t half = n / 2;
    if (n % 2 == 0) {
      on_widest_vectors(n, [=] { std::swap_ranges(x, x + half, x + half); });
      return;
    }
    const auto saved = x[half];
    for (size_t k = 0; k < half; ++k) {
      const auto first = x[k];
      x[k] = x[half + 1 + k];
      x[half + k] = first;
    }
    x[n - 1] = saved;
  });
}

template <class T> Status swap_halves2(Vector<T>& v) {
  if (points<T>(v) % 2 == 0) return swap_halves<T>(v);
  return rearrange<T>(v, [](auto* x, size_t n) {
    const size_t half = n / 2;
    const auto saved = x[n - 1];
    for (size_t k = half; k-- > 0;) {
      const auto second = x[half + k];
      x[half + 1 + k] = x[k];
      x[k] = second;
    }
    x[half] = saved;
  });
}

template <class T> Status rev(Vector<T>& v) {
  return rearrange<T>(v, [](auto* x, size_t n) { on_widest_vectors(n, [=] { std::reverse(x, x + n); }); });
}

// The samples are replaced by their keys and back, in place: integers sort totally and, from some hundred on, in
// vectors.
template <class T> void sort_samples(T* x, size_t n) {
  using Int = typename SortKey<T>::Int;
  constexpr size_t kVectorsPay = 256;
  for (size_t k = 0; k < n; ++k) {
    const Int key = SortKey<T>::of(x[k]);
    std::memcpy(&x[k], &key, sizeof key);
  }
  Int* const keys = reinterpret_cast<Int*>(x);
  if (n < kVectorsPay) {
    std::sort(keys, keys + n);
  } else {
    hwy::Sorter()(keys, n, hwy::SortAscending());
  }
  for (size_t k = 0; k < n; ++k) {
    Int key;
    std::memcpy(&key, &x[k], sizeof key);
    x[k] = SortKey<T>::value(key);
  }
}

// A rank with its place behind it, as one integer: no two are equal. As pairs whose order is that of the ranks alone,
// the vector sort of libhwy 1.0.3 loses places of equal ones on AVX2.
uint64_t placed(uint32_t rank, size_t place) { return uint64_t{rank} << 32 | place; }
uint32_t rank_of(uint64_t placed) { return static_cast<uint32_t>(placed >> 32); }
size_t place_of(uint64_t placed) { return static_cast<uint32_t>(placed); }
hwy::uint128_t placed(uint64_t rank, size_t place) { return {place, rank}; }
uint64_t rank_of(hwy::uint128_t placed) { return placed.hi; }
size_t place_of(hwy::uint128_t placed) { return placed.lo; }

// Sorts the squared magnitudes with their places, in vectors, and then the points of equal ones among themselves.
// False, and nothing done, for a few points, without memory for it and before AVX2: without SSSE3, a vector sort of
// 128-bit integers ends the process.
template <class T> bool sort_by_magnitude(Point<T>* z, size_t n) {
  using Rank = typename SortKey<T>::Bits;
  using Placed = decltype(placed(Rank(), n));
  constexpr size_t kVectorsPay = 256;
  if (n < kVectorsPay || widest_vectors() == Vectors::kBaseline) return false;
  const std::unique_ptr<Placed[]> order(new (std::nothrow) Placed[n]);
  const std::unique_ptr<Point<T>[]> given(new (std::nothrow) Point<T>[n]);
  if (!order || !given) return false;
  for (size_t k = 0; k < n; ++k) {
    const T m = magsq(z[k]);
    order[k] = placed(m == m ? SortKey<T>::rank(m) : Rank(0), k);  // one NaN is like another
  }
  std::copy_n(z, n, given.get());
  hwy::Sorter()(order.get(), n, hwy::SortAscending());
  for (size_t k = 0; k < n; ++k) z[k] = given[place_of(order[k])];
  for (size_t first = 0, end; first < n; first = end) {
    for (end = first + 1; end < n && rank_of(order[end]) == rank_of(order[first]);) ++end;
    if (end - first > 1) std::sort(z + first, z + end, before<T>);
  }
  return true;
}

template <class T> Status sort(Vector<T>& v) {
  if (!v.complex) {
    sort_samples<T>(v.data, points<T>(v));
    return kSuccess;
  }
  Point<T>* const z = reinterpret_cast<Point<T>*>(v.data);
  if (!sort_by_magnitude<T>(z, points<T>(v))) std::sort(z, z + points<T>(v), before<T>);
  return kSuccess;
}

// Fisher and Yates: every place takes one of the elements not yet placed.
template <class T> Status shuffle(Vector<T>& v) {
  const WorkLock lock;
  RandomSource& source = random_source<T>();
  return rearrange<T>(v, [&source](auto* x, size_t n) {
    for (size_t k = 0; k + 1 < n; ++k) {
      if (const size_t ahead = source.draw31() % (n - k)) std::swap(x[k], x[k + ahead]);
    }
  });
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, zero, 1)
SIGVEX_EXPORT(i, zpad, 2)
SIGVEX_EXPORT(i, zpad2, 2)
SIGVEX_EXPORT(i, unzpad, 2)
SIGVEX_EXPORT(i, shift, 2)
SIGVEX_EXPORT(i, swap_halves, 1)
SIGVEX_EXPORT(i, swap_halves2, 1)
SIGVEX_EXPORT(i, rev, 1)
SIGVEX_EXPORT(i, sort, 1)
SIGVEX_EXPORT(i, shuffle, 1)
