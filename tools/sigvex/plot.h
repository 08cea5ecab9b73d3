// Pictures of a spectrum: a file drawn by gnuplot, or characters in the terminal.
#pragma once

#include <string>
#include <vector>

#include "output.h"

namespace sigvex_tool {

struct Curve {
  std::vector<double> x, y;
  std::string title, x_label, y_label;
  bool logarithmic = false;  // the y axis
  struct Mark {
    double x, y;
    std::string text;
  };
  std::vector<Mark> marks;
};

// Into a file, as PNG or SVG by its name.
void plot_file(const Curve& curve, OutputFile& picture);

// For a terminal of that many columns; block characters where the locale has them, # otherwise.
std::string plot_text(const Curve& curve, size_t columns, size_t rows);

// Whether the terminal shows UTF-8.
bool terminal_is_utf8();
size_t terminal_columns();

}  // namespace sigvex_tool
