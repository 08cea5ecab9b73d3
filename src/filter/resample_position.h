// Positions in a resampler's input, exact over any number of samples.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/vector.h"

namespace sigvex {

// In steps of 2^-80 of the input's spacing: every digit of a ratio from 2^-28 on is kept, so sums of it have no error.
__extension__ typedef unsigned __int128 Fixed;
inline constexpr int kFractionBits = 80;

// Cut to the steps; negative and NaN give 0, far ones 2^46, beyond any run of blocks.
inline Fixed to_fixed(double x) {
  if (!(x > 0)) return 0;
  int exponent;
  const double mantissa = std::frexp(std::min(x, 0x1p46), &exponent);
  const Fixed digits = static_cast<uint64_t>(std::ldexp(mantissa, 64));
  const int shift = exponent - 64 + kFractionBits;
  if (shift >= 0) return digits << shift;
  return shift > -64 ? digits >> -shift : 0;
}

inline Fixed to_fixed(size_t n) { return static_cast<Fixed>(n) << kFractionBits; }

inline size_t whole(Fixed x) { return static_cast<size_t>(x >> kFractionBits); }
// The part below one, cut to a double's 53 digits.
inline double fraction(Fixed x) {
  constexpr uint64_t kDigits = (uint64_t{1} << 53) - 1;
  return static_cast<double>(static_cast<uint64_t>(x >> (kFractionBits - 53)) & kDigits) * 0x1p-53;
}

// Rounded twice, to the same double wherever it is asked for.
inline double to_double(Fixed x) {
  return std::ldexp(static_cast<double>(static_cast<uint64_t>(x >> 64)), 64 - kFractionBits) +
         std::ldexp(static_cast<double>(static_cast<uint64_t>(x)), -kFractionBits);
}

// How many multiples of the step, from the start on, lie below n; more than fit a record count as one more than those.
inline size_t outputs(Fixed start, Fixed step, size_t n) {
  const Fixed end = to_fixed(n);
  if (start >= end) return 0;
  const Fixed wanted = step > 0 ? (end - start + step - 1) / step : end;
  return static_cast<size_t>(std::min<Fixed>(wanted, kMaxScalars + 1));
}

// Takes the leading digits, as many as T has, out of x.
template <class T> T take_leading(Fixed& x) {
  const uint64_t high = static_cast<uint64_t>(x >> 64), low = static_cast<uint64_t>(x);
  const int bits = static_cast<int>(high ? 64 + std::bit_width(high) : std::bit_width(low));
  const int drop = std::max(0, bits - std::numeric_limits<T>::digits);
  const Fixed kept = x >> drop;
  x -= kept << drop;
  return std::ldexp(static_cast<T>(static_cast<uint64_t>(kept)), drop - kFractionBits);
}

}  // namespace sigvex
