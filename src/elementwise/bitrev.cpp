// dspi_bitrev dspi_bitrev_scale
#include <bit>
#include <new>
#include <utility>

#include "core/caches.h"
#include "core/exports.h"
#include "core/table_cache.h"
#include "elementwise/operations.h"

namespace sigvex {
namespace {

struct Swap {
  int32_t i, j;  // 32 bits hold the index of any point
};

// The swaps of the points of 2^bits, each pair once; index 0 never moves, so it ends the list.
struct SwapTable : TableHead {
  Swap* swaps() { return reinterpret_cast<Swap*>(this + 1); }
  const Swap* swaps() const { return reinterpret_cast<const Swap*>(this + 1); }
};

template <class T> constinit TableCache<SwapTable> swap_tables{};

SwapTable* build_swaps(int bits) {
  const size_t n = size_t{1} << bits, fixed = size_t{1} << (bits + 1) / 2;  // palindromes stay in place
  void* const block = std::malloc(sizeof(SwapTable) + ((n - fixed) / 2 + 1) * sizeof(Swap));
  if (!block) return nullptr;
  SwapTable* const table = new (block) SwapTable{};
  Swap* swap = table->swaps();
  for (size_t i = 0, j = 0; i < n; ++i) {
    if (i < j) *swap++ = {static_cast<int32_t>(i), static_cast<int32_t>(j)};
    size_t bit = n / 2;  // counts j up from its highest bit, as i counts from its lowest
    while (bit > 0 && (j & bit)) j ^= bit, bit /= 2;
    j |= bit;
  }
  *swap = {0, 0};
  return table;
}

template <class Item> void exchange(Item* x, const Swap* swap) {
  for (; swap->i != 0; ++swap) std::swap(x[swap->i], x[swap->j]);
}

}  // namespace

template <class T> Status release_bitrev() {
  swap_tables<T>.release();
  return kSuccess;
}
template Status release_bitrev<double>();
template Status release_bitrev<float>();

namespace dspi {

template <class T> Status bitrev(Vector<T>& v) {
  const size_t n = points<T>(v);
  if (!std::has_single_bit(n)) return kFailure;
  const int bits = std::countr_zero(n);
  const Lease<SwapTable> table(swap_tables<T>, bits, bits, [bits] { return build_swaps(bits); });
  if (!table) return kFailure;
  if (v.complex) {
    exchange(reinterpret_cast<Point<T>*>(v.data), table->swaps());
  } else {
    exchange(v.data, table->swaps());
  }
  return kSuccess;
}

template <class T> Status bitrev_scale(Vector<T>& v, T factor) {
  SIGVEX_TRY(bitrev<T>(v));
  return scale<T>(v, factor);
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, bitrev, 1)
SIGVEX_EXPORT(i, bitrev_scale, 2)
