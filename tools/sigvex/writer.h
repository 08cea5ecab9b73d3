// A recording that is written once from front to back, in any of the formats, and the options that choose it.
#pragma once

#include <memory>
#include <string>

#include "output.h"
#include "source.h"

namespace sigvex_tool {

struct OutputOptions {
  std::string file, format;
  bool single = false, full = false;
};

// Adds OUT, --format, --single and --double to a command.
CLI::Option* add_output_options(CLI::App& command, OutputOptions& options);

// What the option --format says, or the suffix of the file.
std::string format_of(const OutputOptions& options);

class Writer {
 public:
  virtual ~Writer() = default;
  // Frames of info.channels values each.
  virtual void write(const double* samples, size_t frames) = 0;
  // What stands behind the last frame. The caller commits the file.
  virtual void finish() = 0;
};

// Writes to `out` a recording of that description; both must outlive the writer. Memory is constant for CSV, JSON and
// audio, and for a binary record of one channel in a file; the other formats name the number of points first, so that
// they are collected.
std::unique_ptr<Writer> open_writer(OutputFile& out, const SourceInfo& info, const OutputOptions& options);

}  // namespace sigvex_tool
