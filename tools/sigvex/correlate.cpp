// sigvex correlate: how a recording resembles itself, or another one, some time later.
#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>

#include "choices.h"
#include "commands.h"
#include "correlation.h"
#include "errors.h"
#include "output.h"
#include "plot.h"
#include "result.h"
#include "rows.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Options {
  InputOptions input;
  std::string second, with, scale = "coefficient", detrend = "mean";
  std::optional<double> max_lag;
  double min_lag = 0;
  bool unbiased = false, circular = false;
  int peaks = 5;
  ResultOptions result;
};

constexpr uint64_t kUsualReach = 1 << 17, kFarthestReach = 1 << 26;

struct Result {
  SourceInfo a, b;
  uint64_t points_a = 0, points_b = 0;
  bool automatic = false;  // of a signal with itself
  Correlation correlation;
  std::vector<LagPeak> peaks;
  double rms = 0;  // over the lags shown
  std::string name, unit;

  double lag(size_t k) const { return static_cast<double>(correlation.first + static_cast<int64_t>(k)) * a.delta; }
  double last_lag() const { return lag(correlation.values.size() - 1); }
};

void refuse_differing(const SourceInfo& a, const SourceInfo& b) {
  if (!(a.delta > 0) || !std::isfinite(a.delta))
    throw DataError(a.name + format(": the spacing of the samples is %g: give --rate or --delta", a.delta));
  if (a.time_unit != b.time_unit || !(std::fabs(a.delta - b.delta) <= 1e-9 * a.delta))
    throw DataError(b.name + format(": its samples are %.10g ", b.delta) + b.time_unit + " apart, those of " + a.name +
                    format(" %.10g ", a.delta) + a.time_unit + ": resample one of them, or give --rate for both");
}

uint64_t reach_of(const Options& o, const Result& r) {
  const uint64_t shorter = std::min(r.points_a, r.points_b), longer = std::max(r.points_a, r.points_b);
  const uint64_t farthest = o.circular ? shorter / 2 : longer - 1;
  // Far lags have few pairs, so that dividing by their number lifts noise.
  if (!o.max_lag) return std::min(o.unbiased ? std::min(farthest, shorter / 2) : farthest, kUsualReach);
  const double wanted = std::floor(*o.max_lag / r.a.delta * (1 + 1e-7));  // a lag of so many samples, as rounded
  if (!(wanted <= static_cast<double>(kFarthestReach)))
    throw UsageError(
        format("--max-lag %g: must be 0 to %g ", *o.max_lag, static_cast<double>(kFarthestReach) * r.a.delta) +
        r.a.time_unit + ", 2^26 samples");
  return std::min(farthest, static_cast<uint64_t>(wanted));
}

std::string unit_of(const Options& o, const Result& r) {
  if (o.scale == "coefficient") return "";
  const std::string a = r.a.unit.empty() ? "units" : r.a.unit, b = r.b.unit.empty() ? "units" : r.b.unit;
  return a == b ? a + "^2" : a + "*" + b;
}

