#include "source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>

#include "choices.h"
#include "errors.h"
#include "progress.h"
#include "text.h"

namespace sigvex_tool {
namespace {

// The first sample at or after the given time; a time that is a sample's own, to rounding, means that sample.
uint64_t sample_at(double time, double delta) { return static_cast<uint64_t>(std::ceil(time / delta * (1 - 1e-12))); }

class MemorySource : public Source {
 public:
  MemorySource(std::vector<double> samples, Source& origin, bool ended)
      : samples_(std::move(samples)), origin_(origin) {
    info_ = origin.info();
    if (ended) info_.frames = samples_.size() / info_.channels;
  }

 private:
  size_t fetch(double* out, size_t frames) override {
    const size_t count = std::min(frames * info_.channels, samples_.size() - next_), got = count / info_.channels;
    std::copy_n(samples_.begin() + static_cast<ptrdiff_t>(next_), count, out);
    next_ += count;
    return got == frames ? got : got + origin_.read(out + count, frames - got);
  }
  std::vector<double> samples_;
  Source& origin_;
  size_t next_ = 0;
};

// What cannot be read twice is copied to an unnamed temporary file: detection and the audio reader need to go back.
File seekable(File file, const std::string& name) {
  if (lseek(fileno(file.get()), 0, SEEK_CUR) >= 0) return file;
  File copy(std::tmpfile());
  if (!copy) throw DataError("no temporary file for " + name + ": " + std::strerror(errno));
  std::vector<char> buffer(1 << 16);
  for (size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), file.get())) > 0;)
    if (std::fwrite(buffer.data(), 1, got, copy.get()) != got)
      throw DataError("temporary copy of " + name + ": " + std::strerror(errno));
  if (std::ferror(file.get())) throw DataError(name + ": " + std::strerror(errno));
  if (std::fflush(copy.get()) != 0) throw DataError("temporary copy of " + name + ": " + std::strerror(errno));
  std::rewind(copy.get());
  return copy;
}

File open_file(const std::string& path, const std::string& name) {
  File file(path == "-" ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(path.c_str(), "rb"));
  if (!file) throw DataError(name + ": " + std::strerror(errno));
  struct stat status {};
  if (fstat(fileno(file.get()), &status) == 0 && S_ISDIR(status.st_mode)) throw DataError(name + ": is a directory");
  return seekable(std::move(file), name);
}

bool is_audio(std::string_view head) {
  const std::string_view magic = head.substr(0, 4);
  for (const char* known : {"RIFF", "RIFX", "RF64", "fLaC", "OggS", "FORM", ".snd", "caff"})
    if (magic == known) return true;
  return false;
}

bool is_record(std::string_view head) {
  if (head.size() < 4) return false;
  const auto byte = [&](size_t k) { return static_cast<unsigned char>(head[k]); };
  const uint32_t little = byte(0) | byte(1) << 8 | byte(2) << 16 | static_cast<uint32_t>(byte(3)) << 24;
  for (uint32_t known : {0xEB0330BEu, 0xBE3003EBu, 0xEB0110BEu, 0xBE1001EBu, 0xEB0220BEu, 0xBE2002EBu})
    if (little == known) return true;
  return false;
}

// "#DSP" header lines may follow other comment lines.
bool is_dsp_text(std::string_view head) {
  while (head.starts_with('#')) {
    if (head.starts_with("#DSP ")) return true;
    const size_t end = head.find('\n');
    if (end == head.npos) return false;
    head.remove_prefix(end + 1);
  }
  return false;
}

}  // namespace

void add_input_options(CLI::App& command, InputOptions& o) {
  command
      .add_option("FILE", o.file,
                  "Recording to read; - is the standard input. Vector record, \"#DSP\" text, CSV, "
                  "WAV, FLAC or OGG, told apart by content")
      ->required();
  const char* group = "Input";
  command
      .add_option("--channel", o.channel,
                  "Channel of an audio file, or record of a vector file that holds several, "
                  "from 1")
      ->check(CLI::Range(1, INT32_MAX))
      ->type_name("N")
      ->group(group);
  command
      .add_option("--column", o.column,
                  "CSV column, by name or by number from 1; otherwise the first numeric one that "
                  "is not the time")
      ->type_name("NAME|N")
      ->group(group);
  command.add_option("--imag", o.imag, "Second CSV column or audio channel, the imaginary part of a complex signal")
      ->type_name("NAME|N")
      ->group(group);
  command.add_option("--delimiter", o.delimiter, "CSV delimiter: one character, or tab, space; otherwise found")
      ->type_name("CHAR")
      ->group(group);
  command.add_option("--header", o.header, "Whether a CSV file starts with column names: auto, yes, no")
      ->check(CLI::IsMember({"auto", "yes", "no"}))
      ->capture_default_str()
      ->type_name("WHEN")
      ->group(group);
  command.add_option("--from", o.from, "Start of the range to read, seconds from the start of the recording")
      ->check(number_from_zero)
      ->type_name("T")
      ->group(group);
  command.add_option("--to", o.to, "End of the range to read")->check(number_above_zero)->type_name("T")->group(group);
  CLI::Option* rate = command.add_option("--rate", o.rate, "Samples per second, instead of what the file says")
                          ->check(number_above_zero)
                          ->type_name("R")
                          ->group(group);
  command.add_option("--delta", o.delta, "Seconds per sample, instead of what the file says")
      ->check(number_above_zero)
      ->excludes(rate)
      ->type_name("D")
      ->group(group);
  command.add_option("--unit", o.unit, "Unit of the samples, such as mV")->type_name("TEXT")->group(group);
  command
      .add_option("--time-unit", o.time_unit,
                  "Unit of time, where it is not the second: with --time-unit year and "
                  "--rate 12, frequencies are cycles per year")
      ->type_name("TEXT")
      ->group(group);
}

