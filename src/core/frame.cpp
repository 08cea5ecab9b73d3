// dsp_lib_init dsp_version dsp_free_internal
#include "core/caches.h"
#include "core/exports.h"
#include "core/locks.h"

namespace sigvex::dsp {
template <class T> Status free_internal() {
  // The order is part of the interface; a step that fails stops the release.
  constexpr Status (*steps[])() = {
      release_fir<T>,
      release_bitrev<T>,
      release_dct<T>,
      release_dft<T>,
      release_plans<T>,
      release_twiddles<T>,
      release_windows<T>,
  };
  for (const auto release : steps) SIGVEX_TRY(release());
  return kSuccess;
}

// Both precisions share the frame: one function under two names.
template <class> Status lib_init() {
  init_locks();
  return kSuccess;
}

template <class> int32_t version() { return 3035006; }

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, free_internal, 0)
SIGVEX_EXPORT_SHARED(, lib_init, 0)
SIGVEX_EXPORT_SHARED(, version, 0)
