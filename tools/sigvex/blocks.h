// Recordings of any length through the library's block operations, in constant memory.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "source.h"
#include "vector.h"
#include "writer.h"

namespace sigvex_tool {

constexpr size_t kBlockFrames = 65536;

// Calls `take` with the frames of the source, block by block, until its end.
void for_each_block(Source& source, size_t frames, const std::function<void(std::vector<double>&)>& take);

// What is done with one channel.
class Stage {
 public:
  virtual ~Stage() = default;
  // Replaces a block by what comes of it. The last one may be empty.
  virtual void block(Vector<double>& samples, bool last) = 0;
};
using Stages = std::vector<std::unique_ptr<Stage>>;

// Sends every channel through stages of its own, made by `stages`, and writes what comes out, `delta` apart, as a file
// that is complete or does not appear.
void process(Source& source, size_t frames, double delta, const std::function<Stages()>& stages,
             const OutputOptions& output);

void append_zeros(Vector<double>& v, size_t count);

// A filter of at most kBlockFrames taps whose delay of (N-1)/2 samples, rounded down, is taken out: as many samples
// come out as went in, each in its place.
class FilterStage : public Stage {
 public:
  explicit FilterStage(const std::vector<double>& taps);
  void block(Vector<double>& samples, bool last) override;

 private:
  Vector<double> taps_, state_, filtered_;
  size_t delay_, skip_;
};

// The low-pass without which a rate that is divided by `ratio` folds frequencies down: flat within 0.01 dB to 0.4,
// below -80 dB from 0.5 of the new rate.
std::vector<double> low_pass_before(double ratio);
constexpr double kMostRatio = 1000;

}  // namespace sigvex_tool
