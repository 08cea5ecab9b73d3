#include "core/locks.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "core/thread_order.h"

namespace sigvex {
namespace {

// Raw storage, so that nothing is constructed at load and nothing destroyed at exit, while threads may still run.
struct Lock {
  alignas(std::recursive_mutex) unsigned char storage[sizeof(std::recursive_mutex)];
  std::atomic<bool> created;

  std::recursive_mutex& mutex() { return *std::launder(reinterpret_cast<std::recursive_mutex*>(storage)); }
};

constinit Lock locks[2] = {};
constinit std::atomic<int32_t> init_count{0};
constexpr int32_t kInitCountLimit = 10000;  // the counter must not run away in a host that calls again and again

}  // namespace

void init_locks() {
  const int32_t calls = ++init_count;
  if (calls == 1) {
    for (Lock& lock : locks) {
      try {
        std::construct_at(reinterpret_cast<std::recursive_mutex*>(lock.storage));
        lock.created = true;
      } catch (const std::system_error&) {
      }
    }
  }
  if (calls > kInitCountLimit) --init_count;
}

namespace detail {

void enter(int lock) {
  if (locks[lock].created) locks[lock].mutex().lock();
}

void leave(int lock) {
  if (locks[lock].created) locks[lock].mutex().unlock();
}

}  // namespace detail

constinit InUse::Slot InUse::slots_[kOwned + kShared + 1] = {};

InUse::Slot* InUse::taken_elsewhere() {
  static constinit std::atomic<uint64_t> threads{0};
  static constinit thread_local uint32_t first = 0;  // of the shared slots to try; 0 before the thread's first use
  if (first == 0) {
    const uint64_t number = threads++;
    first = static_cast<uint32_t>(kOwned + number % kShared);
    if (number < kOwned && threads_can_be_ordered()) {
      own_ = &slots_[number];
      return taken();
    }
  }
  for (uint32_t k = 0; k < kShared; ++k) {
    Slot& slot = slots_[kOwned + (first + k) % kShared];
    if (slot.running.exchange(1) == 0) return &slot;
  }
  ++slots_[kOwned + kShared].running;
  return &slots_[kOwned + kShared];
}

bool InUse::none() {
  return std::all_of(std::begin(slots_), std::end(slots_), [](const Slot& slot) { return slot.running == 0; });
}

void InUse::wait_for_none() {
  order_threads();
  for (std::chrono::milliseconds pause{6}; !none(); ++pause) std::this_thread::sleep_for(pause);
}

}  // namespace sigvex
