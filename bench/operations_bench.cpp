// Every per-sample operation on vectors in cache and in memory: time per point, and the share of the bandwidth that a
// plain copy of the same vector reaches in the same run.
//
//   build/bench/bench/operations_bench [--benchmark_filter=dspi_log]
#include <benchmark/benchmark.h>
#include <sigvex.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

template <class T> using Record = std::conditional_t<std::is_same_v<T, double>, dsp_vector, dspf_vector>;

enum class Form { kReal, kComplex };

template <class T> struct Operation {
  std::string name;
  Form form;
  std::function<int32_t(Record<T>*, Record<T>*)> run;  // on a vector and a second one that holds the same samples
};

// Samples in (0.1, 1.1): inside the domain of every operation, away from its special cases.
template <class T> std::vector<T> samples(size_t n) {
  std::vector<T> x(n);
  for (size_t k = 0; k < n; ++k) x[k] = T(0.1) + static_cast<T>(k * 7919 % 10007) / T(10007);
  return x;
}

template <class T> void measure(benchmark::State& state, const Operation<T>& operation) {
  const auto points = static_cast<int32_t>(state.range(0));
  const size_t scalars = static_cast<size_t>(points) * (operation.form == Form::kComplex ? 2 : 1);
  const size_t batch = points > 1 << 16 ? 1 : 16;  // what one timing covers: long enough for the clock
  const std::vector<T> source = samples<T>(scalars);
  std::vector<Record<T>> vectors(2 * batch);
  for (Record<T>& v : vectors) {
    v = {};
    v.data = static_cast<T*>(std::malloc(2 * scalars * sizeof(T)));  // room for a real vector that becomes complex
    v.allocated = static_cast<int32_t>(2 * scalars);
  }
  const auto seconds = [&](auto&& run) {  // the samples are renewed each time: results must not run into denormals
    for (Record<T>& v : vectors) {
      v.delta = 1;
      v.points = points;
      v.complex = operation.form == Form::kComplex;
      std::memcpy(v.data, source.data(), scalars * sizeof(T));
    }
    const auto start = std::chrono::steady_clock::now();
    for (size_t k = 0; k < batch; ++k) run(vectors[2 * k], vectors[2 * k + 1]);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  double ours = HUGE_VAL, copy = HUGE_VAL;  // the best turn of each: what else the machine does only adds
  bool failed = false;
  for (auto _ : state) {
    const double time = seconds([&](Record<T>& a, Record<T>& b) { failed |= operation.run(&a, &b) != 0; });
    copy =
        std::min(copy, seconds([&](Record<T>& a, Record<T>& b) { std::memcpy(a.data, b.data, scalars * sizeof(T)); }));
    ours = std::min(ours, time);
    state.SetIterationTime(time);
  }
  if (failed) state.SkipWithError("refused");
  state.counters["ns/point"] = ours * 1e9 / (static_cast<double>(batch) * points);
  state.counters["copy/ours"] = copy / ours;
  for (Record<T>& v : vectors) std::free(v.data);
}

template <class T, class F> void add(const std::string& name, Form form, F run) {
  const Operation<T> operation{name, form, run};
  const std::string title = name + (form == Form::kComplex ? "/complex" : "/real");
  benchmark::RegisterBenchmark(title.c_str(), [operation](benchmark::State& s) { measure<T>(s, operation); })
      ->Arg(4096)
      ->Arg(1 << 22)
      ->UseManualTime()
      ->MinTime(0.05);
}

#define EACH(forms, family, op, ...)                                                               \
  for (const Form form : forms) {                                                                  \
    add<double>("dsp" #family "_" #op, form, [](dsp_vector* a, [[maybe_unused]] dsp_vector* b) {   \
      return dsp##family##_##op(a __VA_OPT__(, ) __VA_ARGS__);                                     \
    });                                                                                            \
    add<float>("dspf" #family "_" #op, form, [](dspf_vector* a, [[maybe_unused]] dspf_vector* b) { \
      return dspf##family##_##op(a __VA_OPT__(, ) __VA_ARGS__);                                    \
    });                                                                                            \
  }

const std::vector<Form> kReal{Form::kReal}, kBoth{Form::kReal, Form::kComplex};

void elementwise() {
  EACH(kReal, i, abs)
  EACH(kReal, i, acos)
  EACH(kReal, i, asin)
  EACH(kReal, i, atan)
  EACH(kReal, i, cos) EACH(kReal, i, sin) EACH(kReal, i, tan) EACH(kReal, i, cosh) EACH(kReal, i, sinh)
      EACH(kReal, i, tanh) EACH(kReal, i, sinc) EACH(kReal, i, besi0) EACH(kReal, i, besj0) EACH(kReal, i, besj1)
          EACH(kReal, i, besy0) EACH(kReal, i, besy1) EACH(kBoth, i, exp) EACH(kBoth, i, exp10) EACH(kBoth, i, log)
              EACH(kBoth, i, log10) EACH(kBoth, i, db, 10) EACH(kBoth, i, sqrt) EACH(kBoth, i, square)
                  EACH(kBoth, i, recip) EACH(kBoth, i, neg) EACH(kBoth, i, scale, 3) EACH(kBoth, i, offset, 3)
                      EACH(kBoth, i, cscale, 3, 4) EACH(kBoth, i, timesi) EACH(kBoth, i, conj) EACH(kBoth, i, real)
                          EACH(kBoth, i, imag) EACH(kBoth, i, mag) EACH(kBoth, i, magsq) EACH(kBoth, i, phase)
                              EACH(kBoth, i, rtop) EACH(kBoth, i, ptor) EACH(kReal, i, rtoc)
                                  EACH(kBoth, i, limit, 0, 0, 1, nullptr)
}

