#include "spectral/workspace.h"

#include <cstdint>
#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace sigvex {
namespace {

// Long strides through many small pages cost more in address translation than in transfer.
void advise_large_pages([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes) {
#ifdef __linux__
  constexpr uintptr_t kPage = uintptr_t{1} << 21;
  const auto begin = reinterpret_cast<uintptr_t>(block), first = (begin + kPage - 1) / kPage * kPage;
  if (first + kPage <= begin + bytes) madvise(reinterpret_cast<void*>(first), begin + bytes - first, MADV_HUGEPAGE);
#endif
}

}  // namespace

void* WorkspacePool::take(size_t bytes) {
  for (auto& spare : spares_) {
    if (!spare.load(std::memory_order_relaxed)) continue;
    if (void* const block = spare.exchange(nullptr)) return block;
  }
  void* const block = std::malloc(bytes);
  if (block) advise_large_pages(block, bytes);
  return block;
}

void WorkspacePool::give_back(void* block) {
  for (auto& spare : spares_) {
    void* expected = nullptr;
    if (spare.compare_exchange_strong(expected, block)) return;
  }
  std::free(block);
}

void WorkspacePool::release() {
  for (auto& spare : spares_) std::free(spare.exchange(nullptr));
}

}  // namespace sigvex
