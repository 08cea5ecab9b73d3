// The power transform of a window: how a line between the bins, or one far away, shows in a bin.
#pragma once

#include <vector>

namespace sigvex_tool {

class Lobe {
 public:
  // From the weights over a frame.
  explicit Lobe(const std::vector<double>& window);

  // |W|^2 at a distance from the line, in bins; W(0) is the window's mean.
  double power(double bins) const;

  // The largest |W| at this distance or further away: what a line can leak there.
  double leakage(double bins) const;

  // How far the strongest bin can lie from the line: half a bin, or a whole one under a top so flat that ripple
  // decides.
  double reach() const { return power(0.5) > 0.97 * power(0) ? 1.0 : 0.5; }

 private:
  std::vector<double> power_, largest_;  // at every 1/steps_ bin
  double steps_ = 1;
  double end_ = 0;  // distance of the last entry, in bins
};

}  // namespace sigvex_tool
