// From a recording to an averaged power spectrum: frames, trend, window, transform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "averaging.h"
#include "progress.h"
#include "source.h"

namespace sigvex_tool {

enum class Detrend { None, Mean, Linear };

struct Analysis {
  uint32_t window = 0;
  std::optional<double> parameter;
  size_t points = 0;     // of a frame; 0: the whole recording, or what gives `average` frames
  uint64_t average = 0;  // frames; 0: all that fit
  Averaging averaging = averaging_named("mean");
  double length = 0;                // of an exponential average, in frames; 0: every frame counts alike
  std::optional<double> reference;  // frequency whose phase synchronous averaging follows
  double overlap = 0.5;             // of a frame, 0 to below 1
  Detrend detrend = Detrend::Mean;
  bool single = false;
};

struct Spectrum {
  std::vector<double>
      power;  // |X|^2 in rising order of frequency, averaged over the frames; X has the window's mean taken out
  double spacing = 0;          // of the bins
  bool complex = false;        // two-sided: the input was complex
  size_t points = 0;           // of a frame
  std::vector<double> window;  // its weights over a frame, with the mean 1
  uint64_t frames = 0;
  Averaging::Kind averaging = Averaging::Power;
  std::optional<size_t> reference;  // index of the bin whose phase was followed
  double independent = 0;           // how many independent frames average as well as these overlapping ones
  double enbw = 1;                  // equivalent noise bandwidth in bins
  uint64_t used = 0;                // samples of the recording that entered
  bool single = false;

  // Index of frequency 0.
  size_t origin() const { return complex ? points / 2 : 0; }
  double frequency(double index) const { return (index - static_cast<double>(origin())) * spacing; }
  // What the average shows of noise, over the noise's mean power.
  double noise_bias() const { return noise_shown(averaging, independent).mean; }
  // Frequency 0 and half the sampling rate stand for themselves; every other bin of a real signal stands for its mirror
  // too.
  bool stands_alone(size_t index) const { return complex || index == 0 || 2 * index == points; }
};

Spectrum analyse(Source& source, const Analysis& analysis);

}  // namespace sigvex_tool
