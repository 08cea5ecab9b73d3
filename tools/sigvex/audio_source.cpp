// WAV, FLAC, OGG and what else libsndfile reads.
#include <sndfile.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "errors.h"
#include "source.h"
#include "text.h"

namespace sigvex_tool {
namespace {

struct CloseSound {
  void operator()(SNDFILE* sound) const { sf_close(sound); }
};

class AudioSource : public Source {
 public:
  AudioSource(File file, const InputOptions& options) : file_(std::move(file)) {
    info_.name = options.file;
    refuse_wav_cut_short();
    SF_INFO sound{};
    lseek(fileno(file_.get()), 0, SEEK_SET);
    sound_.reset(sf_open_fd(fileno(file_.get()), SFM_READ, &sound, SF_FALSE));
    if (!sound_) throw DataError(info_.name + ": not a readable audio file: " + sf_strerror(nullptr));
    width_ = static_cast<size_t>(sound.channels);
    info_.kind = description(sound.format);
    info_.delta = 1.0 / sound.samplerate;
    info_.unit = "FS";
    info_.file_channels = width_;
    const int sample = sound.format & SF_FORMAT_SUBMASK;
    info_.single = sample != SF_FORMAT_DOUBLE && sample != SF_FORMAT_PCM_32;
    if (sound.frames > 0 && sound.frames < SF_COUNT_MAX) info_.frames = static_cast<uint64_t>(sound.frames);
    promised_ = info_.frames.value_or(0);
    choose(options);
  }

 private:
  // The audio library shortens a WAV file without a word. Writers into a pipe claim a length that no file has.
  void refuse_wav_cut_short() const {
    constexpr uint32_t kUnknown = 0x7FFFF000;
    const int file = fileno(file_.get());
    const off_t end = lseek(file, 0, SEEK_END);
    unsigned char chunk[12];
    if (pread(file, chunk, 12, 0) != 12 || std::memcmp(chunk, "RIFF", 4) != 0) return;
    for (off_t at = 12; pread(file, chunk, 8, at) == 8;) {
      uint32_t length = 0;
      for (int k = 7; k >= 4; --k) length = length << 8 | chunk[k];
      at += 8;
      if (std::memcmp(chunk, "data", 4) == 0) {
        if (length < kUnknown && at + length > end)
          throw DataError(info_.name + format(": byte %lld: ends inside %u bytes of samples that the header claims",
                                              static_cast<long long>(end), length));
        return;
      }
      at += length + length % 2;
    }
  }

  static std::string description(int code) {
    SF_FORMAT_INFO major{code & SF_FORMAT_TYPEMASK, nullptr, nullptr},
        minor{code & SF_FORMAT_SUBMASK, nullptr, nullptr};
    sf_command(nullptr, SFC_GET_FORMAT_INFO, &major, sizeof major);
    sf_command(nullptr, SFC_GET_FORMAT_INFO, &minor, sizeof minor);
    return std::string("audio, ") + (major.name ? major.name : "unknown") + ", " +
           (minor.name ? minor.name : "unknown");
  }

  void choose(const InputOptions& o) {
    if (!o.column.empty()) throw UsageError("--column is for CSV; " + o.file + " is an audio file: use --channel");
    if (o.all_channels && o.channel == 0 && o.imag.empty())
      for (size_t c = 0; c < width_; ++c) pick_.push_back(c);
    else pick_.push_back(channel(o.channel ? o.channel : 1, o.part.empty() ? "--channel" : "--with"));
    if (!o.imag.empty()) {
      pick_.push_back(channel(to_number(o.imag).value_or(0), o.pair ? "--with" : "--imag"));
      info_.complex = !o.pair;
    }
    info_.channels = pick_.size();
  }

  size_t channel(double number, const char* option) const {
    if (number >= 1 && number <= static_cast<double>(width_) && number == static_cast<double>(static_cast<int>(number)))
      return static_cast<size_t>(number) - 1;
    throw DataError(info_.name + format(": %s must be 1 to %zu, the channels of the file", option, width_));
  }

  size_t fetch(double* out, size_t frames) override {
    if (width_ == 1 && pick_.size() == 1)
      return checked(sf_readf_double(sound_.get(), out, static_cast<sf_count_t>(frames)), frames);
    size_t done = 0;
    while (done < frames) {
      const size_t want = std::min<size_t>(4096, frames - done);
      buffer_.resize(want * width_);
      const size_t got = checked(sf_readf_double(sound_.get(), buffer_.data(), static_cast<sf_count_t>(want)), want);
      for (size_t k = 0; k < got; ++k)
        for (size_t c : pick_) *out++ = buffer_[k * width_ + c];
      done += got;
      if (got < want) break;
    }
    return done;
  }

  // Damage inside a compressed stream shows as frames that the header promised and the reader did not deliver.
  size_t checked(sf_count_t count, size_t wanted) {
    const size_t got = static_cast<size_t>(std::max<sf_count_t>(0, count));
    position_ += got;
    if (got < wanted && position_ < promised_)
      throw DataError(info_.name +
                      format(": sample %llu: the audio data end before the %llu samples that the header claims",
                             static_cast<unsigned long long>(position_ + 1),
                             static_cast<unsigned long long>(promised_)));
    return got;
  }

  File file_;
  std::unique_ptr<SNDFILE, CloseSound> sound_;
  size_t width_ = 1;
  uint64_t position_ = 0, promised_ = 0;
  std::vector<size_t> pick_;
  std::vector<double> buffer_;
};

}  // namespace

std::unique_ptr<Source> open_audio(File file, const InputOptions& options) {
  return std::make_unique<AudioSource>(std::move(file), options);
}

}  // namespace sigvex_tool
