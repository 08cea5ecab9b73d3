// Auto- and cross-correlation of signals of any length.
#pragma once

#include <complex>
#include <functional>
#include <vector>

#include "spool.h"

namespace sigvex_tool {

struct CorrelationPlan {
  uint64_t reach = 0;     // lags -reach .. reach
  bool circular = false;  // the signals are periods of one length
  enum Scale { Sum, Mean, Coefficient } scale = Coefficient;
  bool unbiased = false;  // divide by the samples that overlap at a lag, not by those of the shorter signal
};

struct Correlation {
  int64_t first = 0;                         // lag of the first value, in samples
  std::vector<std::complex<double>> values;  // one for each lag, imaginary parts 0 for real signals
  bool complex = false;
};

// Lag k: the sum over j of conj(a[j]) b[j + k], scaled. What a is to b: itself for the autocorrelation.
Correlation correlate(Spool& a, Spool& b, const CorrelationPlan& plan);

struct LagPeak {
  double lag = 0;                  // in samples, refined between them
  std::complex<double> value = 0;  // at that lag
};

// The local maxima of the magnitude at lags that `wanted` accepts, in samples; the highest first.
std::vector<LagPeak> find_lags(const Correlation& correlation, size_t most, const std::function<bool(double)>& wanted);

}  // namespace sigvex_tool