size_t Source::read(double* out, size_t frames) {
  const size_t got = fetch(out, static_cast<size_t>(std::min<uint64_t>(frames, left_)));
  left_ -= got;
  return got;
}

std::vector<double> Source::read_rest(uint64_t most) {
  std::vector<double> all;
  constexpr uint64_t kBlock = 1 << 16;
  Progress progress("reading");
  if (info_.frames) all.reserve(static_cast<size_t>(std::min(*info_.frames, most)) * info_.channels);
  for (size_t wanted = 1, got = 1; got == wanted && most > 0; most -= got) {
    const size_t end = all.size();
    wanted = static_cast<size_t>(std::min(kBlock, most));
    all.resize(end + wanted * info_.channels);
    got = read(all.data() + end, wanted);
    all.resize(end + got * info_.channels);
    progress.at(all.size() / info_.channels, info_.frames);
  }
  return all;
}

void Source::apply(const InputOptions& o) {
  if (o.rate) info_.delta = 1 / *o.rate;
  if (o.delta) info_.delta = *o.delta;
  if ((o.rate || o.delta) && info_.time_unit == "sample") info_.time_unit = "s";
  if (!o.unit.empty()) info_.unit = o.unit;
  if (!o.time_unit.empty()) info_.time_unit = o.time_unit;
  if (o.from == 0 && !o.to) return;
  if (!(info_.delta > 0) || !std::isfinite(info_.delta))
    throw DataError(info_.name + ": the spacing of the samples is " + format("%g", info_.delta) +
                    ": give --rate or --delta, so that --from and --to mean something");
  if (o.to && *o.to <= o.from) throw UsageError("--to must be later than --from");

  const uint64_t first = sample_at(o.from, info_.delta);
  std::vector<double> skipped(4096 * info_.channels);
  uint64_t passed = 0;
  while (passed < first) {
    const size_t got = fetch(skipped.data(), static_cast<size_t>(std::min<uint64_t>(4096, first - passed)));
    passed += got;
    if (got == 0) break;
  }
  const double end = static_cast<double>(info_.frames.value_or(passed)) * info_.delta;
  if (passed < first || (info_.frames && first >= *info_.frames))
    throw DataError(info_.name + format(": --from %g lies beyond the end of the recording at %g ", o.from, end) +
                    info_.time_unit);
  if (o.to) left_ = sample_at(*o.to, info_.delta) - first;
  if (info_.frames) info_.frames = std::min(*info_.frames - first, left_);
}

std::unique_ptr<Source> open_source(const InputOptions& options) {
  const std::string name = options.file == "-" ? "standard input" : options.file;
  File file = open_file(options.file, name);
  std::string head(4096, '\0');
  head.resize(std::fread(head.data(), 1, head.size(), file.get()));
  if (std::ferror(file.get())) throw DataError(name + ": " + std::strerror(errno));
  if (head.empty()) throw DataError(name + ": is empty");
  std::rewind(file.get());

  InputOptions named = options;
  named.file = name;
  const bool audio = is_audio(head), record = is_record(head), text = is_dsp_text(head);
  if (!options.part.empty()) {
    named.column = audio || record || text ? "" : options.part;
    named.channel = audio || record || text ? static_cast<int>(whole_number(options.part, "--with", 1)) : 0;
  }
  std::unique_ptr<Source> source;
  if (audio) source = open_audio(std::move(file), named);
  else if (record || text) source = open_record(std::move(file), named, text);
  else if (head.find('\0') != head.npos)
    throw DataError(name + ": byte 1: neither text nor a vector record nor an audio file");
  else source = open_csv(std::move(file), named);
  source->apply(options);
  return source;
}

std::unique_ptr<Source> buffered(Source& source, uint64_t frames) {
  std::vector<double> samples = source.read_rest(frames);
  const bool ended = samples.size() / source.info().channels < frames;
  return std::make_unique<MemorySource>(std::move(samples), source, ended);
}

}  // namespace sigvex_tool
