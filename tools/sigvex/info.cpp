// sigvex info: what a file holds.
#include <algorithm>
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

using nlohmann::ordered_json;

struct Options {
  InputOptions input;
  std::string format = "table";
};

struct Statistic {
  const char* name;
  int32_t (*compute)(const dsp_vector*, dsp_vector*);
  bool for_complex;
};
constexpr Statistic kStatistics[] = {
    {"minimum", dsps_min, false},   {"maximum", dsps_max, false},   {"median", dsps_median, false},
    {"mean", dsps_mean, true},      {"rms", dsps_rms, true},        {"deviation", dsps_samp_stddev, true},
    {"skewness", dsps_skew, false}, {"excess", dsps_excess, false},
};

ordered_json describe(const SourceInfo& info, const Vector<double>& v) {
  const auto number = [](double x) { return std::isfinite(x) ? ordered_json(x) : ordered_json(nullptr); };
  ordered_json out;
  out["file"] = info.name;
  out["type"] = info.kind;
  if (info.file_channels > 1) out["channels"] = info.file_channels;
  if (!info.labels.empty()) out["column"] = info.labels[0];
  out["form"] = info.complex ? "complex" : "real";
  out["points"] = v.points;
  out["spacing"] = number(info.delta);
  out["time_unit"] = info.time_unit;
  if (info.time_unit != "sample") {
    out["rate"] = number(1 / info.delta);
    out["duration"] = number(v.points * info.delta);
  }
  if (!info.unit.empty()) out["unit"] = info.unit;
  const auto unusable = std::count_if(v.data, v.data + v.scalars(), [](double x) { return !std::isfinite(x); });
  if (unusable) out["not_finite"] = unusable;
  for (const Statistic& s : kStatistics) {
    if (info.complex && !s.for_complex) continue;
    Vector<double> result;
    check(s.compute(&v, &result), s.name);
    out[s.name] =
        result.complex ? ordered_json({number(result.data[0]), number(result.data[1])}) : number(result.data[0]);
  }
  return out;
}

std::string value_text(const ordered_json& value) {
  if (value.is_null()) return "not finite";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number_integer()) return value.dump();
  if (value.is_array()) return value_text(value[0]) + ", " + value_text(value[1]);
  return format("%.6g", value.get<double>());
}

// The value with its unit, where it has one.
std::string shown(const std::string& key, const ordered_json& all, const SourceInfo& info) {
  const std::string text = value_text(all[key]);
  if (key == "spacing" || key == "duration") return text + " " + info.time_unit;
  if (key == "rate") return text + " " + info.frequency_unit();
  for (const char* level : {"minimum", "maximum", "median", "mean", "rms", "deviation"})
    if (key == level && !info.unit.empty()) return text + " " + info.unit;
  return text;
}

void run_info(const Options& o) {
  const std::unique_ptr<Source> source = open_source(o.input);
  const SourceInfo& info = source->info();
  const std::vector<double> samples = source->read_rest();
  Vector<double> v(samples.size() / info.channels, info.complex);
  std::copy(samples.begin(), samples.end(), v.data);
  v.delta = info.delta;

  const ordered_json all = describe(info, v);
  OutputFile out("-");
  if (o.format == "json") {
    out.write(all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n");
  } else {
    for (const auto& [key, value] : all.items())
      if (key != "time_unit")
        out.write(
            format("%-11s %s\n", key == "not_finite" ? "not finite" : key.c_str(), shown(key, all, info).c_str()));
    out.write(format("%-11s ", "summary"));
    write_vector(out, v, "summary", false);
  }
  out.commit();
}

}  // namespace

void add_info(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("info", "Show what a file holds: type, length, spacing, statistics");
  add_input_options(*command, o->input);
  command->add_option("--format", o->format, "table or json")
      ->check(CLI::IsMember({"table", "json"}))
      ->capture_default_str()
      ->type_name("FORMAT")
      ->group("Result");
  command->footer("Example:\n  sigvex info stereo.wav --channel 2 --from 1.5 --to 3");
  command->callback([o] { run_info(*o); });
}

}  // namespace sigvex_tool
