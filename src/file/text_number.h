// Numbers as text. What counts as one is what the C library's %lg and %g accept in the C locale, except that
// hexadecimal numbers are integers: 0x and digits.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

#include "file/operations.h"

namespace sigvex {

// A decimal number of any length in a fixed room: the digits that can decide the rounding of a value, and for all those
// behind them a single 1 if any is not zero. Halfway between two doubles lie numbers of at most 767 digits.
class Decimal {
 public:
  void append(char digit, bool fraction) {
    if (size_ < kDigits) {
      if (size_ > 0 || digit != '0') text_[size_++] = digit;
      exponent_ -= fraction;
    } else {
      inexact_ |= digit != '0';
      exponent_ += !fraction;
    }
  }

  void scale(int64_t exponent) { exponent_ += exponent; }

  // Rounded once, to the precision asked for; too large is infinite.
  template <class T> T value() {
    if (size_ == 0) return 0;
    const bool large = size_ + exponent_ > 0;
    char* end = text_ + size_;
    if (inexact_) {
      *end++ = '1';
      --exponent_;
    }
    *end++ = 'e';
    end = std::to_chars(end, std::end(text_), exponent_).ptr;
    T x = 0;
    const std::errc error = std::from_chars(text_, end, x).ec;
    return error == std::errc() ? x : large ? std::numeric_limits<T>::infinity() : T(0);
  }

 private:
  static constexpr int kDigits = 770;
  char text_[kDigits + 24];  // "1", "e" and an exponent follow the digits
  int size_ = 0;
  bool inexact_ = false;
  int64_t exponent_ = 0;
};

inline int lower(int c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }
inline bool is_letter(int c) { return lower(c) >= 'a' && lower(c) <= 'z'; }
inline int hex_digit(int c) {
  if (is_digit(c)) return c - '0';
  return lower(c) >= 'a' && lower(c) <= 'f' ? lower(c) - 'a' + 10 : -1;
}

template <class Text> bool accept(Text& in, std::string_view letters) {
  return std::all_of(letters.begin(), letters.end(), [&in](char letter) { return lower(in.next()) == letter; });
}

// inf, infinity and nan, in any case; c is the first letter.
template <class T, class Text> bool scan_word(Text& in, int c, T& value) {
  if (lower(c) == 'n') {
    value = std::numeric_limits<T>::quiet_NaN();
    return accept(in, "an");
  }
  value = std::numeric_limits<T>::infinity();
  if (lower(c) != 'i' || !accept(in, "nf")) return false;
  c = in.next();
  if (lower(c) == 'i') return accept(in, "nity");
  in.back(c);
  return true;
}

// The digits of a hexadecimal integer, which is taken as a signed 32-bit number. As in the C library's own conversion,
// what does not fit 64 bits counts as their largest value.
template <class T, class Text> bool scan_hexadecimal(Text& in, T& value) {
  int c = in.next();
  bool any = false, fits = true;
  uint64_t bits = 0;
  for (; hex_digit(c) >= 0; c = in.next()) {
    fits = fits && bits >> 60 == 0;
    bits = bits << 4 | static_cast<uint64_t>(hex_digit(c));
    any = true;
  }
  in.back(c);
  value = static_cast<T>(fits ? static_cast<int32_t>(bits) : -1);
  return any;
}

// An exponent behind its e; without digits it is 0. Beyond any number's range it stops growing.
template <class Text> int64_t scan_exponent(Text& in, int& c) {
  constexpr int64_t kEnough = 1'000'000'000'000'000;
  c = in.next();
  const bool negative = c == '-';
  if (c == '-' || c == '+') c = in.next();
  int64_t exponent = 0;
  for (; is_digit(c); c = in.next()) exponent = std::min(10 * exponent + (c - '0'), kEnough);
  return negative ? -exponent : exponent;
}

// Reads the number that begins with the character c, and at most one character behind it, which is put back. False
// where the text is not a number.
template <class T, class Text> bool scan_number(Text& in, int c, T& value) {
  const bool negative = c == '-';
  if (c == '-' || c == '+') c = in.next();
  const auto accepted = [&value, negative](bool valid) {
    if (negative) value = -value;
    return valid;
  };
  if (is_letter(c)) return accepted(scan_word(in, c, value));

  Decimal decimal;
  bool any = false, fraction = false;
  for (; is_digit(c) || (c == '.' && !fraction); c = in.next()) {
    if (c == '.') {
      fraction = true;
    } else {
      decimal.append(static_cast<char>(c), fraction);
      any = true;
    }
  }
  if (any && lower(c) == 'e') decimal.scale(scan_exponent(in, c));
  value = decimal.value<T>();
  if (any && c == 'x' && value == 0) return accepted(scan_hexadecimal(in, value));
  in.back(c);
  return accepted(any);
}

}  // namespace sigvex
