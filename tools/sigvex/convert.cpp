// sigvex convert: a recording in another file format, whole or a range of it.
#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "errors.h"
#include "output.h"
#include "source.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Options {
  InputOptions input;
  std::string output, format;
  bool single = false, full = false;
  double gain = 1;
};

struct Suffix {
  const char* suffix;
  const char* format;
};
constexpr Suffix kSuffixes[] = {{".dsp", "binary"},  {".bin", "binary"}, {".txt", "dsp"},         {".asc", "dsp"},
                                {".csv", "csv"},     {".gp", "gnuplot"}, {".gnuplot", "gnuplot"}, {".plt", "gnuplot"},
                                {".trace", "trace"}, {".trc", "trace"},  {".json", "json"},       {".wav", "wav"},
                                {".flac", "flac"},   {".ogg", "ogg"}};

std::string format_of(const Options& o) {
  if (!o.format.empty()) return o.format;
  for (const Suffix& known : kSuffixes) {
    const std::string_view suffix = known.suffix, name = o.output;
    if (name.size() > suffix.size() &&
        equal_ignoring_case(name.substr(name.size() - std::min(name.size(), suffix.size())), suffix))
      return known.format;
  }
  throw UsageError(in_quotes(o.output) + ": no known suffix; give --format");
}

struct Recording {
  SourceInfo info;
  std::vector<double> samples;  // info.channels a frame
  size_t frames() const { return samples.size() / info.channels; }
};

// The shortest decimal that reads back as the same value.
void append_number(std::string& text, double x, bool single) {
  char digits[40];
  const auto end = single ? std::to_chars(digits, digits + sizeof digits, static_cast<float>(x)).ptr
                          : std::to_chars(digits, digits + sizeof digits, x).ptr;
  text.append(digits, end);
}

std::string label(const SourceInfo& info, size_t c) {
  if (c < info.labels.size()) return info.labels[c];
  if (info.complex) return c == 0 ? "real" : "imaginary";
  return info.channels > 1 ? format("channel %zu", c + 1) : "value";
}

std::string csv_cell(const std::string& text) {
  if (text.find_first_of(",\"") == text.npos) return text;
  std::string out = "\"";
  for (char c : text) out += c == '"' ? "\"\"" : std::string(1, c);
  return out + "\"";
}

// The first column is the time, so that the file carries its spacing.
void write_csv(OutputFile& out, const Recording& r, bool single) {
  std::string line = "time (" + r.info.time_unit + ")";
  for (size_t c = 0; c < r.info.channels; ++c) {
    std::string name = label(r.info, c);
    if (!r.info.unit.empty() && !name.ends_with(')')) name += " (" + r.info.unit + ")";
    line += "," + csv_cell(name);
  }
  for (size_t k = 0; k < r.frames(); ++k) {
    out.write(line + "\n");
    line.clear();
    append_number(line, static_cast<double>(k) * r.info.delta, false);
    for (size_t c = 0; c < r.info.channels; ++c) append_number(line += ',', r.samples[k * r.info.channels + c], single);
  }
  out.write(line + "\n");
}

void write_json(OutputFile& out, const Recording& r, bool single) {
  nlohmann::ordered_json head{{"delta", r.info.delta}, {"time_unit", r.info.time_unit}, {"complex", r.info.complex}};
  if (!r.info.unit.empty()) head["unit"] = r.info.unit;
  std::string text = head.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  text.back() = ',';
  text += "\"samples\":[";
  for (size_t k = 0; k < r.frames(); ++k) {
    text += k ? ",\n" : "\n";
    for (size_t c = 0; c < r.info.channels; ++c) {
      const double x = r.samples[k * r.info.channels + c];
      if (r.info.channels > 1) text += c ? "," : "[";
      if (std::isfinite(x)) append_number(text, x, single);
      else text += "null";
    }
    if (r.info.channels > 1) text += "]";
    out.write(text);
    text.clear();
  }
  out.write(text + "\n]}\n");
}

int audio_code(const std::string& format, bool single) {
  if (format == "flac") return SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
  if (format == "ogg") return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
  return SF_FORMAT_WAV | (single ? SF_FORMAT_FLOAT : SF_FORMAT_DOUBLE);
}

