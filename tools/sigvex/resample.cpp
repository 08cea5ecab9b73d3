// sigvex resample and sigvex decimate: a recording at another sampling rate.
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "blocks.h"
#include "choices.h"
#include "commands.h"
#include "errors.h"
#include "text.h"

namespace sigvex_tool {
namespace {

constexpr uint32_t kSets = 5;
// Input samples that one output of each kernel is made of.
constexpr std::array<size_t, kSets> kSpan = {8, 13, 8, 10, 13};

struct Options {
  InputOptions input;
  OutputOptions output;
  std::string ratio;
  std::optional<double> to_rate;
  double attenuation = 150, transition = 0.04;
  std::optional<uint32_t> set;
  bool unfiltered = false, filtered = false;
  int32_t factor = 0;
};

// One kernel for all channels.
struct Kernel : dsp_rsmp_coef {
  Kernel(const Options& o, double ratio) {
    dsph_rsmp_coef_init(this);
    check(dsph_rsmp_coef_setup(this, DSP_RSMP_KAISER, o.attenuation, o.transition, ratio, 0), "the kernel");
    check(dsph_rsmp_get_delay_pts(this, &delay), "the kernel");
  }
  ~Kernel() { dsph_rsmp_coef_destroy(this); }
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  double delay = 0;
};

// Cuts off the outputs beyond those that `taken` inputs give at the exact ratio, of which one such as 360/250 is
// rounded.
void drop_surplus(Vector<double>& samples, uint64_t taken, uint64_t made, double ratio) {
  const double wanted = std::ceil(static_cast<double>(taken) / ratio * (1 - 0x1p-48));
  samples.points -= static_cast<int32_t>(made - std::min(made, static_cast<uint64_t>(wanted)));
}

// Resamples with the delay of the kernel taken out: output m shows the input at m * ratio.
class ResampleStage : public Stage {
 public:
  ResampleStage(std::shared_ptr<const Kernel> kernel, double ratio) : kernel_(std::move(kernel)), ratio_(ratio) {
    dsph_rsmp_state_init(&state_);
    check(dsph_rsmp_state_set_offset(&state_, kernel_->delay), "the kernel");
  }
  ~ResampleStage() override { dsph_rsmp_state_destroy(&state_); }
  ResampleStage(const ResampleStage&) = delete;
  ResampleStage& operator=(const ResampleStage&) = delete;

  void block(Vector<double>& samples, bool last) override {
    taken_ += static_cast<uint64_t>(samples.points);
    if (last) append_zeros(samples, static_cast<size_t>(std::ceil(kernel_->delay)));
    Vector<double> out;
    check(dsph_rsmp(&samples, &out, kernel_.get(), ratio_, &state_), "the resampled block");
    samples.swap(out);
    made_ += static_cast<uint64_t>(samples.points);
    if (last) drop_surplus(samples, taken_, made_, ratio_);
  }

 private:
  const std::shared_ptr<const Kernel> kernel_;
  const double ratio_;
  dsp_rsmp_state state_;
  uint64_t taken_ = 0, made_ = 0;
};

// The same with one of the fixed sets.
class SetStage : public Stage {
 public:
  SetStage(uint32_t set, double ratio) : set_(set), ratio_(ratio) {}

  void block(Vector<double>& samples, bool last) override {
    const size_t span = kSpan[set_];
    // The state says where the first output stands: half a kernel in.
    if (state_.points == 0) {
      state_.resize(span + 2, samples.complex != 0);
      std::fill_n(state_.data, state_.scalars(), 0.0);
      state_.data[0] = static_cast<double>(span) / 2;
    }
    taken_ += static_cast<uint64_t>(samples.points);
    if (last) append_zeros(samples, (span + 1) / 2);
    Vector<double> out;
    check(dspd_rsmp2(&samples, &out, 1, set_, ratio_, &state_), "the resampled block");
    samples.swap(out);
    made_ += static_cast<uint64_t>(samples.points);
    if (last) drop_surplus(samples, taken_, made_, ratio_);
  }

 private:
  uint32_t set_;
  double ratio_;
  Vector<double> state_;
  uint64_t taken_ = 0, made_ = 0;
};

class DecimateStage : public Stage {
 public:
  explicit DecimateStage(int32_t factor) : factor_(factor) {}
  void block(Vector<double>& samples, bool) override {
    Vector<double> out;
    check(dspd_deci(&samples, &out, factor_, &offset_), "the decimated block");
    samples.swap(out);
  }

