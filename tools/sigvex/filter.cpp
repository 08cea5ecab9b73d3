// sigvex filter: any FIR design or fixed set on a recording of any length, or a picture of its response.
#include <algorithm>
#include <cmath>
#include <memory>

#include "blocks.h"
#include "choices.h"
#include "commands.h"
#include "errors.h"
#include "plot.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Design {
  const char* name;
  int32_t type;
  const char* window;  // unless the user picks one
  bool odd, cutoff, band;
};
constexpr Design kDesigns[] = {{"low-pass", DSP_FIR_LOW_PASS, "Blackman", false, true, false},
                               {"high-pass", DSP_FIR_HIGH_PASS, "Blackman", true, true, false},
                               {"band-pass", DSP_FIR_BAND_PASS, "Blackman", false, false, true},
                               {"band-stop", DSP_FIR_BAND_STOP, "Blackman", true, false, true},
                               {"sinh", DSP_FIR_SINH, "Uniform", false, false, false},
                               {"sinh-ratio", DSP_FIR_SINH_RATIO, "Uniform", false, false, false},
                               {"gauss", DSP_FIR_GAUSS, "Uniform", false, true, false},
                               {"delayed-low-pass", DSP_FIR_DELAYED_LOW_PASS, "Uniform", false, true, false},
                               {"differentiator", DSP_FIR_DIFFERENTIATOR, "Blackman", false, true, false},
                               {"hilbert", DSP_FIR_HILBERT, "Blackman", false, true, false},
                               {"ramp", DSP_FIR_RAMP, "Blackman", false, true, false}};

struct FixedSet {
  const char* name;
  int32_t set;
};
constexpr FixedSet kSets[] = {{"set9", DSP_FIR_SET_9},   {"set23", DSP_FIR_SET_23},   {"set39", DSP_FIR_SET_39},
                              {"set75", DSP_FIR_SET_75}, {"set121", DSP_FIR_SET_121}, {"set189", DSP_FIR_SET_189}};

struct Options {
  InputOptions input;
  OutputOptions output;
  std::string design, window, plot;
  std::optional<double> cutoff, center, bandwidth;
  double delay = 0, shape = 0;
  std::optional<int32_t> taps;
};

// A frequency option in cycles per sample.
double frequency(const std::optional<double>& value, const char* option, const Options& o, const SourceInfo& info,
                 double most) {
  const double limit = most / info.delta;
  const std::string range = format("above 0 to %g ", limit) + info.frequency_unit();
  if (!value) throw UsageError("--design " + o.design + " needs " + option + ", " + range);
  if (!(*value > 0 && *value <= limit)) throw UsageError(std::string(option) + format(" %g: must be ", *value) + range);
  return *value * info.delta;
}

std::vector<double> designed(const Design& design, const Options& o, const SourceInfo& info) {
  const int32_t count = o.taps.value_or(101);
  if (design.odd && count % 2 == 0)
    throw UsageError(format("--taps %d: must be odd for --design ", count) + design.name);
  double p1 = o.shape, p2 = 0;
  if (design.cutoff) p1 = frequency(o.cutoff, "--cutoff", o, info, 0.5);
  if (design.band) {
    p1 = frequency(o.center, "--center", o, info, 0.5);
    p2 = frequency(o.bandwidth, "--bandwidth", o, info, 1);
    const double nearer = std::min(p1, 0.5 - p1), rounding = 1e-9;
    if (p2 / 2 > nearer + rounding)  // the mirrored band would lie over it and double the gain
      throw UsageError(format("--bandwidth %g: from --center %g the band must not reach beyond 0 or %g ", *o.bandwidth,
                              *o.center, 0.5 / info.delta) +
                       info.frequency_unit());
  }
  if (design.type == DSP_FIR_DELAYED_LOW_PASS) {
    const double most = 0.5 * (count - 1) * info.delta;
    if (!(std::fabs(o.delay) <= most))
      throw UsageError(format("--delay %g: must be %g to %g s, half of the taps", o.delay, -most, most));
    p2 = o.delay / info.delta;
  }
  const uint32_t window = window_type(o.window.empty() ? design.window : o.window, "--window");
  Vector<double> taps(static_cast<size_t>(count), false);
  check(dspc_fir(&taps, design.type, p1, p2), "the filter");
  check(dspi_window_fir(&taps, window, DSP_WINFLAG_PEAK, 0), "the window of the filter");
  // The library differentiates per sample.
  if (design.type == DSP_FIR_DIFFERENTIATOR)
    for (int32_t k = 0; k < count; ++k) taps.data[k] /= info.delta;
  return {taps.data, taps.data + count};
}

// The whole filter of a set that holds the outer half and the centre.
std::vector<double> mirrored(const FixedSet& set) {
  Vector<double> half;
  check(dspc_fir2(&half, set.set), "the filter");
  std::vector<double> taps(half.data, half.data + half.points);
  for (size_t k = taps.size() - 1; k-- > 0;) taps.push_back(taps[k]);
  return taps;
}

