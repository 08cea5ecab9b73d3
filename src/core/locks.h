// The process-wide frame state, shared by both precisions: two locks and the count of running transforms.
#pragma once

#include <atomic>
#include <cstdint>

namespace sigvex {

// Creates both locks at the first call; a lock that cannot be created is left out of use.
void init_locks();

namespace detail {
void enter(int lock);
void leave(int lock);
}  // namespace detail

// Holds one of the library's locks for a scope. The locks are recursive for their thread, and do nothing before
// dsp_lib_init: a host that never calls it has one thread.
template <int Lock> class LockGuard {
 public:
  LockGuard() { detail::enter(Lock); }
  ~LockGuard() {
    if (held_) detail::leave(Lock);
  }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

  void leave_held() { held_ = false; }  // the lock outlives the scope on purpose

 private:
  bool held_ = true;
};

using TableLock = LockGuard<0>;  // twiddle and permutation tables, plans: held only while looking up or building
using WorkLock = LockGuard<1>;   // every other cache and the random source: held for the whole operation

// Counts a transform that runs on tables taken out of the caches of the table lock. Either hold that lock, or count up
// first and look for the table then: a release takes the tables out of sight before it waits for the count. Never wait
// for the lock while counted, because the release holds it.
//
// Each thread counts in a slot of its own line of memory, so that threads that transform at once do not wait for each
// other. The first threads own theirs alone and take it with a plain store: it is the release that makes every thread
// put its accesses in order (core/thread_order.h), because an ordered store costs more than all the rest of a short
// call. Later threads, systems that cannot do that, and a second use in one thread take the first free one of the
// shared slots.
class InUse {
 public:
  InUse() : slot_(taken()) {}
  ~InUse() {
    if (slot_) leave();
  }
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;

  void leave_counted() { slot_ = nullptr; }  // the count outlives the scope on purpose

  // Sleeps until no transform runs: 6 ms, 7 ms, 8 ms and so on. The caller holds the table lock.
  static void wait_for_none();

 private:
  struct alignas(128) Slot {
    std::atomic<int32_t> running;
  };  // two lines, because they are fetched in pairs
  static constexpr uint32_t kOwned = 64, kShared = 64;

  static Slot* taken() {
    Slot* const own = own_;
    if (!own || own->running.load(std::memory_order_relaxed) != 0) return taken_elsewhere();
    own->running.store(1, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);  // no table is looked for before
    return own;
  }
  static Slot* taken_elsewhere();
  void leave() {
    if (slot_ == &slots_[kOwned + kShared]) --slot_->running;
    else slot_->running.store(0, std::memory_order_release);
  }
  static bool none();

  static Slot slots_[kOwned + kShared + 1];  // the last one counts those that find all others taken
#if defined(__GNUC__) && defined(__ELF__)
  [[gnu::tls_model("initial-exec")]]  // one instruction to reach it
#endif
  static constinit inline thread_local Slot* own_ = nullptr;

  Slot* slot_;
};

}  // namespace sigvex
