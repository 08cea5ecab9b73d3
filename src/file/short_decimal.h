// The fast road for most numbers in text: digits, a point and more digits, of no more precision than a sample has.
#pragma once

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "file/operations.h"

namespace sigvex {

// Appends the digits among the next eight characters, up to the first that is none, and returns how many these were.
// All are found and valued in a few operations on one word, without a branch on their number (after D. Lemire, "Number
// parsing at a gigabyte per second", 2021).
inline int append_digits(const char* at, uint64_t& n) {
  static constexpr uint64_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
  constexpr uint64_t kEach = 0x0101010101010101, kPairs = 0x000000FF000000FF;
  uint64_t word = 0;
  std::memcpy(&word, at, 8);
  word ^= '0' * kEach;
  const uint64_t others = (word | (word + 0x76 * kEach)) & 0x80 * kEach;  // right up to the first of them
  const int run = std::countr_zero(others) / 8, half = 4 * (8 - run);
  word = word << half << half;  // the digits become the last of eight
  word = word * 10 + (word >> 8);
  word = ((word & kPairs) * 0x000F424000000064 + ((word >> 16) & kPairs) * 0x0000271000000001) >> 32;
  n = n * kPowers[run] + word;
  return run;
}

// The value of a number whose digits, taken as an integer, and whose power of ten are both exact in T: their quotient
// is then correctly rounded (W. D. Clinger, "How to read floating point numbers accurately", 1990). Returns the
// character behind the digits, or null where the number must be converted the long way.
template <class T> const char* short_decimal(const char* at, const char* end, T& value) {
  static constexpr T kPowers[] = {T(1e0),  T(1e1),  T(1e2),  T(1e3),  T(1e4),  T(1e5),  T(1e6),
                                  T(1e7),  T(1e8),  T(1e9),  T(1e10), T(1e11), T(1e12), T(1e13),
                                  T(1e14), T(1e15), T(1e16), T(1e17), T(1e18), T(1e19)};
  constexpr bool kDouble = sizeof(T) == sizeof(double);
  constexpr uint64_t kLargest = uint64_t{1} << (kDouble ? DBL_MANT_DIG : FLT_MANT_DIG);
  constexpr int kLongestFraction = kDouble ? 19 : 10;    // exact powers, and digits that fit a word
  constexpr ptrdiff_t kRoom = 48, kLongestInteger = 19;  // all characters that are looked at
  if (std::endian::native != std::endian::little || end - at < kRoom) return nullptr;

  const bool negative = *at == '-';
  const char* const first = at += negative;
  uint64_t digits = 0;
  while (is_digit(*at) && at - first < kLongestInteger) digits = 10 * digits + static_cast<uint64_t>(*at++ - '0');
  if (at == first || *at != '.') return nullptr;
  const ptrdiff_t whole = digits > 0 ? at - first : 0;
  ++at;
  int fraction = append_digits(at, digits);
  if (fraction == 8) {
    fraction += append_digits(at + 8, digits);
    bool more = true;
    for (int k = 0; k < 3; ++k) {  // selections, not branches: the length of a number cannot be foreseen
      const char c = at[fraction];
      more = more && is_digit(c);
      digits = more ? 10 * digits + static_cast<uint64_t>(c - '0') : digits;
      fraction += more;
    }
  }
  if (whole + fraction > kLongestInteger || fraction > kLongestFraction || digits > kLargest) return nullptr;
  value = std::copysign(static_cast<T>(static_cast<int64_t>(digits)) / kPowers[fraction], negative ? T(-1) : T(1));
  return at + fraction;
}

}  // namespace sigvex