std::vector<double> taps_of(const Options& o, const SourceInfo& info) {
  for (const Design& design : kDesigns)
    if (o.design == design.name) {
      if (!design.cutoff && o.cutoff) throw UsageError("--cutoff is not for --design " + o.design);
      if (!design.band && (o.center || o.bandwidth))
        throw UsageError("--center and --bandwidth are for --design band-pass and band-stop");
      if (o.delay != 0 && design.type != DSP_FIR_DELAYED_LOW_PASS)
        throw UsageError("--delay is for --design delayed-low-pass");
      if (o.shape != 0 && design.type != DSP_FIR_SINH && design.type != DSP_FIR_SINH_RATIO)
        throw UsageError("--shape is for --design sinh and sinh-ratio");
      return designed(design, o, info);
    }
  if (o.taps || o.cutoff || o.center || o.bandwidth || o.delay != 0 || o.shape != 0 || !o.window.empty())
    throw UsageError("--design " + o.design + " is fixed: it takes no taps, window, frequency, shape or delay");
  return mirrored(
      *std::find_if(std::begin(kSets), std::end(kSets), [&](const FixedSet& s) { return o.design == s.name; }));
}

// The gain in decibels, from the transform of the taps among at least three times as many zeros.
Curve response(const std::vector<double>& taps, const Options& o, const SourceInfo& info) {
  size_t points = 4096;
  while (points < 4 * taps.size()) points *= 2;
  Vector<double> v(points, false);
  std::fill(std::copy(taps.begin(), taps.end(), v.data), v.data + points, 0.0);
  check(dspi_rdft(&v), "the response");
  check(dspi_magsq(&v), "the response");
  Curve curve;
  const double scale = static_cast<double>(points);
  for (int32_t k = 0; k < v.points; ++k) {
    curve.x.push_back(k / (scale * info.delta));
    curve.y.push_back(10 * std::log10(v.data[k] * scale * scale));
  }
  curve.title = o.design + format(", %zu taps", taps.size());
  curve.x_label = info.frequency_unit();
  curve.y_label = "gain in dB";
  return curve;
}

void run_filter(Options& o) {
  const bool filters = !o.output.file.empty(), in_terminal = o.plot == "-";
  if (!filters && o.plot.empty()) throw UsageError("OUT or --plot is required");
  if (filters) format_of(o.output);
  if (in_terminal && o.output.file == "-") throw UsageError("--plot - and OUT - would both fill the standard output");
  o.input.all_channels = true;
  const std::unique_ptr<Source> source = open_source(o.input);
  const SourceInfo& info = source->info();
  const std::vector<double> taps = taps_of(o, info);
  OutputFile picture(o.plot);
  if (!o.plot.empty() && !in_terminal) plot_file({response(taps, o, info)}, picture);
  if (filters)
    process(
        *source, kBlockFrames, info.delta,
        [&] {
          Stages stages;
          stages.push_back(std::make_unique<FilterStage>(taps));
          return stages;
        },
        o.output);
  if (in_terminal) picture.write(plot_text(response(taps, o, info), terminal_columns(), kPlotRows));
  picture.commit();
}

std::vector<std::string> names() {
  std::vector<std::string> names;
  for (const Design& design : kDesigns) names.emplace_back(design.name);
  for (const FixedSet& set : kSets) names.emplace_back(set.name);
  return names;
}

}  // namespace

void add_filter(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("filter", "Filter a recording with a finite impulse response");
  add_input_options(*command, o->input);
  add_output_options(*command, o->output)->required(false);
  const char* group = "Filter";
  command
      ->add_option(
          "--design", o->design,
          "low-pass, high-pass, delayed-low-pass, gauss, differentiator (per second), hilbert, ramp: --cutoff; "
          "band-pass, band-stop: --center and --bandwidth; sinh, sinh-ratio: --shape; or the taps of a fixed "
          "set: set9, set23, set39, set75, set121, set189")
      ->check(CLI::IsMember(names()))
      ->required()
      ->type_name("NAME")
      ->group(group);
  command->add_option("--cutoff", o->cutoff, "Edge, Hz")->type_name("F")->group(group);
  command->add_option("--center", o->center, "Middle of the band, Hz")->type_name("F")->group(group);
  command->add_option("--bandwidth", o->bandwidth, "Width of the band, Hz")->type_name("F")->group(group);
  command->add_option("--shape", o->shape, "Shape of the sinh designs, 0 to 600; 0 chooses it by the taps")
      ->check(CLI::Range(0.0, 600.0))
      ->type_name("X")
      ->group(group);
  command->add_option("--delay", o->delay, "Delay of delayed-low-pass, seconds")->type_name("T")->group(group);
  command->add_option("--taps", o->taps, "Number of taps; odd for high-pass and band-stop (default 101)")
      ->check(CLI::Range(1, 65536))
      ->type_name("N")
      ->group(group);
  command
      ->add_option("--window", o->window,
                   "Window of the design (default Blackman; Uniform for the designs that end smoothly)")
      ->type_name("NAME")
      ->group(group);
  add_plot_option(*command, "--plot", o->plot, "Draw the gain of the filter")->group(group);
  command->footer(
      "All channels or columns are filtered unless --channel or --column picks one. The delay of the filter, (N-1)/2\n"
      "samples, is taken out. Without OUT only the picture is made.\n"
      "\n"
      "Examples:\n"
      "  sigvex filter ecg.dsp clean.dsp --design low-pass --cutoff 40\n"
      "  sigvex filter voice.wav phone.wav --design band-pass --center 1850 --bandwidth 3100 --taps 301\n"
      "  sigvex filter ecg.dsp --design band-stop --center 60 --bandwidth 10 --taps 201 --plot -");
  command->callback([o] { run_filter(*o); });
}

}  // namespace sigvex_tool
