// Text on its way to a stream, gathered in large pieces, with numbers as %g writes them in the C locale.
#pragma once

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace sigvex {

class TextOutput {
 public:
  explicit TextOutput(std::FILE& stream) : stream_(stream) {}
  ~TextOutput() { flush(); }
  TextOutput(const TextOutput&) = delete;
  TextOutput& operator=(const TextOutput&) = delete;

  // Strings, characters, integers, and samples with all the digits that a file keeps of their precision.
  template <class... Items> void put(const Items&... items) { (put_one(items), ...); }

  // As "%.*g" or, for a fixed format, "%.*f".
  template <class T> void number(T x, std::chars_format format, int precision) {
    if (kRoom - used_ < kLongestNumber) flush();
    used_ = static_cast<size_t>(std::to_chars(text_ + used_, text_ + kRoom, x, format, precision).ptr - text_);
  }

 private:
  static constexpr size_t kRoom = 4096, kLongestNumber = 64;  // 64: any %.16g, and %.0f up to 1e9

  void put_one(double x) { number(x, std::chars_format::general, 16); }
  void put_one(float x) { number(x, std::chars_format::general, 7); }
  void put_one(int32_t n) { append_integer(n); }
  void put_one(char c) { put_one(std::string_view(&c, 1)); }
  void put_one(std::string_view s) {
    if (kRoom - used_ < s.size()) flush();
    std::memcpy(text_ + used_, s.data(), s.size());
    used_ += s.size();
  }

  void append_integer(int32_t n) {
    if (kRoom - used_ < kLongestNumber) flush();
    used_ = static_cast<size_t>(std::to_chars(text_ + used_, text_ + kRoom, n).ptr - text_);
  }

  // Text formats do not report what the stream refuses.
  void flush() {
    std::fwrite(text_, 1, used_, &stream_);
    used_ = 0;
  }

  std::FILE& stream_;
  size_t used_ = 0;
  char text_[kRoom] = {};
};

}  // namespace sigvex
