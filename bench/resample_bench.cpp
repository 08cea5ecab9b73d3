// Resampling. First dspd_rsmp2 from 44100 to 48000 Hz, linear between the kernel's points, beside libsoxr's HQ recipe:
// 2^20 points in one call and in blocks of 4096. Then dsph_rsmp at its high setting, 150 dB and a transition of 0.04,
// beside libsamplerate (best) and libsoxr (HQ, VHQ) in blocks of 4096: what is left beside a swept sine and beside two
// tones, up to 0.45 of the lower rate; the spread of the gain there; how far below a tone its alias lies that is above
// 0.5 of the output's rate; and the speed.
//   resample_bench [rounds]
#ifdef SIGVEX_BENCH_SAMPLERATE
#include <samplerate.h>
#endif
#ifdef SIGVEX_BENCH_SOXR
#include <soxr.h>
#endif
#include <sigvex.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "turns.h"

namespace {

template <class T> struct Api;
template <> struct Api<double> {
  using Record = dsp_vector;
  using Coef = dsp_rsmp_coef;
  using State = dsp_rsmp_state;
  static constexpr auto rsmp2 = dspd_rsmp2;
  static constexpr auto stream = dsph_rsmp;
  static constexpr auto setup = dsph_rsmp_coef_setup;
  static constexpr auto delay = dsph_rsmp_get_delay_pts;
  static constexpr auto set_offset = dsph_rsmp_state_set_offset;
  static constexpr auto destroy = dsp_destroy;
  static constexpr auto destroy_coef = dsph_rsmp_coef_destroy;
  static constexpr auto destroy_state = dsph_rsmp_state_destroy;
};
template <> struct Api<float> {
  using Record = dspf_vector;
  using Coef = dspf_rsmp_coef;
  using State = dspf_rsmp_state;
  static constexpr auto rsmp2 = dspfd_rsmp2;
  static constexpr auto stream = dspfh_rsmp;
  static constexpr auto setup = dspfh_rsmp_coef_setup;
  static constexpr auto delay = dspfh_rsmp_get_delay_pts;
  static constexpr auto set_offset = dspfh_rsmp_state_set_offset;
  static constexpr auto destroy = dspf_destroy;
  static constexpr auto destroy_coef = dspfh_rsmp_coef_destroy;
  static constexpr auto destroy_state = dspfh_rsmp_state_destroy;
};

constexpr int kPoints = 1 << 20;

template <class T> void rows(const char* precision, int block, int rounds) {
  std::vector<T> x(static_cast<size_t>(kPoints)), y(static_cast<size_t>(2 * kPoints));
  for (size_t k = 0; k < x.size(); ++k) x[k] = static_cast<T>(std::sin(0.05 * static_cast<double>(k)));
  typename Api<T>::Record out{}, states[5] = {};
  std::vector<std::function<void()>> runs;
  for (uint32_t set = 0; set < 5; ++set) {
    runs.push_back([&x, &out, &states, set, block] {
      for (int at = 0; at < kPoints; at += block) {
        typename Api<T>::Record in{};
        in.delta = 1;
        in.data = x.data() + at;
        in.points = block;
        Api<T>::rsmp2(&in, &out, 1, set, 44100.0 / 48000, &states[set]);
      }
    });
  }
#ifdef SIGVEX_BENCH_SOXR
  const soxr_datatype_t type = sizeof(T) == sizeof(double) ? SOXR_FLOAT64_I : SOXR_FLOAT32_I;
  const soxr_io_spec_t io = soxr_io_spec(type, type);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  const soxr_t peer = soxr_create(44100, 48000, 1, nullptr, &io, &quality, nullptr);
  runs.push_back([&] {
    for (int at = 0; at < kPoints; at += block) {
      size_t made;
      soxr_process(peer, x.data() + at, static_cast<size_t>(block), nullptr, y.data(), y.size(), &made);
    }
  });
#endif
  const std::vector<double> best = best_of_turns(rounds, runs);
  for (size_t set = 0; set < 5; ++set) {
    std::printf("%-7s set %zu %8d points: %6.1f Minput/s  x%.2f libsoxr HQ\n", precision, set, block,
                kPoints / best[set] / 1e6, best.size() > 5 ? best[5] / best[set] : NAN);
    std::free(states[set].data);
  }
  std::free(out.data);
#ifdef SIGVEX_BENCH_SOXR
  soxr_delete(peer);
#endif
}

using Signal = std::vector<double>;

// What a converter made of a signal, its delay taken out, and the time of its calls.
struct Converted {
  Signal y;
  double seconds = 0;
};
struct Converter {
  std::string name;
  std::function<Converted(const Signal&, double ratio)> run;
};

// Sends a signal through process(block, n, output, room) in blocks, and `extra` zeros after it.
template <class T, class Process> Converted in_blocks(const Signal& x, double ratio, size_t extra, Process process) {
  constexpr size_t kBlock = 4096;
  std::vector<T> in(x.begin(), x.end()), out(static_cast<size_t>(kBlock / ratio) + kBlock);
  in.resize(in.size() + extra);
  Converted result;
  for (size_t at = 0; at < in.size(); at += kBlock) {
    const size_t n = std::min(kBlock, in.size() - at);
    size_t made = 0;
    result.seconds += best_of_turns(1, {[&] { made = process(in.data() + at, n, out.data(), out.size()); }})[0];
    result.y.insert(result.y.end(), out.begin(), out.begin() + static_cast<ptrdiff_t>(made));
  }
  return result;
}

template <class T> Converted ours(const Signal& x, double ratio) {
  typename Api<T>::Coef coef{};
  typename Api<T>::State state{};
  typename Api<T>::Record out{};
  double delay = 0;
  if (Api<T>::setup(&coef, DSP_RSMP_KAISER, 150, 0.04, ratio, 0) || Api<T>::delay(&coef, &delay)) std::abort();
  Api<T>::set_offset(&state, delay);
  const auto process = [&](T* block, size_t n, T* y, size_t) {
    typename Api<T>::Record in{};
    in.delta = 1;
    in.data = block;
    in.points = static_cast<int32_t>(n);
    if (Api<T>::stream(&in, &out, &coef, ratio, &state) < 0) std::abort();
    std::copy_n(out.data, out.points, y);
    return static_cast<size_t>(out.points);
  };
  Converted result = in_blocks<T>(x, ratio, static_cast<size_t>(std::ceil(delay)), process);
  Api<T>::destroy_coef(&coef);
  Api<T>::destroy_state(&state);
  Api<T>::destroy(&out);
  return result;
}

#ifdef SIGVEX_BENCH_SAMPLERATE
Converted samplerate(const Signal& x, double ratio) {
  int error;
  SRC_STATE* const peer = src_new(SRC_SINC_BEST_QUALITY, 1, &error);
  const auto process = [&](float* block, size_t n, float* y, size_t room) {
    SRC_DATA data{block, y, static_cast<long>(n), static_cast<long>(room), 0, 0, 0, 1 / ratio};
    if (src_process(peer, &data)) std::abort();
    return static_cast<size_t>(data.output_frames_gen);
  };
  Converted result = in_blocks<float>(x, ratio, 0, process);
  src_delete(peer);
  return result;
}
#endif

#ifdef SIGVEX_BENCH_SOXR
Converted soxr(const Signal& x, double ratio, unsigned long recipe) {
  const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(recipe, 0);
  const soxr_t peer = soxr_create(1, 1 / ratio, 1, nullptr, &io, &quality, nullptr);
  Converted result = in_blocks<double>(x, ratio, 0, [&](double* block, size_t n, double* y, size_t room) {
    size_t made = 0;
    soxr_process(peer, block, n, nullptr, y, room, &made);
    return made;
  });
  soxr_delete(peer);
  return result;
}
#endif

double decibels(double power_ratio) { return 10 * std::log10(power_ratio); }

// The middle of y as a sum of `terms` functions of m, by least squares: power of the sum over what is left, in dB. The
// coefficients go to `fitted`.
template <class Term> double fit(const Signal& y, size_t terms, Term term, Signal& fitted) {
  const size_t first = y.size() / 8, last = y.size() - first;
  std::vector<Signal> rows(terms, Signal(terms + 1));
  Signal values(terms);
  const auto each = [&](auto use) {
    for (size_t m = first; m < last; ++m) {
      for (size_t i = 0; i < terms; ++i) values[i] = term(i, static_cast<double>(m));
      use(y[m]);
    }
  };
  each([&](double sample) {
    for (size_t i = 0; i < terms; ++i) {
      for (size_t j = 0; j < terms; ++j) rows[i][j] += values[i] * values[j];
      rows[i][terms] += values[i] * sample;
    }
  });
  fitted.resize(terms);
  for (size_t i = 0; i < terms; ++i) {
    for (size_t k = 0; k < terms; ++k) {
      const double factor = rows[k][i] / rows[i][i];
      for (size_t j = i; k != i && j <= terms; ++j) rows[k][j] -= factor * rows[i][j];
    }
  }
  for (size_t i = 0; i < terms; ++i) fitted[i] = rows[i][terms] / rows[i][i];
  double power = 0, left = 0;
  each([&](double sample) {
    double sum = 0;
    for (size_t i = 0; i < terms; ++i) sum += fitted[i] * values[i];
    power += sum * sum;
    left += (sample - sum) * (sample - sum);
  });
  return decibels(power / left);
}

Signal tones(size_t n, std::initializer_list<double> frequencies) {
  Signal x(n);
  for (size_t k = 0; k < n; ++k) {
    for (const double w : frequencies) {
      x[k] += 0.9 / static_cast<double>(frequencies.size()) * std::sin(w * static_cast<double>(k));
    }
  }
  return x;
}

void quality(const Converter& converter, double ratio, size_t n, double seconds, double peer_seconds) {
  const double rate = 2 * M_PI / std::max(1.0, ratio), top = 0.45 * rate;
  Signal fitted, sweep(n);
  // A delay that a converter leaves is fitted with the sweep's slope.
  const double chirp = top / 2 / static_cast<double>(n);
  for (size_t k = 0; k < n; ++k) sweep[k] = 0.9 * std::sin(chirp * static_cast<double>(k * k));
  const double swept = fit(
      converter.run(sweep, ratio).y, 2,
      [&](size_t i, double m) {
        const double at = m * ratio, phase = chirp * at * at;
        return i ? at * std::cos(phase) : std::sin(phase);
      },
      fitted);
  const double w[] = {0.47123 * top, 0.93457 * top};
  const double twice = fit(
      converter.run(tones(n, {w[0], w[1]}), ratio).y, 4,
      [&](size_t i, double m) { return i & 1 ? std::sin(w[i / 2] * m * ratio) : std::cos(w[i / 2] * m * ratio); },
      fitted);
  double least = HUGE_VAL, most = 0, alias = 0;
  constexpr int kTones = 12;
  for (int k = 1; k <= kTones; ++k) {
    const double passed = top * k / kTones;
    fit(
        converter.run(tones(n / 8, {passed}), ratio).y, 2,
        [&](size_t i, double m) { return i ? std::sin(passed * m * ratio) : std::cos(passed * m * ratio); }, fitted);
    least = std::min(least, std::hypot(fitted[0], fitted[1]));
    most = std::max(most, std::hypot(fitted[0], fitted[1]));
    const double stopped = 0.5005 * rate + (0.4995 * 2 * M_PI - 0.5005 * rate) * (k - 1) / kTones;
    if (ratio <= 1) continue;
    const Signal y = converter.run(tones(n / 8, {stopped}), ratio).y;
    double power = 0;
    for (size_t m = y.size() / 8; m < y.size() * 7 / 8; ++m) power += y[m] * y[m];
    alias = std::max(alias, power / (static_cast<double>(y.size()) * 0.75 * 0.405));
  }
  std::printf("%-8.5f %-20s %6.1f dB %9.1f dB %12.1e dB ", ratio, converter.name.c_str(), swept, twice,
              2 * decibels(most / least));
  std::printf(ratio > 1 ? "%9.1f dB" : "           -", -decibels(alias));
  std::printf(" %8.1f M/s  x%.2f\n", static_cast<double>(n) / std::min(1.0, ratio) / seconds / 1e6,
              peer_seconds / seconds);
}

constexpr const char* kPeer = "libsamplerate best";

void streams(int rounds) {
  std::vector<Converter> converters = {{"dsph_rsmp", ours<double>}, {"dspfh_rsmp", ours<float>}};
#ifdef SIGVEX_BENCH_SAMPLERATE
  converters.push_back({kPeer, samplerate});
#endif
#ifdef SIGVEX_BENCH_SOXR
  converters.push_back({"libsoxr HQ", [](const Signal& x, double ratio) { return soxr(x, ratio, SOXR_HQ); }});
  converters.push_back({"libsoxr VHQ", [](const Signal& x, double ratio) { return soxr(x, ratio, SOXR_VHQ); }});
#endif
  constexpr size_t n = size_t{1} << 17;
  size_t peer = converters.size();
  for (size_t k = 0; k < converters.size(); ++k) {
    if (converters[k].name == kPeer) peer = k;
  }
  std::printf(
      "\nratio    converter            swept sine    two tones     gain spread        alias   higher rate, x %s\n",
      kPeer);
  for (const double ratio : {0.25, 0.5, 147.0 / 160, 160.0 / 147, 2.0, 4.0}) {
    std::vector<double> best(converters.size(), HUGE_VAL);
    for (int round = 0; round < rounds; ++round) {
      for (size_t k = 0; k < best.size(); ++k) {
        best[k] = std::min(best[k], converters[k].run(tones(n, {0.1}), ratio).seconds);
      }
    }
    for (size_t k = 0; k < best.size(); ++k) {
      quality(converters[k], ratio, n, best[k], peer < best.size() ? best[peer] : NAN);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 7;
  for (const int block : {4096, kPoints}) {
    rows<double>("double", block, rounds);
    rows<float>("single", block, rounds);
  }
  streams(rounds);
}
