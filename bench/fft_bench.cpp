// Power-of-two transforms beside FFTW (FFTW_MEASURE, in place), through the public functions, in turns, best of several.
//   fft_bench [log2 of the first length [of the last [rounds]]]
//
// The data are zeros: they stay what they are under repeated scaling, and no instruction used here takes its time from
// its operands.
#include <fftw3.h>
#include <sigvex.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

template <class T> struct Api;
template <> struct Api<double> {
  using Record = dsp_vector;
  using Plan = fftw_plan;
  static constexpr auto fft = dspi_fft;
  static constexpr auto rfft = dspi_rfft;
  static constexpr auto execute = fftw_execute;
  static constexpr auto destroy = fftw_destroy_plan;
  static Plan plan(int n, double* x, bool real) {
    auto* const z = reinterpret_cast<fftw_complex*>(x);
    return real ? fftw_plan_dft_r2c_1d(n, x, z, FFTW_MEASURE) : fftw_plan_dft_1d(n, z, z, FFTW_FORWARD, FFTW_MEASURE);
  }
};
template <> struct Api<float> {
  using Record = dspf_vector;
  using Plan = fftwf_plan;
  static constexpr auto fft = dspfi_fft;
  static constexpr auto rfft = dspfi_rfft;
  static constexpr auto execute = fftwf_execute;
  static constexpr auto destroy = fftwf_destroy_plan;
  static Plan plan(int n, float* x, bool real) {
    auto* const z = reinterpret_cast<fftwf_complex*>(x);
    return real ? fftwf_plan_dft_r2c_1d(n, x, z, FFTW_MEASURE) : fftwf_plan_dft_1d(n, z, z, FFTW_FORWARD, FFTW_MEASURE);
  }
};

template <class F> double seconds(int calls, F call) {
  const auto start = std::chrono::steady_clock::now();
  for (int k = 0; k < calls; ++k) call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

// GFLOP/s by the usual count of 5 n log2 n, half of it for real input, and the ratio ours / FFTW.
template <class T> double row(const char* kind, bool real, int bits, int rounds) {
  using A = Api<T>;
  const int n = 1 << bits, calls = std::max(1, (1 << 19) >> bits);
  const size_t scalars = 2 * static_cast<size_t>(n);
  T* const theirs = static_cast<T*>(fftw_malloc(scalars * sizeof(T) + 64));
  T* const ours = static_cast<T*>(fftw_malloc(scalars * sizeof(T) + 64));
  const typename A::Plan plan = A::plan(n, theirs, real);
  std::fill_n(theirs, scalars, T(0));
  std::fill_n(ours, scalars, T(0));
  typename A::Record v{};
  v.data = ours;
  v.allocated = static_cast<int32_t>(scalars);
  double best = 1e9, peer = 1e9;
  for (int round = 0; round < rounds; ++round) {
    best = std::min(best, seconds(calls, [&] {
      v.points = n;
      v.complex = !real;
      v.delta = 1;
      if (real) A::rfft(&v);
      else A::fft(&v, 0);
    }));
    peer = std::min(peer, seconds(calls, [&] { A::execute(plan); }));
  }
  const double operations = (real ? 2.5 : 5.0) * n * bits * 1e-9;
  std::printf("%-16s 2^%-2d  ours %7.1f  FFTW %7.1f GFLOP/s  ratio %5.2f\n", kind, bits, operations / best, operations / peer,
              peer / best);
  A::destroy(plan);
  fftw_free(ours);
  fftw_free(theirs);
  return peer / best;
}

template <class T> void table(const char* kind, bool real, int first, int last, int rounds) {
  double sum = 0;
  for (int bits = first; bits <= last; ++bits) sum += std::log(row<T>(kind, real, bits, rounds));
  std::printf("%-16s geometric mean of the ratios %.2f\n\n", kind, std::exp(sum / (last - first + 1)));
}

}  // namespace

int main(int argc, char** argv) {
  const int first = argc > 1 ? std::atoi(argv[1]) : 4, last = argc > 2 ? std::atoi(argv[2]) : 22;
  const int rounds = argc > 3 ? std::atoi(argv[3]) : 15;
  if (first < 1 || last > 26 || first > last) {
    std::fprintf(stderr, "fft_bench: lengths from 2^1 to 2^26\n");
    return 2;
  }
  dsp_lib_init();
  table<double>("complex, double", false, first, last, rounds);
  table<float>("complex, single", false, first, last, rounds);
  table<double>("real, double", true, first, last, rounds);
  table<float>("real, single", true, first, last, rounds);
}
