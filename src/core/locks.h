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

// Counts a transform that runs on tables taken out of the caches of the table lock. Count up while holding that lock;
// never wait for the lock while counted, because a release holds it and waits for the count.
class InUse {
 public:
  InUse() { ++running_; }
  ~InUse() {
    if (counted_) --running_;
  }
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;

  void leave_counted() { counted_ = false; }  // the count outlives the scope on purpose

  // Sleeps until no transform runs: 6 ms, 7 ms, 8 ms and so on. The caller holds the table lock.
  static void wait_for_none();

 private:
  static constinit inline std::atomic<int32_t> running_{0};
  bool counted_ = true;
};

}  // namespace sigvex
