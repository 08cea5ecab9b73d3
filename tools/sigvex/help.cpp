#include "help.h"

namespace sigvex_tool {
namespace {

constexpr size_t kIndent = 24, kWidth = 96;

// The text in lines of at most kWidth columns, each but the first behind kIndent blanks.
std::string wrapped(const std::string& text) {
  std::string out;
  size_t column = kIndent;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find(' ', start), text.size());
    if (column + (end - start) > kWidth) out += "\n" + std::string(column = kIndent, ' ');
    else if (start > 0) out += ' ', ++column;
    out += text.substr(start, end - start);
    column += end - start;
    start = end + 1;
  }
  return out;
}

}  // namespace

std::string Help::make_option(const CLI::Option* option, bool positional) const {
  std::string name = "  " + option->get_name(positional, !positional), text = option->get_description();
  name = name.substr(0, name.find('{'));
  // Behind a colon follow the checks, which the description tells in words.
  const std::string type = option->get_type_name();
  if (!positional && option->get_type_size() != 0) name += " " + type.substr(0, type.find(':'));
  if (!positional && !option->get_default_str().empty()) text += " (default " + option->get_default_str() + ")";
  if (!option->get_option_text().empty()) name += " " + option->get_option_text();
  const bool fits = name.size() + 2 <= kIndent;
  return name + (fits ? std::string(kIndent - name.size(), ' ') : "\n" + std::string(kIndent, ' ')) + wrapped(text) +
         "\n";
}

}  // namespace sigvex_tool