void two_vectors() {
  EACH(kBoth, b, add, b, a)
  EACH(kBoth, b, sub, b, a)
  EACH(kBoth, b, mul, b, a)
  EACH(kBoth, b, conj_mul, b, a)
  EACH(kBoth, b, div, b, a) EACH(kBoth, b, avg_add, b, a, 1) EACH(kBoth, b, max, b, a) EACH(kBoth, b, min, b, a)
      EACH(kReal, b, ritoc, b, a) EACH(kBoth, b, inter, b, a) EACH(kBoth, bs, dot, a, b) EACH(kBoth, u, scale, b, 3)
          EACH(kBoth, u, cscale, b, 3, 4) EACH(kBoth, u, sqrt, b) EACH(kBoth, u, mag, b) EACH(kBoth, u, magsq, b)
}

void sequence() {
  EACH(kBoth, i, zero)
  EACH(kBoth, i, swap_halves)
  EACH(kBoth, i, swap_halves2)
  EACH(kBoth, i, rev)
  EACH(kBoth, i, sort) EACH(kBoth, i, shuffle) EACH(kBoth, i, differ) EACH(kBoth, i, integ) EACH(kReal, i, unwrap)
      EACH(kReal, i, unwrap_wnd, 1) EACH(kReal, i, pdiffer) EACH(kReal, i, edge, 0.5, 0.125, 3) EACH(kBoth, i, bitrev)
          EACH(kBoth, i, bitrev_scale, 3) EACH(kBoth, i, window, 2, 0) EACH(kReal, i, zpad2, 2 * a->points)
              EACH(kReal, i, unzpad, a->points / 2) EACH(kReal, i, zinter, 2) EACH(kReal, u, zinter, b, 2)
}

void filters() {
  EACH(kBoth, d, hwfilt, b, DSP_FIR_SET_39, 3, nullptr)
  EACH(kBoth, i, hwfilt, DSP_FIR_SET_39, 3, 1, 0)
}

void statistics() {
  EACH(kBoth, s, sum, b)
  EACH(kBoth, s, mean, b)
  EACH(kBoth, s, gmean, b)
  EACH(kBoth, s, hmean, b)
  EACH(kBoth, s, median, b) EACH(kBoth, s, max, b) EACH(kBoth, s, min, b) EACH(kBoth, s, magsq_sum, b)
      EACH(kBoth, s, rms, b) EACH(kBoth, s, pop_var, b) EACH(kBoth, s, samp_stddev, b) EACH(kReal, s, skew, b)
          EACH(kReal, s, excess, b) EACH(kReal, s, lin_regres, a, b) EACH(kBoth, s, hist, b, 0, 0.01, 100)
              EACH(kBoth, s, peak, b, 0, 0)
}

// Degree 7: below it the loads and stores weigh as much.
template <class T> Record<T>* degree7() {
  static T coefficients[] = {1, -2, 3, -4, 5, -6, 7, -8};
  static Record<T> p{1, coefficients, 0, 8, 0, 0};
  return &p;
}

void polynomials() {
  for (const Form form : kBoth) {
    add<double>("dsps_peval", form, [](dsp_vector* a, dsp_vector* b) { return dsps_peval(degree7<double>(), a, b); });
    add<float>("dspfs_peval", form, [](dspf_vector* a, dspf_vector* b) { return dspfs_peval(degree7<float>(), a, b); });
  }
}

// Sixteen points that enclose the samples, which come to them in no order.
template <class T> Record<T>* sixteen() {
  static T abscissae[] = {0,     T(.1), T(.2),  T(.25), T(.3), T(.4), T(.5),  T(.55),
                          T(.6), T(.7), T(.75), T(.8),  T(.9), 1,     T(1.1), T(1.2)};
  static Record<T> table{1, abscissae, 0, 16, 0, 0};
  return &table;
}

template <class T, class Interp, class Spline, class Spline2d>
void tables(const std::string& prefix, Interp interp, Spline spline, Spline2d spline_2d) {
  constexpr const char* kModes[] = {"nearest", "linear", "cubic"};
  for (uint32_t mode = DSP_INTERP_NEAREST; mode <= DSP_INTERP_CUBIC; ++mode) {
    add<T>(prefix + "_interp/" + kModes[mode], Form::kReal,
           [=](Record<T>* a, Record<T>* b) { return interp(sixteen<T>(), sixteen<T>(), a, b, mode); });
  }
  add<T>(prefix + "_cspline", Form::kReal,
         [=](Record<T>* a, Record<T>* b) { return spline(sixteen<T>(), sixteen<T>(), a, b, DSP_SPLINE_NOT_A_KNOT); });
  static T values[256];
  static Record<T> surface{1, values, 0, 256, 0, 0};
  add<T>(prefix + "b_cspline_2d", Form::kReal, [=](Record<T>* a, Record<T>* b) {
    return spline_2d(a, a, b, sixteen<T>(), sixteen<T>(), &surface, DSP_SPLINE_NOT_A_KNOT);
  });
}

}  // namespace

int main(int argc, char** argv) {
  dsp_lib_init();
  elementwise();
  two_vectors();
  sequence();
  filters();
  statistics();
  polynomials();
  tables<double>("dsp", dsp_interp, dsp_cspline, dspb_cspline_2d);
  tables<float>("dspf", dspf_interp, dspf_cspline, dspfb_cspline_2d);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
