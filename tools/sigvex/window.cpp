// sigvex window: what a window does to a spectrum, in figures and pictures.
#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>

#include "choices.h"
#include "commands.h"
#include "errors.h"
#include "output.h"
#include "plot.h"
#include "result.h"
#include "rows.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct Options {
  std::string name = "all";
  ResultOptions result;
  int32_t points = 1024;
};

struct Figure {
  const char *key, *heading, *unit;
  uint32_t which;
  int decimals;
};
constexpr Figure kFigures[] = {
    {"coherent_gain", "gain", "", DSP_WINMETRIC_COHERENT_GAIN, 4},
    {"enbw", "ENBW", "bins", DSP_WINMETRIC_ENBW, 4},
    {"scalloping_loss", "scalloping", "dB", DSP_WINMETRIC_SCALLOPING_LOSS, 4},
    {"worst_case_loss", "worst case", "dB", DSP_WINMETRIC_WORST_CASE_LOSS, 3},
    {"width_3db", "-3 dB", "bins", DSP_WINMETRIC_WIDTH_3DB, 3},
    {"width_6db", "-6 dB", "bins", DSP_WINMETRIC_WIDTH_6DB, 3},
    {"main_lobe", "main lobe", "bins", DSP_WINMETRIC_MAIN_LOBE, 2},
    {"side_lobe", "side lobe", "dB", DSP_WINMETRIC_SIDE_LOBE, 1},
    {"roll_off", "roll-off", "dB/oct", DSP_WINMETRIC_ROLL_OFF, 0},
    {"overlap_50", "r(50 %)", "", DSP_WINMETRIC_OVERLAP_50, 3},
    {"overlap_75", "r(75 %)", "", DSP_WINMETRIC_OVERLAP_75, 3},
};

// Nothing where the window has no such figure at that length.
std::optional<double> figure_of(uint32_t type, const Figure& figure, int32_t points) {
  double value = 0;
  if (dsp_window_metric(type, points, figure.which, &value) < 0) return std::nullopt;
  return value;
}

// Without a -0.0000.
std::string shown(double value, int decimals) {
  return format("%.*f", decimals, std::fabs(value) < 0.5 * std::pow(10, -decimals) ? 0.0 : value);
}

std::string table(const std::vector<uint32_t>& types, int32_t points) {
  Rows rows("l" + std::string(std::size(kFigures), 'r'));
  std::vector<std::string> headings = {"window"}, units = {""};
  for (const Figure& figure : kFigures) {
    headings.emplace_back(figure.heading);
    units.emplace_back(figure.unit);
  }
  rows.add(headings);
  rows.add(units);
  for (uint32_t type : types) {
    std::vector<std::string> row = {window_name(type)};
    for (const Figure& figure : kFigures) {
      const std::optional<double> value = figure_of(type, figure, points);
      row.push_back(value ? shown(*value, figure.decimals) : "-");
    }
    rows.add(row);
  }
  return format("windows of %d points\n\n", points) + rows.text();
}

std::string json(const std::vector<uint32_t>& types, int32_t points) {
  using nlohmann::ordered_json;
  ordered_json out{{"points", points}, {"windows", ordered_json::array()}};
  for (uint32_t type : types) {
    ordered_json window{{"name", window_name(type)}, {"type", type}};
    for (const Figure& figure : kFigures) {
      const std::optional<double> value = figure_of(type, figure, points);
      window[figure.key] = value ? ordered_json(*value) : ordered_json(nullptr);
    }
    out["windows"].push_back(window);
  }
  return out.dump(2) + "\n";
}

// The weights over a frame, with the peak 1 in its middle.
void make_weights(Vector<double>& weights, uint32_t type, int32_t points) {
  weights.resize(static_cast<size_t>(points), false);
  std::fill_n(weights.data, weights.scalars(), 1.0);
  if (dspi_window(&weights, type, DSP_WINFLAG_PEAK | DSP_WINFLAG_CENTRED) < 0)
    throw DataError(format("%s has no %d points", window_name(type).c_str(), points));
}

