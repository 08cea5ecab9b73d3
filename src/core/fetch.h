// Memory fetched into the cache before it is needed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace sigvex {

template <class T> inline constexpr size_t kCacheLine = 64 / sizeof(T);

// Fetches the cache line of x[k], which need not exist: a pointer must not leave its array, an address may.
template <class T> __attribute__((always_inline)) inline void fetch(const T* x, std::ptrdiff_t k) {
  const auto address = reinterpret_cast<std::uintptr_t>(x) + static_cast<std::uintptr_t>(k) * sizeof(T);
  __builtin_prefetch(reinterpret_cast<const void*>(address));
}

}  // namespace sigvex
