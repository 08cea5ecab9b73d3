// Storage hooks that count their calls and fail on request.
#pragma once

#include <cstdlib>

#include "support/twin.h"

namespace sigvex_test {

TWIN(, lib_alloc);
TWIN(, lib_free);
TWIN(, lib_realloc);

// While it lives, growth number `failing` (from 0 on) and those after it find no memory.
template <class T> class FailingStorage {
 public:
  explicit FailingStorage(int failing) {
    growths = frees = kept = 0;
    allowed = failing;
    lib_alloc.of<T>()(alloc, nullptr);
    lib_realloc.of<T>()(realloc, nullptr);
    lib_free.of<T>()(free, nullptr);
  }
  ~FailingStorage() {
    lib_alloc.of<T>()(nullptr, nullptr);
    lib_realloc.of<T>()(nullptr, nullptr);
    lib_free.of<T>()(nullptr, nullptr);
  }
  FailingStorage(const FailingStorage&) = delete;
  FailingStorage& operator=(const FailingStorage&) = delete;

  static inline int growths, frees, kept;  // what was to be kept by the last reallocation: 10 points + complex

 private:
  static inline int allowed;
  static size_t bytes(const Record<T>* v) { return static_cast<size_t>(v->points) * (v->complex ? 2 : 1) * sizeof(T); }
  static int32_t alloc(Record<T>* v) {
    if (v->allocated > 0) std::free(v->data);
    v->data = growths++ < allowed ? static_cast<T*>(std::malloc(bytes(v))) : nullptr;
    return 0;
  }
  static int32_t free(Record<T>* v) { return ++frees, std::free(v->data), 77; }  // ignored, like every hook's status
  static int32_t realloc(Record<T>* v, int32_t points, int32_t complex) {
    kept = 10 * points + complex;
    if (growths++ < allowed) {
      v->data = static_cast<T*>(std::realloc(v->data, bytes(v)));
    } else {
      std::free(v->data);
      v->data = nullptr;
    }
    return 0;
  }
};

}  // namespace sigvex_test
