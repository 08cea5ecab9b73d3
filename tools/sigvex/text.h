// Numbers and names as a reader of the output wants them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sigvex_tool {

// printf into a string; the decimal point is always a point.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

// The number that the whole of the text is (spaces around it and a leading + allowed), or nothing.
std::optional<double> to_number(std::string_view text);

// Appends the shortest decimal that reads back as the same value, of single or double precision.
void append_number(std::string& text, double value, bool single = false);

std::string_view trimmed(std::string_view text);
bool equal_ignoring_case(std::string_view a, std::string_view b);

// A cell of input for an error message: shortened, without control characters.
std::string in_quotes(std::string_view text);

}  // namespace sigvex_tool