void write_audio(OutputFile& out, const Recording& r, const std::string& format, bool single) {
  const double rate = 1 / r.info.delta;
  if (!(std::fabs(rate - std::round(rate)) < 1e-6 * rate) || rate < 1 || rate > 2147483647)
    throw DataError(r.info.name +
                    sigvex_tool::format(": %g samples per second; an audio file needs a whole number (--rate)", rate));
  const auto loudest = std::max_element(r.samples.begin(), r.samples.end(),
                                        [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  if (format != "wav" && loudest != r.samples.end() && std::fabs(*loudest) > 1)
    throw DataError(r.info.name + sigvex_tool::format(": reaches %g, but full scale of ", std::fabs(*loudest)) +
                    format + " is 1; give --gain, or write WAV, which has no limit");
  SF_INFO sound{};
  sound.samplerate = static_cast<int>(std::llround(rate));
  sound.channels = static_cast<int>(r.info.channels);
  sound.format = audio_code(format, single);
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open_fd(fileno(out.stream()), SFM_WRITE, &sound, SF_FALSE),
                                                         sf_close);
  if (!file) throw DataError("audio output: " + std::string(sf_strerror(nullptr)));
  sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  const sf_count_t frames = static_cast<sf_count_t>(r.frames());
  if (sf_writef_double(file.get(), r.samples.data(), frames) != frames)
    throw DataError("audio output: " + std::string(sf_strerror(file.get())));
}

// One record a channel, one after the other, as --channel counts them.
void write_records(OutputFile& out, const Recording& r, const std::string& format, bool single) {
  const size_t width = r.info.channels, records = r.info.complex ? 1 : width, values = width / records;
  for (size_t record = 0; record < records; ++record) {
    Vector<double> v(r.frames(), r.info.complex);
    v.delta = r.info.delta;
    for (size_t k = 0; k < v.scalars(); ++k) v.data[k] = r.samples[k / values * width + record + k % values];
    write_vector(out, v, format, single);
  }
}

void run_convert(Options& o) {
  const std::string format = format_of(o);
  o.input.all_channels = true;
  Recording r;
  const std::unique_ptr<Source> source = open_source(o.input);
  r.info = source->info();
  r.samples = source->read_rest();
  for (double& x : r.samples) x *= o.gain;
  const bool single = o.single || (r.info.single && !o.full);

  OutputFile out(o.output);
  if (is_vector_format(format)) write_records(out, r, format, single);
  else if (format == "csv") write_csv(out, r, single);
  else if (format == "json") write_json(out, r, single);
  else write_audio(out, r, format, single);
  out.commit();
}

}  // namespace

void add_convert(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("convert", "Write a recording in another file format or precision");
  add_input_options(*command, o->input);
  command->add_option("OUT", o->output, "File to write; - is the standard output")->required();
  const char* group = "Output";
  command
      ->add_option("--format", o->format,
                   "binary (vector record; .dsp .bin), dsp (\"#DSP\" text; .txt .asc), csv, json, gnuplot (.gp "
                   ".plt), trace (.trace .trc), summary, wav, flac, ogg; otherwise by the suffix of OUT")
      ->check(CLI::IsMember({"binary", "dsp", "csv", "json", "gnuplot", "trace", "summary", "wav", "flac", "ogg"}))
      ->type_name("FORMAT")
      ->group(group);
  CLI::Option* single =
      command->add_flag("--single", o->single, "Single precision; otherwise that of the input")->group(group);
  command->add_flag("--double", o->full, "Double precision")->excludes(single)->group(group);
  command->add_option("--gain", o->gain, "Factor for every sample")
      ->capture_default_str()
      ->type_name("G")
      ->group(group);
  command->footer(
      "All channels of an audio file and all numeric columns of a CSV file are converted unless --channel or --column "
      "picks\n"
      "one; in the vector formats they become one record each, which --channel N reads again. FLAC is written with 24 "
      "bits.\n"
      "\n"
      "Examples:\n"
      "  sigvex convert ecg.dsp ecg.csv --unit mV\n"
      "  sigvex convert stereo.flac left.txt --channel 1 --from 10 --to 12\n"
      "  sigvex convert table.csv signal.wav --column 3 --rate 8000 --gain 0.1");
  command->callback([o] { run_convert(*o); });
}

}  // namespace sigvex_tool
