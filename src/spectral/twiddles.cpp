#include "spectral/twiddles.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include "core/caches.h"

namespace sigvex {
namespace {

template <class T> constinit TableCache<TripleTable<T>> triple_tables{};

// cos and sin of k steps of a turn, k counting up from 0. The rotation starts again from exact values every 256 steps,
// and is carried in extended precision: rounded once, every entry is right to the last place.
class Rotation {
 public:
  explicit Rotation(size_t n) : step_(2 * std::numbers::pi_v<long double> / static_cast<long double>(n)) {
    for (size_t k = 0; k < kRestart; ++k) fine_[k] = exact(k);
  }
  Point<long double> next() {
    if (k_ % kRestart == 0) coarse_ = exact(k_);
    const Point<long double> f = fine_[k_++ % kRestart];
    return {coarse_.re * f.re - coarse_.im * f.im, coarse_.im * f.re + coarse_.re * f.im};
  }

 private:
  static constexpr size_t kRestart = 256;
  Point<long double> exact(size_t k) const {
    const long double angle = step_ * static_cast<long double>(k);
    return {std::cos(angle), std::sin(angle)};
  }
  long double step_;
  size_t k_ = 0;
  Point<long double> fine_[kRestart], coarse_{};
};

template <class T> void set(T* triple, long double c, long double s) {
  triple[0] = static_cast<T>(c);
  triple[1] = static_cast<T>(-c - s);
  triple[2] = static_cast<T>(s - c);
}

template <class T> void fill_triples(T* table, size_t n) {
  set(table, 1, 0);
  set(table + 3, 1, 0);
  T* const first = table + 3;  // k = 0
  T* const last = table + 3 * (n / 4);
  Rotation rotation(n);
  rotation.next();
  for (size_t k = 1; k < n / 8; ++k) {
    const Point<long double> z = rotation.next();
    set(first + 3 * k, z.re, z.im);
    set(last - 3 * (k - 1), z.im, z.re);
  }
  if (n > 4) {
    first[3 * (n / 8)] = std::numbers::sqrt2_v<T> / 2;
    first[3 * (n / 8) + 1] = -std::numbers::sqrt2_v<T>;
    first[3 * (n / 8) + 2] = 0;
  }
  T* to = last + 3;
  for (size_t stride = 2; stride <= n / 4; stride *= 2) {
    for (size_t k = 0; k < n / 4; k += stride, to += 3) std::copy_n(first + 3 * k, 3, to);
  }
}

template <class T> TripleTable<T>* build_triples(size_t n) {
  void* const block = std::malloc(sizeof(TripleTable<T>) + n / 2 * 3 * sizeof(T));
  if (!block) return nullptr;
  TripleTable<T>* const table = new (block) TripleTable<T>{};
  T* const triples = reinterpret_cast<T*>(table + 1);
  fill_triples(triples, n);
  table->triples = triples;
  table->n = static_cast<int32_t>(n);
  return table;
}

}  // namespace

template <class T> Lease<TripleTable<T>> triple_table(int bits) {
  const size_t n = size_t{1} << bits;
  return Lease<TripleTable<T>>(triple_tables<T>, static_cast<int32_t>(n / 2 * 3), bits,
                               [n] { return build_triples<T>(n); });
}

template <class T> Status release_twiddles() {
  triple_tables<T>.release();
  return kSuccess;
}

#define SIGVEX_INSTANTIATE(T)                          \
  template Lease<TripleTable<T>> triple_table<T>(int); \
  template Status release_twiddles<T>();
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
