// dspc_fir dspc_fir2
#include <cmath>
#include <numbers>
#include <type_traits>
#include <vector>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "elementwise/operations.h"
#include "filter/fir_sets.h"
#include "spectral/window_families.h"
#include "stats/blocks.h"

namespace sigvex {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// A design in the making: computed in double for both precisions.
struct Taps {
  double* h;
  size_t n;
  double small;  // squared arguments below it count as 0 where a difference would lose every digit

  bool odd() const { return n % 2 == 1; }
  double& centre() { return h[n / 2]; }
  double first_distance() const { return odd() ? 1 : 0.5; }

  // The two taps at every distance from the centre, from the innermost pair outward: rule(distance) gives the right
  // one, sign times it is the left one.
  template <class F> void pairs(double sign, F rule) {
    for (size_t i = 0; i < n / 2; ++i) {
      const double tap = rule(first_distance() + static_cast<double>(i));
      h[(n + 1) / 2 + i] = tap;
      h[n / 2 - 1 - i] = sign * tap;
    }
  }
};

double sinc(double x) { return x == 0 ? 1 : std::sin(x) / x; }

// (cos x - 1) / x^2
double versine_ratio(double x, double small) {
  const double square = x * x;
  return square < small ? -0.5 : (std::cos(x) - 1) / square;
}

// The taps add up to 1 afterwards, unless they add up to nothing.
void unit_sum(const Taps& taps) {
  if (taps.n == 0) return;
  const auto count = static_cast<double>(taps.n);
  const auto [sum] = block_sums<double, 1>(taps.n, [&](size_t k) { return Sums<double, 1>{taps.h[k]}; });
  const double mean = sum * (1 / count);
  if (mean == 0) return;
  const double factor = 1 / (count * mean);
  for (size_t k = 0; k < taps.n; ++k) taps.h[k] *= factor;
}

void low_pass(Taps& taps, double cutoff) {
  if (taps.odd()) taps.centre() = 2 * cutoff;
  taps.pairs(1, [=](double d) { return 2 * cutoff * sinc(kTurn * cutoff * d); });
}

void band_pass(Taps& taps, double centre, double bandwidth) {
  low_pass(taps, bandwidth * 0.5);
  if (taps.odd()) taps.centre() *= 2;
  const double step = kTurn * centre;
  double angle = step * taps.first_distance();
  const double* right = taps.h + (taps.n + 1) / 2;
  taps.pairs(1, [&](double) {
    const double tap = *right++ * (2 * std::cos(angle));
    angle += step;
    return tap;
  });
}

// All-pass less the design, whose delay it shares.
void complement(Taps& taps) {
  for (size_t k = 0; k < taps.n; ++k) taps.h[k] = -taps.h[k];
  taps.centre() += 1;
}

void delayed_low_pass(Taps& taps, double cutoff, double delay) {
  double x = (1 - static_cast<double>(taps.n) - 2 * delay) * cutoff * std::numbers::pi;
  for (size_t k = 0; k < taps.n; ++k, x += kTurn * cutoff) taps.h[k] = 2 * cutoff * sinc(x);
  unit_sum(taps);
}

void differentiator(Taps& taps, double cutoff) {
  if (taps.odd()) taps.centre() = 0;
  const double slope = kTurn * cutoff;
  taps.pairs(-1, [=](double d) {
    const double x = slope * d;
    return x == 0 ? 0 : (std::cos(x) - std::sin(x) / x) / x * slope * 2 * cutoff;
  });
}

void hilbert(Taps& taps, double cutoff) {
  if (taps.odd()) taps.centre() = 0;
  taps.pairs(-1, [=, small = taps.small](double d) {
    const double x = kTurn * cutoff * d;
    return versine_ratio(x, small) * x * 2 * cutoff;
  });
}

void magnitude_ramp(Taps& taps, double cutoff) {
  const double gain = 2 * cutoff * (2 * cutoff);
  if (taps.odd()) taps.centre() = gain * 0.5;
  taps.pairs(1, [=, small = taps.small](double d) {
    const double x = kTurn * cutoff * d;
    return (sinc(x) + versine_ratio(x, small)) * gain;
  });
}

Status gauss(Taps& taps, double cutoff) {
  if (taps.n == 0) return kSuccess;
  constexpr double kHalfPower = 0.8325546111576977;  // sqrt(ln 2)
  WindowShape shape;
  SIGVEX_TRY(choose_gauss(DSP_WINFLAG_PEAK, kHalfPower / (static_cast<double>(taps.n) * kTurn * cutoff), shape));
  shape.symmetric = true;
  SIGVEX_TRY(window_weights<double>(shape, taps.n, taps.h));
  unit_sum(taps);
  return kSuccess;
}

// The spectrum of a cosine-sum window, as a filter: its coefficients already add up to 1.
constexpr double kKernel5[] = {0.4243801, 0.4973406, 0.0782793};
constexpr double kKernel7[] = {0.3635819, 0.4891775, 0.1365995, 0.0106411};
constexpr double kKernel9[] = {0.3232153788877343, 0.471492143957626, 0.1755341299601972, 0.02849699010614994,
                               0.001261357088292677};
constexpr double kKernel11[] = {0.2935578950102797,  0.4519357723474506,   0.2014164714263962,
                                0.04792610922105837, 0.005026196426859393, 0.0001375555679558877};
constexpr double kKernel13[] = {0.2712203605850388,  0.4334446123274422,    0.2180041228929303,   0.06578534329560609,
                                0.01076186730534183, 0.0007700127105808265, 1.368088305992921e-05};

const double* cosine_kernel(size_t n) {
  switch (n) {
    case 5:
      return kKernel5;
    case 7:
      return kKernel7;
    case 9:
      return kKernel9;
    case 11:
      return kKernel11;
    case 13:
      return kKernel13;
    default:
      return nullptr;
  }
}

double sinh_shape(size_t n) {
  switch (n) {
    case 3:
      return 6.321022275;
    case 4:
      return 7.5194;
    case 6:
      return 10.686;
    case 8:
      return 13.962;
    default:
      break;
  }
  const double half_turn = std::numbers::pi / 2;
  return n % 2 == 1 ? (static_cast<double>(n) + 1) * half_turn : static_cast<double>(n) * half_turn + 1.4;
}

double sinh_ratio_shape(size_t n) {
  switch (n) {
    case 3:
      return 5.922377;
    case 5:
      return 9.4861669;
    case 7:
      return 12.56733;
    case 9:
      return 15.939169;
    case 11:
      return 19.10109;
    default:
      return 1.610830415 * static_cast<double>(n) + 1.386795655;
  }
}

// sinh and sin over e^scale. The unit sum cancels a common factor; taking it out of large shapes beforehand keeps
// their taps, which a precision has no room for, in range.
struct Hyperbolic {
  double scale;