 private:
  int32_t factor_;
  Vector<double> offset_;
};

// Input rate over output rate.
double ratio_of(const Options& o, const SourceInfo& info) {
  if (o.to_rate) {
    // A whole rate whose spacing was kept in single precision is that whole rate.
    const double rate = 1 / info.delta, whole = std::round(rate);
    return (std::abs(rate - whole) <= whole * 0x1p-23 ? whole : rate) / *o.to_rate;
  }
  const size_t slash = o.ratio.find('/');
  const std::optional<double> over = to_number(o.ratio.substr(0, slash)),
                              under = slash == o.ratio.npos ? 1 : to_number(o.ratio.substr(slash + 1));
  return over && under ? *over / *under : NAN;
}

void run_resample(Options& o) {
  if (o.ratio.empty() && !o.to_rate) throw UsageError("--to-rate or --ratio is required");
  format_of(o.output);
  o.input.all_channels = true;
  const std::unique_ptr<Source> source = open_source(o.input);
  const SourceInfo& info = source->info();
  const double ratio = ratio_of(o, info);
  if (!(ratio >= 1 / kMostRatio && ratio <= kMostRatio)) {
    const double rate = 1 / info.delta;
    throw UsageError(o.to_rate ? format("--to-rate %g: must be %g to %g, a thousandth to a thousand times the rate of ",
                                        *o.to_rate, rate / kMostRatio, rate * kMostRatio) +
                                     info.name
                               : "--ratio " + in_quotes(o.ratio) + ": must be 0.001 to 1000, a number or P/Q");
  }
  const std::shared_ptr<const Kernel> kernel = o.set ? nullptr : std::make_shared<const Kernel>(o, ratio);
  const size_t frames = std::min(kBlockFrames, static_cast<size_t>(std::ceil(kBlockFrames * ratio)));
  process(
      *source, frames, o.to_rate ? 1 / *o.to_rate : info.delta * ratio,
      [&] {
        Stages stages;
        if (!o.set) {
          stages.push_back(std::make_unique<ResampleStage>(kernel, ratio));
          return stages;
        }
        if (ratio > 1 && !o.unfiltered) stages.push_back(std::make_unique<FilterStage>(low_pass_before(ratio)));
        stages.push_back(std::make_unique<SetStage>(*o.set, ratio));
        return stages;
      },
      o.output);
}

void run_decimate(Options& o) {
  format_of(o.output);
  if (o.filtered && o.factor > kMostRatio)
    throw UsageError(format("--factor %d: must be 1 to %g with --filter", o.factor, kMostRatio));
  o.input.all_channels = true;
  const std::unique_ptr<Source> source = open_source(o.input);
  process(
      *source, kBlockFrames, source->info().delta * o.factor,
      [&] {
        Stages stages;
        if (o.filtered && o.factor > 1) stages.push_back(std::make_unique<FilterStage>(low_pass_before(o.factor)));
        stages.push_back(std::make_unique<DecimateStage>(o.factor));
        return stages;
      },
      o.output);
}

}  // namespace

void add_resample(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("resample", "Change the sampling rate by any ratio");
  add_input_options(*command, o->input);
  add_output_options(*command, o->output);
  const char* group = "Resampling";
  CLI::Option* to_rate = command->add_option("--to-rate", o->to_rate, "New samples per second")
                             ->check(number_above_zero)
                             ->type_name("R")
                             ->group(group);
  command->add_option("--ratio", o->ratio, "Old rate over new rate, a number or P/Q, instead")
      ->excludes(to_rate)
      ->type_name("X")
      ->group(group);
  CLI::Option* attenuation = command->add_option("--attenuation", o->attenuation, "dB by which aliases are stopped")
                                 ->check(CLI::Range(20, 200))
                                 ->capture_default_str()
                                 ->type_name("DB")
                                 ->group(group);
  CLI::Option* transition = command
                                ->add_option("--transition", o->transition,
                                             "Width of the edge below half of the lower rate, in parts of that rate")
                                ->check(CLI::Range(0.001, 0.49))
                                ->capture_default_str()
                                ->type_name("X")
                                ->group(group);
  CLI::Option* set = command->add_option("--set", o->set, "A short fixed kernel instead, 0 to 4")
                         ->check(CLI::Range(0u, kSets - 1))
                         ->excludes(attenuation)
                         ->excludes(transition)
                         ->type_name("N")
                         ->group(group);
  command->add_flag("--no-filter", o->unfiltered, "With --set: without the low-pass that goes ahead of a lower rate")
      ->needs(set)
      ->group(group);
  command->footer(
      "The result keeps its place in time, and is flat up to the edge below half of the lower rate. A fixed kernel is\n"
      "faster and flat to 0.3 of the old rate at best (set 3); ahead of a lower rate it needs a low-pass, flat to 0.4 "
      "of\n"
      "the new rate.\n"
      "\n"
      "Examples:\n"
      "  sigvex resample ecg.dsp ecg250.dsp --to-rate 250\n"
      "  sigvex resample voice.wav voice44.flac --ratio 480/441");
  command->callback([o] { run_resample(*o); });
}

void add_decimate(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("decimate", "Keep every Nth sample");
  add_input_options(*command, o->input);
  add_output_options(*command, o->output);
  const char* group = "Decimation";
  command->add_option("--factor", o->factor, "Keep one of N samples, from the first on")
      ->check(CLI::Range(1, 1000000))
      ->required()
      ->type_name("N")
      ->group(group);
  command->add_flag("--filter", o->filtered, "Remove what would be folded down first, flat to 0.4 of the new rate")
      ->group(group);
  command->footer("Example:\n  sigvex decimate fast.wav slow.csv --factor 10 --filter");
  command->callback([o] { run_decimate(*o); });
}

}  // namespace sigvex_tool
