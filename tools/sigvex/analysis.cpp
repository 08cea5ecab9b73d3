#include "analysis.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "errors.h"
#include "text.h"
#include "vector.h"

namespace sigvex_tool {
namespace {

// The weights of the window over a frame, with unity mean and its peak in the middle.
template <class T> void make_window(Vector<T>& window, const Analysis& a, size_t points) {
  window.resize(points, false);
  std::fill_n(window.data, points, T(1));
  const uint32_t flags = DSP_WINFLAG_MEAN | DSP_WINFLAG_CENTRED | (a.parameter ? DSP_WINFLAG_PARAMETER : 0);
  if (Library<T>::window(&window, a.window, flags, static_cast<T>(a.parameter.value_or(0))) < 0)
    throw DataError(a.parameter ? format("--parameter %g is not possible with this window", *a.parameter)
                                : format("the window is not possible over %zu points", points));
}

// Overlapping frames over a source. Each call moves on by the hop.
class Frames {
 public:
  Frames(Source& source, size_t points, size_t hop) : source_(source), width_(source.info().channels), hop_(hop) {
    buffer_.resize(points * width_);
  }

  // The next whole frame, or null when the rest is too short.
  const double* next() {
    const size_t keep = started_ ? buffer_.size() - hop_ * width_ : 0;
    if (started_) std::move(buffer_.end() - static_cast<ptrdiff_t>(keep), buffer_.end(), buffer_.begin());
    const size_t wanted = (buffer_.size() - keep) / width_, got = source_.read(buffer_.data() + keep, wanted);
    refuse_unusable(buffer_.data() + keep, got);
    position_ += got;
    started_ = true;
    return got == wanted ? buffer_.data() : nullptr;
  }
  uint64_t position() const { return position_; }

 private:
  // One sample that is not finite would leave nothing of the spectrum.
  void refuse_unusable(const double* samples, size_t frames) const {
    for (size_t k = 0; k < frames * width_; ++k)
      if (!std::isfinite(samples[k])) {
        const uint64_t sample = position_ + k / width_;
        throw DataError(source_.info().name +
                        format(": sample %llu of the range (%g ", static_cast<unsigned long long>(sample + 1),
                               static_cast<double>(sample) * source_.info().delta) +
                        source_.info().time_unit + "): is " +
                        (std::isnan(samples[k]) ? "not a number (NaN)" : "infinite"));
      }
  }

