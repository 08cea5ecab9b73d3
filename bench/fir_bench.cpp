// dspd_fir on real samples beside a blocked loop in plain C++, an FFTW overlap-save at its best block and, in single
// precision, liquid-dsp's direct and transform filters; dspd_sfir beside dspd_fir; dspd_fir's complex forms beside its
// real one. 2^20 points in one call and in blocks of 4096, the history carried on.
//   fir_bench [rounds [taps]]
#include <fftw3.h>
#ifdef SIGVEX_BENCH_LIQUID
#include <liquid/liquid.h>

#include <complex>
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
  using Plan = fftw_plan;
  using Bin = fftw_complex;
  static constexpr auto fir = dspd_fir, sfir = dspd_sfir;
  static constexpr auto execute = fftw_execute;
  static constexpr auto destroy = fftw_destroy_plan;
  static constexpr auto forward = fftw_plan_dft_r2c_1d;
  static constexpr auto backward = fftw_plan_dft_c2r_1d;
};
template <> struct Api<float> {
  using Record = dspf_vector;
  using Plan = fftwf_plan;
  using Bin = fftwf_complex;
  static constexpr auto fir = dspfd_fir, sfir = dspfd_sfir;
  static constexpr auto execute = fftwf_execute;
  static constexpr auto destroy = fftwf_destroy_plan;
  static constexpr auto forward = fftwf_plan_dft_r2c_1d;
  static constexpr auto backward = fftwf_plan_dft_c2r_1d;
};

constexpr int kPoints = 1 << 20;
// Blocks are taken from so many points again and again, which stay in the cache as those of a host do.
constexpr int kRing = 1 << 16;

template <class T> std::vector<T> samples(int n) {
  std::vector<T> x(static_cast<size_t>(n));
  for (int k = 0; k < n; ++k) x[static_cast<size_t>(k)] = static_cast<T>(std::sin(0.37 * k * k) / 8);
  return x;
}

