// Pictures of curves: a file drawn by gnuplot, or characters in the terminal.
#pragma once

#include <string>
#include <vector>

#include "output.h"

namespace sigvex_tool {

struct Curve {
  std::vector<double> x, y;
  std::string title, x_label, y_label;
  // The y axis: Decibels show at most 160 below the highest value, a Logarithmic one eight decades, a Linear one all.
  enum Axis { Decibels, Logarithmic, Linear } axis = Decibels;
  struct Mark {
    double x, y;
    std::string text;
  };
  std::vector<Mark> marks;
};

// Into a file, as PNG or SVG by its name; several curves side by side.
void plot_file(const std::vector<Curve>& curves, OutputFile& picture);

// For a terminal of that many columns; block characters where the locale has them, # otherwise.
std::string plot_text(const Curve& curve, size_t columns, size_t rows);

// Whether the terminal shows UTF-8.
bool terminal_is_utf8();
size_t terminal_columns();

}  // namespace sigvex_tool
