#include "spectral/workspace.h"

#include <cstdlib>

namespace sigvex {

void* WorkspacePool::take(size_t bytes) {
  for (auto& spare : spares_) {
    if (!spare.load(std::memory_order_relaxed)) continue;
    if (void* const block = spare.exchange(nullptr)) return block;
  }
  return std::malloc(bytes);
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
