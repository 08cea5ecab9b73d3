// The random source of a precision: 15-bit draws, four of them cut from each output of xoshiro256++ (D. Blackman and
// S. Vigna, "Scrambled linear pseudorandom number generators", ACM TOMS 47, 2021; period 2^256 - 1).
#pragma once

#include <bit>
#include <cstdint>

namespace sigvex {

class RandomSource {
 public:
  // The state is the start value spread by SplitMix64, as the generator's authors advise; never all zero.
  void seed(uint32_t value);

  // Up to four draws of 0 .. 32767 as one number, the first of them in its lowest 15 bits.
  uint64_t draws(int n) {
    if (left_ == 0) refill();
    const int have = left_ < n ? left_ : n;
    uint64_t result = take(have);
    if (have < n) {
      refill();
      result |= take(n - have) << 15 * have;
    }
    return result;
  }

  // Draws kFirst .. kFirst + kN - 1 of those in `words`, one number as draws() would give; kN is 1 to 4.
  template <int kFirst, int kN> static uint64_t draws_of(const uint64_t* words) {
    constexpr int kSkipped = kFirst % 4, kHave = 4 - kSkipped;
    uint64_t result = (words[kFirst / 4] & kWord) >> 15 * kSkipped;
    if constexpr (kHave < kN) result |= words[kFirst / 4 + 1] << 15 * kHave;
    return result & ((uint64_t{1} << 15 * kN) - 1);
  }

  // The next four draws, where those of the word before are used up.
  bool at_word() const { return left_ == 0; }
  uint64_t word() { return next(); }

  // 31 bits of three draws, the last one in the low 15 bits.
  uint32_t draw31() {
    const uint64_t three = draws(3), first = three & 0x7FFF, second = three >> 15 & 1, third = three >> 30;
    return static_cast<uint32_t>(first << 16 | second << 15 | third);
  }

 private:
  static constexpr uint64_t kWord = (uint64_t{1} << 60) - 1;

  void refill() {
    bits_ = next();
    left_ = 4;
  }

  uint64_t take(int n) {
    const uint64_t result = bits_ & ((uint64_t{1} << 15 * n) - 1);
    bits_ >>= 15 * n;
    left_ -= n;
    return result;
  }

  uint64_t next() {
    const uint64_t result = std::rotl(state_[0] + state_[3], 23) + state_[0], shifted = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

  uint64_t state_[4] = {};
  uint64_t bits_ = 0;  // of the last output, those not yet drawn
  int left_ = 0;       // draws in them
};

// The source of a precision, seeded at its first use in the process. Hold WorkLock while drawing.
template <class T> RandomSource& random_source();

}  // namespace sigvex