// Tiles of 64 outputs that the compiler keeps in the registers of the CPU it runs on.
#define BLOCKED(T)                                                                                                 \
  [[gnu::target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default"), gnu::optimize("O3,fp-contract=fast")]] void \
  blocked(const T* x, const T* h, int count, T* y, int n) {                                                        \
    for (int at = 0; at < n; at += 64) {                                                                           \
      T sum[64] = {};                                                                                              \
      for (int k = 0; k < count; ++k)                                                                              \
        for (int j = 0; j < 64; ++j) sum[j] += h[k] * x[at + j - k];                                               \
      std::copy_n(sum, 64, y + at);                                                                                \
    }                                                                                                              \
  }
BLOCKED(double)
BLOCKED(float)

template <class T> class OverlapSave {
  using A = Api<T>;

 public:
  OverlapSave(const std::vector<T>& taps, int size)
      : past_(static_cast<int>(taps.size()) - 1),
        size_(size),
        time_(static_cast<T*>(fftw_malloc(sizeof(T) * static_cast<size_t>(size)))),
        bins_(static_cast<typename A::Bin*>(fftw_malloc(sizeof(typename A::Bin) * static_cast<size_t>(size / 2 + 1)))),
        forward_(A::forward(size, time_, bins_, FFTW_MEASURE)),
        backward_(A::backward(size, bins_, time_, FFTW_MEASURE)) {
    std::fill_n(time_, size, T(0));
    for (size_t k = 0; k < taps.size(); ++k) time_[k] = taps[k] / static_cast<T>(size);
    A::execute(forward_);
    response_.assign(&bins_[0][0], &bins_[0][0] + size + 2);
  }
  ~OverlapSave() {
    A::destroy(forward_);
    A::destroy(backward_);
    fftw_free(time_);
    fftw_free(bins_);
  }
  OverlapSave(const OverlapSave&) = delete;
  OverlapSave& operator=(const OverlapSave&) = delete;

  // x is preceded by the history.
  void run(const T* x, T* y, int n) {
    const int step = size_ - past_;
    for (int at = 0; at < n; at += step) {
      const int fresh = std::min(step, n - at);
      std::copy_n(x + at - past_, past_ + fresh, time_);
      std::fill(time_ + past_ + fresh, time_ + size_, T(0));
      A::execute(forward_);
      for (int k = 0; k <= size_ / 2; ++k) {
        const T re = bins_[k][0], im = bins_[k][1], *h = &response_[static_cast<size_t>(2 * k)];
        bins_[k][0] = re * h[0] - im * h[1];
        bins_[k][1] = re * h[1] + im * h[0];
      }
      A::execute(backward_);
      std::copy_n(time_ + past_, fresh, y + at);
    }
  }

 private:
  int past_, size_;
  T* time_;
  typename A::Bin* bins_;
  typename A::Plan forward_, backward_;
  std::vector<T> response_;
};

template <class T> void row(const char* precision, int count, int block, int rounds) {
  using A = Api<T>;
  const std::vector<T> taps = samples<T>(count), stream = samples<T>(kPoints + count);
  const auto place = [block](int at) { return block < kRing ? at % kRing : at; };
  std::vector<T> y(static_cast<size_t>(kPoints));
  typename A::Record in{}, out{}, h{}, state{};
  h.data = const_cast<T*>(taps.data());
  h.points = count;
  std::vector<std::function<void()>> runs = {[&] {
    for (int at = 0; at < kPoints; at += block) {
      in.data = const_cast<T*>(stream.data()) + count + place(at);
      in.points = block;
      A::fir(&in, &out, &h, &state);
    }
  }};
  const auto blockwise = [&](auto run) {
    runs.push_back([&stream, &y, count, block, place, run] {
      for (int at = 0; at < kPoints; at += block) run(stream.data() + count + place(at), y.data() + place(at), block);
    });
  };
  std::vector<std::unique_ptr<OverlapSave<T>>> sizes;
  for (int size = 256; size <= 1 << 16; size *= 2) {
    if (size < 2 * count) continue;
    sizes.push_back(std::make_unique<OverlapSave<T>>(taps, size));
    blockwise([f = sizes.back().get()](const T* x, T* z, int n) { f->run(x, z, n); });
  }
  const size_t fftw_end = runs.size();
  blockwise([&taps, count](const T* x, T* z, int n) { blocked(x, taps.data(), count, z, n); });
  typename A::Record sout{}, half{}, past{};
  half.data = h.data;
  half.points = (count + 1) / 2;
  runs.push_back([&] {
    for (int at = 0; at < kPoints; at += block) {
      in.data = const_cast<T*>(stream.data()) + count + place(at);
      in.points = block;
      A::sfir(&in, &sout, &half, &past);
    }
  });
  // The same samples as half as many complex points, and the taps as complex ones.
  typename A::Record pairs_out{}, pairs_past{}, pairs_taps{};
  std::vector<T> wide(2 * taps.size());
  for (size_t k = 0; k < wide.size(); ++k) wide[k] = taps[k / 2];
  pairs_taps.data = wide.data();
  pairs_taps.points = count;
  pairs_taps.complex = 1;
  for (auto* const filter : {&h, &pairs_taps}) {
    runs.push_back([&, filter] {
      typename A::Record pairs{};
      pairs.complex = 1;
      for (int at = 0; at < kPoints; at += 2 * block) {
        pairs.data = const_cast<T*>(stream.data()) + count + place(at);
        pairs.points = std::min(block, kPoints / 2);
        A::fir(&pairs, &pairs_out, filter, &pairs_past);
      }
    });
  }
  const size_t own_end = runs.size();
#ifdef SIGVEX_BENCH_LIQUID
  firfilt_rrrf direct = nullptr;
  fftfilt_rrrf by_transform = nullptr;
  if constexpr (sizeof(T) == sizeof(float)) {
    const auto length = static_cast<unsigned>(count);
    direct = firfilt_rrrf_create(h.data, length);
    by_transform = fftfilt_rrrf_create(h.data, length, 4096);
    blockwise([&](const T* x, T* z, int n) {
      firfilt_rrrf_execute_block(direct, const_cast<T*>(x), static_cast<unsigned>(n), z);
    });
    blockwise([&](const T* x, T* z, int n) {
      for (int at = 0; at < n; at += 4096) fftfilt_rrrf_execute(by_transform, const_cast<T*>(x) + at, z + at);
    });
  }
#endif
  const std::vector<double> best = best_of_turns(rounds, runs);
  const auto fastest = [&](size_t first, size_t last) {
    return first < last
               ? *std::min_element(best.begin() + static_cast<long>(first), best.begin() + static_cast<long>(last))
               : NAN;
  };
  const double fftw = fastest(1, fftw_end), liquid = fastest(own_end, best.size());
  std::printf("%-7s %5d taps %8d points: %6.0f Msamples/s  x%.2f FFTW  x%.2f plain", precision, count, block,
              kPoints / best[0] / 1e6, fftw / best[0], best[fftw_end] / best[0]);
  std::printf(std::isnan(liquid) ? "              " : "  x%.2f liquid", liquid / best[0]);
  std::printf("  sfir x%.2f fir  Mpoints/s complex %.0f, complex taps %.0f\n", best[0] / best[fftw_end + 1],
              kPoints / best[fftw_end + 2] / 2e6, kPoints / best[fftw_end + 3] / 2e6);
#ifdef SIGVEX_BENCH_LIQUID
  if (direct) firfilt_rrrf_destroy(direct), fftfilt_rrrf_destroy(by_transform);
#endif
  for (auto* const v : {&out, &state, &sout, &past, &pairs_out, &pairs_past}) std::free(v->data);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 7;
  const int only = argc > 2 ? std::atoi(argv[2]) : 0;
  for (const int block : {4096, kPoints}) {
    for (const int count : {16, 32, 64, 128, 512, 4096}) {
      if (only && count != only) continue;
      row<double>("double", count, block, rounds);
      row<float>("single", count, block, rounds);
    }
  }
}
