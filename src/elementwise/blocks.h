// Loops over samples and points in blocks that are read whole before they are written, the parts of points apart, so
// that the compiler vectorises them. Where points come of samples they go from the last block to the first: the result
// may grow over its input, without a second buffer.
#pragma once

#include <type_traits>

#include "core/fetch.h"
#include "core/vector.h"

namespace sigvex {

inline constexpr size_t kBlock = 16;

// Element k of a vector's scalars, a sample or a point.
template <class T> struct Element {
  static T at(const T* x, size_t k) { return x[k]; }
};
template <class T> struct Element<Point<T>> {
  static Point<T> at(const T* x, size_t k) { return {x[2 * k], x[2 * k + 1]}; }
};
template <class T> void store(T* samples, size_t k, T x) { samples[k] = x; }
template <class T> void store(T* points, size_t k, Point<T> z) {
  points[2 * k] = z.re;
  points[2 * k + 1] = z.im;
}

// Elements k .. k + kBlock - 1.
template <class T> class Block {
 public:
  Block() = default;
  Block(const T* from, size_t k) {
    for (size_t i = 0; i < kBlock; ++i) x_[i] = from[k + i];
  }
  T operator[](size_t i) const { return x_[i]; }
  void set(size_t i, T x) { x_[i] = x; }
  void store(T* to, size_t k) const {
    for (size_t i = 0; i < kBlock; ++i) to[k + i] = x_[i];
  }

 private:
  T x_[kBlock];
};
template <class T> class Block<Point<T>> {
 public:
  Block() = default;
  Block(const T* from, size_t k) {
    constexpr size_t kAhead = 16 * kCacheLine<T>;  // the CPU fetches too late for loads that come in twos
    for (size_t i = 0; i < 2 * kBlock; i += kCacheLine<T>) fetch(from, 2 * k + kAhead + i);
    for (size_t i = 0; i < kBlock; ++i) {
      re_[i] = from[2 * (k + i)];
      im_[i] = from[2 * (k + i) + 1];
    }
  }
  Point<T> operator[](size_t i) const { return {re_[i], im_[i]}; }
  void set(size_t i, Point<T> z) {
    re_[i] = z.re;
    im_[i] = z.im;
  }
  void store(T* to, size_t k) const {
    for (size_t i = 0; i < kBlock; ++i) {
      to[2 * (k + i)] = re_[i];
      to[2 * (k + i) + 1] = im_[i];
    }
  }

 private:
  T re_[kBlock], im_[kBlock];
};

// Calls one(k) or, for elements k .. k + kBlock - 1, some(k) for all of n elements.
template <bool kBackwards, class One, class Some> void in_blocks(size_t n, One one, Some some) {
  const size_t whole = n - n % kBlock;
  if (kBackwards) {
    for (size_t k = n; k > whole;) one(--k);
    for (size_t k = whole; k > 0;) some(k -= kBlock);
  } else {
    for (size_t k = 0; k < whole; k += kBlock) some(k);
    for (size_t k = whole; k < n; ++k) one(k);
  }
}

// Parts are taken apart in wide registers or, at some cost, in memory: the wide loop pays from the first block on.
template <class F> void on_vectors_for_blocks(size_t n, F loop) { n < kBlock ? loop() : on_widest_vectors(loop); }

// y[k] = f(x[k]) for n elements X, f giving points. A loop with what f holds is handed over by its address: a copy of
// so many words is read in other sizes than it is stored in, which takes longer than a block.
template <class X, class T, class F> void map_blocks(const T* x, T* y, size_t n, F f) {
  const auto loop = [=] {
    const auto one = [=](size_t k) { store<T>(y, k, f(Element<X>::at(x, k))); };
    in_blocks<!std::is_same_v<X, Point<T>>>(n, one, [=](size_t k) {
      const Block<X> in(x, k);
      Block<Point<T>> out;
      for (size_t i = 0; i < kBlock; ++i) out.set(i, f(in[i]));
      out.store(y, k);
    });
  };
  if (n < kBlock) return loop();
  on_widest_vectors([&loop] {
    const auto own = loop;  // which no store of the loop can change
    own();
  });
}

// z[k] = f(x[k], y[k]) for n elements X and Y, f giving points.
template <class X, class Y, class T, class F> void combine_blocks(const T* x, const T* y, T* z, size_t n, F f) {
  on_vectors_for_blocks(n, [=] {
    const auto one = [=](size_t k) { store<T>(z, k, f(Element<X>::at(x, k), Element<Y>::at(y, k))); };
    in_blocks<!std::is_same_v<X, Y>>(n, one, [=](size_t k) {
      const Block<X> a(x, k);
      const Block<Y> b(y, k);
      Block<Point<T>> out;
      for (size_t i = 0; i < kBlock; ++i) out.set(i, f(a[i], b[i]));
      out.store(z, k);
    });
  });
}

// The same of samples alone, which need no blocks.
template <class T, class F> void map_samples(const T* x, T* y, size_t n, F f) {
  on_widest_vectors(n, [=] {
    SIGVEX_INDEPENDENT_TURNS
    for (size_t k = 0; k < n; ++k) y[k] = f(x[k]);
  });
}
template <class T, class F> void combine_samples(const T* x, const T* y, T* z, size_t n, F f) {
  on_widest_vectors(n, [=] {
    SIGVEX_INDEPENDENT_TURNS
    for (size_t k = 0; k < n; ++k) z[k] = f(x[k], y[k]);
  });
}

}  // namespace sigvex
