// dspd_rsmp2 from 44100 to 48000 Hz, linear between the kernel's points, beside libsoxr's HQ recipe: 2^20 points in one
// call and in blocks of 4096.
//   resample_bench [rounds]
#ifdef SIGVEX_BENCH_SOXR
#include <soxr.h>
#endif
#include <sigvex.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "turns.h"

namespace {

template <class T> struct Api;
template <> struct Api<double> {
  using Record = dsp_vector;
  static constexpr auto rsmp2 = dspd_rsmp2;
};
template <> struct Api<float> {
  using Record = dspf_vector;
  static constexpr auto rsmp2 = dspfd_rsmp2;
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

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 7;
  for (const int block : {4096, kPoints}) {
    rows<double>("double", block, rounds);
    rows<float>("single", block, rounds);
  }
}
