// Aligned work space of a running transform.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace sigvex {

// Blocks of one size that wait for the next transform, so that none allocates twice.
class WorkspacePool {
 public:
  void* take(size_t bytes);  // null when memory is exhausted
  void give_back(void* block);
  void release();

 private:
  static constexpr int kSpares = 8;  // more threads than this at one length allocate at each call
  std::atomic<void*> spares_[kSpares] = {};
};

// `bytes` of work space, aligned to kAlignment, until the end of the scope: on the stack while it is small.
class Workspace {
 public:
  static constexpr size_t kAlignment = 64, kOnStack = size_t{1} << 15;

  Workspace(WorkspacePool& pool, size_t bytes)
      : pool_(pool),
        block_(bytes > kOnStack ? pool.take(bytes + kAlignment) : nullptr),
        available_(block_ || bytes <= kOnStack) {}
  ~Workspace() {
    if (block_) pool_.give_back(block_);
  }
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  explicit operator bool() const { return available_; }
  template <class T> T* as();

 private:
  WorkspacePool& pool_;
  void* block_;
  bool available_;
  alignas(kAlignment) unsigned char stack_[kOnStack];
};

template <class T> T* Workspace::as() {
  if (!block_) return reinterpret_cast<T*>(stack_);
  const auto address = reinterpret_cast<uintptr_t>(block_);
  return reinterpret_cast<T*>((address + kAlignment - 1) / kAlignment * kAlignment);
}

}  // namespace sigvex
