#include "peaks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "errors.h"
#include "text.h"

namespace sigvex_tool {
namespace {

// Bins either side of the strongest that carry most of a line: more where the lobe is broad.
int half_width(const Spectrum& s) { return s.enbw > 2.5 ? 2 : 1; }

// How well a line at `offset` bins from bin k explains the bins around it: the squared correlation of their powers with
// the lobe's, which the least-squares fit of a line of free level maximises.
double likeness(const Spectrum& s, const Lobe& lobe, size_t k, double offset) {
  double both = 0, square = 0;
  for (int m = -half_width(s); m <= half_width(s); ++m) {
    const ptrdiff_t bin = static_cast<ptrdiff_t>(k) + m;
    if (bin < 0 || bin >= static_cast<ptrdiff_t>(s.power.size())) continue;
    const double w = lobe.power(m - offset);
    both += s.power[static_cast<size_t>(bin)] * w;
    square += w * w;
  }
  return both * both / square;
}

// The offset, in bins, of a line whose strongest bin is k: the best of a grid, refined by golden section.
double line_offset(const Spectrum& s, const Lobe& lobe, size_t k) {
  const double reach = lobe.reach(), step = reach / 16;
  double best = 0, best_likeness = 0;
  for (int g = -16; g <= 16; ++g) {
    const double like = likeness(s, lobe, k, g * step);
    if (like > best_likeness) best = g * step, best_likeness = like;
  }
  constexpr double kGolden = 0.6180339887498949;
  double low = std::max(-reach, best - step), high = std::min(reach, best + step);
  while (high - low > 1e-9) {
    const double a = high - kGolden * (high - low), b = low + kGolden * (high - low);
    if (likeness(s, lobe, k, a) < likeness(s, lobe, k, b)) low = a;
    else high = b;
  }
  return 0.5 * (low + high);
}

Line line_at(const Spectrum& s, const Lobe& lobe, size_t k) {
  Line line;
  line.bin = k;
  // Frequency 0 and half the rate of a real signal are lines on their bins or none.
  const double offset = !s.complex && s.stands_alone(k) ? 0 : line_offset(s, lobe, k);
  line.frequency = s.frequency(static_cast<double>(k) + offset);
  line.power = s.power[k] / lobe.power(offset);
  return line;
}

bool is_local_maximum(const Spectrum& s, size_t k) {
  const size_t n = s.power.size();
  // A two-sided spectrum is a circle.
  const double before = k > 0 ? s.power[k - 1] : s.complex ? s.power[n - 1] : -1;
  const double after = k + 1 < n ? s.power[k + 1] : s.complex ? s.power[0] : -1;
  return s.power[k] > before && s.power[k] >= after;
}

double leaked_amplitude(const Spectrum& s, const Lobe& lobe, const std::vector<Line>& lines, size_t k) {
  double sum = 0;
  const double f = s.frequency(static_cast<double>(k));
  for (const Line& line : lines) {
    sum += std::sqrt(line.power) * lobe.leakage((f - line.frequency) / s.spacing);
    if (!s.complex) sum += std::sqrt(line.power) * lobe.leakage((f + line.frequency) / s.spacing);
  }
  return sum;
}

double rounding(const Spectrum& s) {
  return 64 * (s.single ? std::numeric_limits<float>::epsilon() : std::numeric_limits<double>::epsilon());
}

// The mean level of noise in the average, from the median of its bins.
double mean_of_noise(std::vector<double>& power, const Spectrum& s) {
  const auto middle = power.begin() + static_cast<ptrdiff_t>(power.size() / 2);
  std::nth_element(power.begin(), middle, power.end());
  const NoiseShown shown = noise_shown(s.averaging, s.independent);
  return *middle / shown.median * shown.mean;
}

// The bin whose phase the others follow adds up its noise too, as do its neighbours under the window.
bool is_followed(const Spectrum& s, size_t bin) {
  return s.reference && std::fabs(static_cast<double>(bin) - static_cast<double>(*s.reference)) <= half_width(s);
}

}  // namespace

Band band_of(const Spectrum& s, std::optional<double> from, std::optional<double> to) {
  const double last = static_cast<double>(s.power.size() - 1), origin = static_cast<double>(s.origin());
  const double low = from ? std::ceil(*from / s.spacing - 1e-9) + origin : 0;
  const double high = to ? std::floor(*to / s.spacing + 1e-9) + origin : last;
  if (low > last || high < 0 || low > high)
    throw DataError(format("no bin from %g to %g: the spectrum reaches from %g to %g in steps of %g",
                           from.value_or(s.frequency(0)), to.value_or(s.frequency(last)), s.frequency(0),
                           s.frequency(last), s.spacing));
  return {static_cast<size_t>(std::max(0.0, low)), static_cast<size_t>(std::min(last, high))};
}

double noise_floor(const Spectrum& s, const Band& band) {
  std::vector<double> power(s.power.begin() + static_cast<ptrdiff_t>(band.first),
                            s.power.begin() + static_cast<ptrdiff_t>(band.last) + 1);
  return mean_of_noise(power, s);
}

// Near an end of the spectrum the hundred bins lie to one side.
LocalFloor::LocalFloor(const Spectrum& s) {
  const size_t n = s.power.size(), span = std::min(n, kSpan);
  for (size_t centre = kStep / 2; centre < n + kStep / 2; centre += kStep) {
    const size_t first = std::min(centre > span / 2 ? centre - span / 2 : 0, n - span);
    floor_.push_back(noise_floor(s, {first, first + span - 1}));
  }
}

double detection_ratio(const Spectrum& s, const Band& band, bool followed) {
  const double rarity = std::log(static_cast<double>(band.size()) / 0.01);
  return noise_limit(followed ? Averaging::Magnitude : s.averaging, s.independent, rarity) / s.noise_bias();
}

std::vector<Line> find_lines(const Spectrum& s, const Lobe& lobe, const Band& band, const Wanted& wanted,
                             bool mean_removed) {
  std::vector<size_t> maxima;
  for (size_t k = band.first; k <= band.last; ++k)
    if (is_local_maximum(s, k) && !(mean_removed && k == s.origin())) maxima.push_back(k);
  std::sort(maxima.begin(), maxima.end(), [&](size_t a, size_t b) { return s.power[a] > s.power[b]; });

  const LocalFloor floor(s);
  const double detection = detection_ratio(s, band), at_reference = detection_ratio(s, band, true);
  std::vector<Line> clear, doubtful;
  for (size_t k : maxima) {
    if (clear.size() == wanted.clear) break;
    const double amplitude = std::sqrt(s.power[k]);
    if (!(amplitude > rounding(s) * std::sqrt(s.power[maxima[0]]))) break;
    const bool is_clear = s.power[k] > (is_followed(s, k) ? at_reference : detection) * floor.at(k);
    if (!is_clear && doubtful.size() == wanted.at_least) continue;
    // Noise under a side lobe can lift it: 2 dB of doubt.
    if (amplitude <= 1.26 * (leaked_amplitude(s, lobe, clear, k) + leaked_amplitude(s, lobe, doubtful, k))) continue;
    Line line = line_at(s, lobe, k);
    line.over_noise = line.power / floor.at(k);
    line.clear = is_clear;
    (is_clear ? clear : doubtful).push_back(line);
  }
  if (clear.size() + doubtful.size() > wanted.at_least)
    doubtful.resize(wanted.at_least - std::min(wanted.at_least, clear.size()));
  clear.insert(clear.end(), doubtful.begin(), doubtful.end());
  return clear;
}

std::vector<Line> find_harmonics(const Spectrum& s, const Lobe& lobe, const Line& fundamental, int order) {
  const LocalFloor floor(s);
  std::vector<Line> harmonics;
  for (int h = 2; h <= order; ++h) {
    const double centre = h * fundamental.frequency / s.spacing + static_cast<double>(s.origin());
    const double reach = std::max(1.0, 0.1 * h);
    const double first = std::max(0.0, std::round(centre - reach));
    const double last = std::min(static_cast<double>(s.power.size() - 1), std::round(centre + reach));
    if (first > last) break;
    const auto begin = s.power.begin() + static_cast<ptrdiff_t>(first);
    const auto end = s.power.begin() + static_cast<ptrdiff_t>(last) + 1;
    Line line = line_at(s, lobe, static_cast<size_t>(std::max_element(begin, end) - s.power.begin()));
    line.harmonic = h;
    line.over_noise = line.power / floor.at(line.bin);
    line.clear = line.over_noise > detection_ratio(s, {0, static_cast<size_t>(last - first)}, is_followed(s, line.bin));
    harmonics.push_back(line);
  }
  return harmonics;
}

}  // namespace sigvex_tool
