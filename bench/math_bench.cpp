// The elementary functions through the public calls, beside SLEEF's functions of 1 ulp on the widest vectors of this
// CPU, a loop over the C library and VOLK: 16 points, 4096 points, 4 Mi points, in place, samples renewed for each
// turn.
//   math_bench [part of a function's name] [rounds]
#include <immintrin.h>
#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++
#include <sigvex.h>
#ifdef SIGVEX_BENCH_VOLK
#include <volk/volk.h>
#endif

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "turns.h"

namespace {

template <class T> using Record = std::conditional_t<std::is_same_v<T, double>, dsp_vector, dspf_vector>;
template <class T> using Loop = std::function<void(const T*, T*, size_t)>;  // over points

template <class T> struct Row {
  std::string name;
  bool points;
  T low, high;  // the range of the arguments
  int32_t (*ours)(Record<T>*);
  Loop<T> sleef, libm, volk;
};

template <class T> void measure(const Row<T>& row, size_t n, int rounds) {
  const size_t scalars = row.points ? 2 * n : n, batch = n < 100000 ? 65536 / n : 1;
  std::vector<T> source(scalars), spare(scalars * batch + 16);
  for (size_t k = 0; k < scalars; ++k) {
    source[k] = row.low + (row.high - row.low) * static_cast<T>(k * 7919 % 10007) / T(10007);
  }
  T* const data = reinterpret_cast<T*>((reinterpret_cast<uintptr_t>(spare.data()) + 63) / 64 * 64);
  const auto renew = [&] {
    for (size_t k = 0; k < batch; ++k) std::memcpy(data + k * scalars, source.data(), scalars * sizeof(T));
  };
  std::vector<double> best(4, HUGE_VAL);
  const auto time = [&](size_t which, auto run) {
    renew();
    const auto start = std::chrono::steady_clock::now();
    for (size_t k = 0; k < batch; ++k) run(data + k * scalars);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    best[which] = std::min(best[which], seconds.count());
  };
  for (int round = 0; round < rounds; ++round) {
    time(0, [&](T* x) {
      Record<T> v{};
      v.data = x;
      v.points = static_cast<int32_t>(n);
      v.complex = row.points;
      row.ours(&v);
    });
    size_t which = 0;
    for (const Loop<T>* peer : {&row.sleef, &row.libm, &row.volk}) {
      ++which;
      if (*peer && (which == 1 || round < 5)) time(which, [&](T* x) { (*peer)(x, x, n); });
    }
  }
  const auto rate = [&](double seconds) { return static_cast<double>(n * batch) / seconds / 1e6; };
  std::printf("%-6s %-6s %8zu points: %6.0f Msamples/s", row.name.c_str(),
              std::is_same_v<T, double> ? "double" : "single", n, rate(best[0]));
  const char* const peers[] = {"SLEEF", "libm", "VOLK"};
  for (size_t k = 1; k < best.size(); ++k) {
    if (std::isfinite(best[k])) std::printf("  x%5.2f %s (%.0f)", best[k] / best[0], peers[k - 1], rate(best[k]));
  }
  std::printf("\n");
  std::fflush(stdout);
}

#ifdef SIGVEX_BENCH_SLEEF
#define WIDE   __attribute__((target("avx512f")))
#define NARROW __attribute__((target("avx2,fma")))
const bool kWide = __builtin_cpu_supports("avx512f");

// SLEEF's loops over samples: name is SLEEF's, with the number of its ulps.
#define SLEEF_LOOP(scalar, vector, lanes, width, suffix, attribute, name, ulps, target)                    \
  extern "C" attribute vector Sleef_##name##ulps##target(vector);                                          \
  attribute void name##target(const scalar* x, scalar* y, size_t n) {                                      \
    for (size_t k = 0; k + lanes <= n; k += lanes) {                                                       \
      _mm##width##_storeu_##suffix(y + k, Sleef_##name##ulps##target(_mm##width##_loadu_##suffix(x + k))); \
    }                                                                                                      \
  }