// Reads the signals and correlates them.
Result measure(const Options& o) {
  Result r;
  if (o.max_lag && o.min_lag > *o.max_lag) throw UsageError("--min-lag must not be above --max-lag");
  InputOptions input = o.input;
  const bool two_files = !o.second.empty(), in_one_file = !two_files && !o.with.empty();
  r.automatic = !two_files && !in_one_file;
  if (in_one_file) {
    if (!input.imag.empty()) throw UsageError("--with excludes --imag");
    input.imag = o.with;
    input.pair = true;
  }
  const std::unique_ptr<Source> source = open_source(input);
  r.a = r.b = source->info();
  Spool a(r.a.complex), other(r.a.complex);
  Spool* b = r.automatic ? &a : &other;
  if (two_files) {
    InputOptions more = o.input;
    more.file = o.second;
    if (!o.with.empty()) more.part = o.with;
    const std::unique_ptr<Source> beside = open_source(more);
    r.b = beside->info();
    refuse_differing(r.a, r.b);
    other = Spool(r.b.complex);
    spool(*beside, {b});
  }
  refuse_differing(r.a, r.b);
  spool(*source, in_one_file ? std::vector<Spool*>{&a, b} : std::vector<Spool*>{&a});
  r.points_a = a.frames();
  r.points_b = b->frames();
  for (const auto& [points, info] : {std::pair{r.points_a, &r.a}, {r.points_b, &r.b}})
    if (points == 0) throw DataError(info->name + ": holds no sample");
  if (o.circular && r.points_a != r.points_b)
    throw DataError(format("--circular: the signals have %llu and %llu points, but must be periods of one length",
                           static_cast<unsigned long long>(r.points_a), static_cast<unsigned long long>(r.points_b)));
  const Detrend trend = o.detrend == "none" ? Detrend::None : o.detrend == "mean" ? Detrend::Mean : Detrend::Linear;
  a.remove(trend);
  if (b != &a) b->remove(trend);

  CorrelationPlan plan;
  plan.reach = reach_of(o, r);
  plan.circular = o.circular;
  plan.unbiased = o.unbiased;
  plan.scale = o.scale == "sum"    ? CorrelationPlan::Sum
               : o.scale == "mean" ? CorrelationPlan::Mean
                                   : CorrelationPlan::Coefficient;
  r.correlation = correlate(a, *b, plan);
  const size_t wanted = static_cast<size_t>(o.peaks);
  // Of itself a signal has a mirrored half and a lag 0 that say nothing.
  const double least = o.min_lag / r.a.delta;
  r.peaks = find_lags(r.correlation, wanted,
                      [&](double lag) { return r.automatic ? lag >= std::max(1.0, least) : std::fabs(lag) >= least; });
  if (r.automatic) {
    auto& values = r.correlation.values;
    values.erase(values.begin(), values.begin() - r.correlation.first);
    r.correlation.first = 0;
  }
  double sum = 0;
  for (const auto& z : r.correlation.values) sum += std::norm(z);
  r.rms = std::sqrt(sum / static_cast<double>(r.correlation.values.size()));
  r.name = r.a.name;
  if (in_one_file)
    r.name += ", " + (r.a.labels.empty() ? format("%d", std::max(1, o.input.channel)) : r.a.labels[0]) + " with " +
              (r.a.labels.empty() ? o.with : r.a.labels[1]);
  if (two_files) r.name += " with " + r.b.name;
  r.unit = unit_of(o, r);
  return r;
}

std::string description(const Options& o) {
  return (o.scale == "sum" ? "sum of products" : o.scale == "mean" ? "mean product" : std::string("coefficient"));
}

std::string number(const Options& o, double x) {
  return o.scale == "coefficient" ? format("%.4f", x) : format("%.4g", x);
}