  Source& source_;
  size_t width_, hop_;
  std::vector<double> buffer_;
  uint64_t position_ = 0;
  bool started_ = false;
};

// Takes mean or regression line out of frame after frame of one length.
template <class T> class Trend {
  using L = Library<T>;

 public:
  Trend(Detrend kind, size_t points) : kind_(kind) {
    if (kind != Detrend::Linear) return;
    ramp_.resize(points, false);
    const double centre = 0.5 * (static_cast<double>(points) - 1);
    for (size_t k = 0; k < points; ++k) ramp_.data[k] = static_cast<T>(static_cast<double>(k) - centre);
    check(L::dot(&ramp_, &ramp_, &result_), "the trend");
    square_ = result_.data[0];
  }

  void remove(Vector<T>& frame) {
    if (kind_ == Detrend::None) return;
    check(L::mean(&frame, &result_), "the mean");
    const size_t width = frame.complex ? 2 : 1;
    for (size_t k = 0; k < frame.scalars(); ++k) frame.data[k] -= result_.data[k % width];
    if (kind_ == Detrend::Mean || square_ == T(0)) return;
    check(L::dot(&ramp_, &frame, &result_), "the trend");
    const T slope = result_.data[0] / square_;
    ramp_.delta = frame.delta;
    check(frame.complex ? L::cscale(&ramp_, &line_, slope, result_.data[1] / square_) : L::scale(&ramp_, &line_, slope),
          "the trend");
    check(L::sub(&frame, &line_, &frame), "the trend");
  }

 private:
  Detrend kind_;
  Vector<T> ramp_, line_, result_;
  T square_ = 0;
};

// The spectrum of the samples in `frame`, in place and in rising order of frequency.
template <class T> void transform(Vector<T>& frame, Vector<T>& window) {
  using L = Library<T>;
  const bool two_sided = frame.complex;
  window.delta = frame.delta;
  check(L::mul(&frame, &window, &frame), "the windowed frame");
  check(two_sided ? L::dft(&frame, 0) : L::rdft(&frame), "the transform");
  if (two_sided) check(L::swap_halves(&frame), "the spectrum");
}

struct Plan {
  size_t points, hop;
};

// Without a wish the whole recording is one frame, up to this length; the lines of a longer one are seldom that narrow.
constexpr uint64_t kLongestFrame = 1 << 20;

// The longest frames of which that many fit.
size_t points_for(uint64_t total, uint64_t average, double step) {
  const double all = static_cast<double>(total), further = static_cast<double>(average - 1);
  size_t points = static_cast<size_t>(all / (1 + further * step));
  // Rounding the hop up may push the last frame over the end.
  while (points > 2 && static_cast<double>(points) + further * std::ceil(static_cast<double>(points) * step) > all)
    --points;
  return points;
}

Plan plan_frames(const Analysis& a, std::optional<uint64_t> total, const std::string& name) {
  const double step = 1 - a.overlap;
  size_t points = a.points;
  if (points == 0 && a.average == 0)
    points = static_cast<size_t>(std::min(total.value_or(kLongestFrame), kLongestFrame));
  if (points == 0) points = points_for(*total, a.average, step);
  if (points > INT32_MAX / 2) throw DataError(name + ": too long for one frame; choose --points or a shorter range");
  if (points < 2)
    throw DataError(name +
                    format(": %llu samples are too few for a spectrum", static_cast<unsigned long long>(*total)));
  if (total && *total < points)
    throw DataError(name + format(": --points %zu, but there are only %llu samples", points,
                                  static_cast<unsigned long long>(*total)));
  return {points, std::max<size_t>(1, static_cast<size_t>(std::llround(static_cast<double>(points) * step)))};
}

// The weights that the frames end up with in an exponential average: the first ones share what the later ones leave.
// Frames further back than counts in double precision are left out.
std::vector<double> exponential_weights(uint64_t frames, double length) {
  std::vector<double> weights;
  double left = 1;
  uint64_t n = frames;
  for (; static_cast<double>(n) >= length && n > 1 && left > 1e-9; --n) {
    weights.push_back(left / length);
    left *= 1 - 1 / length;
  }
  if (left > 1e-9) weights.insert(weights.end(), static_cast<size_t>(n), left / static_cast<double>(n));
  return weights;
}

// How many independent frames average as well as these: Welch's variance of overlapping frames, from the correlation of
// the window with itself. The mean of complex spectra counts its frames as they are.
double independent_frames(const std::vector<double>& w, size_t hop, uint64_t frames, const Analysis& a) {
  if (a.averaging.kind == Averaging::Last) return 1;
  const std::vector<double> weights = a.length > 0 ? exponential_weights(frames, a.length) : std::vector<double>();
  // The sum of the products of weights m frames apart.
  const auto products = [&](uint64_t m) {
    if (weights.empty()) return static_cast<double>(frames - m) / std::pow(static_cast<double>(frames), 2);
    const size_t shift = static_cast<size_t>(std::min<uint64_t>(m, weights.size()));
    return std::inner_product(weights.begin() + static_cast<ptrdiff_t>(shift), weights.end(), weights.begin(), 0.0);
  };
  const auto correlation = [&](size_t shift) {
    return std::inner_product(w.begin() + static_cast<ptrdiff_t>(shift), w.end(), w.begin(), 0.0);
  };
  const double whole = correlation(0);
  double variance = products(0);
  for (uint64_t m = 1; m < frames && m * hop < w.size() && a.averaging.kind != Averaging::Coherent; ++m) {
    const double c = correlation(static_cast<size_t>(m * hop)) / whole;
    variance += 2 * products(m) * c * c;
  }
  return 1 / variance;
}

template <class T> void average_frames(Source& source, const Analysis& a, const Plan& plan, Spectrum& result) {
  const SourceInfo& info = source.info();
  Vector<T> frame, mean, work, window;
  make_window(window, a, plan.points);
  Trend<T> trend(a.detrend, plan.points);
  Frames frames(source, plan.points, plan.hop);
  const uint32_t flags = a.averaging.flags | (a.length > 0 ? DSP_AVG_EXPONENTIAL : 0);
  const int32_t reference = result.reference ? static_cast<int32_t>(*result.reference) : -1;
  Progress progress("analysing");
  while (const double* samples = a.average && result.frames == a.average ? nullptr : frames.next()) {
    frame.resize(plan.points, info.complex);
    frame.delta = static_cast<T>(info.delta);
    for (size_t k = 0; k < frame.scalars(); ++k) frame.data[k] = static_cast<T>(samples[k]);
    trend.remove(frame);
    transform(frame, window);
    ++result.frames;
    result.used = frames.position();
    const int32_t count = static_cast<int32_t>(std::min<uint64_t>(result.frames, INT32_MAX));
    check(Library<T>::avg(&frame, &mean, &work, flags, count, reference, T(-1), static_cast<T>(a.length)),
          "the average");
    progress.at(frames.position(), info.frames);
  }
  if (result.frames == 0 || result.frames < a.average) {
    std::string need = format("%s: %llu samples are too few for ", info.name.c_str(),
                              static_cast<unsigned long long>(frames.position()));
    if (a.average > 1) need += format("%llu frames of ", static_cast<unsigned long long>(a.average));
    throw DataError(need + format("%zu points", plan.points));
  }
  if (!(flags & DSP_AVG_POWER)) check(Library<T>::magsq(&mean), "the power");
  result.power.assign(mean.data, mean.data + mean.points);
  result.window.assign(window.data, window.data + window.points);
}

size_t bin_at(const Spectrum& s, double frequency) {
  const double bin = std::round(frequency / s.spacing) + static_cast<double>(s.origin());
  const size_t bins = s.complex ? s.points : s.points / 2 + 1;
  if (!(bin >= 0 && bin < static_cast<double>(bins)))
    throw DataError(format("--reference %g: the spectrum reaches from %g to %g", frequency, s.frequency(0),
                           s.frequency(static_cast<double>(bins - 1))));
  return static_cast<size_t>(bin);
}

}  // namespace

Spectrum analyse(Source& source, const Analysis& a) {
  const SourceInfo info = source.info();
  if (!(info.delta > 0) || !std::isfinite(info.delta))
    throw DataError(info.name + format(": the spacing of the samples is %g: give --rate or --delta", info.delta));
  // Where the file does not say its length and the frames depend on it, it is read ahead as far as that takes.
  std::unique_ptr<Source> ahead;
  if (!info.frames && a.points == 0) ahead = buffered(source, a.average ? UINT64_MAX : kLongestFrame + 1);
  if (!info.frames && a.points > kLongestFrame) ahead = buffered(source, a.points + 1);
  Source& input = ahead ? *ahead : source;
  const Plan plan = plan_frames(a, input.info().frames, info.name);
  Spectrum result;
  result.points = plan.points;
  result.complex = info.complex;
  result.single = a.single;
  result.spacing = 1 / (static_cast<double>(plan.points) * info.delta);
  result.averaging = a.averaging.kind;
  if (a.reference) result.reference = bin_at(result, *a.reference);
  if (a.single) average_frames<float>(input, a, plan, result);
  else average_frames<double>(input, a, plan, result);
  result.independent = independent_frames(result.window, plan.hop, result.frames, a);
  const int32_t n = static_cast<int32_t>(plan.points);
  if ((a.parameter ? dsp_window2_enbw(&result.enbw, a.window, n, *a.parameter)
                   : dsp_window_enbw(&result.enbw, a.window, n)) < 0)
    throw DataError("the window has no noise bandwidth");
  return result;
}

}  // namespace sigvex_tool
