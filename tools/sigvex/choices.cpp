#include "choices.h"

#include <array>
#include <cmath>

#include "errors.h"
#include "sigvex.h"
#include "text.h"

namespace sigvex_tool {

std::string window_name(uint32_t type) {
  std::array<char, 64> name{};
  dsp_window_to_str(type, name.data(), static_cast<int32_t>(name.size()));
  return name.data();
}

std::string window_names() {
  std::string names;
  for (uint32_t type = 0; type < kWindowTypes; ++type) names += (type ? ", " : "") + window_name(type);
  return names;
}

uint32_t window_type(const std::string& name, const std::string& option) {
  uint32_t type = 0;
  if (dsp_window_from_str(name.c_str(), &type) < 0)
    throw UsageError(option + " " + in_quotes(name) + ": unknown; the windows are " + window_names());
  return type;
}

uint64_t whole_number(const std::string& text, const char* option, double least) {
  const std::optional<double> number = to_number(text);
  if (!number || *number < least || *number > 2147483647 || *number != std::floor(*number))
    throw UsageError(std::string(option) + " " + in_quotes(text) +
                     sigvex_tool::format(": must be a whole number from %g to 2147483647", least));
  return static_cast<uint64_t>(*number);
}

std::string number_above_zero(const std::string& text) {
  const std::optional<double> number = to_number(text);
  return number && *number > 0 && std::isfinite(*number) ? "" : in_quotes(text) + " must be a number above 0";
}

std::string number_from_zero(const std::string& text) {
  const std::optional<double> number = to_number(text);
  return number && *number >= 0 && std::isfinite(*number) ? "" : in_quotes(text) + " must be a number from 0 on";
}

CLI::Option* add_plot_option(CLI::App& command, const char* name, std::string& file, const std::string& text) {
  return command.add_option(name, file, text + ": FILE.png or FILE.svg (needs gnuplot), or - in the terminal")
      ->type_name("FILE|-")
      ->check([](const std::string& picture) {
        return picture == "-" || picture.ends_with(".png") || picture.ends_with(".svg")
                   ? std::string()
                   : "must end in .png or .svg, or be -";
      });
}

}  // namespace sigvex_tool
