#include "writer.h"

#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

#include "errors.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Suffix {
  const char* suffix;
  const char* format;
};
constexpr Suffix kSuffixes[] = {{".dsp", "binary"},  {".bin", "binary"}, {".txt", "dsp"},         {".asc", "dsp"},
                                {".csv", "csv"},     {".gp", "gnuplot"}, {".gnuplot", "gnuplot"}, {".plt", "gnuplot"},
                                {".trace", "trace"}, {".trc", "trace"},  {".json", "json"},       {".wav", "wav"},
                                {".flac", "flac"},   {".ogg", "ogg"}};

std::string label(const SourceInfo& info, size_t c) {
  if (c < info.labels.size()) return info.labels[c];
  if (info.complex) return c == 0 ? "real" : "imaginary";
  return info.channels > 1 ? format("channel %zu", c + 1) : "value";
}

// The first column is the time, so that the file carries its spacing.
class CsvWriter : public Writer {
 public:
  CsvWriter(OutputFile& out, const SourceInfo& info, bool single) : out_(out), info_(info), single_(single) {
    std::string line = "time (" + info.time_unit + ")";
    for (size_t c = 0; c < info.channels; ++c) {
      std::string name = label(info, c);
      if (!info.unit.empty() && !name.ends_with(')')) name += " (" + info.unit + ")";
      line += "," + csv_cell(name);
    }
    out.write(line + "\n");
  }
  void write(const double* samples, size_t frames) override {
    std::string line;
    for (size_t k = 0; k < frames; ++k) {
      line.clear();
      append_number(line, static_cast<double>(written_++) * info_.delta, false);
      for (size_t c = 0; c < info_.channels; ++c) append_number(line += ',', *samples++, single_);
      out_.write(line += '\n');
    }
  }
  void finish() override {}

 private:
  OutputFile& out_;
  const SourceInfo& info_;
  bool single_;
  uint64_t written_ = 0;
};

class JsonWriter : public Writer {
 public:
  JsonWriter(OutputFile& out, const SourceInfo& info, bool single)
      : out_(out), channels_(info.channels), single_(single) {
    nlohmann::ordered_json head{{"delta", info.delta}, {"time_unit", info.time_unit}, {"complex", info.complex}};
    if (!info.unit.empty()) head["unit"] = info.unit;
    std::string text = head.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    text.back() = ',';
    out.write(text + "\"samples\":[");
  }
  void write(const double* samples, size_t frames) override {
    std::string text;
    for (size_t k = 0; k < frames; ++k) {
      text = first_ ? "\n" : ",\n";
      first_ = false;
      for (size_t c = 0; c < channels_; ++c) {
        const double x = *samples++;
        if (channels_ > 1) text += c ? "," : "[";
        if (std::isfinite(x)) append_number(text, x, single_);
        else text += "null";
      }
      if (channels_ > 1) text += "]";
      out_.write(text);
    }
  }
  void finish() override { out_.write("\n]}\n"); }

 private:
  OutputFile& out_;
  size_t channels_;
  bool single_, first_ = true;
};

// Headers of audio files are completed at the end: what goes into a pipe is made in a temporary file.
class AudioWriter : public Writer {
 public:
  AudioWriter(OutputFile& out, const SourceInfo& info, const std::string& format, bool single)
      : out_(out), name_(info.name), format_(format) {
    const double rate = 1 / info.delta;
    if (!(std::fabs(rate - std::round(rate)) < 1e-6 * rate) || rate < 1 || rate > 2147483647)
      throw DataError(name_ + sigvex_tool::format(
                                  ": %g samples per second; an audio file needs a whole number up to 2^31 - 1", rate));
    SF_INFO sound{};
    sound.samplerate = static_cast<int>(std::llround(rate));
    sound.channels = static_cast<int>(info.channels);
    sound.format = format == "flac"  ? SF_FORMAT_FLAC | SF_FORMAT_PCM_24
                   : format == "ogg" ? SF_FORMAT_OGG | SF_FORMAT_VORBIS
                                     : SF_FORMAT_WAV | (single ? SF_FORMAT_FLOAT : SF_FORMAT_DOUBLE);
    if (!out.is_regular()) copy_.reset(std::tmpfile());
    if (!out.is_regular() && !copy_)
      throw DataError("temporary file for the audio output: " + std::string(std::strerror(errno)));
    file_.reset(sf_open_fd(fileno(copy_ ? copy_.get() : out.stream()), SFM_WRITE, &sound, SF_FALSE));
    if (!file_) throw DataError("audio output: " + std::string(sf_strerror(nullptr)));
    sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    channels_ = info.channels;
  }
  void write(const double* samples, size_t frames) override {
    for (size_t k = 0; k < frames * channels_; ++k) loudest_ = std::max(loudest_, std::fabs(samples[k]));
    const sf_count_t count = static_cast<sf_count_t>(frames);
    if (sf_writef_double(file_.get(), samples, count) != count)
      throw DataError("audio output: " + std::string(sf_strerror(file_.get())));
  }
  void finish() override {
    constexpr double kStep = 0x1p-23;  // of 24 bits: a cosine of amplitude 1 may reach beyond 1 by its rounding
    if (format_ != "wav" && loudest_ > 1 + kStep)
      throw DataError(name_ + sigvex_tool::format(": reaches %.7g, but full scale of ", loudest_) + format_ +
                      " is 1; make it smaller (convert --gain), or write WAV, which has no limit");
    file_.reset();
    if (!copy_) return;
    std::rewind(copy_.get());
    std::string block(1 << 16, '\0');
    for (size_t got; (got = std::fread(block.data(), 1, block.size(), copy_.get())) > 0;)
      out_.write(block.substr(0, got));
    if (std::ferror(copy_.get()))
      throw DataError("temporary file for the audio output: " + std::string(std::strerror(errno)));
  }

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  OutputFile& out_;
  std::string name_, format_;
  File copy_;
  std::unique_ptr<SNDFILE, Close> file_;
  size_t channels_ = 1;
  double loudest_ = 0;
};

