// Statistics, sorting, sequence operations, generators and small calls, each beside a peer that does the like as
// plainly as it can be done: millions of points a second of both, and their ratio.
//
//   build/bench/bench/stats_bench [part of a row's name]
#ifdef SIGVEX_BENCH_GSL
#include <gsl/gsl_histogram.h>
#include <gsl/gsl_statistics.h>
#endif
#include <hwy/contrib/sort/vqsort.h>
#include <sigvex.h>
#ifdef SIGVEX_BENCH_VOLK
#include <volk/volk.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "turns.h"

namespace {

template <class T> using Record = std::conditional_t<std::is_same_v<T, double>, dsp_vector, dspf_vector>;
template <class T> using Operation = std::function<int32_t(Record<T>*, Record<T>*)>;
template <class T> using Peer = std::function<void(T*, T*, size_t)>;

const char* filter = "";

// A sum in as many lanes as the compiler likes: what memory gives, and no stated rounding.
template <class T> T streamed_sum(const T* x, size_t n) {
  T lanes[16] = {};
  for (size_t k = 0; k + 16 <= n; k += 16) {
    for (size_t j = 0; j < 16; ++j) lanes[j] += x[k + j];
  }
  T sum = 0;
  for (const T lane : lanes) sum += lane;
  return sum;
}

template <class T> struct Row {
  std::string name;
  Operation<T> ours;
  const char* peer_name;
  Peer<T> peer;
  bool complex = false;
};

template <class T> void measure(const Row<T>& row, size_t n) {
  if (!std::strstr(row.name.c_str(), filter)) return;
  const size_t scalars = row.complex ? 2 * n : n, calls = n < 4096 ? 65536 / n : n < 65536 ? 16 : 1;
  std::vector<T> source(scalars), data(2 * scalars), other(2 * scalars);
  std::mt19937 random(1);
  for (T& x : source) x = static_cast<T>(random()) / T(4294967296);
  Record<T> a{}, b{};
  const auto prepare = [&] {
    std::copy(source.begin(), source.end(), data.begin());
    std::copy(source.begin(), source.end(), other.begin());
    a.data = data.data(), b.data = other.data();
    a.allocated = b.allocated = static_cast<int32_t>(data.size());
    a.points = b.points = static_cast<int32_t>(n);
    a.complex = b.complex = row.complex;
    a.delta = b.delta = T(0.001);
  };
  double ours = 1e9, peer = 1e9;
  for (int round = 0; round < 12; ++round) {
    prepare();
    const auto time = [&](auto&& run) {
      const auto start = std::chrono::steady_clock::now();
      for (size_t call = 0; call < calls; ++call) run();
      return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / double(calls);
    };
    ours = std::min(ours, time([&] { row.ours(&a, &b); }));
    prepare();
    peer = std::min(peer, time([&] { row.peer(data.data(), other.data(), scalars); }));
  }
  std::printf("%-28s %-7s %8zu  %9.0f M/s %8.2f ns  %-22s %9.0f M/s  ratio %5.2f\n", row.name.c_str(),
              sizeof(T) == 8 ? "double" : "single", n, double(n) / ours / 1e6, ours * 1e9, row.peer_name,
              double(n) / peer / 1e6, peer / ours);
  std::fflush(stdout);
}

#define TWIN(op)                                                            \
  [](auto* a, [[maybe_unused]] auto* b) {                                   \
    if constexpr (std::is_same_v<decltype(a), dsp_vector*>) return dsp##op; \
    else return dspf##op;                                                   \
  }
#define CALL(family, op, ...)                                                                         \
  [](Record<T>* a, [[maybe_unused]] Record<T>* b) {                                                   \
    if constexpr (std::is_same_v<T, double>) return dsp##family##_##op(a __VA_OPT__(, ) __VA_ARGS__); \
    else return dspf##family##_##op(a __VA_OPT__(, ) __VA_ARGS__);                                    \
  }

// Beside libraries that have the like of an operation.
template <class T> void library_rows([[maybe_unused]] size_t n) {
#ifdef SIGVEX_BENCH_VOLK
  if constexpr (std::is_same_v<T, float>) {
    static float sum, deviation;
    static uint32_t place;
    const auto size = [](size_t k) { return static_cast<unsigned>(k); };
    measure<T>({"sum", CALL(s, sum, b), "VOLK accumulator",
                [=](float* x, float*, size_t k) { volk_32f_accumulator_s32f(&sum, x, size(k)); }},
               n);
    measure<T>({"pop_stddev", CALL(s, pop_stddev, b), "VOLK stddev_and_mean",
                [=](float* x, float*, size_t k) { volk_32f_stddev_and_mean_32f_x2(&deviation, &sum, x, size(k)); }},
               n);
    measure<T>({"peak", CALL(s, peak, b, 0, 0), "VOLK index_max",
                [=](float* x, float*, size_t k) { volk_32f_index_max_32u(&place, x, size(k)); }},
               n);
  }
#endif
#ifdef SIGVEX_BENCH_GSL
  [[maybe_unused]] static volatile double sink;
  const auto gsl = [n](const char* name, Operation<T> ours, const char* peer, auto in_double, auto in_float) {
    measure<T>({name, ours, peer,
                [=](T* x, T*, size_t k) {
                  if constexpr (std::is_same_v<T, double>) sink = in_double(x, 1, k);
                  else sink = in_float(x, 1, k);
                }},
               n);
  };
  gsl("mean", CALL(s, mean, b), "GSL mean", gsl_stats_mean, gsl_stats_float_mean);
  gsl("samp_var", CALL(s, samp_var, b), "GSL variance", gsl_stats_variance, gsl_stats_float_variance);
  gsl("skew", CALL(s, skew, b), "GSL skew", gsl_stats_skew, gsl_stats_float_skew);
  gsl("excess", CALL(s, excess, b), "GSL kurtosis", gsl_stats_kurtosis, gsl_stats_float_kurtosis);
  gsl("max", CALL(s, max, b), "GSL max", gsl_stats_max, gsl_stats_float_max);
  gsl_histogram* const bins = gsl_histogram_alloc(100);
  gsl_histogram_set_ranges_uniform(bins, 0, 1);
  measure<T>({"hist", CALL(s, hist, b, 0.0, 0.01, 100), "GSL histogram",
              [bins](T* x, T*, size_t k) {
                for (size_t j = 0; j < k; ++j) gsl_histogram_increment(bins, static_cast<double>(x[j]));
              }},
             n);
  gsl_histogram_free(bins);
#endif
}

template <class T> void rows() {
  [[maybe_unused]] static volatile T sink;  // keeps the sum from being left out
  const Peer<T> sum = [](T* x, T*, size_t n) { sink = streamed_sum(x, n); };
  const Peer<T> copy = [](T* x, T* y, size_t n) { std::memcpy(x, y, n * sizeof(T)); };
  const Peer<T> scale = [](T* x, T*, size_t n) {
    for (size_t k = 0; k < n; ++k) x[k] *= T(1.5);
  };
  const Peer<T> running = [](T* x, T*, size_t n) {
    T s = 0;
    for (size_t k = 0; k < n; ++k) x[k] = T(0.001) * (s += x[k]);
  };
  const Peer<T> differ = [](T* x, T*, size_t n) {
    for (size_t k = n; k-- > 1;) x[k] = (x[k] - x[k - 1]) * T(1000);
  };
  const Peer<T> vqsort = [](T* x, T*, size_t n) { hwy::Sorter()(x, n, hwy::SortAscending()); };
  const Peer<T> fill = [](T* x, T*, size_t n) { std::fill_n(x, n, T(0.5)); };
  const Peer<T> libm = [](T* x, T*, size_t n) {
    for (size_t k = 0; k < n; ++k) x[k] = std::cos(T(0.0773) * T(k) + T(0.4));
  };
  for (const size_t n : {size_t{4096}, size_t{1} << 22}) {
    for (const bool complex : {false, true}) {
      const std::string form = complex ? "/complex" : "";
      for (const auto& [name, call] :
           std::vector<std::pair<const char*, Operation<T>>>{{"sum", CALL(s, sum, b)},
                                                             {"magsq_sum", CALL(s, magsq_sum, b)},
                                                             {"pop_var", CALL(s, pop_var, b)},
                                                             {"hmean", CALL(s, hmean, b)},
                                                             {"max", CALL(s, max, b)},
                                                             {"min", CALL(s, min, b)},
                                                             {"peak", CALL(s, peak, b, 0, 0)}}) {
        measure<T>({name + form, call, "streamed sum", sum, complex}, n);
      }
      for (const auto& [name, call] : std::vector<std::pair<const char*, Operation<T>>>{
               {"swap_halves", CALL(i, swap_halves)}, {"rev", CALL(i, rev)}}) {
        measure<T>({name + form, call, "scale loop", scale, complex}, n);
      }
      measure<T>({"integ" + form, CALL(i, integ), "plain loop", running, complex}, n);
      measure<T>({"differ" + form, CALL(i, differ), "plain loop", differ, complex}, n);
      measure<T>({"cexp" + form, CALL(c, cexp, 12.3, 0.4), "fill", fill, complex}, n);
      measure<T>({"oscillator" + form, CALL(c, cexp, 12.3, 0.4), "libm loop", libm, complex}, n);
      measure<T>({"hist" + form, CALL(s, hist, b, 0.0, 0.01, 100), "streamed sum", sum, complex}, n);
      measure<T>({"uniform" + form, CALL(c, rand, 0), "fill", fill, complex}, n);
      measure<T>({"gauss" + form, CALL(c, rand, 1), "fill", fill, complex}, n);
      measure<T>({"sort" + form, CALL(i, sort), "VQSort", vqsort, complex}, n);
      measure<T>({"median" + form, CALL(s, median, b), "VQSort", vqsort, complex}, n);
    }
    measure<T>({"skew", CALL(s, skew, b), "streamed sum", sum}, n);
    measure<T>({"excess", CALL(s, excess, b), "streamed sum", sum}, n);
    measure<T>({"unwrap", CALL(i, unwrap), "plain loop", running}, n);
    measure<T>({"line", CALL(c, line, 1.0, 0.0), "fill", fill}, n);
    measure<T>({"exponential", CALL(c, rand, 2), "fill", fill}, n);
    measure<T>({"laplace", CALL(c, rand, 3), "fill", fill}, n);
    library_rows<T>(n);
  }
  measure<T>({"small scale", CALL(i, scale, T(1.5)), "scale loop", scale}, 16);
  measure<T>({"small add", CALL(b, add, b, a), "scale loop", scale}, 16);
  measure<T>({"small copy", CALL(, copy, b), "memcpy", copy}, 16);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) filter = argv[1];
  dsp_lib_init();
  rows<double>();
  rows<float>();
}
