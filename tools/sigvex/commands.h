// The subcommands. Each stands in a file of its own that adds it, its options and its action to the program.
#pragma once

#include <CLI/CLI.hpp>

namespace sigvex_tool {

void add_spectrum(CLI::App& program);
void add_correlate(CLI::App& program);
void add_info(CLI::App& program);
void add_convert(CLI::App& program);
void add_generate(CLI::App& program);
void add_filter(CLI::App& program);
void add_resample(CLI::App& program);
void add_decimate(CLI::App& program);
void add_window(CLI::App& program);

}  // namespace sigvex_tool