// One binary record whose header is written again when the number of points is known.
class BinaryWriter : public Writer {
 public:
  BinaryWriter(OutputFile& out, const SourceInfo& info, bool single)
      : out_(out), complex_(info.complex), delta_(info.delta), single_(single) {
    header();
  }
  void write(const double* samples, size_t frames) override {
    points_ += frames;
    if (points_ * (complex_ ? 2 : 1) > INT32_MAX)
      throw DataError("a vector record holds at most 2147483647 values; write WAV or CSV");
    Vector<double> block(frames, complex_);
    std::copy_n(samples, block.scalars(), block.data);
    write_vector(out_, block, "binary", single_, DSP_FILE_NO_HEADER);
  }
  void finish() override {
    std::rewind(out_.stream());
    header();
  }

 private:
  void header() {
    Vector<double> claim;
    claim.points = static_cast<int32_t>(points_);
    claim.complex = complex_;
    claim.delta = delta_;
    write_vector(out_, claim, "binary", single_, DSP_FILE_NO_DATA);
  }
  OutputFile& out_;
  bool complex_;
  double delta_;
  bool single_;
  uint64_t points_ = 0;
};

// One record a channel, one after the other, as --channel counts them.
class RecordWriter : public Writer {
 public:
  RecordWriter(OutputFile& out, const SourceInfo& info, const std::string& format, bool single)
      : out_(out), info_(info), format_(format), single_(single) {}
  void write(const double* samples, size_t frames) override {
    samples_.insert(samples_.end(), samples, samples + frames * info_.channels);
  }
  void finish() override {
    const size_t width = info_.channels, records = info_.complex ? 1 : width, values = width / records;
    for (size_t record = 0; record < records; ++record) {
      Vector<double> v(samples_.size() / width, info_.complex);
      v.delta = info_.delta;
      for (size_t k = 0; k < v.scalars(); ++k) v.data[k] = samples_[k / values * width + record + k % values];
      write_vector(out_, v, format_, single_);
    }
  }

 private:
  OutputFile& out_;
  const SourceInfo& info_;
  std::string format_;
  bool single_;
  std::vector<double> samples_;
};

}  // namespace

CLI::Option* add_output_options(CLI::App& command, OutputOptions& o) {
  CLI::Option* out = command.add_option("OUT", o.file, "File to write; - is the standard output")->required();
  const char* group = "Output";
  command
      .add_option("--format", o.format,
                  "binary (vector record; .dsp .bin), dsp (\"#DSP\" text; .txt .asc), csv, json, gnuplot (.gp "
                  ".plt), trace (.trace .trc), summary, wav, flac, ogg; otherwise by the suffix of OUT")
      ->check(CLI::IsMember({"binary", "dsp", "csv", "json", "gnuplot", "trace", "summary", "wav", "flac", "ogg"}))
      ->type_name("FORMAT")
      ->group(group);
  CLI::Option* single =
      command.add_flag("--single", o.single, "Single precision; otherwise that of the input")->group(group);
  command.add_flag("--double", o.full, "Double precision")->excludes(single)->group(group);
  return out;
}

std::string format_of(const OutputOptions& o) {
  if (!o.format.empty()) return o.format;
  for (const Suffix& known : kSuffixes) {
    const std::string_view suffix = known.suffix, name = o.file;
    if (name.size() > suffix.size() &&
        equal_ignoring_case(name.substr(name.size() - std::min(name.size(), suffix.size())), suffix))
      return known.format;
  }
  throw UsageError(in_quotes(o.file) + ": no known suffix; give --format");
}

std::unique_ptr<Writer> open_writer(OutputFile& out, const SourceInfo& info, const OutputOptions& o) {
  const std::string format = format_of(o);
  const bool single = o.single || (info.single && !o.full), one_record = info.complex || info.channels == 1;
  if (format == "csv") return std::make_unique<CsvWriter>(out, info, single);
  if (format == "json") return std::make_unique<JsonWriter>(out, info, single);
  if (format == "binary" && one_record && out.is_regular()) return std::make_unique<BinaryWriter>(out, info, single);
  if (is_vector_format(format)) return std::make_unique<RecordWriter>(out, info, format, single);
  return std::make_unique<AudioWriter>(out, info, format, single);
}

}  // namespace sigvex_tool
