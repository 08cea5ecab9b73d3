#include "text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdarg>
#include <cstdio>

namespace sigvex_tool {

std::string format(const char* pattern, ...) {
  va_list arguments, again;
  va_start(arguments, pattern);
  va_copy(again, arguments);
  std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, pattern, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, pattern, again);
  va_end(again);
  va_end(arguments);
  return text;
}

void append_number(std::string& text, double value, bool single) {
  char digits[40];
  const auto end = single ? std::to_chars(digits, digits + sizeof digits, static_cast<float>(value)).ptr
                          : std::to_chars(digits, digits + sizeof digits, value).ptr;
  text.append(digits, end);
}

std::string_view trimmed(std::string_view text) {
  const char* blank = " \t\r\n";
  const size_t first = text.find_first_not_of(blank);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

std::optional<double> to_number(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string in_quotes(std::string_view text) {
  std::string out = "'";
  for (unsigned char c : text.substr(0, 40)) out += c < 0x20 || c == 0x7f ? '?' : static_cast<char>(c);
  return out + (text.size() > 40 ? "...'" : "'");
}

}  // namespace sigvex_tool
