// A signal of any length that is read more than once, also when it came through a pipe.
#pragma once

#include <cstdint>
#include <vector>

#include "analysis.h"
#include "source.h"

namespace sigvex_tool {

// The samples stand in an unnamed temporary file.
class Spool {
 public:
  explicit Spool(bool complex);
  void append(const double* samples, size_t frames);

  bool complex() const { return width_ == 2; }
  uint64_t frames() const { return frames_; }
  // What is taken out of the samples that read() gives: their mean or regression line, over the whole signal.
  void remove(Detrend trend);
  // The samples from there on, zeros before the first and behind the last; or, periodic, the signal repeated for ever.
  void read(int64_t first, size_t frames, double* out, bool periodic);
  // The sum of |x|^2 of what read() gives.
  double energy();

 private:
  // The same inside the signal.
  void fetch(uint64_t first, size_t frames, double* out);

  File file_;
  size_t width_;
  uint64_t frames_ = 0;
  double mean_[2] = {0, 0}, slope_[2] = {0, 0};
};

// Appends each signal of the source to one of the spools, block by block. Refuses what is not finite.
void spool(Source& source, const std::vector<Spool*>& signals);

}  // namespace sigvex_tool
