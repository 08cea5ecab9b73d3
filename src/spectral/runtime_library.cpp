#include "spectral/runtime_library.h"

#include <atomic>
#include <cstdlib>
#include <initializer_list>
#include <mutex>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace sigvex {
namespace {

#if defined(_WIN32)

using Handle = HMODULE;

constexpr const char* kTransformNames[] = {"Corvanta_IntelMKL.dll"};
constexpr const char* kOpenMpNames[] = {"libiomp5md.dll"};

Handle already_loaded(const char* name) {  // with a reference of our own, as load gives
  Handle library = nullptr;
  return GetModuleHandleExA(0, name, &library) ? library : nullptr;
}
Handle load(const char* name) { return LoadLibraryA(name); }
void unload(Handle library) { FreeLibrary(library); }

// This platform's OpenMP runtime exports its entry points by ordinal.
template <class Function> bool bind(Handle library, Function*& entry, const char* name, int ordinal) {
  entry = reinterpret_cast<Function*>(GetProcAddress(library, ordinal ? MAKEINTRESOURCEA(ordinal) : name));
  return entry != nullptr;
}

#else

using Handle = void*;

constexpr const char* kTransformNames[] = {"libmkl_rt.so.2", "libmkl_rt.so"};
constexpr const char* kOpenMpNames[] = {"libiomp5.so", "libomp.so.5"};

Handle already_loaded(const char* name) { return dlopen(name, RTLD_NOW | RTLD_NOLOAD); }
Handle load(const char* name) { return dlopen(name, RTLD_NOW); }
void unload(Handle library) { dlclose(library); }

template <class Function> bool bind(Handle library, Function*& entry, const char* name, int /*ordinal*/) {
  entry = reinterpret_cast<Function*>(dlsym(library, name));
  return entry != nullptr;
}

#endif

bool bind_all(Handle library, TransformLibrary& entries) {
  return bind(library, entries.create_descriptor, "DftiCreateDescriptor", 0) &&
         bind(library, entries.set_value, "DftiSetValue", 0) &&
         bind(library, entries.commit_descriptor, "DftiCommitDescriptor", 0) &&
         bind(library, entries.compute_forward, "DftiComputeForward", 0) &&
         bind(library, entries.compute_backward, "DftiComputeBackward", 0) &&
         bind(library, entries.free_descriptor, "DftiFreeDescriptor", 0) &&
         bind(library, entries.disable_fast_mm, "MKL_Disable_Fast_MM", 0);
}

bool bind_all(Handle library, OpenMpRuntime& entries) {
  return bind(library, entries.get_max_threads, "omp_get_max_threads", 703) &&
         bind(library, entries.get_num_procs, "omp_get_num_procs", 705) &&
         bind(library, entries.set_num_threads, "omp_set_num_threads", 724) &&
         bind(library, entries.get_blocktime, "kmp_get_blocktime", 727) &&
         bind(library, entries.set_defaults, "kmp_set_defaults", 224);
}

template <class Entries> struct Library {
  std::mutex loading;
  std::atomic<bool> loaded;
  Entries entries;

  bool take(Handle library) {
    if (!library) return false;
    if (bind_all(library, entries)) return true;
    unload(library);
    return false;
  }

  // A copy that the process already runs is preferred to a second one, whichever name comes first: two OpenMP runtimes
  // in one process disturb each other.
  template <size_t Names> const Entries* get(const char* variable, const char* const (&names)[Names]) {
    if (loaded) return &entries;
    const std::lock_guard guard(loading);
    if (loaded) return &entries;
    const char* const chosen = std::getenv(variable);
    for (const auto open : {already_loaded, load}) {
      loaded = chosen && *chosen && take(open(chosen));
      for (size_t k = 0; k < Names && !loaded; ++k) loaded = take(open(names[k]));
      if (loaded) return &entries;
    }
    return nullptr;
  }
};

constinit Library<TransformLibrary> transforms{};
constinit Library<OpenMpRuntime> openmp{};

}  // namespace

const TransformLibrary* transform_library() { return transforms.get("SIGVEX_MKL_LIBRARY", kTransformNames); }

const OpenMpRuntime* openmp_runtime() { return openmp.get("SIGVEX_OMP_LIBRARY", kOpenMpNames); }

bool set_default_environment(const char* name, const char* value) {
#if defined(_WIN32)
  char present[20];
  return GetEnvironmentVariableA(name, present, sizeof present) == 0 && SetEnvironmentVariableA(name, value) != 0;
#else
  return !std::getenv(name) && setenv(name, value, 0) == 0;
#endif
}

}  // namespace sigvex
