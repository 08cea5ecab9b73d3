// dsp_window_metric
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>
#include <vector>

#include "core/exports.h"
#include "spectral/window_families.h"

namespace sigvex::dsp {
namespace {

// From this size on a figure no longer depends on the number of points by more than one part in a million: longer
// frames are judged by one of this size, with the same remainder by 4 and so the same centre and overlap.
constexpr size_t kLargest = size_t{1} << 20;
size_t judged_points(size_t n) { return n < kLargest ? n : kLargest - 4 + n % 4; }

// Lobes are looked for in steps of 1/8 bin, so that a step misses the top of a lobe by 0.2 dB at most, and no further
// than 64 bins behind the main lobe: from there on no window of the table rises again.
constexpr double kStep = 0.125;
constexpr double kLobeRange = 64;
constexpr double kMissed = 0.9;  // of the power, rather more than a step can miss
// Some main lobes end with two nulls close to each other, the closest 1/18 bin apart.
constexpr double kNullStep = 1.0 / 64;

// The magnitude of a window's spectrum between the bins, by the sum itself, in rows of 64 points that share their
// rotations: no rounding grows with the number of points.
class Response {
 public:
  explicit Response(const std::vector<double>& weights) : w_(weights) {}

  // |W(f)|^2, f in bins.
  double power(double f) const {
    constexpr size_t row = 64;
    std::array<double, row> cosine, sine;
    for (size_t k = 0; k < row; ++k) {
      const double angle = turned(f, static_cast<double>(k));
      cosine[k] = std::cos(angle);
      sine[k] = std::sin(angle);
    }
    double re = 0, im = 0;
    for (size_t first = 0; first < w_.size(); first += row) {
      const size_t n = std::min(row, w_.size() - first);
      double row_re = 0, row_im = 0;
      for (size_t k = 0; k < n; ++k) {
        row_re += w_[first + k] * cosine[k];
        row_im += w_[first + k] * sine[k];
      }
      const double angle = turned(f, static_cast<double>(first));
      const double c = std::cos(angle), s = std::sin(angle);
      re += row_re * c - row_im * s;
      im += row_im * c + row_re * s;
    }
    return re * re + im * im;
  }
  double size() const { return static_cast<double>(w_.size()); }
  double peak() const { return power(0); }

 private:
  // 2 pi f d / N with the whole turns removed before anything is rounded.
  double turned(double f, double d) const {
    const double product = f * d, rest = std::fma(f, d, -product);
    return 2 * std::numbers::pi * ((std::remainder(product, size()) + rest) / size());
  }

