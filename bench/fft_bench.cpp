// Transforms beside FFTW (FFTW_MEASURE, in place), in turns, best of several; every row prints the ratio of speeds.
//   fft_bench [kind [log2 of the first length [of the last [rounds]]]]
// kind: complex, real, back (bins to samples), any (lengths that are prime), calls (short ones, and from eight
// threads), all. Up to 2^7 points the rows named "raw" measure the kernels on an array, where each call waits for what
// the last one has stored; those named "in turn" go through several arrays, so that calls overlap. All other rows go
// through the public functions.
//
// The data are zeros: they stay what they are under repeated scaling, and no instruction used here takes its time from
// its operands.
#include <fftw3.h>
#include <sigvex.h>

#include <algorithm>
#include <barrier>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "spectral/twiddles.h"
#include "turns.h"

namespace {

enum class Kind { kComplex, kReal, kBack };

template <class T> struct Api;
template <> struct Api<double> {
  static constexpr const char* name = "double";
  using Record = dsp_vector;
  using Plan = fftw_plan;
  static constexpr auto fft = dspi_fft;
  static constexpr auto rfft = dspi_rfft;
  static constexpr auto irfft = dspi_irfft;
  static constexpr auto dft = dspi_dft;
  static constexpr auto rdft = dspi_rdft;
  static constexpr auto execute = fftw_execute;
  static constexpr auto destroy = fftw_destroy_plan;
  static Plan plan(int n, double* x, Kind kind) {
    auto* const z = reinterpret_cast<fftw_complex*>(x);
    if (kind == Kind::kReal) return fftw_plan_dft_r2c_1d(n, x, z, FFTW_MEASURE);
    if (kind == Kind::kBack) return fftw_plan_dft_c2r_1d(n, z, x, FFTW_MEASURE);
    return fftw_plan_dft_1d(n, z, z, FFTW_FORWARD, FFTW_MEASURE);
  }
  static void execute_on(Plan plan, double* x, Kind kind) {
    auto* const z = reinterpret_cast<fftw_complex*>(x);
    if (kind == Kind::kReal) return fftw_execute_dft_r2c(plan, x, z);
    if (kind == Kind::kBack) return fftw_execute_dft_c2r(plan, z, x);
    fftw_execute_dft(plan, z, z);
  }
};
template <> struct Api<float> {
  static constexpr const char* name = "single";
  using Record = dspf_vector;
  using Plan = fftwf_plan;
  static constexpr auto fft = dspfi_fft;
  static constexpr auto rfft = dspfi_rfft;
  static constexpr auto irfft = dspfi_irfft;
  static constexpr auto dft = dspfi_dft;
  static constexpr auto rdft = dspfi_rdft;
  static constexpr auto execute = fftwf_execute;
  static constexpr auto destroy = fftwf_destroy_plan;
  static Plan plan(int n, float* x, Kind kind) {
    auto* const z = reinterpret_cast<fftwf_complex*>(x);
    if (kind == Kind::kReal) return fftwf_plan_dft_r2c_1d(n, x, z, FFTW_MEASURE);
    if (kind == Kind::kBack) return fftwf_plan_dft_c2r_1d(n, z, x, FFTW_MEASURE);
    return fftwf_plan_dft_1d(n, z, z, FFTW_FORWARD, FFTW_MEASURE);
  }
  static void execute_on(Plan plan, float* x, Kind kind) {
    auto* const z = reinterpret_cast<fftwf_complex*>(x);
    if (kind == Kind::kReal) return fftwf_execute_dft_r2c(plan, x, z);
    if (kind == Kind::kBack) return fftwf_execute_dft_c2r(plan, z, x);
    fftwf_execute_dft(plan, z, z);
  }
};

// Zeros at an address as malloc gives it, and FFTW's plan for them.
template <class T> class Peer {
 public:
  Peer(int n, size_t scalars, Kind kind) : data_(zeros(scalars)), plan_(Api<T>::plan(n, data_, kind)) {
    std::fill_n(data_, scalars, T(0));
  }
  ~Peer() {
    Api<T>::destroy(plan_);
    std::free(data_);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  void run() const { Api<T>::execute(plan_); }
  void run_at(size_t scalar, Kind kind) const { Api<T>::execute_on(plan_, data_ + scalar, kind); }

  static T* zeros(size_t scalars) {
    T* const x = static_cast<T*>(std::malloc(scalars * sizeof(T)));
    std::fill_n(x, scalars, T(0));
    return x;
  }

 private:
  T* data_;
  typename Api<T>::Plan plan_;
};

// A vector of zeros, transformed through the public functions; the record's fields are set anew for each call.
template <class T> class Ours {
 public:
  Ours(int n, size_t scalars, Kind kind) : n_(n), kind_(kind) {
    v_.data = Peer<T>::zeros(scalars);
    v_.allocated = static_cast<int32_t>(scalars);
  }
  ~Ours() { std::free(v_.data); }
  Ours(const Ours&) = delete;
  Ours& operator=(const Ours&) = delete;

  void run() {
    using A = Api<T>;
    const bool two = (n_ & (n_ - 1)) == 0;
    v_.points = kind_ == Kind::kBack ? n_ / 2 + 1 : n_;
    v_.complex = kind_ != Kind::kReal;
    v_.delta = 1;
    if (kind_ == Kind::kReal) two ? A::rfft(&v_) : A::rdft(&v_);
    else if (kind_ == Kind::kBack) A::irfft(&v_);
    else two ? A::fft(&v_, 0) : A::dft(&v_, 0);
  }

 private:
  typename Api<T>::Record v_{};
  int n_;
  Kind kind_;
};

// Short turns: on a machine that does other work, some of them go undisturbed.
int calls_of(int n) { return std::max(1, (1 << 17) / n); }

template <class F> std::function<void()> repeated(int calls, F call) {
  return [=] {
    for (int k = 0; k < calls; ++k) call();
  };
}

// GFLOP/s by the usual count of 5 n log2 n, half of it for real input, and the ratio ours / FFTW.
template <class T> double print(const char* what, int n, bool real, double ours, double theirs, int calls) {
  const double flops = (real ? 2.5 : 5.0) * n * std::log2(n) * calls * 1e-9;
  std::printf("%-16s %s %8d  ours %7.1f  FFTW %7.1f GFLOP/s  ratio %5.2f\n", what, Api<T>::name, n, flops / ours,
              flops / theirs, theirs / ours);
  std::fflush(stdout);
  return theirs / ours;
}

template <class T> double public_row(const char* what, int n, size_t scalars, Kind kind, int rounds) {
  const int calls = calls_of(n);
  const Peer<T> peer(n, scalars, kind);
  Ours<T> ours(n, scalars, kind);
  const auto best = best_of_turns(rounds, {repeated(calls, [&] { ours.run(); }), repeated(calls, [&] { peer.run(); })});
  return print<T>(what, n, kind != Kind::kComplex, best[0], best[1], calls);
}

// The kernel itself, on `arrays` arrays, a power of two, in turn; all of these lengths need less work space than 1024
// scalars.
template <class T> double raw_row(const std::string& what, int bits, Kind kind, int arrays, int rounds) {
  const int n = 1 << bits, calls = calls_of(n);
  const size_t scalars = 2 * static_cast<size_t>(n), all = arrays * scalars;
  const Peer<T> peer(n, all, kind);
  alignas(64) static T work[1024];
  T* const data = Peer<T>::zeros(all);
  const T scale = 1 / static_cast<T>(n);
  const auto in_turn = [=](auto f) {
    return [=] {
      for (int k = 0; k < calls; ++k) f((k & (arrays - 1)) * scalars);
    };
  };
  std::function<void()> ours;
  const auto complex = sigvex::complex_tables<T>(bits);
  const auto real = sigvex::real_tables<T>(bits);
  if (kind == Kind::kComplex) {
    ours = in_turn([&](size_t k) { complex->forward(bits, complex->roots, data + k, work, scale); });
  } else {
    const auto transform = kind == Kind::kReal ? real->forward : real->inverse;
    ours = in_turn([&, transform](size_t k) { transform(*real, data + k, work, scale); });
  }
  const auto best = best_of_turns(rounds, {ours, in_turn([&](size_t k) { peer.run_at(k, kind); })});
  std::free(data);
  return print<T>(what.c_str(), n, kind != Kind::kComplex, best[0], best[1], calls);
}

template <class T> void table(const std::string& what, Kind kind, int first, int last, int rounds) {
  double sum = 0;
  for (int bits = first; bits <= last; ++bits) {
    sum += std::log(bits < 8 ? raw_row<T>(what + ", raw", bits, kind, 1, rounds)
                             : public_row<T>(what.c_str(), 1 << bits, size_t{2} << bits, kind, rounds));
  }
  std::printf("%-16s %s geometric mean of the ratios %.2f\n\n", what.c_str(), Api<T>::name,
              std::exp(sum / (last - first + 1)));
  for (int bits = first; bits <= std::min(last, 7); ++bits) raw_row<T>(what + ", in turn", bits, kind, 8, rounds);
}

template <class T> void primes(int rounds) {
  for (const Kind kind : {Kind::kComplex, Kind::kReal}) {
    for (const int n : {1009, 10007, 65537, 1000003}) {
      size_t points = 4;  // room for the convolution
      while (points < 2 * static_cast<size_t>(n) - 2) points *= 2;
      public_row<T>(kind == Kind::kReal ? "prime, real" : "prime, complex", n, 2 * points, kind, rounds);
    }
  }
}

// Transforms a second of all threads together, the best of several rounds.
template <class Run> double rate(int threads, int calls, int rounds, Run run) {
  double best = 0;
  std::chrono::steady_clock::time_point start;
  std::barrier begin(threads, [&]() noexcept { start = std::chrono::steady_clock::now(); });
  std::barrier end(threads, [&]() noexcept {
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    best = std::max(best, threads * static_cast<double>(calls) / time.count());
  });
  std::vector<std::thread> pool;
  for (int k = 0; k < threads; ++k) {
    pool.emplace_back([&, k] {
      for (int round = 0; round < rounds; ++round) {
        begin.arrive_and_wait();
        run(k, calls);
        end.arrive_and_wait();
      }
    });
  }
  for (std::thread& thread : pool) thread.join();
  return best;
}

template <class T> void threads_row(int n, int threads, int rounds) {
  std::vector<std::unique_ptr<Peer<T>>> peers;
  std::vector<std::unique_ptr<Ours<T>>> ours;
  const size_t scalars = 2 * static_cast<size_t>(n);
  for (int k = 0; k < threads; ++k) {
    peers.push_back(std::make_unique<Peer<T>>(n, scalars, Kind::kComplex));
    ours.push_back(std::make_unique<Ours<T>>(n, scalars, Kind::kComplex));
  }
  const int calls = 32 * calls_of(n);
  const auto run = [](auto& all) {
    return [&all](size_t k, int count) {
      for (int call = 0; call < count; ++call) all[k]->run();
    };
  };
  const double alone = rate(1, calls, rounds, run(ours)), together = rate(threads, calls, rounds, run(ours)),
               theirs = rate(threads, calls, rounds, run(peers));
  const double cores = std::min<double>(threads, std::thread::hardware_concurrency());
  std::printf("%d threads        %s %8d  ratio %5.2f  of one thread's rate times %.0f cores: %.2f\n", threads,
              Api<T>::name, n, together / theirs, cores, together / (alone * cores));
}

template <class T> void calls(int rounds) {
  for (int bits = 3; bits <= 7; ++bits) {
    public_row<T>("call, complex", 1 << bits, size_t{2} << bits, Kind::kComplex, rounds);
    public_row<T>("call, real", 1 << bits, size_t{2} << bits, Kind::kReal, rounds);
  }
  for (const int n : {16, 1024, 1 << 14}) threads_row<T>(n, 8, rounds);
}

template <class T> void all(const std::string& kind, int first, int last, int rounds) {
  const auto wanted = [&](const char* name) { return kind == name || kind == "all"; };
  if (wanted("complex")) table<T>("complex", Kind::kComplex, first, last, rounds);
  if (wanted("real")) table<T>("real", Kind::kReal, first, last, rounds);
  if (wanted("back")) table<T>("back", Kind::kBack, first, last, rounds);
  if (wanted("any")) primes<T>(rounds);
  if (wanted("calls")) calls<T>(rounds);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string kind = argc > 1 ? argv[1] : "all";
  const int first = argc > 2 ? std::atoi(argv[2]) : 4, last = argc > 3 ? std::atoi(argv[3]) : 22;
  const int rounds = argc > 4 ? std::atoi(argv[4]) : 40;
  if (first < 2 || last > 26 || first > last || rounds < 1) {
    std::fprintf(stderr, "fft_bench: lengths from 2^2 to 2^26\n");
    return 2;
  }
  dsp_lib_init();
  all<double>(kind, first, last, rounds);
  all<float>(kind, first, last, rounds);
}
