// The text side of dspf_fread: "#DSP" header lines and numbers.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

#include "core/scratch.h"
#include "file/input.h"
#include "file/operations.h"
#include "file/text_number.h"

namespace sigvex {
namespace {

constexpr size_t kGrowth = 1024;     // points by which storage grows
constexpr size_t kLineBuffer = 255;  // characters of a comment line that are looked at
constexpr int64_t kUnlimited = std::numeric_limits<int64_t>::max() / 2;

void skip_spaces(std::string_view& text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
}

// What follows a label in a header line. A space in the label stands for any white space, also none.
std::optional<std::string_view> after_label(std::string_view line, std::string_view label) {
  for (const char c : label) {
    if (c == ' ') {
      skip_spaces(line);
    } else if (line.starts_with(c)) {
      line.remove_prefix(1);
    } else {
      return std::nullopt;
    }
  }
  return line;
}

// The integer a text begins with, held at +-kUnlimited; what follows it is not looked at.
std::optional<int64_t> leading_integer(std::string_view text) {
  skip_spaces(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int64_t n = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error != std::errc()) n = text.starts_with('-') ? -kUnlimited : kUnlimited;
  return std::clamp(n, -kUnlimited, kUnlimited);
}

// What the header lines of a record have said so far.
template <class T> struct Header {
  std::optional<int64_t> points;
  std::optional<bool> complex;
  std::optional<T> delta;

  void take(std::string_view line) {
    if (const auto text = after_label(line, "#DSP points = ")) {
      if (const auto n = leading_integer(*text)) points = std::max<int64_t>(*n, 0);
    }
    if (const auto text = after_label(line, "#DSP complex = ")) {
      if (const auto flag = leading_integer(*text)) complex = *flag != 0;
    }
    if (const auto text = after_label(line, "#DSP delta = ")) {
      LineText in(*text);
      T value;
      if (scan_number(in, next_visible(in), value)) delta = value;
    }
  }

  bool is_complex() const { return complex.value_or(false); }
  bool whole() const { return points && complex && delta; }
  uint64_t limit() const { return static_cast<uint64_t>(points.value_or(kUnlimited)) * (is_complex() ? 2 : 1); }
};

// Reads the rest of a comment line. Its last character, the line end, is not part of it; neither is anything behind the
// room for header lines.
template <class T> void read_comment(StreamText& in, Header<T>& header) {
  char line[kLineBuffer] = {'#'};
  size_t size = 1;
  int c = '#';
  while (c != '\n' && (c = in.next()) != EOF) {
    if (size < kLineBuffer) line[size++] = static_cast<char>(c);
  }
  header.take({line, size - 1});
}

// Reads header lines and values up to the declared count or the end of the input. The vector is sized as they come and
// has n values at the end, or none and no storage where that was exhausted.
template <class T> Status read_values(Vector<T>& v, StreamText& in, Header<T>& header, size_t& n) {
  for (;;) {
    const uint64_t limit = header.limit();
    // An empty record ends with its header, which is over when all has been said.
    if (n >= limit && (n > 0 || header.whole())) return kSuccess;
    if (const size_t taken = in.take_plain(v.data + n, std::min<uint64_t>(limit, points<T>(v)) - n)) {
      n += taken;
      continue;
    }
    const int c = next_visible(in);
    if (c == EOF) return in.at_end() ? kSuccess : kFailure;
    if (c == '#') {
      read_comment(in, header);
      continue;
    }
    if (limit == 0) {
      in.back(c);
      return kSuccess;
    }
    if (n == points<T>(v) && reshape<T>(v, n + kGrowth, 0) < 0) {
      n = 0;
      return kFailure;
    }
    if (!scan_number(in, c, v.data[n])) return kFailure;
    ++n;
  }
}

}  // namespace

template <class T> Status read_text(Vector<T>& v, std::FILE& stream) {
  v.delta = 1;
  v.points = v.complex = 0;
  StreamText in(stream);
  Header<T> header;
  size_t n = 0;
  const Status status = read_values<T>(v, in, header, n);
  if (header.is_complex()) {
    if (n % 2 != 0) v.data[n++] = 0;
    n /= 2;
    v.complex = 1;
  }
  v.delta = header.delta.value_or(T(1));
  v.points = static_cast<int32_t>(n);
  const bool counted = header.points.value_or(v.points) == v.points;
  return status == kSuccess && counted ? kRead : kFailure;
}

template Status read_text<double>(Vector<double>&, std::FILE&);
template Status read_text<float>(Vector<float>&, std::FILE&);

}  // namespace sigvex
