// Ours and its peers in turns, so that what else the machine does falls on all of them; the best turn of each counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

// Seconds of one call of each, the best of `rounds`.
inline std::vector<double> best_of_turns(int rounds, const std::vector<std::function<void()>>& runs) {
  std::vector<double> best(runs.size(), std::numeric_limits<double>::infinity());
  for (int round = 0; round < rounds; ++round) {
    for (size_t k = 0; k < runs.size(); ++k) {
      const auto start = std::chrono::steady_clock::now();
      runs[k]();
      const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
      best[k] = std::min(best[k], time.count());
    }
  }
  return best;
}
