#include "generate/random_source.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace sigvex {
namespace {

struct Source {
  RandomSource generator;
  bool seeded;
};
template <class T> constinit Source source{};

constinit uint32_t seeds_computed = 0;  // guarded by WorkLock, as the sources are

uint32_t low_word(const void* address) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address)); }

// Four bytes of a value, the lowest being byte 0: each is added and the sum shifted left.
uint32_t folded(uint64_t value, int first, int step, int shift) {
  uint32_t sum = 0;
  for (int k = 0; k < 4; ++k) {
    sum = (sum + static_cast<uint32_t>(value >> (8 * (first + k * step)) & 0xFF)) << shift;
  }
  return sum;
}

// Where the process and its stack were placed, and the finest clock.
uint32_t placement() {
  const uint32_t on_stack = 0;
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return (low_word(&on_stack) ^ 0xEBEBEBEBU) + low_word(&seeds_computed) + static_cast<uint32_t>(now);
}

// Random bits of the system, or 0.
uint32_t system_entropy() {
  uint32_t word = 0;
  if (std::FILE* const file = std::fopen("/dev/urandom", "rb")) {
    if (std::fread(&word, sizeof word, 1, file) != 1) word = 0;
    std::fclose(file);
  }
  return word;
}

uint32_t fresh_seed() {
  uint32_t seed = placement();
  seed ^= system_entropy();
  seed ^= folded(static_cast<uint64_t>(std::time(nullptr)), 4, 1, 7);  // the upper half: zero until 2106
  seed ^= folded(static_cast<uint64_t>(std::clock()), 3, -1, 6);
  return seed + seeds_computed++;
}

}  // namespace

void RandomSource::seed(uint32_t value) {
  uint64_t x = value;
  for (uint64_t& word : state_) {
    uint64_t z = x += 0x9E3779B97F4A7C15U;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9U;
    z = (z ^ z >> 27) * 0x94D049BB133111EBU;
    word = z ^ z >> 31;
  }
  left_ = 0;
}

template <class T> RandomSource& random_source() {
  Source& its = source<T>;
  if (!its.seeded) {
    its.generator.seed(fresh_seed());
    its.seeded = true;
  }
  return its.generator;
}

template RandomSource& random_source<double>();
template RandomSource& random_source<float>();

}  // namespace sigvex
