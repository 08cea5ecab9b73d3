// dspc_rand
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/exports.h"
#include "core/limits.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "generate/random_source.h"

namespace sigvex::dspc {
namespace {

// The distributions by way of one uniform variate; every function draws in the order in which it is written.
template <class T> class Variates {
 public:
  explicit Variates(RandomSource& source) : source_(source) {}

  // In -1 .. 1, the upper end excluded.
  T symmetric() { return 2 * uniform() - 1; }

  Point<T> in_unit_disc() {
    Point<T> z;
    do z = pair();
    while (magsq(z) >= 1);
    return z;
  }

  // Two independent normal variates by the polar method.
  Point<T> gauss_pair() {
    Point<T> z;
    T s;
    do {
      z = pair();
      s = magsq(z);
    } while (s >= 1 || s == 0);
    const T f = std::sqrt(-2 * std::log(s) / s);
    return {f * z.re, f * z.im};
  }

  // The same after Box and Muller: no rejection, but an angle.
  Point<T> gauss_point() {
    const T r = std::sqrt(-2 * log_uniform());
    const T angle = 2 * uniform() * std::numbers::pi_v<T>;
    return {r * std::cos(angle), r * std::sin(angle)};
  }

  T exponential() { return -log_uniform(); }

  T laplace() {
    const bool negative = source_.draw31() >> 14 & 1;
    return negative ? log_uniform() : -log_uniform();
  }

 private:
  // The draws as binary digits of a fraction, the last one the most significant: 60 bits, in float 30. These are more
  // than the precision holds, and what rounds to 1 is taken back below it.
  T uniform() {
    constexpr int kDraws = sizeof(T) == sizeof(double) ? 4 : 2;
    constexpr T kUnit = T(1) / static_cast<T>(uint64_t{1} << 15 * kDraws);
    const T u = static_cast<T>(static_cast<int64_t>(source_.draws(kDraws))) * kUnit;
    return std::min(u, 1 - Limits<T>::epsilon / 2);
  }

  T log_uniform() { return std::log(std::max(uniform(), Limits<T>::tiny)); }

  Point<T> pair() {
    const T re = symmetric();
    return {re, symmetric()};
  }

  RandomSource& source_;
};

template <class T> void fill_gauss(Variates<T>& variates, T* x, size_t n) {
  for (size_t k = 0; k < n; k += 2) {
    const Point<T> z = variates.gauss_pair();
    x[k] = z.re;
    if (k + 1 < n) x[k + 1] = z.im;
  }
}

}  // namespace

template <class T> Status rand(Vector<T>& v, int32_t kind) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  const WorkLock lock;
  Variates<T> variates(random_source<T>());
  switch (kind) {
    case DSP_RAND_UNIFORM:
      if (v.complex) return each_point<T>(v, [&](Point<T>) { return variates.in_unit_disc(); });
      return each_scalar<T>(v, [&](T) { return variates.symmetric(); });
    case DSP_RAND_GAUSS:
      if (v.complex) return each_point<T>(v, [&](Point<T>) { return variates.gauss_point(); });
      fill_gauss<T>(variates, v.data, points<T>(v));
      return kSuccess;
    case DSP_RAND_EXPONENTIAL:
      if (v.complex) return kFailure;
      return each_scalar<T>(v, [&](T) { return variates.exponential(); });
    case DSP_RAND_LAPLACE:
      if (v.complex) return kFailure;
      return each_scalar<T>(v, [&](T) { return variates.laplace(); });
    default:
      return kFailure;
  }
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, rand, 2)
