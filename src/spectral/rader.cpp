// The powers of 3 modulo N = 65537, a prime, are all numbers below N but 0. After Rader, with j = 3^a and k = 3^-b the
// transform is
//   X[3^-b] = x[0] + sum over a of x[3^a] w^(3^(a-b)), w = e^(-2 pi i/N)
// a circular convolution of exactly N - 1 points, a power of two, where a chirp takes twice as many.
#include "spectral/rader.h"

#include <cstdlib>
#include <memory>

#include "core/scratch.h"
#include "spectral/engine.h"
#include "spectral/roots.h"

namespace sigvex {
namespace {

constexpr size_t kPowers = kRaderLength - 1;

// Guarded by the work lock.
template <class T> struct Rader {
  T spectrum[2 * kPowers];   // of w^(3^-c)
  uint16_t powers[kPowers];  // 3^a modulo N; N - 1, which outgrows its type, is kept as 0
};
template <class T> constinit Rader<T>* rader = nullptr;

template <class T> Status prepare() {
  if (rader<T>) return kSuccess;
  std::unique_ptr<Rader<T>, decltype(&std::free)> work(static_cast<Rader<T>*>(std::malloc(sizeof(Rader<T>))),
                                                       &std::free);
  if (!work) return kFailure;
  for (size_t a = 0, power = 1; a < kPowers; ++a, power = 3 * power % kRaderLength) {
    const Point<T> w = unit_root<T>(power, kRaderLength);
    const size_t place = (kPowers - a) % kPowers;
    work->spectrum[2 * place] = w.re;
    work->spectrum[2 * place + 1] = -w.im;
    work->powers[a] = static_cast<uint16_t>(power % kPowers);
  }
  SIGVEX_TRY(kernel_spectrum<T>(work->spectrum, kPowers, 1));
  rader<T> = work.release();
  return kSuccess;
}

template <class T> void add(Point<T>& sum, Point<T> z) { sum = {sum.re + z.re, sum.im + z.im}; }

// The points of data in the order of the powers; their sum, in several chains of sums of blocks.
template <class T> Point<T> gather(const T* data, T* to) {
  constexpr size_t kChains = 8, kBlock = 256;
  Point<T> chains[kChains] = {}, sum{};
  for (size_t block = 0; block < kPowers; block += kBlock) {
    Point<T> parts[kChains] = {};
    for (size_t a = block; a < block + kBlock; a += kChains) {
      for (size_t l = 0; l < kChains; ++l) {
        const T* const from = data + 2 * size_t{rader<T>->powers[a + l]};
        add(parts[l], {from[0], from[1]});
        to[2 * (a + l)] = from[0];
        to[2 * (a + l) + 1] = from[1];
      }
    }
    for (size_t l = 0; l < kChains; ++l) add(chains[l], parts[l]);
  }
  for (const Point<T>& chain : chains) add(sum, chain);
  return sum;
}

// Result b to place 3^-b, that of the inverse to -3^-b, -1 being 3^((N-1)/2); first is added to each.
template <class T> void scatter(const T* from, bool inverse, Point<T> first, T* data) {
  const size_t shift = inverse ? kPowers / 2 : 0;
  for (size_t b = 0; b < kPowers; ++b) {
    T* const to = data + 2 * size_t{rader<T>->powers[(shift - b) % kPowers]};
    to[0] = from[2 * b] + first.re;
    to[1] = from[2 * b + 1] + first.im;
  }
}

}  // namespace

template <class T> void release_rader() {
  std::free(rader<T>);
  rader<T> = nullptr;
}

// Point 0 stands aside and point N - 1 in its place, which leaves room for N - 1 points in order.
template <class T> Status rader_transform(Vector<T>& v, bool inverse) {
  SIGVEX_TRY(prepare<T>());
  SIGVEX_TRY(reshape<T>(v, 2 * kPowers, 1));
  v.points = kRaderLength;
  const T factor = inverse ? T(1) : T(1) / kRaderLength;
  const Point<T> first = point<T>(v, 0);
  set_point<T>(v, 0, point<T>(v, kPowers));
  T* const ordered = v.data + 2 * kPowers;
  Point<T> sum = gather(v.data, ordered);
  add(sum, first);
  const Convolution<T> convolution{
      rader<T>->spectrum, ordered, kPowers, false, nullptr, false, ordered, kPowers, factor};
  const Status status = convolve<T>(kPowers, convolution);
  if (status == kSuccess) scatter<T>(ordered, inverse, {first.re * factor, first.im * factor}, v.data);
  set_point<T>(v, kPowers, point<T>(v, 0));
  set_point<T>(v, 0, status == kSuccess ? Point<T>{sum.re * factor, sum.im * factor} : first);
  return status;
}

#define SIGVEX_INSTANTIATE(T)       \
  template void release_rader<T>(); \
  template Status rader_transform<T>(Vector<T>&, bool);
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
