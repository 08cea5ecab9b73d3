// dsph_rsmp_coef_alloc dsph_rsmp_coef_init dsph_rsmp_coef_destroy
// dsph_rsmp_state_alloc dsph_rsmp_state_init dsph_rsmp_state_reset dsph_rsmp_state_destroy
// dsph_rsmp_state_get_offset dsph_rsmp_state_set_offset
#include "filter/resample_objects.h"

#include <algorithm>
#include <new>

#include "core/exports.h"

namespace sigvex {
namespace {

// An object on the heap lies in the storage of a record, which it carries itself, so that the hooks serve both.
template <class T, class Object> Status make(Object*& object) {
  static_assert(alignof(Object) <= kRowBytes && kRowBytes % sizeof(T) == 0);
  object = nullptr;
  Vector<T> own{};
  dsp::init<T>(own);
  SIGVEX_TRY(shape<T>(own, (sizeof(Object) + kRowBytes) / sizeof(T), 0));
  object = new (aligned<T>(own)) Object{};
  object->own = own;
  return kSuccess;
}

template <class T, class Object> Status destroy(Object& object, Vector<T> Object::*samples) {
  dsp::destroy<T>(object.*samples);
  Vector<T> own = object.own;
  object = {};
  return dsp::destroy<T>(own);
}

}  // namespace

namespace dsph {

template <class T> Status rsmp_coef_alloc(Coef<T>*& coef) { return make<T>(coef); }

template <class T> Status rsmp_coef_init(Coef<T>& coef) {
  coef = {};
  return kSuccess;
}

template <class T> Status rsmp_coef_destroy(Coef<T>& coef) { return destroy<T>(coef, &Coef<T>::bank); }

template <class T> Status rsmp_state_alloc(State<T>*& state) { return make<T>(state); }

template <class T> Status rsmp_state_init(State<T>& state) {
  state = {};
  return kSuccess;
}

template <class T> Status rsmp_state_reset(State<T>& state) {
  std::fill_n(state.history.data, size<T>(state.history), T(0));
  set_position<T>(state, 0);
  return kSuccess;
}

template <class T> Status rsmp_state_destroy(State<T>& state) { return destroy<T>(state, &State<T>::history); }

template <class T> Status rsmp_state_get_offset(const State<T>& state, double& offset) {
  offset = to_double(position<T>(state));
  return kSuccess;
}

template <class T> Status rsmp_state_set_offset(State<T>& state, double offset) {
  if (!(offset >= 0 && offset <= 0x1p31)) return kFailure;
  set_position<T>(state, to_fixed(offset));
  return kSuccess;
}

}  // namespace dsph
}  // namespace sigvex

SIGVEX_EXPORT(h, rsmp_coef_alloc, 1)
SIGVEX_EXPORT(h, rsmp_coef_init, 1)
SIGVEX_EXPORT(h, rsmp_coef_destroy, 1)
SIGVEX_EXPORT(h, rsmp_state_alloc, 1)
SIGVEX_EXPORT(h, rsmp_state_init, 1)
SIGVEX_EXPORT(h, rsmp_state_reset, 1)
SIGVEX_EXPORT(h, rsmp_state_destroy, 1)
SIGVEX_EXPORT(h, rsmp_state_get_offset, 2)
SIGVEX_EXPORT(h, rsmp_state_set_offset, 2)
