#include "spectral/twiddles.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

#include "core/caches.h"
#include "spectral/kernels.h"

namespace sigvex {
namespace {

template <class T> constinit TableCache<TripleTable<T>> triple_caches{};
template <class T> constinit TableCache<ComplexTables<T>> complex_caches{};
template <class T> constinit TableCache<RealTables<T>> real_caches{};

// A table with `scalars` aligned scalars behind it, or null.
template <class Table, class T> Table* make_table(size_t scalars, T*& behind) {
  void* const block = std::malloc(sizeof(Table) + kAlignment + scalars * sizeof(T));
  if (!block) return nullptr;
  Table* const table = new (block) Table{};
  const auto end = reinterpret_cast<uintptr_t>(table + 1);
  behind = reinterpret_cast<T*>((end + kAlignment - 1) / kAlignment * kAlignment);
  return table;
}

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

template <class T> const TripleTable<T>* triples(int bits) {
  const size_t n = size_t{1} << bits, scalars = n / 2 * 3;
  return triple_caches<T>.find_or_build(static_cast<int32_t>(scalars), bits, [n, scalars]() -> TripleTable<T>* {
    T* to;
    TripleTable<T>* const table = make_table<TripleTable<T>>(scalars, to);
    if (!table) return nullptr;
    fill_triples(to, n);
    table->triples = to;
    table->n = static_cast<int32_t>(n);
    return table;
  });
}

template <class T> ComplexTables<T>* build_complex(int bits, const TripleTable<T>* roots) {
  if (!roots) return nullptr;
  const EngineKernels<T>& kernels = engine_kernels<T>();
  T* to;
  ComplexTables<T>* const table = make_table<ComplexTables<T>>(kernels.table_size(bits), to);
  if (!table) return nullptr;
  kernels.fill_table(bits, *roots, to);
  table->kernels = &kernels;
  table->bits = bits;
  table->work_size = kernels.work_size(bits);
  table->forward = kernels.forward(bits);
  table->inverse = kernels.inverse(bits);
  table->roots = to;
  return table;
}

template <class T> RealTables<T>* build_real(int bits) {
  const TripleTable<T>* const roots = triples<T>(bits);
  if (!roots) return nullptr;
  const ComplexTables<T>* const half =
      complex_caches<T>.find_or_build(bits - 1, bits - 1, [=] { return build_complex(bits - 1, roots); });
  if (!half) return nullptr;
  T* to;
  RealTables<T>* const table = make_table<RealTables<T>>(half->kernels->split_size(bits - 1), to);
  if (!table) return nullptr;
  half->kernels->fill_split(bits - 1, *roots, to);
  table->half = half;
  table->forward = half->kernels->real_forward(bits - 1);
  table->inverse = half->kernels->real_inverse(bits - 1);
  table->roots = to;
  return table;
}

}  // namespace

template <class T> Lease<ComplexTables<T>> complex_tables(int bits) {
  return {complex_caches<T>, bits, bits, [bits] { return build_complex(bits, triples<T>(bits)); }};
}

template <class T> Lease<RealTables<T>> real_tables(int bits) {
  return {real_caches<T>, bits, bits, [bits] { return build_real<T>(bits); }};
}

template <class T> Status release_twiddles() {
  const TableLock lock;  // nobody builds on a table of one cache while another is released
  real_caches<T>.release();
  complex_caches<T>.release();
  triple_caches<T>.release();
  return kSuccess;
}

#define SIGVEX_INSTANTIATE(T)                              \
  template Lease<ComplexTables<T>> complex_tables<T>(int); \
  template Lease<RealTables<T>> real_tables<T>(int);       \
  template Status release_twiddles<T>();
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
