#include "lobe.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "vector.h"

namespace sigvex_tool {
namespace {

constexpr size_t kSteps = 32;      // at least so many table entries a bin: cubic interpolation is then right to 1e-6
constexpr size_t kLongest = 1024;  // weights; fewer than the window's change the lobe by 2e-6, relative, within a bin

}  // namespace

// Neighbouring weights of a long window are added up; the transform of the sums, padded with zeros, is the lobe.
Lobe::Lobe(const std::vector<double>& window) {
  const size_t together = (window.size() + kLongest - 1) / kLongest, sums = (window.size() + together - 1) / together;
  const size_t length = std::bit_ceil(sums * kSteps);
  Vector<double> padded(length, false);
  std::fill_n(padded.data, length, 0.0);
  // The transform divides by the padded length, the mean by the window's.
  const double scale = static_cast<double>(length) / static_cast<double>(window.size());
  for (size_t k = 0; k < window.size(); ++k) padded.data[k / together] += window[k] * scale;
  check(dspi_rdft(&padded), "the window's transform");
  check(dspi_magsq(&padded), "the window's transform");
  power_.assign(padded.data, padded.data + padded.points);
  largest_.resize(power_.size());
  double largest = 0;
  for (size_t k = power_.size(); k-- > 0;) largest_[k] = largest = std::max(largest, std::sqrt(power_[k]));
  steps_ = static_cast<double>(length * together) / static_cast<double>(window.size());
}

double Lobe::power(double bins) const {
  const double x = std::min(std::fabs(bins) * steps_, static_cast<double>(power_.size() - 1));
  const ptrdiff_t last = static_cast<ptrdiff_t>(power_.size()) - 1, k = static_cast<ptrdiff_t>(x);
  const auto at = [&](ptrdiff_t i) { return power_[static_cast<size_t>(std::clamp<ptrdiff_t>(std::abs(i), 0, last))]; };
  const double t = x - static_cast<double>(k), a = at(k - 1), b = at(k), c = at(k + 1), d = at(k + 2);
  // Lagrange through four neighbours.
  return b + t * (c - a / 3 - b / 2 - d / 6 + t * ((a + c) / 2 - b + t * ((d - a) / 6 + (b - c) / 2)));
}

// Beyond the table the side lobes of a frame fall at least as 1/x.
double Lobe::leakage(double bins) const {
  const double x = std::fabs(bins) * steps_, last = static_cast<double>(largest_.size() - 1);
  return x < last ? largest_[static_cast<size_t>(x)] : largest_.back() * last / x;
}

}  // namespace sigvex_tool
