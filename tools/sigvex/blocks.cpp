#include "blocks.h"

#include <algorithm>
#include <cmath>

#include "progress.h"

namespace sigvex_tool {

void append_zeros(Vector<double>& v, size_t count) {
  Vector<double> zeros(count, v.complex != 0);
  std::fill_n(zeros.data, zeros.scalars(), 0.0);
  check(dsp_append(&v, &zeros), "the last samples");
}

void for_each_block(Source& source, size_t frames, const std::function<void(std::vector<double>&)>& take) {
  const SourceInfo& info = source.info();
  std::vector<double> samples;
  Progress progress("processing");
  for (uint64_t done = 0;;) {
    samples.resize(frames * info.channels);
    const size_t got = source.read(samples.data(), frames);
    samples.resize(got * info.channels);
    take(samples);
    progress.at(done += got, info.frames);
    if (got < frames) return;
  }
}

void process(Source& source, size_t frames, double delta, const std::function<Stages()>& make,
             const OutputOptions& output) {
  SourceInfo info = source.info();
  const double spacing = info.delta;
  info.delta = delta;
  OutputFile out(output.file);
  const std::unique_ptr<Writer> writer = open_writer(out, info, output);
  const size_t width = info.channels, count = info.complex ? 1 : width, values = width / count;
  std::vector<Stages> channels(count);
  for (Stages& stages : channels) stages = make();

  std::vector<double> result;
  Vector<double> block;
  for_each_block(source, frames, [&](std::vector<double>& samples) {
    const size_t got = samples.size() / width;
    for (size_t c = 0; c < count; ++c) {
      block.resize(got, info.complex);
      block.delta = spacing;
      for (size_t k = 0; k < block.scalars(); ++k) block.data[k] = samples[k / values * width + c + k % values];
      for (const auto& stage : channels[c]) stage->block(block, got < frames);
      result.resize(static_cast<size_t>(block.points) * width);
      for (size_t k = 0; k < block.scalars(); ++k) result[k / values * width + c + k % values] = block.data[k];
    }
    writer->write(result.data(), result.size() / width);
  });
  writer->finish();
  out.commit();
}

FilterStage::FilterStage(const std::vector<double>& taps)
    : taps_(taps.size(), false), delay_((taps.size() - 1) / 2), skip_(delay_) {
  std::copy(taps.begin(), taps.end(), taps_.data);
}

void FilterStage::block(Vector<double>& samples, bool last) {
  if (last) append_zeros(samples, delay_);
  taps_.delta = samples.delta;
  check(dspd_fir(&samples, &filtered_, &taps_, &state_), "the filter");
  samples.swap(filtered_);
  const size_t dropped = std::min(skip_, static_cast<size_t>(samples.points)), values = samples.complex ? 2 : 1;
  if (dropped == 0) return;
  std::copy(samples.data + dropped * values, samples.data + samples.scalars(), samples.data);
  samples.points -= static_cast<int32_t>(dropped);
  skip_ -= dropped;
}

std::vector<double> low_pass_before(double ratio) {
  // A Kaiser window of this beta makes an edge 6 / N wide, here a tenth of the new rate.
  Vector<double> taps(2 * static_cast<size_t>(std::ceil(32 * ratio)) + 1, false);
  check(dspc_fir(&taps, DSP_FIR_LOW_PASS, 0.45 / ratio, 0), "the low-pass");
  check(dspi_window_fir(&taps, DSP_WINDOW_KAISER70, DSP_WINFLAG_PEAK, 0), "the low-pass");
  return {taps.data, taps.data + taps.points};
}

}  // namespace sigvex_tool
