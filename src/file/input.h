// The sources that text is read from, character by character: a stream, which is never read further than the character
// behind what was wanted, and a line already in memory.
#pragma once

#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "file/operations.h"
#include "file/short_decimal.h"

namespace sigvex {

// A stream, locked for as long as this object lives so that single characters are cheap.
class StreamText {
 public:
  explicit StreamText(std::FILE& stream) : stream_(stream) { flockfile(&stream_); }
  ~StreamText() { funlockfile(&stream_); }
  StreamText(const StreamText&) = delete;
  StreamText& operator=(const StreamText&) = delete;

  int next() { return getc_unlocked(&stream_); }
  int back(int c) { return std::ungetc(c, &stream_); }  // EOF where c is EOF or the stream takes nothing back
  bool at_end() const { return feof(&stream_) != 0; }

  // Takes up to n plain decimal numbers straight out of the stream's own buffer, as long as they end in white space
  // there. What needs a closer look (other numbers, comments, a number at the buffer's end) stays in the stream.
  template <class T> size_t take_plain(T* out, size_t n) {
    const std::string_view text = buffered();
    const char *at = text.data(), *const end = at + text.size();
    size_t taken = 0;
    while (taken < n) {
      const char* number = at;
      while (number != end && is_space(*number)) ++number;
      const char* stop = short_decimal(number, end, out[taken]);
      if (!stop || !is_space(*stop)) stop = long_decimal(number, end, out[taken]);
      if (!stop) break;
      at = stop;
      ++taken;
    }
    consume(at);
    return taken;
  }

 private:
  // The white space behind a decimal number, or null where something else, or nothing, follows it.
  template <class T> static const char* long_decimal(const char* at, const char* end, T& value) {
    const char* const digits = at + (at != end && *at == '-');
    if (digits == end || !is_digit(*digits)) return nullptr;
    const auto [stop, error] = std::from_chars(at, end, value);
    return error == std::errc() && stop != end && is_space(*stop) ? stop : nullptr;
  }

#if defined(__GLIBC__)
  // This C library declares where its unread characters lie; leaving them there costs nothing, and from_chars needs
  // them in one piece. Elsewhere every number goes through next().
  std::string_view buffered() const {
    return {stream_._IO_read_ptr, static_cast<size_t>(stream_._IO_read_end - stream_._IO_read_ptr)};
  }
  void consume(const char* to) { stream_._IO_read_ptr += to - stream_._IO_read_ptr; }
#else
  std::string_view buffered() const { return {}; }
  void consume(const char*) {}
#endif

  std::FILE& stream_;
};

class LineText {
 public:
  explicit LineText(std::string_view line) : line_(line) {}

  int next() { return at_ < line_.size() ? static_cast<unsigned char>(line_[at_++]) : EOF; }
  void back(int c) { at_ -= c != EOF; }

 private:
  std::string_view line_;
  size_t at_ = 0;
};

// The next character that is not white space, or EOF.
template <class Text> int next_visible(Text& in) {
  int c = in.next();
  while (is_space(c)) c = in.next();
  return c;
}

}  // namespace sigvex
