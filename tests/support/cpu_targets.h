// Every CPU target that the library's kernels are built for and this CPU has, one after the other.
#pragma once

#include <hwy/targets.h>
#include <sigvex.h>

namespace sigvex_test {

// Calls check(name) with the library confined to one target at a time. The dispatch state is libhwy's, which the tests
// share with the library; tables that depend on the target are released in between.
template <class F> void for_each_cpu_target(F check) {
  const auto confine = [](int64_t targets) {
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    dsp_free_internal();
    dspf_free_internal();
  };
  struct Row {
    int64_t target;
    const char* name;
  };
  for (const Row& row : {Row{HWY_AVX3, "AVX-512"}, {HWY_AVX2, "AVX2"}, {HWY_SSE4, "SSE4"}, {HWY_SCALAR, "scalar"}}) {
    confine(0);
    if (row.target != HWY_SCALAR && !(hwy::SupportedTargets() & row.target)) continue;
    confine(row.target);
    check(row.name);
  }
  confine(0);
}

}  // namespace sigvex_test
