#include "correlation.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "progress.h"
#include "vector.h"

namespace sigvex_tool {
namespace {

constexpr int64_t kShortestTransform = 1 << 16;

// How many pairs of samples a lag has.
double pairs_at(const Spool& a, const Spool& b, int64_t lag, const CorrelationPlan& plan) {
  const int64_t points_a = static_cast<int64_t>(a.frames()), points_b = static_cast<int64_t>(b.frames());
  if (plan.circular || !plan.unbiased) return static_cast<double>(std::min(points_a, points_b));
  return static_cast<double>(std::min(points_a, points_b - lag) - std::max<int64_t>(0, -lag));
}

void scale(Correlation& result, Spool& a, Spool& b, const CorrelationPlan& plan) {
  if (plan.scale == CorrelationPlan::Sum) return;
  const double whole = static_cast<double>(std::min(a.frames(), b.frames()));
  const double energy = plan.scale == CorrelationPlan::Coefficient ? std::sqrt(a.energy() * b.energy()) : whole;
  for (size_t k = 0; k < result.values.size(); ++k) {
    const double factor = whole / pairs_at(a, b, result.first + static_cast<int64_t>(k), plan);
    result.values[k] *= energy > 0 ? factor / energy : 0;
  }
}

// The correlation between the samples by its sinc series under a Hann window of 16 samples either side. Near the ends
// the series is shorter.
std::complex<double> between(const Correlation& r, double index) {
  const double last = static_cast<double>(r.values.size() - 1), reach = std::min({16.0, index + 1, last - index + 1});
  std::complex<double> sum = 0;
  for (double k = std::ceil(index - reach); k <= std::min(last, index + reach); ++k) {
    const double x = M_PI * (index - k), sinc = x == 0 ? 1 : std::sin(x) / x;
    sum += r.values[static_cast<size_t>(std::max(0.0, k))] * (sinc * (0.5 + 0.5 * std::cos(x / reach)));
  }
  return sum;
}

// The highest magnitude within a sample of k, by golden section.
LagPeak refined(const Correlation& r, size_t k) {
  const double at = static_cast<double>(k);
  const auto height = [&](double x) { return std::abs(between(r, x)); };
  constexpr double kGolden = 0.6180339887498949;
  double low = at - 1, high = at + 1;
  double left = high - kGolden * 2, right = low + kGolden * 2, on_left = height(left), on_right = height(right);
  while (high - low > 1e-9 * std::max(1.0, at)) {
    if (on_left > on_right) {
      high = right, right = left, on_right = on_left;
      on_left = height(left = high - kGolden * (high - low));
    } else {
      low = left, left = right, on_left = on_right;
      on_right = height(right = low + kGolden * (high - low));
    }
  }
  const double best = 0.5 * (low + high);
  return {best + static_cast<double>(r.first), between(r, best)};
}

// Leaves out the lags at which no pair of samples exists, and one of a circle's two names for the lag that faces 0.
void trim(Correlation& r, const Spool& a, const Spool& b, const CorrelationPlan& plan) {
  const int64_t reach = -r.first, points = static_cast<int64_t>(a.frames());
  const int64_t first = plan.circular ? -reach + (2 * reach == points) : std::max(-reach, 1 - points);
  const int64_t last = plan.circular ? reach : std::min(reach, static_cast<int64_t>(b.frames()) - 1);
  r.values.resize(static_cast<size_t>(last + reach + 1));
  r.values.erase(r.values.begin(), r.values.begin() + (first + reach));
  r.first = first;
}

}  // namespace

// A block of a slides along the stretch of b that its lags reach; the blocks' sums add up to the whole sum exactly.
Correlation correlate(Spool& a, Spool& b, const CorrelationPlan& plan) {
  const int64_t reach = static_cast<int64_t>(plan.reach), total = static_cast<int64_t>(a.frames());
  const size_t points = std::bit_ceil(static_cast<size_t>(std::max(4 * reach + 1, kShortestTransform)));
  const size_t lags = static_cast<size_t>(2 * reach + 1), block = points - lags + 1;

  Correlation result;
  result.first = -reach;
  result.complex = a.complex() || b.complex();
  result.values.resize(lags);
  Vector<double> of_a, of_b, sums, work;
  Progress progress("correlating");
  for (int64_t first = 0; first < total; first += static_cast<int64_t>(block)) {
    of_a.resize(block, a.complex());
    of_b.resize(points, b.complex());
    // Behind the last sample of a there is none, also where b goes on.
    const size_t left = static_cast<size_t>(std::min(static_cast<int64_t>(block), total - first));
    std::fill_n(of_a.data, of_a.scalars(), 0.0);
    a.read(first, left, of_a.data, false);
    b.read(first - reach, points, of_b.data, plan.circular);
    check(dspb_corr(&of_a, &of_b, &sums, &work, of_a.points), "the correlation");
    for (size_t k = 0; k < lags; ++k)
      result.values[k] +=
          static_cast<double>(points) *
          (sums.complex ? std::complex(sums.data[2 * k], sums.data[2 * k + 1]) : std::complex(sums.data[k], 0.0));
    progress.at(static_cast<uint64_t>(first), a.frames());
  }
  trim(result, a, b, plan);
  scale(result, a, b, plan);
  return result;
}

std::vector<LagPeak> find_lags(const Correlation& r, size_t most, const std::function<bool(double)>& wanted) {
  const auto height = [&](size_t k) { return std::abs(r.values[k]); };
  std::vector<size_t> maxima;
  for (size_t k = 1; k + 1 < r.values.size(); ++k)
    if (height(k) > height(k - 1) && height(k) >= height(k + 1) &&
        wanted(static_cast<double>(r.first + static_cast<int64_t>(k))))
      maxima.push_back(k);
  std::sort(maxima.begin(), maxima.end(), [&](size_t x, size_t y) { return height(x) > height(y); });
  maxima.resize(std::min(maxima.size(), most));
  std::vector<LagPeak> peaks;
  for (size_t k : maxima) peaks.push_back(refined(r, k));
  return peaks;
}

}  // namespace sigvex_tool
