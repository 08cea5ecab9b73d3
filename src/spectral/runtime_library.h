// The two libraries that are looked for while the program runs and never required: a transform library with the DFTI
// interface and an OpenMP runtime. A file that does not load or lacks an entry point counts as absent.
#pragma once

#include <cstdint>

namespace sigvex {

// DFTI's variadic arguments: lengths and thread counts are long, scales double. A status is 0 or an error code.
struct TransformLibrary {
  int (*create_descriptor)(void** handle, int precision, int domain, long dimensions, ...);
  int (*set_value)(void* handle, int parameter, ...);
  int (*commit_descriptor)(void* handle);
  int (*compute_forward)(void* handle, void* input, ...);
  int (*compute_backward)(void* handle, void* input, ...);
  int (*free_descriptor)(void** handle);
  int (*disable_fast_mm)();
};

struct OpenMpRuntime {
  int (*get_max_threads)();
  int (*get_num_procs)();
  void (*set_num_threads)(int count);
  int (*get_blocktime)();
  void (*set_defaults)(const char* setting);
};

// The library, loaded if it is not yet, or null where there is none. Once loaded it stays for the life of the process.
const TransformLibrary* transform_library();
const OpenMpRuntime* openmp_runtime();

// Gives an environment variable a value unless it has one, be it empty; says whether it did.
bool set_default_environment(const char* name, const char* value);

}  // namespace sigvex
