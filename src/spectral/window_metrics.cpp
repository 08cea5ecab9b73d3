// dsp_window_scale dsp_window2_scale dsp_window_enbw dsp_window2_enbw
#include <cmath>

#include "core/exports.h"
#include "spectral/window_families.h"

namespace sigvex::dsp {
namespace {

Status factor(uint32_t type, uint32_t flags, int32_t points, double parameter, double& factor) {
  WindowShape shape;
  SIGVEX_TRY(choose_window(type, flags, parameter, shape));
  return window_factor(shape, count(points), factor);
}

// Mean square over squared mean, from the factors of unity mean and unity RMS.
template <class T> Status bandwidth(uint32_t type, uint32_t flags, int32_t points, T parameter, T& enbw) {
  double mean = 1, rms = 1;
  SIGVEX_TRY(factor(type, flags | DSP_WINFLAG_MEAN, points, parameter, mean));
  SIGVEX_TRY(factor(type, flags | DSP_WINFLAG_RMS, points, parameter, rms));
  enbw = static_cast<T>((mean / rms) * (mean / rms));
  return kSuccess;
}

}  // namespace

template <class T> Status window2_scale(T& scale, uint32_t type, uint32_t flags, int32_t points, T parameter) {
  double exact = 1;
  SIGVEX_TRY(factor(type, flags, points, parameter, exact));
  scale = static_cast<T>(exact);
  return kSuccess;
}

template <class T> Status window_scale(T& scale, uint32_t type, uint32_t flags, int32_t points) {
  return flags & DSP_WINFLAG_PARAMETER ? kFailure : window2_scale<T>(scale, type, flags, points, 0);
}

template <class T> Status window2_enbw(T& enbw, uint32_t type, int32_t points, T parameter) {
  return bandwidth<T>(type, DSP_WINFLAG_PARAMETER, points, parameter, enbw);
}

template <class T> Status window_enbw(T& enbw, uint32_t type, int32_t points) {
  return bandwidth<T>(type, 0, points, 0, enbw);
}

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, window2_scale, 5)
SIGVEX_EXPORT(, window_scale, 4)
SIGVEX_EXPORT(, window2_enbw, 4)
SIGVEX_EXPORT(, window_enbw, 3)
