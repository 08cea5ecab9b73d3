#include "core/widest.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/widest.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::core {
namespace HWY_NAMESPACE {

Vectors vectors() {
  if (HWY_TARGET == HWY_AVX3) return Vectors::kAvx512;
  return HWY_TARGET == HWY_AVX2 ? Vectors::kAvx2 : Vectors::kBaseline;
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::core
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace sigvex {
namespace core {
HWY_EXPORT(vectors);
Vectors chosen() { return HWY_DYNAMIC_DISPATCH(vectors)(); }
}  // namespace core

Vectors widest_vectors() { return core::chosen(); }

}  // namespace sigvex
#endif
