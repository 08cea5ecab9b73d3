// Arguments that several commands take: windows by name, whole numbers, pictures.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

namespace sigvex_tool {

constexpr uint32_t kWindowTypes = 32;
std::string window_name(uint32_t type);
std::string window_names();
// The type of that name, or of another spelling of it; `option` begins the message where there is none.
uint32_t window_type(const std::string& name, const std::string& option);

// The number that the text is, at least `least`.
uint64_t whole_number(const std::string& text, const char* option, double least);

// Checks of an option's text; what they return completes the message "--rate: ...".
std::string number_above_zero(const std::string& text);
std::string number_from_zero(const std::string& text);

// Rows of a picture in the terminal.
constexpr size_t kPlotRows = 16;

// Adds a --plot that takes FILE.png, FILE.svg or -.
CLI::Option* add_plot_option(CLI::App& command, const char* name, std::string& file, const std::string& text);

}  // namespace sigvex_tool