std::string table(const Options& o, const Result& r) {
  const bool known = r.a.time_unit != "sample";
  std::string text = r.name + format(": %llu", static_cast<unsigned long long>(r.points_a));
  if (r.points_b != r.points_a) text += format(" and %llu", static_cast<unsigned long long>(r.points_b));
  text += " points";
  text += known ? format(" at %.7g ", 1 / r.a.delta) + r.a.frequency_unit() : ", sampling rate not known (--rate)";
  text += std::string("\n") + (r.automatic ? "autocorrelation, " : "cross-correlation, ") + description(o) +
          (o.unbiased ? ", unbiased" : "") + (o.circular ? ", circular" : "") +
          (o.detrend == "none"   ? ""
           : o.detrend == "mean" ? ", mean removed"
                                 : ", linear trend removed") +
          format(", lags %.6g to %.6g ", r.lag(0), r.last_lag()) + r.a.time_unit + "\n\n";

  const bool complex = r.correlation.complex;
  const int decimals = std::clamp(3 - static_cast<int>(std::floor(std::log10(r.a.delta))), 0, 15);
  Rows rows("rrlrrlr");
  rows.add({"peak", "lag", "", "samples", complex ? "magnitude" : description(o), "", complex ? "phase" : ""});
  for (size_t k = 0; k < r.peaks.size(); ++k) {
    LagPeak p = r.peaks[k];
    if (std::fabs(p.lag) < 0.0005) p.lag = 0;  // not -0.000
    rows.add({format("%zu", k + 1), format("%.*f", decimals, p.lag * r.a.delta), r.a.time_unit, format("%.3f", p.lag),
              number(o, complex ? std::abs(p.value) : p.value.real()), r.unit,
              complex ? format("%.1f deg", std::arg(p.value) * 180 / M_PI) : ""});
  }
  text += r.peaks.empty() ? "no peak\n" : rows.text();
  text += "\nover all lags    " + number(o, r.rms) + (r.unit.empty() ? "" : " " + r.unit) + " rms\n";
  if (!r.automatic) text += "A positive lag: the second signal comes later.\n";
  return text;
}

std::string json(const Options& o, const Result& r) {
  using nlohmann::ordered_json;
  ordered_json out{{"files", {r.a.name}},    {"points", {r.points_a, r.points_b}},
                   {"rate", 1 / r.a.delta},  {"time_unit", r.a.time_unit},
                   {"scale", o.scale},       {"unbiased", o.unbiased},
                   {"circular", o.circular}, {"unit", r.unit}};
  if (!o.second.empty()) out["files"].push_back(r.b.name);
  out["lags"] = {{"from", r.lag(0)}, {"to", r.last_lag()}, {"step", r.a.delta}};
  out["rms"] = r.rms;
  out["peaks"] = ordered_json::array();
  for (const LagPeak& p : r.peaks) {
    ordered_json peak{{"lag", p.lag * r.a.delta}, {"samples", p.lag}, {"value", p.value.real()}};
    if (r.correlation.complex) peak["imaginary"] = p.value.imag();
    out["peaks"].push_back(peak);
  }
  return out.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

void write_values(OutputFile& out, const Options& o, const Result& r) {
  const auto& values = r.correlation.values;
  const bool complex = r.correlation.complex;
  if (o.result.format == "csv") {
    std::vector<double> lag, real, imaginary;
    for (size_t k = 0; k < values.size(); ++k) {
      lag.push_back(r.lag(k));
      real.push_back(values[k].real());
      imaginary.push_back(values[k].imag());
    }
    const std::string name = description(o) + (r.unit.empty() ? "" : " (" + r.unit + ")"),
                      time = "lag (" + r.a.time_unit + ")";
    if (complex) write_csv(out, {time, name + " real", "imaginary"}, {&lag, &real, &imaginary});
    else write_csv(out, {time, name}, {&lag, &real});
    return;
  }
  Vector<double> v(values.size(), complex);
  v.delta = r.a.delta;
  for (size_t k = 0; k < values.size(); ++k) {
    v.data[complex ? 2 * k : k] = values[k].real();
    if (complex) v.data[2 * k + 1] = values[k].imag();
  }
  write_vector(out, v, o.result.format, false);
}

Curve curve_of(const Options& o, const Result& r) {
  Curve curve;
  curve.axis = Curve::Linear;
  for (size_t k = 0; k < r.correlation.values.size(); ++k) {
    const std::complex<double> z = r.correlation.values[k];
    curve.x.push_back(r.lag(k));
    curve.y.push_back(r.correlation.complex ? std::abs(z) : z.real());
  }
  curve.title = r.name;
  curve.x_label = r.a.time_unit;
  curve.y_label = (r.correlation.complex ? "magnitude, " : "") + description(o) + (r.unit.empty() ? "" : ", " + r.unit);
  if (!r.peaks.empty()) {
    const LagPeak& p = r.peaks[0];
    curve.marks.push_back({p.lag * r.a.delta, r.correlation.complex ? std::abs(p.value) : p.value.real(),
                           format("%.6g ", p.lag * r.a.delta) + r.a.time_unit});
  }
  return curve;
}

void run_correlate(const Options& o) {
  if (o.unbiased && (o.circular || o.scale == "sum"))
    throw UsageError("--unbiased is for --scale mean and coefficient, without --circular");
  refuse_one_place_for_both(o.result);
  if (o.second == "-" && o.input.file == "-") throw UsageError("the standard input cannot be both recordings");
  const Result r = measure(o);
  const auto write = [&](OutputFile& out) {
    if (o.result.format == "table") out.write(table(o, r));
    else if (o.result.format == "json") out.write(json(o, r));
    else write_values(out, o, r);
  };
  deliver(o.result, write, [&] { return std::vector{curve_of(o, r)}; });
}

}  // namespace

