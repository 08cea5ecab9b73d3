// What a power of the spectrum reads as: amplitude, power or density, in the unit of the recording.
#pragma once

#include <string>
#include <vector>

#include "analysis.h"

namespace sigvex_tool {

enum class Scale { Peak, Rms, Power, Density };

class Levels {
 public:
  Levels(const Spectrum& spectrum, Scale scale, bool db, const SourceInfo& info);

  // The level of a bin power |X|^2. `alone`: the bin has no mirror image, see Spectrum::stands_alone.
  double of(double power, bool alone) const;
  // As of(), never in decibels.
  double linear(double power, bool alone) const;
  // Of one noise bin, or any bin that has its mirror.
  double of_noise(double power) const { return of(power, two_sided_); }

  // The whole spectrum as levels.
  std::vector<double> all(const Spectrum& spectrum) const;

  // Noise density behind a bin power, in unit/sqrt(Hz), or dB re 1 unit/sqrt(Hz).
  double amplitude_density(double power) const;

  bool in_decibels() const { return db_; }
  std::string unit() const;         // "mV", "mV^2", "mV^2/Hz", "dB(mV)"
  std::string description() const;  // the unit and what it measures: "mV peak"
  std::string density_unit() const;

 private:
  Scale scale_;
  bool db_, two_sided_;
  double bandwidth_;
  std::string unit_, frequency_unit_;
};

}  // namespace sigvex_tool