  explicit Hyperbolic(double shape) : scale(std::abs(shape) > Limits<double>::ln_huge ? std::abs(shape) : 0) {}
  double sinh(double s) const { return scale == 0 ? std::sinh(s) : (std::exp(s - scale) - std::exp(-s - scale)) / 2; }
  double sin(double s) const { return std::sin(s) * std::exp(-scale); }
};

// Pairs of taps rule(a^2 - v^2/4) with v growing by `step` outward.
template <class F> void shaped_pairs(Taps& taps, double a, double step, F rule) {
  double v = step * taps.first_distance();
  taps.pairs(1, [&](double) {
    const double r = a * a - v * v / 4;
    v += step;
    return rule(r);
  });
  unit_sum(taps);
}

void sinh_low_pass(Taps& taps, double a) {
  if (taps.n == 0) return;
  if (a == 0) {
    if (const double* const kernel = cosine_kernel(taps.n)) {
      taps.centre() = kernel[0];
      taps.pairs(1, [=](double d) { return kernel[static_cast<size_t>(d)] / 2; });
      return;
    }
    a = sinh_shape(taps.n);
  }
  const Hyperbolic by(a);
  if (taps.odd()) taps.centre() = by.sinh(std::abs(a));
  shaped_pairs(taps, a, 4 * a / (static_cast<double>(taps.n) + 1),
               [&](double r) { return r > 0 ? by.sinh(std::sqrt(r)) : by.sin(std::sqrt(-r)); });
}

void sinh_ratio_low_pass(Taps& taps, double a) {
  if (taps.n == 0) return;
  if (a == 0) a = sinh_ratio_shape(taps.n);
  const Hyperbolic by(a);
  if (taps.odd()) taps.centre() = by.sinh(std::abs(a)) / std::abs(a);
  const double edge = std::sqrt(a * a + std::numbers::pi * std::numbers::pi);
  shaped_pairs(taps, a, 4 * edge / (static_cast<double>(taps.n) + 1), [&](double r) {
    const double s = std::sqrt(std::abs(r));
    if (r > 0) return by.sinh(s) / s;
    return s == 0 ? std::exp(-by.scale) : by.sin(s) / s;
  });
}

Status design(Taps& taps, int32_t type, double p1, double p2) {
  if ((type == DSP_FIR_BAND_STOP || type == DSP_FIR_HIGH_PASS) && !taps.odd()) return kFailure;
  switch (type) {
    case DSP_FIR_BAND_PASS:
      return band_pass(taps, p1, p2), kSuccess;
    case DSP_FIR_BAND_STOP:
      return band_pass(taps, p1, p2), complement(taps), kSuccess;
    case DSP_FIR_HIGH_PASS:
      return low_pass(taps, p1), complement(taps), kSuccess;
    case DSP_FIR_LOW_PASS:
      return low_pass(taps, p1), kSuccess;
    case DSP_FIR_SINH:
      return sinh_low_pass(taps, p1), kSuccess;
    case DSP_FIR_DELAYED_LOW_PASS:
      return delayed_low_pass(taps, p1, p2), kSuccess;
    case DSP_FIR_DIFFERENTIATOR:
      return differentiator(taps, p1), kSuccess;
    case DSP_FIR_GAUSS:
      return gauss(taps, p1);
    case DSP_FIR_HILBERT:
      return hilbert(taps, p1), kSuccess;
    case DSP_FIR_SINH_RATIO:
      return sinh_ratio_low_pass(taps, p1), kSuccess;
    case DSP_FIR_RAMP:
      return magnitude_ramp(taps, p1), kSuccess;
    default:
      return kFailure;
  }
}

}  // namespace

