// The guards of core/limits.h on lanes.
#if defined(SIGVEX_STATS_GUARDS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_STATS_GUARDS_INL_H
#undef SIGVEX_STATS_GUARDS_INL_H
#else
#define SIGVEX_STATS_GUARDS_INL_H
#endif

#include <hwy/highway.h>

#include "core/limits.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::stats {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Whether Min and Max give their second operand where neither is strictly better: NaN and equal ones, zeros among them.
constexpr bool kElseSecond = HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128;

template <class D, class V = hn::Vec<D>> HWY_INLINE V clamped(D d, V x) {
  const V high = hn::Set(d, Limits<hn::TFromD<D>>::huge), low = hn::Neg(high);
  if constexpr (kElseSecond) return hn::Max(hn::Min(high, x), low);
  const V capped = hn::IfThenElse(hn::Gt(x, high), high, x);
  return hn::IfThenElse(hn::Ge(capped, low), capped, low);
}
template <class D, class V = hn::Vec<D>> HWY_INLINE hn::Mask<D> bounded(D d, V re, V im) {
  const V high = hn::Set(d, Limits<hn::TFromD<D>>::huge);
  return hn::And(hn::Le(hn::Abs(re), high), hn::Le(hn::Abs(im), high));
}
template <class D, class V = hn::Vec<D>> HWY_INLINE V magsq_capped(D d, V re, V im) {
  return hn::IfThenElse(bounded(d, re, im), re * re + im * im, hn::Set(d, Limits<hn::TFromD<D>>::huge));
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::stats
HWY_AFTER_NAMESPACE();

#endif
