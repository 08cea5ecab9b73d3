// How far a long run has come, on the standard error and only where a person looks at it.
#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace sigvex_tool {

class Progress {
 public:
  explicit Progress(const char* doing) : doing_(doing), shown_(isatty(STDERR_FILENO) == 1) {}
  ~Progress() { clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Nothing appears in the first second, later ten lines a second at most.
  void at(uint64_t done, std::optional<uint64_t> total) {
    if (!shown_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return;
    next_ = now + std::chrono::milliseconds(100);
    if (total && *total > 0)
      std::fprintf(stderr, "\r%s %3.0f %%", doing_, 100.0 * static_cast<double>(done) / static_cast<double>(*total));
    else std::fprintf(stderr, "\r%s %llu samples", doing_, static_cast<unsigned long long>(done));
    visible_ = true;
  }
  void clear() {
    if (visible_) std::fprintf(stderr, "\r\033[K");
    visible_ = false;
  }

 private:
  const char* doing_;
  bool shown_, visible_ = false;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + std::chrono::seconds(1);
};

}  // namespace sigvex_tool