  const std::vector<double>& w_;
};

// The abscissa in (a, b) where a function that has one minimum there takes it, by golden sections.
template <class F> double minimum(F f, double a, double b) {
  constexpr double ratio = std::numbers::phi - 1;
  double x = b - ratio * (b - a), y = a + ratio * (b - a);
  double at_x = f(x), at_y = f(y);
  while (b - a > 1e-9) {
    if (at_x < at_y) {
      b = std::exchange(y, x);
      at_y = std::exchange(at_x, f(x = b - ratio * (b - a)));
    } else {
      a = std::exchange(x, y);
      at_x = std::exchange(at_y, f(y = a + ratio * (b - a)));
    }
  }
  return (a + b) / 2;
}

// The first offset, in bins, where the power has fallen to a fraction of the peak's.
Status crossing(const Response& w, double fraction, double& f) {
  const double wanted = fraction * w.peak();
  double high = kStep;
  while (high <= w.size() / 2 && w.power(high) > wanted) high += kStep;
  if (high > w.size() / 2) return kFailure;
  double low = high - kStep;
  for (int halvings = 0; halvings < 50; ++halvings) {
    const double middle = (low + high) / 2;
    (w.power(middle) > wanted ? low : high) = middle;
  }
  f = high;
  return kSuccess;
}

// The edge of the main lobe: the first minimum below half the amplitude, so that the ripple of a flat top is none.
Status main_lobe_edge(const Response& w, double& f) {
  double start = 0;
  SIGVEX_TRY(crossing(w, 0.25, start));
  double here = w.power(start);
  for (double at = start; at < w.size() / 2; at += kNullStep) {
    const double next = w.power(at + kNullStep);
    if (next >= here) {
      f = minimum(std::bind_front(&Response::power, &w), at - kNullStep, at + kNullStep);
      return kSuccess;
    }
    here = next;
  }
  return kFailure;
}

// The highest maximum between the main lobe's edge and half the number of bins, as a power relative to the peak.
Status highest_side_lobe(const Response& w, double& level) {
  double edge = 0;
  SIGVEX_TRY(main_lobe_edge(w, edge));
  const double range = std::min(w.size() / 2 - edge, kLobeRange);
  if (range < kNullStep) return kFailure;
  const double steps = std::ceil(range / kStep), step = range / steps;
  std::vector<double> grid(static_cast<size_t>(steps) + 2);  // one more point, to see the last one's other side
  for (size_t k = 0; k < grid.size(); ++k) grid[k] = w.power(edge + static_cast<double>(k) * step);
  const double best = *std::max_element(grid.begin(), grid.end() - 1);
  double top = best;
  for (size_t k = 0; k + 1 < grid.size(); ++k) {
    if (grid[k] < kMissed * best || (k > 0 && grid[k] < grid[k - 1]) || grid[k] < grid[k + 1]) continue;
    const double at = edge + static_cast<double>(k) * step;
    const double summit = minimum([&](double f) { return -w.power(f); }, std::max(edge, at - step), at + step);
    top = std::max(top, w.power(summit));
  }
  level = top / w.peak();
  return kSuccess;
}

// p of the asymptote |W| ~ 1/f^p: one more than the order of the lowest derivative that jumps at the ends or inside.
// The derivatives of a cosine sum that can jump are the even ones, by the sum of (-1)^k k^m a[k]; the stored digits
// leave 5e-13 where a sum is meant to be 0, and the smallest that is not is 6e-8.
int asymptotic_order(const WindowShape& shape) {
  switch (shape.family) {
    case Family::kaiser:
    case Family::gauss:
      return 1;
    case Family::triangle:
    case Family::sinc:
    case Family::cosine_lobe:
      return 2;
    case Family::tukey:
      return 3;
    case Family::cosine_sum:
      break;
  }
  for (int m = 0;; m += 2) {
    double jump = 0;
    for (int k = 0; k < shape.sum->terms; ++k)
      jump += (k % 2 == 0 ? 1 : -1) * std::pow(k, m) * shape.sum->modes[shape.mode][k];
    if (std::abs(jump) > 1e-10) return m + 1;
  }
}

double overlap_correlation(const std::vector<double>& w, double overlap) {
  const auto shift = static_cast<size_t>(std::floor((1 - overlap) * static_cast<double>(w.size()) + 0.5));
  double shared = 0, all = 0;
  for (size_t j = 0; j < w.size(); ++j) {
    all += w[j] * w[j];
    if (j + shift < w.size()) shared += w[j] * w[j + shift];
  }
  return shared / all;
}

double decibels(double power) { return 10 * std::log10(power); }

Status figure(const WindowShape& shape, const std::vector<double>& w, uint32_t which, double& result) {
  const auto n = static_cast<double>(w.size());
  double sum = 0, squares = 0;
  for (const double x : w) {
    sum += x;
    squares += x * x;
  }
  const Response response(w);
  const double noise_bandwidth = n * squares / (sum * sum);
  const auto scalloping = [&] { return -decibels(response.power(0.5) / response.peak()); };
  switch (which) {
    case DSP_WINMETRIC_COHERENT_GAIN:
      return result = sum / n, kSuccess;
    case DSP_WINMETRIC_ENBW:
      return result = noise_bandwidth, kSuccess;
    case DSP_WINMETRIC_PROCESSING_LOSS:
      return result = decibels(noise_bandwidth), kSuccess;
    case DSP_WINMETRIC_SCALLOPING_LOSS:
      return result = scalloping(), kSuccess;
    case DSP_WINMETRIC_WORST_CASE_LOSS:
      return result = scalloping() + decibels(noise_bandwidth), kSuccess;
    case DSP_WINMETRIC_WIDTH_3DB:
      SIGVEX_TRY(crossing(response, 0.5, result));
      return result *= 2, kSuccess;
    case DSP_WINMETRIC_WIDTH_6DB:
      SIGVEX_TRY(crossing(response, 0.25, result));
      return result *= 2, kSuccess;
    case DSP_WINMETRIC_MAIN_LOBE:
      SIGVEX_TRY(main_lobe_edge(response, result));
      return result *= 2, kSuccess;
    case DSP_WINMETRIC_SIDE_LOBE:
      SIGVEX_TRY(highest_side_lobe(response, result));
      return result = decibels(result), kSuccess;
    case DSP_WINMETRIC_ROLL_OFF:
      return result = -20 * std::log10(2.0) * asymptotic_order(shape), kSuccess;
    case DSP_WINMETRIC_OVERLAP_50:
      return result = overlap_correlation(w, 0.5), kSuccess;
    case DSP_WINMETRIC_OVERLAP_75:
      return result = overlap_correlation(w, 0.75), kSuccess;
    default:
      return kFailure;
  }
}

}  // namespace

// The float twin judges the window before it is rounded to float: the figures are the same.
template <class T> Status window_metric(uint32_t type, int32_t n, uint32_t which, T& result) {
  WindowShape shape;
  SIGVEX_TRY(choose_window(type, DSP_WINFLAG_PEAK, 0, shape));
  if (n < 2) return kFailure;
  std::vector<double> weights(judged_points(count(n)));
  SIGVEX_TRY(window_weights<double>(shape, weights.size(), weights.data()));
  double exact = 0;
  SIGVEX_TRY(figure(shape, weights, which, exact));
  result = static_cast<T>(exact);
  return kSuccess;
}

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, window_metric, 4)
