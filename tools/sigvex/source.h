// A recording that is read once from front to back: vector records, "#DSP" text, CSV and audio files behind one
// interface.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sigvex_tool {

struct InputOptions {
  std::string file;
  std::string column, imag;     // CSV columns by name or number
  std::string delimiter;        // CSV, empty: found
  std::string header = "auto";  // CSV: auto, yes, no
  int channel = 0;              // of an audio file, or record of a vector file; 0: the first
  double from = 0;
  std::optional<double> to, rate, delta;
  std::string unit, time_unit;
  bool all_channels = false;  // what convert wants unless the user picks one
  std::string part;           // channel, record or column, whichever the file has, in place of those two
  bool pair = false;          // `imag` is a second signal beside the first, not its imaginary part
};

// Adds FILE and every option above to a command.
void add_input_options(CLI::App& command, InputOptions& options);

struct SourceInfo {
  std::string name;  // as the user named it, for messages
  std::string kind;  // one line: what the file is
  double delta = 1;
  std::string unit;                 // of the samples; empty: not known
  std::string time_unit = "s";      // of delta
  size_t channels = 1;              // values in a frame, of which complex takes two for one channel
  size_t file_channels = 1;         // channels or numeric columns that the file holds
  std::vector<std::string> labels;  // of the channels, where the file names them
  bool complex = false;
  bool single = false;             // the samples are stored in single precision
  std::optional<uint64_t> frames;  // how many read() will deliver, where that is known

  std::string frequency_unit() const { return time_unit == "s" ? "Hz" : "1/" + time_unit; }
};

class Source {
 public:
  virtual ~Source() = default;
  const SourceInfo& info() const { return info_; }

  // Reads up to `frames` frames of info().channels values each; fewer only at the end of the range.
  size_t read(double* out, size_t frames);

  // Everything that is left, or that many frames of it.
  std::vector<double> read_rest(uint64_t most = UINT64_MAX);

  // Applies --rate, --delta, --unit, --time-unit, --from and --to. Called once, before the first read.
  void apply(const InputOptions& options);

 protected:
  virtual size_t fetch(double* out, size_t frames) = 0;
  SourceInfo info_;

 private:
  uint64_t left_ = UINT64_MAX;
};

// Opens the file, or the standard input for "-", and finds out by its content what it is.
std::unique_ptr<Source> open_source(const InputOptions& options);

// The same recording with its next frames read ahead, so that its length is known if it ends within them. The source
// must outlive it.
std::unique_ptr<Source> buffered(Source& source, uint64_t frames);

// A plain file, closed on every path.
struct CloseFile {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

// The readers; each takes an open, seekable file that stands at its beginning.
std::unique_ptr<Source> open_record(File file, const InputOptions& options, bool text);
std::unique_ptr<Source> open_csv(File file, const InputOptions& options);
std::unique_ptr<Source> open_audio(File file, const InputOptions& options);

}  // namespace sigvex_tool
