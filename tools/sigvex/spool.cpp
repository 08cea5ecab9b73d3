#include "spool.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "blocks.h"
#include "errors.h"
#include "text.h"

namespace sigvex_tool {
namespace {

[[noreturn]] void fail() { throw DataError(std::string("temporary copy of the samples: ") + std::strerror(errno)); }

}  // namespace

Spool::Spool(bool complex) : file_(std::tmpfile()), width_(complex ? 2 : 1) {
  if (!file_) fail();
}

void Spool::append(const double* samples, size_t frames) {
  if (std::fwrite(samples, sizeof(double) * width_, frames, file_.get()) != frames) fail();
  frames_ += frames;
}

// Sums over blocks, so that the rounding of a long signal's mean does not grow with its length.
void Spool::remove(Detrend trend) {
  if (std::fflush(file_.get()) != 0) fail();
  if (trend == Detrend::None || frames_ == 0) return;
  const double n = static_cast<double>(frames_), centre = 0.5 * (n - 1);
  double sum[2] = {0, 0}, moment[2] = {0, 0};
  std::vector<double> block(kBlockFrames * width_);
  for (uint64_t first = 0; first < frames_; first += kBlockFrames) {
    const size_t count = static_cast<size_t>(std::min<uint64_t>(kBlockFrames, frames_ - first));
    fetch(first, count, block.data());
    for (size_t part = 0; part < width_; ++part) {
      double s = 0, m = 0;
      for (size_t k = 0; k < count; ++k) {
        const double x = block[k * width_ + part];
        s += x;
        m += x * (static_cast<double>(first + k) - centre);
      }
      sum[part] += s;
      moment[part] += m;
    }
  }
  for (size_t part = 0; part < width_; ++part) {
    mean_[part] = sum[part] / n;
    // The squares of -centre .. centre add up to n (n^2 - 1) / 12.
    if (trend == Detrend::Linear && frames_ > 1) slope_[part] = 12 * moment[part] / (n * (n * n - 1));
  }
}

void Spool::fetch(uint64_t first, size_t frames, double* out) {
  if (fseeko(file_.get(), static_cast<off_t>(first * width_ * sizeof(double)), SEEK_SET) != 0 ||
      std::fread(out, sizeof(double) * width_, frames, file_.get()) != frames)
    fail();
  const double centre = 0.5 * (static_cast<double>(frames_) - 1);
  for (size_t k = 0; k < frames; ++k)
    for (size_t part = 0; part < width_; ++part)
      out[k * width_ + part] -= mean_[part] + slope_[part] * (static_cast<double>(first + k) - centre);
}

void Spool::read(int64_t first, size_t frames, double* out, bool periodic) {
  const int64_t n = static_cast<int64_t>(frames_), end = first + static_cast<int64_t>(frames);
  while (first < end) {
    const int64_t at = periodic ? (first % n + n) % n : first;
    // As far as the signal, or what lies outside it, goes.
    int64_t count = end - first;
    if (at < 0) count = std::min(count, -at);
    else if (at < n) count = std::min(count, n - at);
    if (at >= 0 && at < n) fetch(static_cast<uint64_t>(at), static_cast<size_t>(count), out);
    else std::fill_n(out, static_cast<size_t>(count) * width_, 0.0);
    out += static_cast<size_t>(count) * width_;
    first += count;
  }
}

double Spool::energy() {
  double energy = 0;
  std::vector<double> block(kBlockFrames * width_);
  for (uint64_t first = 0; first < frames_; first += kBlockFrames) {
    const size_t count = static_cast<size_t>(std::min<uint64_t>(kBlockFrames, frames_ - first));
    fetch(first, count, block.data());
    double sum = 0;
    for (size_t k = 0; k < count * width_; ++k) sum += block[k] * block[k];
    energy += sum;
  }
  return energy;
}

void spool(Source& source, const std::vector<Spool*>& signals) {
  const SourceInfo& info = source.info();
  const size_t width = info.channels, values = info.complex ? 2 : 1;
  std::vector<double> one;
  uint64_t position = 0;
  for_each_block(source, kBlockFrames, [&](std::vector<double>& samples) {
    const auto bad = std::find_if(samples.begin(), samples.end(), [](double x) { return !std::isfinite(x); });
    if (bad != samples.end())
      throw DataError(info.name + format(": sample %llu of the range is not finite",
                                         static_cast<unsigned long long>(
                                             position + static_cast<uint64_t>(bad - samples.begin()) / width + 1)));
    const size_t frames = samples.size() / width;
    one.resize(frames * values);
    for (size_t s = 0; s < signals.size(); ++s) {
      for (size_t k = 0; k < one.size(); ++k) one[k] = samples[k / values * width + s * values + k % values];
      signals[s]->append(one.data(), frames);
    }
    position += frames;
  });
}

}  // namespace sigvex_tool
