// dspc_cexp dspc_cos
#include <numbers>

#include "core/exports.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "generate/kernels.h"

namespace sigvex::dspc {
namespace {

// The angle from sample to sample.
double angular_step(double delta, double frequency) {
  return (std::numbers::pi * delta + std::numbers::pi * delta) * frequency;
}

}  // namespace

template <class T> Status cos(Vector<T>& v, double frequency, double phase) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  generate_kernels<T>().cosine(v.data, points<T>(v), angular_step(v.delta, frequency), phase);
  if (!v.complex) return kSuccess;
  v.complex = 0;
  return dspi::rtoc<T>(v);
}

template <class T> Status cexp(Vector<T>& v, double frequency, double phase) {
  if (!v.complex) return cos<T>(v, frequency, phase);
  SIGVEX_TRY(dsp::alloc<T>(v));
  generate_kernels<T>().circle(v.data, points<T>(v), angular_step(v.delta, frequency), phase);
  return kSuccess;
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, cexp, 3)
SIGVEX_EXPORT(c, cos, 3)
