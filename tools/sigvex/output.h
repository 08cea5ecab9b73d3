// Results into files and streams, never half-written.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "vector.h"

namespace sigvex_tool {

// A file that appears under its name only when it is complete: written beside it under a temporary name and renamed by
// commit(). Without commit() nothing remains, also after SIGINT, SIGTERM or SIGHUP. "-" and an empty name are the
// standard output; a device or a pipe is written directly.
class OutputFile {
 public:
  explicit OutputFile(const std::string& name);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  FILE* stream() { return stream_; }
  const std::string& name() const { return name_; }
  // Whether what is written may be written again.
  bool is_regular() const { return !temporary_.empty(); }
  // Where another program may write instead of stream().
  const std::string& path() const { return temporary_.empty() ? target_ : temporary_; }
  void write(const std::string& text);
  void commit();

 private:
  [[noreturn]] void fail() const;
  std::string name_, target_, temporary_;
  FILE* stream_ = nullptr;
};

// The renderings of a vector that the library writes, by name: dsp, binary, gnuplot, trace, summary.
bool is_vector_format(const std::string& name);

// A cell of a CSV file, in quotes where it needs them.
std::string csv_cell(const std::string& text);

// Writes columns of numbers under their names, as CSV.
void write_csv(OutputFile& out, const std::vector<std::string>& names,
               const std::vector<const std::vector<double>*>& columns);

// Writes the vector in such a format, with DSP_FILE_NO_HEADER or DSP_FILE_NO_DATA a part of it; single narrows it
// first.
void write_vector(OutputFile& out, const Vector<double>& vector, const std::string& format, bool single,
                  uint32_t parts = 0);

}  // namespace sigvex_tool
