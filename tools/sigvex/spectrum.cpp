// sigvex spectrum: the lines in a recording, their levels, and the noise between them.
#include <algorithm>
#include <cmath>
#include <memory>

#include "choices.h"
#include "commands.h"
#include "errors.h"
#include "levels.h"
#include "output.h"
#include "peaks.h"
#include "plot.h"
#include "report.h"
#include "result.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Options {
  InputOptions input;
  Analysis analysis;
  std::string window = "Hann", average = "all", scale = "peak", detrend = "mean", averaging = "mean", overlap, points;
  bool db = false;
  std::optional<int> peaks;
  int harmonics = 0;
  std::optional<double> length;
  std::optional<double> from_hz, to_hz;
  ResultOptions result;
};

Analysis analysis_of(const Options& o) {
  Analysis a = o.analysis;
  a.window = window_type(o.window, "--window");
  if (!o.points.empty()) a.points = whole_number(o.points, "--points", 2);
  a.average = o.average == "all" ? 0 : whole_number(o.average, "--average", 1);
  a.averaging = averaging_named(o.averaging);
  if (o.length && !a.averaging.weighted()) throw UsageError("--average-length is not for --averaging " + o.averaging);
  if (o.length || o.averaging == "exponential") a.length = o.length.value_or(10);
  if (a.reference && o.averaging != "synchronous") throw UsageError("--reference is for --averaging synchronous");
  if (!a.reference && o.averaging == "synchronous")
    throw UsageError("--averaging synchronous needs --reference, the frequency of a line");
  // Noise averages out of complex spectra alike at every frequency where the frames have no sample in common.
  std::string_view overlap = a.averaging.kind == Averaging::Coherent ? "0" : "50";
  if (!o.overlap.empty()) overlap = o.overlap;
  if (overlap.ends_with('%')) overlap.remove_suffix(1);
  const std::optional<double> percent = to_number(overlap);
  if (!percent || !(*percent >= 0 && *percent <= 99))
    throw UsageError("--overlap " + in_quotes(o.overlap) + ": must be 0 to 99 per cent");
  a.overlap = *percent / 100;
  a.detrend = o.detrend == "none" ? Detrend::None : o.detrend == "mean" ? Detrend::Mean : Detrend::Linear;
  return a;
}

Scale scale_of(const std::string& name) {
  return name == "peak" ? Scale::Peak : name == "rms" ? Scale::Rms : name == "power" ? Scale::Power : Scale::Density;
}

// Bin k at k * delta: the negative frequencies of a two-sided spectrum follow behind the positive ones.
void write_spectrum(OutputFile& out, const Measurement& m, const Levels& levels, const std::string& format) {
  const std::vector<double> all = levels.all(m.spectrum);
  Vector<double> vector(all.size(), false);
  std::rotate_copy(all.begin(), all.begin() + static_cast<ptrdiff_t>(m.spectrum.origin()), all.end(), vector.data);
  vector.delta = m.spectrum.spacing;
  write_vector(out, vector, format, m.spectrum.single);
}

// The band shown, with its frequencies.
void write_table(OutputFile& out, const Measurement& m, const Levels& levels) {
  const std::vector<double> all = levels.all(m.spectrum);
  std::vector<double> frequency, level;
  for (size_t k = m.band.first; k <= m.band.last; ++k) {
    frequency.push_back(m.spectrum.frequency(static_cast<double>(k)));
    level.push_back(all[k]);
  }
  write_csv(out, {"frequency (" + m.source.frequency_unit() + ")", "level (" + levels.description() + ")"},
            {&frequency, &level});
}

Curve curve_of(const Measurement& m, const Levels& levels, bool db) {
  Curve curve;
  const std::vector<double> all = levels.all(m.spectrum);
  for (size_t k = m.band.first; k <= m.band.last; ++k) {
    curve.x.push_back(m.spectrum.frequency(static_cast<double>(k)));
    curve.y.push_back(all[k]);
  }
  curve.title = m.source.name;
  curve.x_label = m.source.frequency_unit();
  curve.y_label = levels.description();
  curve.axis = db ? Curve::Decibels : Curve::Logarithmic;
  for (const Line& line : m.lines)
    if (line.clear && curve.marks.size() < 5)
      curve.marks.push_back({line.frequency, levels.of(line.power, m.spectrum.stands_alone(line.bin)),
                             sigvex_tool::format("%.5g ", line.frequency) + curve.x_label});
  return curve;
}

void run_spectrum(const Options& o) {
  Measurement m;
  m.analysis = analysis_of(o);
  m.window = window_name(m.analysis.window);
  m.scale = o.scale;
  if (o.from_hz && o.to_hz && *o.from_hz > *o.to_hz) throw UsageError("--from-hz must not be above --to-hz");
  refuse_one_place_for_both(o.result);

  const std::unique_ptr<Source> source = open_source(o.input);
  m.source = source->info();
  m.spectrum = analyse(*source, m.analysis);
  m.band = band_of(m.spectrum, o.from_hz, o.to_hz);
  m.floor = noise_floor(m.spectrum, m.band);
  m.detection = detection_ratio(m.spectrum, m.band);
  const Lobe lobe(m.spectrum.window);
  Wanted wanted;
  if (o.peaks) wanted.clear = wanted.at_least = static_cast<size_t>(o.harmonics ? std::max(1, *o.peaks) : *o.peaks);
  m.lines = find_lines(m.spectrum, lobe, m.band, wanted, m.analysis.detrend != Detrend::None);
  if (o.harmonics && !m.lines.empty()) m.harmonics = find_harmonics(m.spectrum, lobe, m.lines[0], o.harmonics);

  const Levels levels(m.spectrum, scale_of(o.scale), o.db, m.source);
  const auto write = [&](OutputFile& out) {
    const std::string& format = o.result.format;
    if (format == "table") out.write(table(m, levels));
    else if (format == "json") out.write(json(m, levels));
    else if (format == "csv") write_table(out, m, levels);
    else write_spectrum(out, m, levels, format);
  };
  deliver(o.result, write, [&] { return std::vector{curve_of(m, levels, o.db)}; });
}

}  // namespace