void add_correlate(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command =
      program.add_subcommand("correlate", "Correlate a recording with itself (periods) or with another one (delays)");
  add_input_options(*command, o->input);
  command->add_option("SECOND", o->second, "Second recording, of the same sampling rate; - is the standard input");
  const char* group = "Correlation";
  command
      ->add_option("--with", o->with,
                   "Channel, record or column to correlate with: of SECOND, or of FILE where there is no SECOND")
      ->type_name("NAME|N")
      ->group(group);
  command->add_option("--max-lag", o->max_lag, "Longest lag, seconds (default: all there are, at most 131072 samples)")
      ->check(number_from_zero)
      ->type_name("T")
      ->group(group);
  command->add_option("--min-lag", o->min_lag, "Shortest lag to list as a peak, seconds")
      ->check(number_from_zero)
      ->type_name("T")
      ->group(group);
  command
      ->add_option("--scale", o->scale,
                   "coefficient (-1 to 1: over the energies), mean (product of a sample pair) or sum (of the products)")
      ->check(CLI::IsMember({"coefficient", "mean", "sum"}))
      ->capture_default_str()
      ->type_name("SCALE")
      ->group(group);
  command
      ->add_flag("--unbiased", o->unbiased,
                 "Divide by the pairs that a lag has, which fall off towards long lags; lags then reach half way")
      ->group(group);
  command->add_flag("--circular", o->circular, "Take the recordings for one period each of periodic signals")
      ->group(group);
  command->add_option("--detrend", o->detrend, "Removed from each signal: none, mean, linear (mean and slope)")
      ->check(CLI::IsMember({"none", "mean", "linear"}))
      ->capture_default_str()
      ->type_name("WHAT")
      ->group(group);
  const char* result = "Result";
  command->add_option("--peaks", o->peaks, "Number of peaks to list, highest magnitude first")
      ->check(CLI::Range(0, 1000000))
      ->capture_default_str()
      ->type_name("N")
      ->group(result);
  add_result_options(*command, o->result, result,
                     {"table", "json", "csv", "dsp", "binary", "gnuplot", "trace", "summary"},
                     "table or json: the peaks; csv: lag and value; dsp (\"#DSP\" text), binary, gnuplot, trace, "
                     "summary: all values as a vector, from the first lag on",
                     "Draw the correlation");
  command->footer(
      "With one signal: its autocorrelation, whose peaks are its periods. With two: a peak at a positive lag says that "
      "the\n"
      "second comes that much later. Peaks are refined between the samples.\n"
      "\n"
      "Examples:\n"
      "  sigvex correlate ecg.dsp --min-lag 0.3 --max-lag 3\n"
      "  sigvex correlate stereo.wav --with 2 --max-lag 0.01\n"
      "  sigvex correlate sent.wav received.wav --plot delay.png");
  command->callback([o] { run_correlate(*o); });
}

}  // namespace sigvex_tool
