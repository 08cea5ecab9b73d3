// How the frames of a spectrum become one, and what each way leaves of noise.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sigvex_tool {

struct Averaging {
  const char* name;
  uint32_t flags;  // DSP_AVG_*
  const char* words;
  // What becomes of the power of a noise bin over the frames. The mean of complex spectra is Coherent.
  enum Kind { Power, Magnitude, Geometric, Harmonic, Max, Min, Last, Coherent } kind;

  bool weighted() const { return kind != Max && kind != Min && kind != Last; }
};

std::vector<std::string> averaging_names();
const Averaging& averaging_named(const std::string& name);

// The power that noise of mean power 1 shows in a bin of an average over so many independent frames.
struct NoiseShown {
  double median = 1;
  double mean = 1;  // of the harmonic mean, where a few bins carry the mean: the median
};
NoiseShown noise_shown(Averaging::Kind kind, double frames);

// The power that such a bin exceeds with a probability of at most exp(-rarity).
double noise_limit(Averaging::Kind kind, double frames, double rarity);

}  // namespace sigvex_tool