namespace dspc {

template <class T> Status fir(Vector<T>& v, int32_t type, double p1, double p2) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  const bool complex = v.complex;
  v.complex = 0;
  const size_t n = points<T>(v);
  constexpr double kSmall = 12 * static_cast<double>(Limits<T>::epsilon);
  if constexpr (std::is_same_v<T, double>) {
    Taps taps{v.data, n, kSmall};
    SIGVEX_TRY(design(taps, type, p1, p2));
  } else {
    std::vector<double> exact(n);
    Taps taps{exact.data(), n, kSmall};
    SIGVEX_TRY(design(taps, type, p1, p2));
    for (size_t k = 0; k < n; ++k) v.data[k] = static_cast<T>(exact[k]);
  }
  return complex ? dspi::rtoc<T>(v) : kSuccess;
}

template <class T> Status fir2(Vector<T>& v, int32_t set) {
  const std::span<const double> taps = fir_set(set);
  if (taps.empty()) return kFailure;
  const bool complex = v.complex;
  SIGVEX_TRY(shape<T>(v, taps.size(), v.complex));
  v.complex = 0;
  for (size_t k = 0; k < taps.size(); ++k) v.data[k] = static_cast<T>(taps[k]);
  return complex ? dspi::rtoc<T>(v) : kSuccess;
}

}  // namespace dspc
}  // namespace sigvex

SIGVEX_EXPORT(c, fir, 4)
SIGVEX_EXPORT(c, fir2, 2)
