#include "averaging.h"

#include <algorithm>
#include <cmath>

#include "sigvex.h"

namespace sigvex_tool {
namespace {

constexpr Averaging kAveragings[] = {
    {"mean", DSP_AVG_MEAN | DSP_AVG_POWER, "mean power", Averaging::Power},
    {"exponential", DSP_AVG_MEAN | DSP_AVG_POWER | DSP_AVG_EXPONENTIAL, "exponential average", Averaging::Power},
    {"magnitude", DSP_AVG_MEAN | DSP_AVG_MAGNITUDE, "mean magnitude", Averaging::Magnitude},
    {"geometric", DSP_AVG_GEOMETRIC | DSP_AVG_POWER, "geometric mean", Averaging::Geometric},
    {"harmonic", DSP_AVG_HARMONIC | DSP_AVG_POWER, "harmonic mean", Averaging::Harmonic},
    {"max", DSP_AVG_MAX | DSP_AVG_POWER, "maximum hold", Averaging::Max},
    {"min", DSP_AVG_MIN | DSP_AVG_POWER, "minimum hold", Averaging::Min},
    {"last", DSP_AVG_LAST | DSP_AVG_POWER, "last frame", Averaging::Last},
    {"vector", DSP_AVG_MEAN, "vector average", Averaging::Coherent},
    {"synchronous", DSP_AVG_SYNCHRONOUS, "synchronous average", Averaging::Coherent},
};

constexpr double kEuler = 0.57721566490153286;

// The logarithm of the mean of exp(u y), where y is what is averaged of a frame: the power x of a noise bin is
// distributed exponentially; y is its root, its logarithm, or -1/x.
double cumulants(Averaging::Kind kind, double u) {
  switch (kind) {
    case Averaging::Magnitude:
      return std::log1p(std::sqrt(M_PI) / 2 * u * std::exp(u * u / 4) * (1 + std::erf(u / 2)));
    case Averaging::Geometric:
      return std::lgamma(1 + u);
    default: {
      const double root = 2 * std::sqrt(u);
      return std::log(root * std::cyl_bessel_k(1, root));
    }
  }
}

// Chernoff's bound: the mean of K values y exceeds c'(u) with a probability of at most exp(-K (u c'(u) - c(u))).
double limit_of_mean(Averaging::Kind kind, double frames, double rarity) {
  const auto slope = [kind](double u) {
    const double h = 1e-4 * u;
    return (cumulants(kind, u + h) - cumulants(kind, u - h)) / (2 * h);
  };
  double low = std::log(1e-6), high = std::log(kind == Averaging::Magnitude ? 50 : 1e4);
  for (int step = 0; step < 60; ++step) {
    const double middle = 0.5 * (low + high), u = std::exp(middle);
    (frames * (u * slope(u) - cumulants(kind, u)) < rarity ? low : high) = middle;
  }
  const double y = slope(std::exp(high));
  return kind == Averaging::Magnitude ? y * y : kind == Averaging::Geometric ? std::exp(y) : -1 / y;
}

// The same for the mean of the powers themselves: P(power > t) <= exp(-K (t - 1 - ln t)).
double limit_of_power(double frames, double rarity) {
  const double wanted = rarity / frames;
  double low = 1, high = 2 + 2 * wanted;
  for (int step = 0; step < 60; ++step) {
    const double t = 0.5 * (low + high);
    (t - 1 - std::log(t) < wanted ? low : high) = t;
  }
  return high;
}

}  // namespace

std::vector<std::string> averaging_names() {
  std::vector<std::string> names;
  for (const Averaging& a : kAveragings) names.emplace_back(a.name);
  return names;
}

const Averaging& averaging_named(const std::string& name) {
  return *std::find_if(std::begin(kAveragings), std::end(kAveragings),
                       [&](const Averaging& a) { return name == a.name; });
}

// The medians of means are the mean less a sixth of the skewness (the third over the second cumulant, over K); of the
// mean power K = 1 deserves its own. The sum of 1/x follows a stable law without a mean, of median ln K + 1.2.
NoiseShown noise_shown(Averaging::Kind kind, double k) {
  switch (kind) {
    case Averaging::Power:
      return {k < 1.01 ? std::log(2.0) : (3 * k - 0.8) / (3 * k + 0.2), 1};
    case Averaging::Magnitude:
      return {std::pow(0.8862 - 0.0487 / k, 2), M_PI / 4 + (1 - M_PI / 4) / k};
    case Averaging::Geometric:
      return {std::exp(0.2436 / k - kEuler), std::exp(k * std::lgamma(1 + 1 / k))};
    case Averaging::Harmonic: {
      const double median = 1 / (std::log(k) + 1.2014 + 0.2413 / k);
      return {median, median};
    }
    case Averaging::Max:  // the sum of 1/j up to K
      return {-std::log(-std::expm1(-std::log(2.0) / k)),
              std::log(k) + kEuler + 1 / (2 * k) - 1 / (12 * k * k) + 1 / (120 * k * k * k * k)};
    case Averaging::Min:
    case Averaging::Coherent:
      return {std::log(2.0) / k, 1 / k};
    case Averaging::Last:
      break;
  }
  return {std::log(2.0), 1};
}

double noise_limit(Averaging::Kind kind, double k, double rarity) {
  switch (kind) {
    case Averaging::Power:
      return limit_of_power(k, rarity);
    case Averaging::Max:
      return rarity + std::log(k);
    case Averaging::Min:
    case Averaging::Coherent:
      return rarity / k;
    case Averaging::Last:
      return rarity;
    default:
      return limit_of_mean(kind, k, rarity);
  }
}

}  // namespace sigvex_tool
