// What a measuring command gives: a result in the format chosen and a picture of it.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "plot.h"

namespace sigvex_tool {

struct ResultOptions {
  std::string format = "table", output, plot;
};

// Adds --format, --output and --plot to a group of the command's options.
void add_result_options(CLI::App& command, ResultOptions& o, const std::string& group,
                        const std::vector<std::string>& formats, const std::string& format_text,
                        const std::string& plot_text);

// Refuses a picture in the terminal and a result for programs on one standard output, and both in one file.
void refuse_one_place_for_both(const ResultOptions& o);

// Writes the result with write() and draws the curves where a picture is wanted; files appear when both are done.
void deliver(const ResultOptions& o, const std::function<void(OutputFile&)>& write,
             const std::function<std::vector<Curve>()>& curves);

}  // namespace sigvex_tool
