// dspb_ritoc dspb_inter dspi_zinter dspu_zinter
#include <algorithm>
#include <type_traits>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/blocks.h"
#include "elementwise/kernels.h"
#include "elementwise/operations.h"
#include "elementwise/rules.h"

namespace sigvex {
namespace dspb {
namespace {

// Sizes the result for n points of a form and calls put(a, b, result, count) for the points of the inputs, which has to
// go from the last to the first: what is written may lie over samples already read. delta is half of a's.
template <class T, class F>
Status weave(const Vector<T>& a, const Vector<T>& b, size_t n, int32_t complex, Vector<T>& result, F put) {
  const size_t need = n * (complex ? 2 : 1);
  leave_to_owner<T>(a, result, need);
  leave_to_owner<T>(b, result, need);
  if (endangered<T>(a, result, need) || endangered<T>(b, result, need)) {
    Scratch<T> x, y;
    SIGVEX_TRY(dsp::copy<T>(x, a));
    SIGVEX_TRY(dsp::copy<T>(y, b));
    return weave<T>(x, y, n, complex, result, put);
  }
  const size_t given = points<T>(a);  // the result may be an input
  result.delta = a.delta * T(0.5);
  if (!fits(n)) return exhausted<T>(result);
  const bool shared = result.data == a.data || result.data == b.data;
  SIGVEX_TRY(shared ? size_result<T>(a, b, n, complex, result) : reshape<T>(result, n, complex));
  put(a.data, b.data, result.data, given);
  return kSuccess;
}

template <class T> Point<T> as_point(T x) { return {x, 0}; }
template <class T> Point<T> as_point(Point<T> z) { return z; }

// The points of n elements X and Y in turn.
template <class X, class Y, class T> void alternate(const T* x, const T* y, T* z, size_t n) {
  on_widest_vectors(n, [=] {
    const auto put = [=](size_t k, auto first, auto second) {
      store<T>(z, 2 * k, as_point(first));
      store<T>(z, 2 * k + 1, as_point(second));
    };
    const auto one = [=](size_t k) { put(k, Element<X>::at(x, k), Element<Y>::at(y, k)); };
    in_blocks<true>(n, one, [=](size_t k) {
      const Block<X> a(x, k);
      const Block<Y> b(y, k);
      for (size_t i = 0; i < kBlock; ++i) put(k + i, a[i], b[i]);
    });
  });
}

}  // namespace

template <class T> Status ritoc(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  if (a.complex || b.complex || points<T>(a) != points<T>(b)) return kFailure;
  return weave<T>(a, b, points<T>(a), 1, result, math_kernels<T>().weave);
}

template <class T> Status inter(const Vector<T>& a, const Vector<T>& b, Vector<T>& result) {
  if (points<T>(a) != points<T>(b)) return kFailure;
  const size_t n = 2 * points<T>(a);
  if (!a.complex && !b.complex) return weave<T>(a, b, n, 0, result, math_kernels<T>().weave);
  const bool complex_a = a.complex, complex_b = b.complex;  // before the result, which may be an input, gets its form
  return weave<T>(a, b, n, 1, result, [=](const T* x, const T* y, T* z, size_t k) {
    if (complex_a) {
      complex_b ? alternate<Point<T>, Point<T>>(x, y, z, k) : alternate<Point<T>, T>(x, y, z, k);
    } else {
      alternate<T, Point<T>>(x, y, z, k);
    }
  });
}

}  // namespace dspb

namespace {

// Spreads n elements by zeros.
template <class E> void stuff_apart(const E* x, E* y, size_t n, size_t factor) {
  std::fill_n(y, n * factor, E{});
  for (size_t k = 0; k < n; ++k) y[k * factor] = x[k];
}

// The same where they may come to lie over themselves: those that come to lie behind all n, then as many of the rest.
// Both go forwards, as memory is fastest, and by pieces that are still in the cache when the zeros are written over.
template <class E> void stuff(const E* x, E* y, size_t n, size_t factor) {
  constexpr size_t kPieceBytes = 1024, kFew = 32;
  if (factor == 1) {
    std::copy_n(x, n, y);
    return;
  }
  while (n > kFew) {
    const size_t rest = (n + factor - 1) / factor, piece = std::max<size_t>(1, kPieceBytes / sizeof(E) / factor);
    for (size_t k = rest; k < n; k += piece) stuff_apart(x + k, y + k * factor, std::min(piece, n - k), factor);
    n = rest;
  }
  E few[kFew];
  std::copy_n(x, n, few);
  stuff_apart(few, y, n, factor);
}

}  // namespace

namespace dspi {

template <class T> Status zinter(Vector<T>& v, int32_t factor) {
  if (factor < 1) return kFailure;
  if (factor == 1) return kSuccess;
  const size_t n = points<T>(v), times = count(factor);
  SIGVEX_TRY(reshape<T>(v, n * times, v.complex));
  v.delta /= static_cast<T>(factor);
  return rearrange<T>(v, [n, times](auto* x, size_t) { stuff(x, x, n, times); });
}

}  // namespace dspi

namespace dspu {

template <class T> Status zinter(const Vector<T>& source, Vector<T>& destination, int32_t factor) {
  if (&source == &destination) return dspi::zinter<T>(destination, factor);
  if (factor < 1) return kFailure;
  const size_t n = points<T>(source), times = count(factor), need = size<T>(source) * times;
  if (fits(need) && endangered<T>(source, destination, 0)) {  // a block that the source shares is left, not moved
    Scratch<T> copy;
    SIGVEX_TRY(dsp::copy<T>(copy, source));
    return zinter<T>(copy, destination, factor);
  }
  leave_to_owner<T>(source, destination, need);
  if (!fits(need)) return exhausted<T>(destination);
  SIGVEX_TRY(size_result<T>(source, source, n * times, source.complex, destination));
  destination.delta = source.delta / static_cast<T>(factor);
  return rearrange<T>(destination, [&source, n, times](auto* y, size_t) {
    stuff(reinterpret_cast<std::add_const_t<std::remove_pointer_t<decltype(y)>>*>(source.data), y, n, times);
  });
}

}  // namespace dspu
}  // namespace sigvex

SIGVEX_EXPORT(b, ritoc, 3)
SIGVEX_EXPORT(b, inter, 3)
SIGVEX_EXPORT(i, zinter, 2)
SIGVEX_EXPORT(u, zinter, 3)