void add_spectrum(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("spectrum", "Find the lines in a recording, their levels and the noise floor");
  add_input_options(*command, o->input);

  const char* analysis = "Analysis";
  command
      ->add_option("--window", o->window, "Window: any of " + window_names() + ", or another spelling of one of them")
      ->capture_default_str()
      ->type_name("NAME")
      ->group(analysis);
  command
      ->add_option("--parameter", o->analysis.parameter,
                   "Parameter of the window: taper of both ends together (Tukey, 0 to 1), standard deviation over "
                   "the frame (Gauss), width over the frame (Riemann); of others the width in samples")
      ->type_name("X")
      ->group(analysis);
  command
      ->add_option("--points", o->points,
                   "Points of a frame, any number; otherwise the whole range is one frame, or what "
                   "gives the frames of --average")
      ->type_name("N")
      ->group(analysis);
  command->add_option("--average", o->average, "Frames that are averaged: a number from the start, or all that fit")
      ->capture_default_str()
      ->type_name("K|all")
      ->group(analysis);
  command
      ->add_option(
          "--averaging", o->averaging,
          "How frames become one spectrum: mean, exponential, magnitude, geometric or harmonic (of their powers), "
          "max or min (hold), last, vector (complex mean, for triggered frames), synchronous (complex mean, "
          "frames turned to one phase at --reference)")
      ->check(CLI::IsMember(averaging_names()))
      ->capture_default_str()
      ->type_name("NAME")
      ->group(analysis);
  command
      ->add_option(
          "--average-length", o->length,
          "Frames after which a mean forgets: from that frame on a new one has the weight 1/L (exponential: 10)")
      ->check(CLI::Range(1.0, 1e6))
      ->type_name("L")
      ->group(analysis);
  command
      ->add_option("--reference", o->analysis.reference,
                   "Frequency of the line whose phase synchronous averaging follows")
      ->type_name("F")
      ->group(analysis);
  command->add_option("--overlap", o->overlap, "Overlap of the frames in per cent (default 50; vector, synchronous: 0)")
      ->type_name("PERCENT")
      ->group(analysis);
  command->add_option("--detrend", o->detrend, "Removed from each frame: none, mean, linear (mean and slope)")
      ->check(CLI::IsMember({"none", "mean", "linear"}))
      ->capture_default_str()
      ->type_name("WHAT")
      ->group(analysis);
  command
      ->add_option("--scale", o->scale,
                   "What a level is: peak (amplitude of a sine), rms, power (mean square), density (power "
                   "per Hz)")
      ->check(CLI::IsMember({"peak", "rms", "power", "density"}))
      ->capture_default_str()
      ->type_name("SCALE")
      ->group(analysis);
  command->add_flag("--db", o->db, "Levels in decibels over one unit")->group(analysis);
  command->add_flag("--single", o->analysis.single, "Compute in single precision")->group(analysis);

  const char* result = "Result";
  command->add_option("--peaks", o->peaks, "Number of peaks to list; otherwise up to 10 clear ones, at least 5 in all")
      ->check(CLI::Range(0, 1000000))
      ->type_name("N")
      ->group(result);
  command
      ->add_flag("--harmonics{5}", o->harmonics, "Also the harmonics of the strongest peak, up to the Nth (default 5)")
      ->check(CLI::Range(2, 1000))
      ->option_text("[N]")
      ->group(result);
  command->add_option("--from-hz", o->from_hz, "Lowest frequency to look at")->type_name("F")->group(result);
  command->add_option("--to-hz", o->to_hz, "Highest frequency to look at")->type_name("F")->group(result);
  add_result_options(*command, o->result, result,
                     {"table", "json", "csv", "dsp", "binary", "gnuplot", "trace", "summary"},
                     "table or json: peaks and noise floor; csv: frequency and level of each bin; dsp (\"#DSP\" text), "
                     "binary, gnuplot, trace, summary: the whole spectrum as a vector",
                     "Draw the spectrum");
  command->footer(
      "A peak marked ? may be a maximum of the noise. Levels and frequencies are refined between the bins with the "
      "window's\n"
      "own shape, so that a sine of amplitude A reads A wherever it lies.\n"
      "\n"
      "Examples:\n"
      "  sigvex spectrum voice.wav --points 4096 --to-hz 4000\n"
      "  sigvex spectrum ecg.dsp --unit mV --from-hz 50 --peaks 3 --harmonics\n"
      "  sigvex spectrum noise.wav --points 8192 --scale density --db --plot noise.png\n"
      "  sigvex spectrum engine.wav --points 8192 --averaging max\n"
      "  sigvex spectrum temperature.csv --column indoor --rate 24 --time-unit day --detrend linear\n"
      "  cat sensor.csv | sigvex spectrum - --delta 0.001 --format json --output lines.json");
  command->callback([o] { run_spectrum(*o); });
}

}  // namespace sigvex_tool
