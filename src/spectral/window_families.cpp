#include "spectral/window_families.h"

#include <cmath>
#include <numbers>

#include "elementwise/operations.h"
#include "stats/blocks.h"

namespace sigvex {
namespace {

// cos(2 pi x / period). The reduction is exact and the quarter turns are exact values, so that no argument, however
// many periods away, costs accuracy.
double cos_turn(double x, double period) {
  constexpr double turn = 2 * std::numbers::pi;
  const double r = std::abs(std::remainder(x, period));
  const double quarter = period / 4, from_quarter = quarter - r;  // exact wherever it is used
  if (r <= period / 8) return std::cos(turn * (r / period));
  if (r <= 3 * (period / 8)) return std::sin(turn * (from_quarter / period));
  return -std::cos(turn * ((period / 2 - r) / period));
}

double cosine_sum(const CosineSum& sum, uint32_t mode, double distance, double width) {
  double w = 0;
  for (int k = 0; k < sum.terms; ++k) w += sum.modes[mode][k] * cos_turn(k * distance, width);
  return w;
}

double kaiser(double beta, double t) { return bessel_i0(beta * std::sqrt(std::fmax(0.0, 1 - t * t))); }

double sinc(double u) { return u == 0 ? 1 : std::sin(u) / u; }

double tukey(double fraction, double t) {
  const double into_taper = t - (1 - fraction);
  return into_taper <= 0 ? 1 : (cos_turn(into_taper, 2 * fraction) + 1) * 0.5;
}

// The closed form of each family, peak 1, at a distance >= 0 from the centre of n points.
double unit_weight(const WindowShape& s, size_t n, double distance) {
  const double width = s.width > 0 ? s.width : static_cast<double>(n);
  const double t = 2 * distance / width;  // 1 at the edge
  switch (s.family) {
    case Family::cosine_sum:
      return t <= 1 ? cosine_sum(*s.sum, 2, distance, width) : 0;
    case Family::triangle:
      return 1 - distance / static_cast<double>((n + 1) / 2);
    case Family::kaiser:
      return kaiser(s.constant, t) / s.scale;
    case Family::gauss:
      return std::exp(-0.5 * std::pow(distance / (s.constant * width), 2));
    case Family::sinc:
      return sinc(s.scale * t / s.constant);
    case Family::tukey:
      return tukey(s.constant, t);
    case Family::cosine_lobe:
      // Not quite 0 at the edge, where the only sample of a one-point frame lies: unity mean and RMS need its weight.
      return t <= 1 ? std::cos(std::numbers::pi * (distance / width)) : 0;
  }
  return 0;
}

// Twice the index of the centre. The flat or sharp top of Tukey and triangle falls on a sample for odd n too.
size_t twice_centre(const WindowShape& s, size_t n) {
  const bool on_sample = s.family == Family::tukey || s.family == Family::triangle;
  return s.symmetric || (on_sample && n % 2 == 1) ? n - 1 : n;
}

double distance(size_t twice, size_t j) {
  return std::abs(static_cast<double>(twice) - 2 * static_cast<double>(j)) / 2;
}

// Unity mean and unity RMS of the triangle in closed form, for its peak on a sample.
double triangle_height(uint32_t mode, double n, bool odd) {
  if (mode == 0) return odd ? 2 * n / (n + 1) : 2;
  return std::sqrt(odd ? 3 * n * (n + 1) / ((n + 1) * (n + 1) + 2) : 3 * n * n / (n * n + 2));
}

// Falls by the same step on both sides at once; restarted every 1024 steps, which bounds the rounding.
template <class T> void triangle(double peak, size_t n, T* w) {
  const size_t centre = n / 2;
  const double step = peak / static_cast<double>((n + 1) / 2);
  double value = peak;
  w[centre] = static_cast<T>(value);
  for (size_t i = 1; centre + i < n; ++i) {
    value = i % 1024 == 0 ? peak - static_cast<double>(i) * step : value - step;
    w[centre - i] = w[centre + i] = static_cast<T>(value);
  }
  if (n % 2 == 0) w[0] = 0;
}

// What every family refuses: the fourth mode, and the alternative construction where there is none.
Status start(Family family, uint32_t flags, WindowShape& shape) {
  shape = {};
  shape.family = family;
  shape.mode = flags & 3;
  if (shape.mode == 3) return kFailure;
  return flags & DSP_WINFLAG_ALTERNATIVE && family != Family::tukey ? kFailure : kSuccess;
}

// With its flag the parameter is a width in samples.
Status choose_width(uint32_t flags, double width, WindowShape& shape) {
  if (!(flags & DSP_WINFLAG_PARAMETER)) return kSuccess;
  if (!(width > 0 && std::isfinite(width))) return kFailure;
  shape.width = width;
  return kSuccess;
}

}  // namespace

Status choose_cosine_lobe(uint32_t flags, WindowShape& shape) { return start(Family::cosine_lobe, flags, shape); }

Status choose_gauss(uint32_t flags, double width, WindowShape& shape) {
  SIGVEX_TRY(start(Family::gauss, flags, shape));
  shape.constant = width;
  return width != 0 && !std::isnan(width) ? kSuccess : kFailure;
}

Status choose_kaiser(uint32_t flags, double beta, WindowShape& shape) {
  SIGVEX_TRY(start(Family::kaiser, flags, shape));
  shape.constant = beta;
  shape.scale = bessel_i0(beta);
  return kSuccess;
}

Status choose_sinc(uint32_t flags, double width, double scale, WindowShape& shape) {
  SIGVEX_TRY(start(Family::sinc, flags, shape));
  shape.constant = width;
  shape.scale = scale;
  return width != 0 && std::isfinite(width) && std::isfinite(scale / width) ? kSuccess : kFailure;
}

Status choose_tukey(uint32_t flags, double fraction, WindowShape& shape) {
  SIGVEX_TRY(start(Family::tukey, flags, shape));
  shape.constant = fraction;
  return fraction >= 0 && fraction <= 1 ? kSuccess : kFailure;
}

Status choose_window(uint32_t type, uint32_t flags, double parameter, WindowShape& shape) {
  if (type >= kWindowTypes.size()) return kFailure;
  const WindowType& window = kWindowTypes[type];
  const bool given = flags & DSP_WINFLAG_PARAMETER;
  const double constant = given ? parameter : window.constant;
  switch (window.family) {
    case Family::cosine_sum:
      if (window.sum->terms == 1 && !given) flags &= ~uint32_t{DSP_WINFLAG_ALTERNATIVE};  // nothing is constructed
      SIGVEX_TRY(start(Family::cosine_sum, flags, shape));
      shape.sum = window.sum;
      return choose_width(flags, parameter, shape);
    case Family::triangle:
      return given ? kFailure : start(Family::triangle, flags, shape);
    case Family::kaiser:
      SIGVEX_TRY(choose_kaiser(flags, window.constant, shape));
      return choose_width(flags, parameter, shape);
    case Family::gauss:
      return choose_gauss(flags, constant, shape);
    case Family::sinc:
      return choose_sinc(flags, constant, std::numbers::pi, shape);
    case Family::tukey:
      return choose_tukey(flags, constant, shape);
    case Family::cosine_lobe:
      SIGVEX_TRY(choose_cosine_lobe(flags, shape));
      return choose_width(flags, parameter, shape);
  }
  return kFailure;
}

Status window_factor(const WindowShape& shape, size_t n, double& factor) {
  factor = 1;
  if (shape.mode == 2) return kSuccess;
  if (shape.stored()) {
    factor = shape.sum->modes[shape.mode][0] / shape.sum->modes[2][0];
    return kSuccess;
  }
  if (n == 0) return kFailure;
  if (shape.family == Family::triangle && !shape.symmetric) {
    factor = triangle_height(shape.mode, static_cast<double>(n), n % 2 == 1);
    return kSuccess;
  }
  // The sums of dsps_mean and dsps_rms, over weights that need no storage and, for float, are not yet rounded.
  const auto [sum, squares] = block_sums<double, 2>(n, [&, twice = twice_centre(shape, n)](size_t j) {
    const double w = unit_weight(shape, n, distance(twice, j));
    return Sums<double, 2>{w, w * w};
  });
  const auto count = static_cast<double>(n);
  factor = 1 / (shape.mode == 0 ? sum / count : std::sqrt(squares / count));
  return std::isfinite(factor) ? kSuccess : kFailure;
}

template <class T> Status window_weights(const WindowShape& shape, size_t n, T* weights) {
  double factor = 1;
  if (!shape.stored()) SIGVEX_TRY(window_factor(shape, n, factor));
  if (shape.family == Family::triangle && !shape.symmetric) {
    triangle(factor, n, weights);
    return kSuccess;
  }
  const size_t twice = twice_centre(shape, n);
  for (size_t j = 0; 2 * j <= twice; ++j) {
    const double d = distance(twice, j);
    const double w = shape.stored() ? cosine_sum(*shape.sum, shape.mode, d, static_cast<double>(n))
                                    : factor * unit_weight(shape, n, d);
    weights[j] = static_cast<T>(w);
    if (const size_t mirror = twice - j; mirror < n) weights[mirror] = weights[j];
  }
  return kSuccess;
}

template Status window_weights(const WindowShape&, size_t, double*);
template Status window_weights(const WindowShape&, size_t, float*);

}  // namespace sigvex
