// What a measurement says, for people and for programs.
#pragma once

#include <string>

#include "levels.h"
#include "peaks.h"

namespace sigvex_tool {

struct Measurement {
  SourceInfo source;
  Analysis analysis;
  std::string window;  // name of the window as the library spells it
  std::string scale;   // as the user named it
  Spectrum spectrum;
  Band band;
  double floor = 0;      // mean noise power of a bin
  double detection = 0;  // power ratio over the floor from which a line is clear
  std::vector<Line> lines, harmonics;
};

std::string table(const Measurement& measurement, const Levels& levels);
std::string json(const Measurement& measurement, const Levels& levels);

}  // namespace sigvex_tool
