// What stands in a spectrum: lines, their harmonics, and the noise between them.
#pragma once

#include <vector>

#include "analysis.h"
#include "lobe.h"

namespace sigvex_tool {

// The bins first .. last of a spectrum.
struct Band {
  size_t first = 0, last = 0;
  size_t size() const { return last - first + 1; }
};

// The bins within the limits, where given; throws if there is none.
Band band_of(const Spectrum& spectrum, std::optional<double> from, std::optional<double> to);

struct Line {
  double frequency = 0;
  double power = 0;  // |X|^2 of the line itself: of a bin right on it, under a window of mean 1
  size_t bin = 0;
  int harmonic = 0;       // 2 for twice the fundamental, 0 for a line of its own
  double over_noise = 0;  // power ratio to the noise around it
  bool clear = false;     // unlikely to be a maximum of the noise
};

// The mean noise power of a bin: from the median of the band, which lines do not move.
double noise_floor(const Spectrum& spectrum, const Band& band);

// The same about a bin: from the median of the hundred bins around it, for a spectrum whose noise is not flat.
class LocalFloor {
 public:
  explicit LocalFloor(const Spectrum& spectrum);
  double at(size_t bin) const { return floor_[bin / kStep]; }

 private:
  static constexpr size_t kStep = 20, kSpan = 100;
  std::vector<double> floor_;  // for each kStep bins
};

// How far, as a power ratio, a maximum must rise over the noise around it so that noise alone does so anywhere in the
// band with a probability of 1 % at most. `followed`: at the bin that synchronous averaging takes the phase from, where
// noise adds up by its magnitude.
double detection_ratio(const Spectrum& spectrum, const Band& band, bool followed = false);

struct Wanted {
  size_t clear = 10;    // lines at most
  size_t at_least = 5;  // in all, filled up with doubtful ones
};

// Lines of the band: first the clear ones, strongest first, then doubtful ones. A local maximum that is no more than
// what stronger lines leak into its place, or than the transform's rounding, is not one. Nor is one at frequency 0
// where the mean was removed: what is left there is the edge of a slow trend.
std::vector<Line> find_lines(const Spectrum& spectrum, const Lobe& lobe, const Band& band, const Wanted& wanted,
                             bool mean_removed);

// The harmonics 2 .. order of a line, also outside the band, each where it is strongest within the uncertainty of the
// fundamental.
std::vector<Line> find_harmonics(const Spectrum& spectrum, const Lobe& lobe, const Line& fundamental, int order);

}  // namespace sigvex_tool
