#include "support/transform_stand_in.h"

#include <cmath>
#include <complex>
#include <cstdarg>
#include <vector>

#define EXPORTED extern "C" __attribute__((visibility("default")))

extern "C" {
__attribute__((visibility("default"))) StandIn transform_stand_in{};
}

namespace {

using Complex = std::complex<double>;
constexpr int kComplexDomain = 32, kDouble = 36, kForwardScale = 4, kUserThreads = 26;

struct Descriptor {
  int precision, domain;
  size_t length;
  double scale = 1;
  bool committed = false;
};

template <class T> void transform(const Descriptor& d, T* data, bool backward) {
  const bool real = d.domain != kComplexDomain;
  const size_t n = d.length;
  std::vector<Complex> x(n);
  for (size_t k = 0; k < n; ++k) x[k] = real ? Complex(data[k]) : Complex(data[2 * k], data[2 * k + 1]);
  const double turn = (backward ? 2 : -2) * 3.14159265358979323846 / static_cast<double>(n);
  for (size_t k = 0; k < (real ? n / 2 + 1 : n); ++k) {
    Complex sum = 0;
    for (size_t j = 0; j < n; ++j) {
      sum += x[j] * std::polar(backward ? 1 : d.scale, turn * static_cast<double>(j * k % n));
    }
    data[2 * k] = static_cast<T>(sum.real());
    data[2 * k + 1] = static_cast<T>(sum.imag());
  }
}

long compute(void* handle, void* data, bool backward) {
  const Descriptor* const d = static_cast<Descriptor*>(handle);
  if (transform_stand_in.failing == 'x' || !d->committed) return 1;
  ++(backward ? transform_stand_in.backward : transform_stand_in.computed);
  if (d->precision == kDouble) transform(*d, static_cast<double*>(data), backward);
  else transform(*d, static_cast<float*>(data), backward);
  return 0;
}

}  // namespace

EXPORTED long DftiCreateDescriptor(void** handle, int precision, int domain, long dimensions, ...) {
  if (transform_stand_in.failing == 'c') return 1;
  std::va_list arguments;
  va_start(arguments, dimensions);
  const long length = va_arg(arguments, long);
  va_end(arguments);
  transform_stand_in.latest = {precision, domain, dimensions, length, 0};
  if (transform_stand_in.failing == 'n') return 0;
  ++transform_stand_in.created;
  *handle = new Descriptor{precision, domain, static_cast<size_t>(length)};
  return 0;
}

EXPORTED long DftiSetValue(void* handle, int parameter, ...) {
  if (transform_stand_in.failing == 's' || !handle) return 1;
  std::va_list arguments;
  va_start(arguments, parameter);
  if (parameter == kForwardScale) {
    static_cast<Descriptor*>(handle)->scale = transform_stand_in.forward_scale = va_arg(arguments, double);
  } else if (parameter == kUserThreads) {
    transform_stand_in.latest.user_threads = va_arg(arguments, long);
  }
  va_end(arguments);
  return parameter == kForwardScale || parameter == kUserThreads ? 0 : 1;
}

EXPORTED long DftiCommitDescriptor(void* handle) {
  if (transform_stand_in.failing == 'k') return 1;
  ++transform_stand_in.committed;
  static_cast<Descriptor*>(handle)->committed = true;
  return 0;
}

EXPORTED long DftiComputeForward(void* handle, void* data, ...) { return compute(handle, data, false); }
EXPORTED long DftiComputeBackward(void* handle, void* data, ...) { return compute(handle, data, true); }

EXPORTED long DftiFreeDescriptor(void** handle) {
  ++transform_stand_in.freed;
  delete static_cast<Descriptor*>(*handle);
  *handle = nullptr;
  return transform_stand_in.failing == 'f';
}

EXPORTED int MKL_Disable_Fast_MM() {
  ++transform_stand_in.fast_mm_disabled;
  return 1;
}
