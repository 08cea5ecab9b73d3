#include "spectral/engine.h"

#include <bit>

#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/twiddles.h"

namespace sigvex {
namespace {

template <class T> Point<T> sum(Point<T> a, Point<T> b) { return {a.re + b.re, a.im + b.im}; }
template <class T> Point<T> difference(Point<T> a, Point<T> b) { return {a.re - b.re, a.im - b.im}; }
template <class T> Point<T> product(Point<T> a, Point<T> w) {
  return {a.re * w.re - a.im * w.im, a.re * w.im + a.im * w.re};
}

// Radix 2 on points in bit-reversed order.
template <class T> void passes(Point<T>* x, size_t n, const TripleTable<T>& table, bool inverse) {
  for (size_t half = 1; half < n; half *= 2) {
    for (size_t k = 0; k < half; ++k) {
      Point<T> w = table.root(k * (n / 2 / half));
      if (inverse) w.im = -w.im;
      for (size_t j = k; j < n; j += 2 * half) {
        const Point<T> a = x[j], b = product(x[j + half], w);
        x[j] = sum(a, b);
        x[j + half] = difference(a, b);
      }
    }
  }
}

}  // namespace

bool power_of_two(int32_t n) { return std::has_single_bit(count(n)); }

template <class T> Status complex_transform(Vector<T>& v, bool inverse) {
  SIGVEX_TRY(dspi::rtoc<T>(v));
  const size_t n = points<T>(v);
  SIGVEX_TRY(inverse ? dspi::bitrev<T>(v) : dspi::bitrev_scale<T>(v, 1 / static_cast<T>(n)));
  const auto table = triple_table<T>(std::countr_zero(n));
  if (!table) return kFailure;
  passes(reinterpret_cast<Point<T>*>(v.data), n, *table, inverse);
  return kSuccess;
}

template <class T> Status real_transform(Vector<T>& v) {
  const int32_t n = v.points;
  SIGVEX_TRY(complex_transform<T>(v, false));
  v.points = n / 2 + 1;
  return kSuccess;
}

#define SIGVEX_INSTANTIATE(T)                             \
  template Status complex_transform<T>(Vector<T>&, bool); \
  template Status real_transform<T>(Vector<T>&);
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
