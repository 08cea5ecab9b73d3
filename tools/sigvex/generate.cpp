// sigvex generate: a signal to measure with: tones, lines and noise.
#include <algorithm>
#include <cmath>
#include <memory>

#include "blocks.h"
#include "choices.h"
#include "commands.h"
#include "errors.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Options {
  std::string kind;
  OutputOptions output;
  std::optional<double> rate, seconds, frequency;
  std::optional<int32_t> points;
  double amplitude = 1, offset = 0, phase = 0, slope = 0;
  std::string unit;
  bool complex = false;
};

struct Noise {
  const char* name;
  int32_t kind;
  bool complex;  // has a complex form
};
constexpr Noise kNoises[] = {{"uniform", DSP_RAND_UNIFORM, true},
                             {"gauss", DSP_RAND_GAUSS, true},
                             {"exponential", DSP_RAND_EXPONENTIAL, false},
                             {"laplace", DSP_RAND_LAPLACE, false}};

const Noise* noise_of(const std::string& kind) {
  const auto* const found =
      std::find_if(std::begin(kNoises), std::end(kNoises), [&](const Noise& noise) { return kind == noise.name; });
  return found == std::end(kNoises) ? nullptr : found;
}

// The phase that an oscillation of so many cycles per sample has gained at sample k. The product is taken exactly, so
// that the blocks of a long signal join without a step.
double phase_at(double cycles, double k) {
  const double turns = cycles * k, rest = std::fma(cycles, k, -turns);
  return 2 * M_PI * (std::fmod(turns, 1.0) + rest);
}

void fill(Vector<double>& v, const Options& o, uint64_t first) {
  const double start = static_cast<double>(first), phase = o.phase * M_PI / 180;
  const char* doing = "the signal";
  if (const Noise* noise = noise_of(o.kind)) {
    check(dspc_rand(&v, noise->kind), doing);
  } else if (o.kind == "line") {
    check(dspc_line(&v, o.slope, o.slope * v.delta * start), doing);
  } else {
    const double at = phase_at(*o.frequency * v.delta, start) + phase;
    check(o.kind == "cosine" ? dspc_cos(&v, *o.frequency, at) : dspc_cexp(&v, *o.frequency, at), doing);
  }
  for (size_t k = 0; k < v.scalars(); ++k)
    v.data[k] = v.data[k] * o.amplitude + (v.complex && k % 2 == 1 ? 0.0 : o.offset);
}

// The options that the kind needs, and none that it has no use for.
void refuse_misfits(const Options& o) {
  const bool tone = o.kind == "cosine" || o.kind == "cexp";
  const Noise* noise = noise_of(o.kind);
  if (!o.seconds && !o.points) throw UsageError("--seconds or --points is required");
  if (tone && !o.frequency) throw UsageError("--frequency is required for " + o.kind);
  if (!tone && (o.frequency || o.phase != 0)) throw UsageError("--frequency and --phase are for cosine and cexp");
  if (o.kind != "line" && o.slope != 0) throw UsageError("--slope is for line");
  if (o.complex && noise && !noise->complex) throw UsageError("--complex: " + o.kind + " noise is real");
  if (tone && !(std::fabs(*o.frequency) <= *o.rate / 2))
    throw UsageError(
        format("--frequency %g: must lie within half of --rate, -%g to %g Hz", *o.frequency, *o.rate / 2, *o.rate / 2));
}

void run_generate(const Options& o) {
  refuse_misfits(o);
  format_of(o.output);
  const double points = o.points ? *o.points : std::round(*o.seconds * *o.rate);
  if (!(points >= 1 && points <= 1e12))
    throw UsageError(format("--seconds: gives %g samples, must be 1 to 1e12", points));

  if (!std::isfinite(o.slope * points / *o.rate * o.amplitude + o.offset) ||
      !std::isfinite(o.amplitude * 1e3 + o.offset))
    throw UsageError("--amplitude, --offset and --slope make values that are too large for a number");

  SourceInfo info;
  info.name = o.kind;
  info.delta = 1 / *o.rate;
  info.unit = o.unit;
  info.complex = o.complex || o.kind == "cexp";
  info.channels = info.complex ? 2 : 1;
  OutputFile out(o.output.file);
  const std::unique_ptr<Writer> writer = open_writer(out, info, o.output);
  Vector<double> block;
  const uint64_t total = static_cast<uint64_t>(points);
  for (uint64_t done = 0; done < total; done += static_cast<uint64_t>(block.points)) {
    block.resize(static_cast<size_t>(std::min<uint64_t>(kBlockFrames, total - done)), info.complex);
    block.delta = info.delta;
    fill(block, o, done);
    writer->write(block.data, static_cast<size_t>(block.points));
  }
  writer->finish();
  out.commit();
}

}  // namespace

void add_generate(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("generate", "Make a cosine, a complex exponential, a line or noise");
  command
      ->add_option("KIND", o->kind,
                   "cosine; cexp (complex exponential); line; white noise: uniform (-1 to 1), gauss (variance 1), "
                   "exponential (mean 1), laplace (variance 2)")
      ->check(CLI::IsMember({"cosine", "cexp", "line", "uniform", "gauss", "exponential", "laplace"}))
      ->required();
  add_output_options(*command, o->output);
  const char* group = "Signal";
  command->add_option("--rate", o->rate, "Samples per second")
      ->check(number_above_zero)
      ->required()
      ->type_name("R")
      ->group(group);
  CLI::Option* seconds = command->add_option("--seconds", o->seconds, "Length in seconds")
                             ->check(number_above_zero)
                             ->type_name("T")
                             ->group(group);
  command->add_option("--points", o->points, "Length in samples")
      ->check(CLI::Range(1, INT32_MAX))
      ->excludes(seconds)
      ->type_name("N")
      ->group(group);
  command->add_option("--frequency", o->frequency, "Hz, of a cosine or complex exponential")
      ->type_name("F")
      ->group(group);
  command->add_option("--phase", o->phase, "Degrees at the first sample")->type_name("DEG")->group(group);
  command->add_option("--slope", o->slope, "Of a line, per second")->type_name("S")->group(group);
  command->add_option("--amplitude", o->amplitude, "Factor")->capture_default_str()->type_name("A")->group(group);
  command->add_option("--offset", o->offset, "Added to every sample, behind the factor")->type_name("C")->group(group);
  command->add_option("--unit", o->unit, "Unit of the samples, such as mV")->type_name("TEXT")->group(group);
  command->add_flag("--complex", o->complex, "Complex samples: both parts of the noise, or imaginary parts 0")
      ->group(group);
  command->footer(
      "Noise is different in every run.\n"
      "\n"
      "Examples:\n"
      "  sigvex generate cosine tone.wav --rate 48000 --seconds 10 --frequency 1000 --amplitude 0.5\n"
      "  sigvex generate gauss noise.csv --rate 1000 --points 100000 --amplitude 0.01 --unit V\n"
      "  sigvex generate cexp - --format binary --rate 1e6 --points 4096 --frequency -1e5 | sigvex spectrum -");
  command->callback([o] { run_generate(*o); });
}

}  // namespace sigvex_tool
