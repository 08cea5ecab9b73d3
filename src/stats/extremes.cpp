// dsps_max dsps_min
#include <functional>
#include <limits>

#include "core/exports.h"
#include "core/limits.h"
#include "stats/blocks.h"
#include "stats/operations.h"
#include "stats/result.h"

namespace sigvex::dsps {
namespace {

// Only a strictly better sample replaces the best so far, within a block and between blocks: the first of equals wins.
template <class T, class Better> T extreme_sample(const T* x, size_t n, T start, Better better) {
  if (n == 0) return 0;
  const auto take = [=](T& best, T sample) {
    if (better(sample, best)) best = sample;
  };
  return reduce_blocks(
      n, start, [=](T& best, size_t k) { take(best, x[k]); }, take);
}

// Starts from a bound that no squared magnitude reaches, so that a point is found even where all are out of range.
template <class T, class Better> Point<T> extreme_point(const Vector<T>& v, T start, Better better) {
  struct Candidate {
    T magsq;
    size_t index;
  };
  const size_t n = points<T>(v);
  if (n == 0) return {0, 0};
  const auto take = [=](Candidate& best, Candidate candidate) {
    if (better(candidate.magsq, best.magsq)) best = candidate;
  };
  const auto step = [=, &v](Candidate& best, size_t k) { take(best, {magsq_capped(point<T>(v, k)), k}); };
  return point<T>(v, reduce_blocks(n, Candidate{start, 0}, step, take).index);
}

}  // namespace

template <class T> Status max(const Vector<T>& v, Vector<T>& result) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  if (v.complex) return write_point<T>(result, v.complex, extreme_point<T>(v, -infinity, std::greater<T>()));
  return write_real<T>(result, extreme_sample<T>(v.data, points<T>(v), -Limits<T>::huge, std::greater<T>()));
}

template <class T> Status min(const Vector<T>& v, Vector<T>& result) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  if (v.complex) return write_point<T>(result, v.complex, extreme_point<T>(v, infinity, std::less<T>()));
  return write_real<T>(result, extreme_sample<T>(v.data, points<T>(v), Limits<T>::huge, std::less<T>()));
}

}  // namespace sigvex::dsps

SIGVEX_EXPORT(s, max, 2)
SIGVEX_EXPORT(s, min, 2)
