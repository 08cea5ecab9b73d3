// dsp_init dsp_destroy dsp_alloc dsp_realloc dsp_lib_alloc dsp_lib_free dsp_lib_realloc
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "core/exports.h"
#include "core/scratch.h"

namespace sigvex {
namespace {

template <class T> struct Hooks {
  int32_t (*alloc)(Vector<T>*);
  int32_t (*free)(Vector<T>*);
  int32_t (*realloc)(Vector<T>*, int32_t, int32_t);
};
template <class T> constinit Hooks<T> hooks{};

template <class Hook> Status install(Hook& slot, Hook hook, Hook* previous) {
  if (previous) *previous = slot;
  slot = hook;
  return kSuccess;
}

template <class T> void release(Vector<T>& v) {
  if (v.allocated <= 0) return;
  if (hooks<T>.free) {
    hooks<T>.free(&v);
  } else {
    std::free(v.data);
  }
}

// Takes over the block that a growth has left in data.
template <class T> Status grown(Vector<T>& v) {
  if (!v.data) {
    v.allocated = v.points = 0;
    return kFailure;
  }
  v.allocated = static_cast<int32_t>(size<T>(v));
  return kSuccess;
}

}  // namespace

template <class T> Status exhausted(Vector<T>& v) {
  release<T>(v);
  v.data = nullptr;
  return grown<T>(v);
}

template <class T> Status shape(Vector<T>& v, size_t n, int32_t complex) {
  if (!fits(n)) return exhausted<T>(v);
  v.points = static_cast<int32_t>(n);
  v.complex = complex;
  return dsp::alloc<T>(v);
}

template <class T> Status reshape(Vector<T>& v, size_t n, int32_t complex) {
  if (!fits(n)) return exhausted<T>(v);
  const int32_t old_points = v.points, old_complex = v.complex;
  v.points = static_cast<int32_t>(n);
  v.complex = complex;
  return dsp::realloc<T>(v, old_points, old_complex);
}

namespace dsp {

template <class T> Status init(Vector<T>& v) {
  v = {};
  v.delta = 1;
  return kSuccess;
}

template <class T> Status destroy(Vector<T>& v) {
  release<T>(v);
  return init<T>(v);
}

template <class T> Status alloc(Vector<T>& v) {
  const size_t need = size<T>(v);
  if (need <= count(v.allocated)) return kSuccess;
  if (!fits(need)) return exhausted<T>(v);
  if (hooks<T>.alloc) {
    hooks<T>.alloc(&v);
  } else {
    if (v.allocated > 0) std::free(v.data);
    v.data = static_cast<T*>(std::malloc(need * sizeof(T)));
  }
  return grown<T>(v);
}

template <class T> Status realloc(Vector<T>& v, int32_t old_points, int32_t old_complex) {
  const size_t need = size<T>(v);
  if (need <= count(v.allocated)) return kSuccess;
  if (!fits(need)) return exhausted<T>(v);
  const T* const viewed = v.allocated <= 0 ? std::exchange(v.data, nullptr) : nullptr;
  if (hooks<T>.realloc) {
    hooks<T>.realloc(&v, old_points, old_complex);
  } else {
    T* const block = static_cast<T*>(std::realloc(v.data, need * sizeof(T)));
    if (!block) std::free(v.data);
    v.data = block;
  }
  if (v.data && viewed) std::copy_n(viewed, std::min(scalars(old_points, old_complex), need), v.data);
  return grown<T>(v);
}

template <class T> Status lib_alloc(int32_t (*hook)(Vector<T>*), int32_t (**previous)(Vector<T>*)) {
  return install(hooks<T>.alloc, hook, previous);
}

template <class T> Status lib_free(int32_t (*hook)(Vector<T>*), int32_t (**previous)(Vector<T>*)) {
  return install(hooks<T>.free, hook, previous);
}

template <class T>
Status lib_realloc(int32_t (*hook)(Vector<T>*, int32_t, int32_t), int32_t (**previous)(Vector<T>*, int32_t, int32_t)) {
  return install(hooks<T>.realloc, hook, previous);
}

}  // namespace dsp

#define SIGVEX_INSTANTIATE(T)                            \
  template Status exhausted<T>(Vector<T>&);              \
  template Status shape<T>(Vector<T>&, size_t, int32_t); \
  template Status reshape<T>(Vector<T>&, size_t, int32_t);
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex

SIGVEX_EXPORT(, init, 1)
SIGVEX_EXPORT(, destroy, 1)
SIGVEX_EXPORT(, alloc, 1)
SIGVEX_EXPORT(, realloc, 3)
SIGVEX_EXPORT(, lib_alloc, 2)
SIGVEX_EXPORT(, lib_free, 2)
SIGVEX_EXPORT(, lib_realloc, 2)