// The weights, and their transform between the bins of the frame, as far as the nearest 24 of them.
std::vector<Curve> curves_of(uint32_t type, int32_t points) {
  constexpr size_t kSteps = 32, kBins = 24;
  Vector<double> weights;
  make_weights(weights, type, points);
  Curve shape, spectrum;
  for (int32_t k = 0; k < points; ++k) {
    shape.x.push_back(k);
    shape.y.push_back(weights.data[k]);
  }
  shape.title = spectrum.title = window_name(type) + format(", %d points", points);
  shape.x_label = "samples";
  shape.y_label = "weight";
  shape.axis = Curve::Linear;

  Vector<double> padded(weights.scalars() * kSteps, false);
  std::fill(std::copy_n(weights.data, weights.scalars(), padded.data), padded.data + padded.scalars(), 0.0);
  check(dspi_rdft(&padded), "the window's spectrum");
  check(dspi_magsq(&padded), "the window's spectrum");
  const size_t shown = std::min(static_cast<size_t>(padded.points), kBins * kSteps + 1);
  for (size_t k = 0; k < shown; ++k) {
    spectrum.x.push_back(static_cast<double>(k) / kSteps);
    spectrum.y.push_back(10 * std::log10(padded.data[k] / padded.data[0]));
  }
  spectrum.x_label = "bins";
  spectrum.y_label = "gain in dB";
  return {shape, spectrum};
}

void run_window(const Options& o) {
  const bool one = o.name != "all";
  const std::string& format = o.result.format;
  std::vector<uint32_t> types;
  if (one) types = {window_type(o.name, "NAME")};
  else
    for (uint32_t type = 0; type < kWindowTypes; ++type) types.push_back(type);
  if (!one && (!o.result.plot.empty() || is_vector_format(format)))
    throw UsageError("NAME is required for " + (o.result.plot.empty() ? "--format " + format : "--plot"));
  refuse_one_place_for_both(o.result);
  const auto write = [&](OutputFile& out) {
    if (is_vector_format(format)) {
      Vector<double> weights;
      make_weights(weights, types[0], o.points);
      write_vector(out, weights, format, false);
    } else {
      out.write(format == "json" ? json(types, o.points) : table(types, o.points));
    }
  };
  deliver(o.result, write, [&] { return curves_of(types[0], o.points); });
}

}  // namespace

void add_window(CLI::App& program) {
  auto o = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("window", "Show the figures of merit of one window or of all 32");
  command->add_option("NAME", o->name, "Window: all, or any of " + window_names() + ", or another spelling of one");
  command->add_option("--points", o->points, "Points of the frame")
      ->check(CLI::Range(2, 1 << 20))
      ->capture_default_str()
      ->type_name("N");
  add_result_options(*command, o->result, "Result", {"table", "json", "dsp", "binary", "gnuplot", "trace", "summary"},
                     "table or json: the figures; dsp (\"#DSP\" text), binary, gnuplot, trace, summary: the weights of "
                     "one window, peak 1, as a vector",
                     "Draw shape and spectrum of one window");
  command->footer(
      "gain         mean of the weights: what a line keeps of its amplitude\n"
      "ENBW         equivalent noise bandwidth: of how many bins one takes in the noise\n"
      "scalloping   loss of a line midway between two bins; worst case: with that of the noise bandwidth\n"
      "-3 dB, -6 dB, main lobe: width of a line; side lobe: the highest beyond it; roll-off: how they fall\n"
      "r            correlation of frames that overlap by so much\n"
      "\n"
      "Examples:\n"
      "  sigvex window\n"
      "  sigvex window FlatTop --plot -\n"
      "  sigvex window Kaiser90 --points 4096 --plot kaiser.svg --format binary --output kaiser.dsp");
  command->callback([o] { run_window(*o); });
}

}  // namespace sigvex_tool
