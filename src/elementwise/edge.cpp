// dspi_edge
#include <cmath>

#include "core/exports.h"
#include "core/limits.h"

namespace sigvex::dspi {
namespace {

// One direction of crossing. Armed by a sample beyond the band on the side that the crossing starts from.
class Trigger {
 public:
  explicit Trigger(bool enabled) : enabled_(enabled) {}
  // Whether this sample completes a crossing.
  bool fires(bool beyond, bool reached) {
    const bool fired = armed_ && reached;
    armed_ = enabled_ && (beyond || (armed_ && !reached));
    return fired;
  }

 private:
  bool enabled_, armed_ = false;
};

}  // namespace

// The positions are written over samples that have been read: there is at most one for each step. They are computed in
// double, since an index beyond 2^24 leaves float no digits for the fraction.
template <class T> Status edge(Vector<T>& v, T level, T hysteresis, uint32_t direction) {
  if (v.complex || !bounded(level) || !(hysteresis >= 0)) return kFailure;
  if (direction < DSP_EDGE_UP || direction > DSP_EDGE_EITHER) return kFailure;
  const T low = level - hysteresis, high = level + hysteresis;
  const auto fresh = [direction](uint32_t way) { return Trigger((direction & way) != 0); };
  Trigger up = fresh(DSP_EDGE_UP), down = fresh(DSP_EDGE_DOWN);
  const double wanted = level, delta = v.delta;
  double previous = 0;
  size_t found = 0;
  for (size_t k = 0, n = points<T>(v); k < n; ++k) {
    if (std::isnan(v.data[k])) {  // nothing is known of the way across a gap
      up = fresh(DSP_EDGE_UP);
      down = fresh(DSP_EDGE_DOWN);
      continue;
    }
    const T x = clamped(v.data[k]);
    const bool rises = up.fires(x < low, x >= level), falls = down.fires(x > high, x <= level);
    if (rises || falls) {
      const double fraction = (wanted - previous) / (double{x} - previous);
      v.data[found++] = static_cast<T>((static_cast<double>(k - 1) + fraction) * delta);
    }
    previous = x;
  }
  v.points = static_cast<int32_t>(found);
  v.delta = 1;
  return kSuccess;
}

}  // namespace sigvex::dspi

SIGVEX_EXPORT(i, edge, 4)
