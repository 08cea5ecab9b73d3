// dsp_dft_get_flags dsp_dft_set_flags, and the threads: dsp_omp_get_max_threads dsp_omp_set_num_threads
// dsp_kmp_get_blocktime dsp_kmp_set_blocktime
#include "spectral/settings.h"

#include <atomic>
#include <cstdio>

#include "core/caches.h"
#include "core/exports.h"
#include "spectral/runtime_library.h"

namespace sigvex {
namespace dsp {

template <class T> Status kmp_set_blocktime(int32_t milliseconds);

}  // namespace dsp

namespace {

constexpr uint32_t kLibraryBits = DSP_DFT_MKL_AVAILABLE | DSP_DFT_USE_MKL | DSP_DFT_KEEP_PLANS;

template <class T> constinit std::atomic<bool> started{false};
template <class T> constinit std::atomic<uint32_t> flags{0};

template <class T> bool start_up() {
  const bool memory_set = set_default_environment("MKL_DISABLE_FAST_MM", "YES");
  const bool blocktime_set = set_default_environment("KMP_BLOCKTIME", "0");
  const TransformLibrary* const library = transform_library();
  if (!library || !openmp_runtime()) return false;
  // Normally the flags are still 0 here and the block time comes from the environment alone, which the runtime reads
  // when it starts. Where a host has set flags of its own meanwhile, the runtime may be running already.
  if (blocktime_set) dsp::kmp_set_blocktime<T>(0);
  if (memory_set) library->disable_fast_mm();
  return true;
}

// The OpenMP runtime for the settings calls. They ask for any flag, not for an available library: a host that sets a
// bit of its own reaches the runtime without one.
template <class T> const OpenMpRuntime* threads() { return dft_flags<T>() != 0 ? openmp_runtime() : nullptr; }

template <class T> Status read_setting(int32_t* result, int (*OpenMpRuntime::*getter)()) {
  if (!result) return kSuccess;
  const OpenMpRuntime* const runtime = threads<T>();
  *result = runtime ? (runtime->*getter)() : 0;
  return kSuccess;
}

}  // namespace

// Read before it is written, so that threads which transform side by side share the line.
template <class T> void first_use() {
  if (!started<T> && !started<T>.exchange(true) && start_up<T>()) flags<T> |= kLibraryBits;
}

template <class T> uint32_t dft_flags() {
  first_use<T>();
  return flags<T>;
}

template void first_use<double>();
template void first_use<float>();
template uint32_t dft_flags<double>();
template uint32_t dft_flags<float>();

namespace dsp {

template <class T> Status dft_get_flags(uint32_t* result) {
  const uint32_t word = dft_flags<T>();
  if (result) *result = word;
  return kSuccess;
}

// Exchanged in a loop, because a start-up in another thread may add its bits at any time.
template <class T> Status dft_set_flags(uint32_t word) {
  uint32_t old = dft_flags<T>();
  while (!flags<T>.compare_exchange_weak(
      old, old & DSP_DFT_MKL_AVAILABLE ? word | DSP_DFT_MKL_AVAILABLE : word & ~kLibraryBits)) {
  }
  return kSuccess;
}

template <class T> Status omp_get_max_threads(int32_t* count) {
  return read_setting<T>(count, &OpenMpRuntime::get_max_threads);
}

template <class T> Status omp_set_num_threads(int32_t count) {
  const OpenMpRuntime* const runtime = threads<T>();
  if (!runtime) return kSuccess;
  runtime->set_num_threads(count);
  return release_plans<T>();  // plans are committed with a thread count
}

template <class T> Status kmp_get_blocktime(int32_t* milliseconds) {
  return read_setting<T>(milliseconds, &OpenMpRuntime::get_blocktime);
}

template <class T> Status kmp_set_blocktime(int32_t milliseconds) {
  if (const OpenMpRuntime* const runtime = threads<T>()) {
    char setting[sizeof "KMP_BLOCKTIME=-2147483648"];
    std::snprintf(setting, sizeof setting, "KMP_BLOCKTIME=%d", static_cast<int>(milliseconds));
    runtime->set_defaults(setting);
  }
  return kSuccess;
}

}  // namespace dsp
}  // namespace sigvex

SIGVEX_EXPORT(, dft_get_flags, 1)
SIGVEX_EXPORT(, dft_set_flags, 1)
SIGVEX_EXPORT(, omp_get_max_threads, 1)
SIGVEX_EXPORT(, omp_set_num_threads, 1)
SIGVEX_EXPORT(, kmp_get_blocktime, 1)
SIGVEX_EXPORT(, kmp_set_blocktime, 1)
