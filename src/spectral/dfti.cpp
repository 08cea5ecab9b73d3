// The DFTI back end and its cache of committed descriptors, the plans.
#include "spectral/dfti.h"

#include <optional>
#include <type_traits>

#include "core/caches.h"
#include "core/scratch.h"
#include "core/table_cache.h"
#include "elementwise/operations.h"
#include "spectral/engine.h"
#include "spectral/operations.h"
#include "spectral/runtime_library.h"
#include "spectral/settings.h"

namespace sigvex {
namespace {

enum DftiConstant : int {
  kForwardScale = 4,
  kNumberOfUserThreads = 26,
  kComplexDomain = 32,
  kRealDomain = 33,
  kSingle = 35,
  kDouble = 36
};

struct Plan {
  void* handle;
  int32_t points;
  int32_t complex;
};

template <class T> constinit EntryArray<Plan> plans{};

template <class T> void* find_plan(int32_t n, bool complex) {
  for (const Plan& plan : plans<T>) {
    if (plan.points == n && (plan.complex != 0) == complex && plan.handle) return plan.handle;
  }
  return nullptr;
}

// While OpenMP itself runs on one thread, every processor may be a user thread that shares the plan.
template <class T> int set_user_threads(const TransformLibrary& dfti, void* handle) {
  int32_t threads = 0;
  if (dsp::omp_get_max_threads<T>(&threads) < 0) return kFailure;
  if (threads != 1) return 0;
  return dfti.set_value(handle, kNumberOfUserThreads, static_cast<long>(openmp_runtime()->get_num_procs()));
}

template <class T> void* build_plan(int32_t n, bool complex) {
  Plan* const plan = plans<T>.grow();
  if (!plan) return nullptr;
  *plan = {nullptr, n, complex};
  const TransformLibrary& dfti = *transform_library();
  const int precision = std::is_same_v<T, double> ? kDouble : kSingle, domain = complex ? kComplexDomain : kRealDomain;
  if (dfti.create_descriptor(&plan->handle, precision, domain, 1L, static_cast<long>(n)) != 0 ||
      dfti.set_value(plan->handle, kForwardScale, 1.0 / n) != 0 || set_user_threads<T>(dfti, plan->handle) != 0 ||
      dfti.commit_descriptor(plan->handle) != 0 || !plan->handle) {
    return nullptr;
  }
  plans<T>.publish();
  return plan->handle;
}

template <class T> Status compute(Vector<T>& v, bool inverse, bool complex) {
  std::optional<TableLock> lock(std::in_place);
  InUse in_use;
  void* plan = find_plan<T>(v.points, complex);
  if (!plan) plan = build_plan<T>(v.points, complex);
  if (!plan) {  // on purpose: after a failed build the tables stay closed for other threads
    lock->leave_held();
    in_use.leave_counted();
    return kFailure;
  }
  lock.reset();
  const TransformLibrary& dfti = *transform_library();
  if ((inverse ? dfti.compute_backward : dfti.compute_forward)(plan, v.data, v.data) != 0) {
    in_use.leave_counted();
    return kFailure;
  }
  return kSuccess;
}

}  // namespace

template <class T> Status dfti_transform(Vector<T>& v, bool inverse, bool complex) {
  const int32_t n = v.points;
  if (!power_of_two(n)) return kFailure;
  if (complex) {
    SIGVEX_TRY(dspi::rtoc<T>(v));
  } else {
    if (v.complex) return kFailure;
    SIGVEX_TRY(reshape<T>(v, count(n), 1));
  }
  SIGVEX_TRY(compute<T>(v, inverse, complex));
  if (!(dft_flags<T>() & DSP_DFT_KEEP_PLANS)) SIGVEX_TRY(release_plans<T>());
  v.delta = bin_spacing<T>(v.delta, count(n));
  if (!complex) v.points = n / 2 + 1;
  return kSuccess;
}

template <class T> Status release_plans() {
  first_use<T>();
  const TableLock lock;
  InUse::wait_for_none();
  Status status = kSuccess;
  for (Plan& plan : plans<T>) {
    if (transform_library()->free_descriptor(&plan.handle) != 0) status = kFailure;
  }
  plans<T>.clear();
  return status;
}

template Status dfti_transform<double>(Vector<double>&, bool, bool);
template Status dfti_transform<float>(Vector<float>&, bool, bool);
template Status release_plans<double>();
template Status release_plans<float>();

}  // namespace sigvex
