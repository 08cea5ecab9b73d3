// The layout of --help: what an option is called, what it takes, what it does, in lines that fit a terminal.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace sigvex_tool {

class Help : public CLI::Formatter {
  std::string make_option(const CLI::Option* option, bool positional) const override;
};

}  // namespace sigvex_tool
