#include "report.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "rows.h"
#include "text.h"

namespace sigvex_tool {
namespace {

double decibels(double ratio) { return 10 * std::log10(ratio); }

// Total harmonic distortion: the harmonics together, relative to the fundamental.
double distortion(const Measurement& m) {
  double sum = 0;
  for (const Line& h : m.harmonics) sum += h.power;
  return std::sqrt(sum / m.lines[0].power);
}

// Decimals that show a hundredth of a bin.
int frequency_decimals(const Spectrum& s) {
  return std::clamp(2 - static_cast<int>(std::floor(std::log10(s.spacing))), 0, 12);
}

bool alone(const Spectrum& s, const Line& line) { return s.stands_alone(line.bin); }

const char* detrend_name(Detrend kind) {
  return kind == Detrend::None ? "nothing removed" : kind == Detrend::Mean ? "mean removed" : "linear trend removed";
}

std::string averaging_text(const Measurement& m) {
  std::string text = std::string(", ") + m.analysis.averaging.words;
  if (m.analysis.length > 0) text += format(" over %g", m.analysis.length);
  if (m.spectrum.reference)
    text += format(" with %.6g ", m.spectrum.frequency(static_cast<double>(*m.spectrum.reference))) +
            m.source.frequency_unit();
  return text;
}

std::string heading(const Measurement& m) {
  const Spectrum& s = m.spectrum;
  const SourceInfo& info = m.source;
  std::string text = info.name + format(": %llu points", static_cast<unsigned long long>(s.used));
  if (info.time_unit == "sample") text += ", sampling rate not known (--rate)";
  else
    text += format(" at %.7g ", 1 / info.delta) + info.frequency_unit() +
            format(", %.6g ", static_cast<double>(s.used) * info.delta) + info.time_unit;
  text += s.complex ? ", complex\n" : "\n";
  if (s.frames == 1) text += format("1 frame of %zu points", s.points);
  else
    text += format("%llu frames of %zu points (%.6g ", static_cast<unsigned long long>(s.frames), s.points,
                   static_cast<double>(s.points) * info.delta) +
            info.time_unit +
            format("), overlap %.3g %%, as good as %.1f independent ones", 100 * m.analysis.overlap, s.independent);
  if (s.averaging != Averaging::Power || m.analysis.length > 0) text += averaging_text(m);
  text += ", window " + m.window;
  if (m.analysis.parameter) text += format(" (parameter %g)", *m.analysis.parameter);
  return text + ", " + detrend_name(m.analysis.detrend) + (s.single ? ", single precision\n\n" : "\n\n");
}

// One pattern for all levels of a table: the weakest shown with three digits, or all with an exponent if that is too
// wide.
std::string level_pattern(const Measurement& m, const Levels& levels) {
  if (levels.in_decibels()) return "%.2f";
  double low = HUGE_VAL, high = 0;
  for (const std::vector<Line>* list : {&m.lines, &m.harmonics})
    for (const Line& line : *list) {
      const double level = levels.of(line.power, alone(m.spectrum, line));
      low = std::min(low, level), high = std::max(high, level);
    }
  if (!(low > 0 && high < 1e6 && high < 1e5 * low && low > 1e-6)) return "%.4e";
  return format("%%.%df", std::max(0, 2 - static_cast<int>(std::floor(std::log10(low)))));
}

void add_row(Rows& rows, const Measurement& m, const Levels& levels, const std::string& pattern,
             const std::string& name, const Line& line, const std::string& remark) {
  rows.add({name, format("%.*f", frequency_decimals(m.spectrum), line.frequency), m.source.frequency_unit(),
            format(pattern.c_str(), levels.of(line.power, alone(m.spectrum, line))), levels.description(),
            format("%+.1f", decibels(line.over_noise)), "dB" + remark + (line.clear ? "" : "  ?")});
}

}  // namespace

std::string table(const Measurement& m, const Levels& levels) {
  const Spectrum& s = m.spectrum;
  const std::string hz = m.source.frequency_unit();
  std::string text = heading(m);
  const std::string pattern = level_pattern(m, levels);
  Rows rows("rrlrlrl");
  rows.add({"peak", "frequency", "", "level", "", "over", "noise"});
  for (size_t k = 0; k < m.lines.size(); ++k) add_row(rows, m, levels, pattern, format("%zu", k + 1), m.lines[k], "");
  for (const Line& h : m.harmonics)
    add_row(rows, m, levels, pattern, format("x%d", h.harmonic), h,
            format("  %+.1f dB to peak 1", decibels(h.power / m.lines[0].power)));
  text += m.lines.empty() ? "no peak\n" : rows.text();
  if (!m.harmonics.empty())
    text += format("harmonic distortion %.4g %% (%d harmonics)\n", 100 * distortion(m),
                   static_cast<int>(m.harmonics.size()));

  const bool doubt = std::any_of(m.lines.begin(), m.lines.end(), [](const Line& l) { return !l.clear; }) ||
                     std::any_of(m.harmonics.begin(), m.harmonics.end(), [](const Line& l) { return !l.clear; });
  if (doubt)
    text += format("?  may be noise: a peak stands out clearly from %.1f dB over the noise around it\n",
                   decibels(m.detection));
  text += format("\nnoise floor      %.4g ", levels.of_noise(m.floor)) + levels.description() +
          format(" a bin, %.4g ", levels.amplitude_density(m.floor / s.noise_bias())) + levels.density_unit() +
          format(" (median of %.6g to %.6g ", s.frequency(static_cast<double>(m.band.first)),
                 s.frequency(static_cast<double>(m.band.last))) +
          hz + ")\n";
  if (s.averaging != Averaging::Power)
    text += format("averaging        %s: shows noise %+.1f dB off its mean power; the density is corrected for that\n",
                   m.analysis.averaging.words, decibels(s.noise_bias()));
  text += format("bin spacing      %.6g ", s.spacing) + hz + "\n";
  text += format("noise bandwidth  %.6g ", s.enbw * s.spacing) + hz + format(" (%.6g bins)\n", s.enbw);
  return text;
}

std::string json(const Measurement& m, const Levels& levels) {
  using nlohmann::ordered_json;
  const Spectrum& s = m.spectrum;
  const auto number = [](double x) { return std::isfinite(x) ? ordered_json(x) : ordered_json(nullptr); };
  const auto entry = [&](const Line& line) {
    ordered_json e{{"frequency", line.frequency},
                   {"level", number(levels.of(line.power, alone(s, line)))},
                   {"unit", levels.unit()},
                   {"over_noise_db", number(decibels(line.over_noise))},
                   {"clear", line.clear}};
    if (line.harmonic) e["order"] = line.harmonic;
    return e;
  };
  ordered_json out;
  out["file"] = m.source.name;
  out["points"] = s.used;
  out["rate"] = 1 / m.source.delta;
  out["complex"] = s.complex;
  out["frames"] = {
      {"count", s.frames}, {"points", s.points}, {"overlap", m.analysis.overlap}, {"independent", s.independent}};
  out["averaging"] = {{"name", m.analysis.averaging.name}, {"noise_bias_db", decibels(s.noise_bias())}};
  if (m.analysis.length > 0) out["averaging"]["length"] = m.analysis.length;
  if (s.reference) out["averaging"]["reference"] = s.frequency(static_cast<double>(*s.reference));
  out["window"] = {{"name", m.window}, {"enbw_bins", s.enbw}, {"enbw", s.enbw * s.spacing}};
  if (m.analysis.parameter) out["window"]["parameter"] = *m.analysis.parameter;
  out["scale"] = m.scale;
  out["unit"] = levels.unit();
  out["frequency_unit"] = m.source.frequency_unit();
  out["bin_spacing"] = s.spacing;
  out["noise_floor"] = {{"level", number(levels.of_noise(m.floor))},
                        {"unit", levels.unit()},
                        {"density", number(levels.amplitude_density(m.floor / s.noise_bias()))},
                        {"density_unit", levels.density_unit()},
                        {"from", s.frequency(static_cast<double>(m.band.first))},
                        {"to", s.frequency(static_cast<double>(m.band.last))}};
  out["clear_from_db"] = decibels(m.detection);
  out["peaks"] = ordered_json::array();
  for (const Line& line : m.lines) out["peaks"].push_back(entry(line));
  if (!m.harmonics.empty()) {
    out["harmonics"] = ordered_json::array();
    for (const Line& line : m.harmonics) out["harmonics"].push_back(entry(line));
    out["harmonic_distortion"] = distortion(m);
  }
  return out.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace sigvex_tool
