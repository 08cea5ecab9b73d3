#include "levels.h"

#include <cmath>

namespace sigvex_tool {

Levels::Levels(const Spectrum& spectrum, Scale scale, bool db, const SourceInfo& info)
    : scale_(scale),
      db_(db),
      two_sided_(spectrum.complex),
      bandwidth_(spectrum.enbw * spectrum.spacing),
      unit_(info.unit.empty() ? "units" : info.unit),
      frequency_unit_(info.frequency_unit()) {}

// A line of amplitude A in a real signal puts A/2 into its bin and A/2 into the mirror image.
double Levels::linear(double power, bool alone) const {
  const double mean_square = alone ? power : 2 * power;
  switch (scale_) {
    case Scale::Peak:
      return std::sqrt(alone ? power : 4 * power);
    case Scale::Rms:
      return std::sqrt(mean_square);
    case Scale::Power:
      return mean_square;
    case Scale::Density:
      break;
  }
  return mean_square / bandwidth_;
}

double Levels::of(double power, bool alone) const {
  const double level = linear(power, alone);
  if (!db_) return level;
  return (scale_ == Scale::Peak || scale_ == Scale::Rms ? 20 : 10) * std::log10(level);
}

std::vector<double> Levels::all(const Spectrum& s) const {
  std::vector<double> levels(s.power.size());
  for (size_t k = 0; k < levels.size(); ++k) levels[k] = of(s.power[k], s.stands_alone(k));
  return levels;
}

double Levels::amplitude_density(double power) const {
  const double density = (two_sided_ ? power : 2 * power) / bandwidth_;
  return db_ ? 10 * std::log10(density) : std::sqrt(density);
}

std::string Levels::unit() const {
  std::string unit = unit_;
  if (scale_ == Scale::Power || scale_ == Scale::Density) unit += "^2";
  if (scale_ == Scale::Density) unit += frequency_unit_ == "Hz" ? "/Hz" : "/(" + frequency_unit_ + ")";
  return db_ ? "dB(" + unit + ")" : unit;
}

std::string Levels::description() const {
  switch (scale_) {
    case Scale::Peak:
      return unit() + " peak";
    case Scale::Rms:
      return unit() + " rms";
    case Scale::Power:
      return unit() + " power";
    case Scale::Density:
      break;
  }
  return unit() + " density";
}

std::string Levels::density_unit() const {
  const std::string unit = unit_ + "/sqrt(" + frequency_unit_ + ")";
  return db_ ? "dB(" + unit + ")" : unit;
}

}  // namespace sigvex_tool
