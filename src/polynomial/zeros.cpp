// dspi_pztoc
#include <algorithm>
#include <limits>

#include "core/exports.h"
#include "core/scratch.h"
#include "polynomial/operations.h"

namespace sigvex {
namespace polynomial {
namespace {

// Each zero where the product of its distances to those before it is largest.
void leja_order(std::vector<Point<double>>& zeros) {
  std::vector<double> log2_distances(zeros.size());
  for (size_t k = 0; k < zeros.size(); ++k) log2_distances[k] = std::log2(magnitude(zeros[k]));
  for (size_t k = 0; k < zeros.size(); ++k) {
    const auto next = std::max_element(log2_distances.begin() + k, log2_distances.end()) - log2_distances.begin();
    std::swap(zeros[k], zeros[next]);
    std::swap(log2_distances[k], log2_distances[next]);
    if (k == 0) std::fill(log2_distances.begin(), log2_distances.end(), 0.0);
    for (size_t j = k + 1; j < zeros.size(); ++j) log2_distances[j] += std::log2(magnitude(zeros[j] - zeros[k]));
  }
}

bool self_conjugate(std::vector<Point<double>> zeros) {
  std::vector<Point<double>> mirrored = zeros;
  for (Point<double>& z : mirrored) z.im = -z.im;
  std::sort(zeros.begin(), zeros.end(), before<double>);
  std::sort(mirrored.begin(), mirrored.end(), before<double>);
  return std::equal(zeros.begin(), zeros.end(), mirrored.begin(),
                    [](Point<double> a, Point<double> b) { return a.re == b.re && a.im == b.im; });
}

std::vector<Point<double>> coefficients(std::vector<Point<double>> zeros) {
  const bool real = self_conjugate(zeros);
  leja_order(zeros);
  std::vector<Point<DoubleDouble>> product{{1, 0}};
  for (const Point<double> z : zeros) {
    const Point<DoubleDouble> root = as<DoubleDouble>(z);
    product.insert(product.begin(), {0, 0});
    for (size_t k = 0; k + 1 < product.size(); ++k) product[k] = product[k] - product[k + 1] * root;
  }
  std::vector<Point<double>> rounded;
  for (const Point<DoubleDouble> c : product) rounded.push_back({c.re.hi + 0.0, real ? 0.0 : c.im.hi + 0.0});
  return rounded;
}

}  // namespace
}  // namespace polynomial

namespace dspi {

template <class T> Status pztoc(Vector<T>& v) {
  std::vector<Point<double>> zeros;
  for (size_t k = 0; k < points<T>(v); ++k) zeros.push_back(polynomial::as<double>(complex_point<T>(v, k)));
  if (!std::all_of(zeros.begin(), zeros.end(), polynomial::finite<double>)) return kFailure;
  std::vector<Point<T>> result;
  for (const Point<double> c : polynomial::coefficients(std::move(zeros))) result.push_back(polynomial::as<T>(c));
  if (!std::all_of(result.begin(), result.end(), polynomial::finite<T>)) return kFailure;
  SIGVEX_TRY(shape<T>(v, result.size(), v.complex));
  for (size_t k = 0; k < result.size(); ++k) {
    if (v.complex) set_point<T>(v, k, result[k]);
    else v.data[k] = result[k].re;
  }
  return kSuccess;
}

}  // namespace dspi
}  // namespace sigvex

SIGVEX_EXPORT(i, pztoc, 1)
