// The order of samples as that of integers.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace sigvex {

// An integer that orders as the numbers do, with -0.0 before 0.0 and every NaN before the numbers.
template <class T> struct SortKey {
  using Int = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
  using Bits = std::make_unsigned_t<Int>;
  static constexpr int kSign = 8 * sizeof(T) - 1;
  // Number of NaNs of one sign: as keys, those with a clear sign bit stand above infinity, and this carries them around
  // to the lower end.
  static constexpr Bits kNaNs = (Bits{1} << (std::numeric_limits<T>::digits - 1)) - 1;

  static Int fold(Int bits) { return bits ^ ((bits >> kSign) & std::numeric_limits<Int>::max()); }
  static Int of(T x) { return static_cast<Int>(static_cast<Bits>(fold(std::bit_cast<Int>(x))) + kNaNs); }
  static T value(Int key) { return std::bit_cast<T>(fold(static_cast<Int>(static_cast<Bits>(key) - kNaNs))); }

  // The same order without a sign.
  static Bits rank(T x) {
    return static_cast<Bits>(of(x)) ^ Bits { 1 } << kSign;
  }
  static T ranked(Bits rank) { return value(static_cast<Int>(rank ^ Bits{1} << kSign)); }
};

}  // namespace sigvex