#define SLEEF(f)                                                           \
  SLEEF_LOOP(double, __m512d, 8, 512, pd, WIDE, f##d8, _u10, avx512f)      \
  SLEEF_LOOP(float, __m512, 16, 512, ps, WIDE, f##f16, _u10, avx512f)      \
  SLEEF_LOOP(double, __m256d, 4, 256, pd, NARROW, f##d4, _u10, avx2)       \
  SLEEF_LOOP(float, __m256, 8, 256, ps, NARROW, f##f8, _u10, avx2)         \
  template <class T> Loop<T> sleef_##f() {                                 \
    if constexpr (sizeof(T) == 8) return kWide ? f##d8avx512f : f##d4avx2; \
    else return kWide ? f##f16avx512f : f##f8avx2;                         \
  }
#else
#define SLEEF(f) \
  template <class T> Loop<T> sleef_##f() { return {}; }
SLEEF(atan2)
SLEEF(hypot)
#endif
SLEEF(sin)
SLEEF(cos)
SLEEF(tan)
SLEEF(exp)
SLEEF(log)
SLEEF(log10)
SLEEF(atan)
SLEEF(asin)
SLEEF(acos)
SLEEF(sinh)
SLEEF(cosh)
SLEEF(tanh)

#ifdef SIGVEX_BENCH_SLEEF
// The same for the functions of two arguments, from interleaved points, as the public call finds them.
#define SLEEF_POINT_LOOP(scalar, vector, lanes, width, suffix, attribute, name, first, second, pick)               \
  extern "C" attribute vector name(vector, vector);                                                                \
  attribute void name##_loop(const scalar* z, scalar* y, size_t n) {                                               \
    for (size_t k = 0; k + lanes <= n; k += lanes) {                                                               \
      const vector a = _mm##width##_loadu_##suffix(z + 2 * k), b = _mm##width##_loadu_##suffix(z + 2 * k + lanes); \
      const vector parts[2] = {pick(a, b, 0), pick(a, b, 1)};                                                      \
      _mm##width##_storeu_##suffix(y + k, name(parts[first], parts[second]));                                      \
    }                                                                                                              \
  }
WIDE inline __m512d pick_wide(__m512d a, __m512d b, int part) {
  const __m512i index = _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14);
  return _mm512_permutex2var_pd(a, _mm512_add_epi64(index, _mm512_set1_epi64(part)), b);
}
WIDE inline __m512 pick_wide(__m512 a, __m512 b, int part) {
  const __m512i index = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
  return _mm512_permutex2var_ps(a, _mm512_add_epi32(index, _mm512_set1_epi32(part)), b);
}
SLEEF_POINT_LOOP(double, __m512d, 8, 512, pd, WIDE, Sleef_atan2d8_u10avx512f, 1, 0, pick_wide)
SLEEF_POINT_LOOP(float, __m512, 16, 512, ps, WIDE, Sleef_atan2f16_u10avx512f, 1, 0, pick_wide)
SLEEF_POINT_LOOP(double, __m512d, 8, 512, pd, WIDE, Sleef_hypotd8_u05avx512f, 0, 1, pick_wide)
SLEEF_POINT_LOOP(float, __m512, 16, 512, ps, WIDE, Sleef_hypotf16_u05avx512f, 0, 1, pick_wide)

template <class T> Loop<T> sleef_atan2() {
  if (!kWide) return {};
  if constexpr (sizeof(T) == 8) return Sleef_atan2d8_u10avx512f_loop;
  else return Sleef_atan2f16_u10avx512f_loop;
}
template <class T> Loop<T> sleef_hypot() {
  if (!kWide) return {};
  if constexpr (sizeof(T) == 8) return Sleef_hypotd8_u05avx512f_loop;
  else return Sleef_hypotf16_u05avx512f_loop;
}
#endif

template <class T, class F> Loop<T> loop(F f) {
  return [f](const T* x, T* y, size_t n) {
    for (size_t k = 0; k < n; ++k) y[k] = f(x[k]);
  };
}
template <class T, class F> Loop<T> point_loop(F f) {
  return [f](const T* z, T* y, size_t n) {
    for (size_t k = 0; k < n; ++k) y[k] = f(z[2 * k], z[2 * k + 1]);
  };
}
#ifdef SIGVEX_BENCH_VOLK
template <class T, class F> Loop<T> volk(F f) {
  if constexpr (sizeof(T) == 4) return [f](const T* x, T* y, size_t n) { f(y, x, static_cast<unsigned>(n)); };
  else return {};
}
template <class T, class F> Loop<T> volk_points(F f) {
  if constexpr (sizeof(T) == 4) {
    return [f](const T* z, T* y, size_t n) { f(y, reinterpret_cast<const lv_32fc_t*>(z), static_cast<unsigned>(n)); };
  } else {
    return {};
  }
}
#define VOLK(name)        volk<T>([](float* y, const float* x, unsigned n) { volk_32f_##name##_32f(y, x, n); })
#define VOLK_POINTS(call) volk_points<T>([](float* y, const lv_32fc_t* z, unsigned n) { call; })
#else
#define VOLK(name) \
  {}
#define VOLK_POINTS(call) \
  {}
#endif

// Both C functions of an operation, by the precision.
template <class T, class Double, class Single> auto by(Double in_double, Single in_single) {
  if constexpr (sizeof(T) == 8) return in_double;
  else return in_single;
}
#define OURS(f) by<T>(dspi_##f, dspfi_##f)
#define LIBM(f) loop<T>([](T x) { return std::f(x); })

template <class T> std::vector<Row<T>> rows() {
  return {
      {"exp", false, -30, 30, OURS(exp), sleef_exp<T>(), LIBM(exp), VOLK(exp)},
      {"log", false, T(0.01), 100, OURS(log), sleef_log<T>(), LIBM(log), {}},
      {"log10", false, T(0.01), 100, OURS(log10), sleef_log10<T>(), LIBM(log10), {}},
      {"sin", false, -10, 10, OURS(sin), sleef_sin<T>(), LIBM(sin), VOLK(sin)},
      {"cos", false, -10, 10, OURS(cos), sleef_cos<T>(), LIBM(cos), VOLK(cos)},
      {"tan", false, -10, 10, OURS(tan), sleef_tan<T>(), LIBM(tan), VOLK(tan)},
      {"atan", false, -10, 10, OURS(atan), sleef_atan<T>(), LIBM(atan), VOLK(atan)},
      {"asin", false, -1, 1, OURS(asin), sleef_asin<T>(), LIBM(asin), VOLK(asin)},
      {"acos", false, -1, 1, OURS(acos), sleef_acos<T>(), LIBM(acos), VOLK(acos)},
      {"sinh", false, -10, 10, OURS(sinh), sleef_sinh<T>(), LIBM(sinh), {}},
      {"cosh", false, -10, 10, OURS(cosh), sleef_cosh<T>(), LIBM(cosh), {}},
      {"tanh", false, -10, 10, OURS(tanh), sleef_tanh<T>(), LIBM(tanh), VOLK(tanh)},
      {"phase", true, -1, 1, OURS(phase), sleef_atan2<T>(), point_loop<T>([](T x, T y) { return std::atan2(y, x); }),
       VOLK_POINTS(volk_32fc_s32f_atan2_32f(y, z, 1, n))},
      {"mag", true, -1, 1, OURS(mag), sleef_hypot<T>(), point_loop<T>([](T x, T y) { return std::hypot(x, y); }),
       VOLK_POINTS(volk_32fc_magnitude_32f(y, z, n))},
      {"besj0", false, 0, 50, OURS(besj0), {}, loop<T>(by<T>(::j0, ::j0f)), {}},
      {"besj1", false, 0, 50, OURS(besj1), {}, loop<T>(by<T>(::j1, ::j1f)), {}},
      {"besy0", false, 0, 50, OURS(besy0), {}, loop<T>(by<T>(::y0, ::y0f)), {}},
      {"besy1", false, 0, 50, OURS(besy1), {}, loop<T>(by<T>(::y1, ::y1f)), {}},
  };
}

}  // namespace

int main(int argc, char** argv) {
  const std::string name = argc > 1 ? argv[1] : "";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
  const auto print = [&](const auto& table) {
    for (const auto& row : table) {
      if (row.name.find(name) == std::string::npos) continue;
      for (const size_t n : {16, 4096, 1 << 22}) measure(row, n, rounds);
    }
  };
  print(rows<double>());
  print(rows<float>());
}
