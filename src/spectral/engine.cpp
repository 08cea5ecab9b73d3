#include "spectral/engine.h"

#include <bit>

#include "core/scratch.h"
#include "elementwise/operations.h"
#include "spectral/kernels.h"

namespace sigvex {
namespace {

// A function of its own, so that only who needs the work space pays for its place on the stack.
template <class T, class F> [[gnu::noinline]] Status in_work_space(WorkspacePool& pool, size_t scalars, F f) {
  Workspace work(pool, scalars * sizeof(T));
  if (!work) return kFailure;
  f(work.as<T>());
  return kSuccess;
}

// Calls f with the work space that a transform on these tables needs; the shortest need none.
template <class T, class F> Status with_work_space(const ComplexTables<T>& tables, F f) {
  if (tables.work_size > 0) return in_work_space<T>(tables.pool, tables.work_size, f);
  f(static_cast<T*>(nullptr));
  return kSuccess;
}

template <class T> Status run_complex(T* data, size_t n, bool inverse) {
  const Lease<ComplexTables<T>> tables = complex_tables<T>(std::countr_zero(n));
  if (!tables) return kFailure;
  const T scale = inverse ? T(1) : 1 / static_cast<T>(n);
  return with_work_space<T>(*tables, [&](T* work) {
    (inverse ? tables->inverse : tables->forward)(tables->bits, tables->roots, data, work, scale);
  });
}

template <class T> Status run_real(T* data, size_t n, bool inverse) {
  const Lease<RealTables<T>> tables = real_tables<T>(std::countr_zero(n));
  if (!tables) return kFailure;
  const T scale = inverse ? T(1) : 1 / static_cast<T>(n);
  return with_work_space<T>(
      *tables->half, [&](T* work) { (inverse ? tables->inverse : tables->forward)(*tables, data, work, scale); });
}

// Calls f with the tables for convolutions of n points and the work space that so many kernels need.
template <class T, class F> Status with_work(size_t n, size_t kernels, F f) {
  const Lease<ComplexTables<T>> tables = complex_tables<T>(std::countr_zero(n));
  if (!tables) return kFailure;
  return in_work_space<T>(tables->convolution_pools[kernels - 1], convolution_kernels<T>().work_size(*tables, kernels),
                          [&](T* work) { f(*tables, work); });
}

}  // namespace

template <class T> Status complex_transform(Vector<T>& v, bool inverse) {
  SIGVEX_TRY(dspi::rtoc<T>(v));
  return run_complex<T>(v.data, points<T>(v), inverse);
}

template <class T> Status real_transform(Vector<T>& v) {
  const size_t n = points<T>(v);
  SIGVEX_TRY(reshape<T>(v, n, 1));
  if (run_real<T>(v.data, n, false) < 0) {
    v.complex = 0;
    return kFailure;
  }
  v.points = static_cast<int32_t>(n / 2 + 1);
  return kSuccess;
}

template <class T> Status real_inverse_transform(Vector<T>& v) {
  const size_t n = 2 * points<T>(v) - 2;
  SIGVEX_TRY(reshape<T>(v, n, 1));
  SIGVEX_TRY(run_real<T>(v.data, n, true));
  v.complex = 0;
  return kSuccess;
}

template <class T> Status kernel_spectrum(T* kernel, size_t n, size_t kernels) {
  return with_work<T>(n, kernels, [&](const ComplexTables<T>& tables, T* work) {
    convolution_kernels<T>().spectrum(tables, kernel, work);
  });
}

template <class T> Status convolve(size_t n, const Convolution<T>& c) {
  return with_work<T>(
      n, 1, [&](const ComplexTables<T>& tables, T* work) { convolution_kernels<T>().convolve(tables, c, work); });
}

template <class T> Status real_chirp(size_t m, const RealChirp<T>& c) {
  return with_work<T>(
      m, 2, [&](const ComplexTables<T>& tables, T* work) { convolution_kernels<T>().real_chirp(tables, c, work); });
}

#define SIGVEX_INSTANTIATE(T)                                 \
  template Status complex_transform<T>(Vector<T>&, bool);     \
  template Status real_transform<T>(Vector<T>&);              \
  template Status real_inverse_transform<T>(Vector<T>&);      \
  template Status kernel_spectrum<T>(T*, size_t, size_t);     \
  template Status convolve<T>(size_t, const Convolution<T>&); \
  template Status real_chirp<T>(size_t, const RealChirp<T>&);
SIGVEX_INSTANTIATE(double)
SIGVEX_INSTANTIATE(float)
#undef SIGVEX_INSTANTIATE

}  // namespace sigvex
