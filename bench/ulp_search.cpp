// The largest error of every elementary function, in units in the last place of the exact result, over random arguments
// of every magnitude and arguments known to be hard, through the public functions, on every CPU target. For the Bessel
// functions beside the errors of the C library's, and once more in units of the amplitude, which they swing with.
//   ulp_search [arguments of a function, default 200000] [part of a function's name] [part of a target's name]
#include <math.h>  // j0 j1 y0 y1 are POSIX, not C++
#include <mpfr.h>
#include <sigvex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "../tests/support/cpu_targets.h"

namespace {

template <class T> using Record = std::conditional_t<std::is_same_v<T, double>, dsp_vector, dspf_vector>;

// The exact result to 160 bits.
class Exact {
 public:
  Exact() { mpfr_inits2(160, x_, y_, z_, static_cast<mpfr_ptr>(nullptr)); }
  ~Exact() { mpfr_clears(x_, y_, z_, static_cast<mpfr_ptr>(nullptr)); }
  Exact(const Exact&) = delete;
  Exact& operator=(const Exact&) = delete;

  using Unary = int (*)(mpfr_t, const mpfr_t, mpfr_rnd_t);
  using Binary = int (*)(mpfr_t, const mpfr_t, const mpfr_t, mpfr_rnd_t);

  void of(Unary f, double x) {
    mpfr_set_d(x_, x, MPFR_RNDN);
    f(z_, x_, MPFR_RNDN);
  }
  void of(Binary f, double x, double y) {
    mpfr_set_d(x_, x, MPFR_RNDN);
    mpfr_set_d(y_, y, MPFR_RNDN);
    f(z_, x_, y_, MPFR_RNDN);
  }

  // How far a result is off, in units in the last place of the exact one, or of `scale` where that is larger. 0 where
  // the exact one overflows.
  template <class T> double ulps(T result, double scale = 0) {
    using L = std::numeric_limits<T>;
    const double value = mpfr_get_d(z_, MPFR_RNDN);
    if (!(std::abs(value) <= static_cast<double>(L::max()))) return 0;
    if (value == 0 && result == 0) return 0;
    if (!std::isfinite(result)) return HUGE_VAL;
    const long of_scale = scale > 0 ? std::ilogb(scale) + 1 : L::min_exponent;
    const long exponent = std::max<long>({mpfr_get_exp(z_), of_scale, L::min_exponent}) - L::digits;
    mpfr_d_sub(y_, static_cast<double>(result), z_, MPFR_RNDN);
    mpfr_mul_2si(y_, y_, -exponent, MPFR_RNDN);
    return std::abs(mpfr_get_d(y_, MPFR_RNDN));
  }

 private:
  mpfr_t x_, y_, z_;
};

struct Interval {
  double low, high;
};

struct Function {
  const char* name;
  int32_t (*in_double)(dsp_vector*);
  int32_t (*in_single)(dspf_vector*);
  Exact::Unary exact;
  Interval of_double, of_single;
  bool spread;  // arguments of every magnitude, rather than evenly over the interval
};

struct PointFunction {
  const char* name;
  int32_t (*in_double)(dsp_vector*);
  int32_t (*in_single)(dspf_vector*);
  Exact::Binary exact;
  bool imaginary_first;
};

constexpr double kMost = std::numeric_limits<double>::max(), kMostSingle = std::numeric_limits<float>::max();
constexpr double kLeast = std::numeric_limits<double>::min(), kLeastSingle = std::numeric_limits<float>::min();

const Function kFunctions[] = {
    {"exp", dspi_exp, dspfi_exp, mpfr_exp, {-745, 230.2585}, {-103, 34.5387}, false},
    {"exp", dspi_exp, dspfi_exp, mpfr_exp, {-1, 1}, {-1, 1}, true},
    {"log", dspi_log, dspfi_log, mpfr_log, {kLeast, kMost}, {kLeastSingle, kMostSingle}, true},
    {"log", dspi_log, dspfi_log, mpfr_log, {0.5, 2}, {0.5, 2}, false},
    {"log10", dspi_log10, dspfi_log10, mpfr_log10, {kLeast, kMost}, {kLeastSingle, kMostSingle}, true},
    {"log10", dspi_log10, dspfi_log10, mpfr_log10, {0.5, 2}, {0.5, 2}, false},
    {"sin", dspi_sin, dspfi_sin, mpfr_sin, {-kMost, kMost}, {-kMostSingle, kMostSingle}, true},
    {"sin", dspi_sin, dspfi_sin, mpfr_sin, {-10, 10}, {-10, 10}, false},
    {"sin", dspi_sin, dspfi_sin, mpfr_sin, {-2e6, 2e6}, {-2e6, 2e6}, false},
    {"cos", dspi_cos, dspfi_cos, mpfr_cos, {-kMost, kMost}, {-kMostSingle, kMostSingle}, true},
    {"cos", dspi_cos, dspfi_cos, mpfr_cos, {-10, 10}, {-10, 10}, false},
    {"cos", dspi_cos, dspfi_cos, mpfr_cos, {-2e6, 2e6}, {-2e6, 2e6}, false},
    {"tan", dspi_tan, dspfi_tan, mpfr_tan, {-kMost, kMost}, {-kMostSingle, kMostSingle}, true},
    {"tan", dspi_tan, dspfi_tan, mpfr_tan, {-10, 10}, {-10, 10}, false},
    {"tan", dspi_tan, dspfi_tan, mpfr_tan, {-2e6, 2e6}, {-2e6, 2e6}, false},
    {"atan", dspi_atan, dspfi_atan, mpfr_atan, {-kMost, kMost}, {-kMostSingle, kMostSingle}, true},
    {"atan", dspi_atan, dspfi_atan, mpfr_atan, {-4, 4}, {-4, 4}, false},
    {"asin", dspi_asin, dspfi_asin, mpfr_asin, {-1, 1}, {-1, 1}, true},
    {"asin", dspi_asin, dspfi_asin, mpfr_asin, {-1, 1}, {-1, 1}, false},
    {"acos", dspi_acos, dspfi_acos, mpfr_acos, {-1, 1}, {-1, 1}, true},
    {"acos", dspi_acos, dspfi_acos, mpfr_acos, {-1, 1}, {-1, 1}, false},
    {"sinh", dspi_sinh, dspfi_sinh, mpfr_sinh, {-711, 711}, {-90, 90}, true},
    {"sinh", dspi_sinh, dspfi_sinh, mpfr_sinh, {-5, 5}, {-5, 5}, false},
    {"cosh", dspi_cosh, dspfi_cosh, mpfr_cosh, {-711, 711}, {-90, 90}, true},
    {"cosh", dspi_cosh, dspfi_cosh, mpfr_cosh, {-5, 5}, {-5, 5}, false},
    {"tanh", dspi_tanh, dspfi_tanh, mpfr_tanh, {-30, 30}, {-30, 30}, true},
    {"tanh", dspi_tanh, dspfi_tanh, mpfr_tanh, {-3, 3}, {-3, 3}, false},
};

// Composed of two roundings and more: their errors exceed an ulp.
int exact_sinc(mpfr_t z, const mpfr_t x, mpfr_rnd_t rounding) {
  mpfr_sin(z, x, rounding);
  return mpfr_div(z, z, x, rounding);
}
const Function kComposed[] = {
    {"exp10", dspi_exp10, dspfi_exp10, mpfr_exp10, {-300, 100}, {-37, 15}, false},
    {"sinc", dspi_sinc, dspfi_sinc, exact_sinc, {-1e6, 1e6}, {-1e5, 1e5}, true},
    {"sinc", dspi_sinc, dspfi_sinc, exact_sinc, {-10, 10}, {-10, 10}, false},
};

const PointFunction kPointFunctions[] = {
    {"mag", dspi_mag, dspfi_mag, mpfr_hypot, false},
    {"phase", dspi_phase, dspfi_phase, mpfr_atan2, true},
};

struct BesselFunction {
  const char* name;
  int32_t (*in_double)(dsp_vector*);
  int32_t (*in_single)(dspf_vector*);
  double (*libm_double)(double);
  float (*libm_single)(float);
  Exact::Unary exact;
  double (*other)(double);  // the other kind, with which it makes up the amplitude
  Interval within;
  double swings_from;
};
const BesselFunction kBesselFunctions[] = {
    {"besj0", dspi_besj0, dspfi_besj0, ::j0, ::j0f, mpfr_j0, ::y0, {-1e12, 1e12}, 2},
    {"besj1", dspi_besj1, dspfi_besj1, ::j1, ::j1f, mpfr_j1, ::y1, {-1e12, 1e12}, 2},
    {"besy0", dspi_besy0, dspfi_besy0, ::y0, ::y0f, mpfr_y0, ::j0, {kLeastSingle, 1e12}, 0.5},
    {"besy1", dspi_besy1, dspfi_besy1, ::y1, ::y1f, mpfr_y1, ::j1, {kLeastSingle, 1e12}, 0.5},
};

template <class T> auto of(const auto& function) {
  if constexpr (std::is_same_v<T, double>) return function.in_double;
  else return function.in_single;
}

class Arguments {
 public:
  // Evenly over the interval, or over the bit patterns in it.
  template <class T> T next(Interval within, bool spread) {
    if (!spread) {
      return static_cast<T>(within.low + (within.high - within.low) * std::generate_canonical<double, 53>(random_));
    }
    using Bits = std::conditional_t<std::is_same_v<T, double>, uint64_t, uint32_t>;
    for (;;) {
      const auto bits = static_cast<Bits>(random_());
      T x;
      std::memcpy(&x, &bits, sizeof x);
      // Results are spread over the magnitudes near 1 as well as over all of them.
      if (random_() % 2) x = std::ldexp(x, static_cast<int>(random_() % 64) - 48 - std::ilogb(x));
      if (x >= static_cast<T>(within.low) && x <= static_cast<T>(within.high)) return x;
    }
  }
  // Near multiples of pi/2, near 1, and near what else is an edge.
  template <class T> T hard(Interval within) {
    static constexpr double kEdges[] = {0, 0.5, 0.5625, 1, 0.703125, 0.984375, 1.03125, 20, 40, 200, 708, 709};
    for (;;) {
      double x = random_() % 2 ? kEdges[random_() % std::size(kEdges)]
                               : static_cast<double>(random_() % (random_() % 2 ? 64 : 2000000)) * 1.5707963267948966;
      x = random_() % 2 ? x : -x;
      T y = static_cast<T>(x);
      y += static_cast<T>(static_cast<int>(random_() % 65) - 32) * std::numeric_limits<T>::epsilon() *
           (y == 0 ? T(1) : std::abs(y));
      if (y >= static_cast<T>(within.low) && y <= static_cast<T>(within.high)) return y;
    }
  }
  uint64_t random() { return random_(); }

 private:
  std::mt19937_64 random_{20};
};

struct Worst {
  double ulps = 0, x = 0, y = 0;
  void meet(double found, double at_x, double at_y = 0) {
    if (found > ulps) *this = {found, at_x, at_y};
  }
};

template <class T> Worst search(const Function& f, int count) {
  Arguments arguments;
  Exact exact;
  const Interval within = std::is_same_v<T, double> ? f.of_double : f.of_single;
  std::vector<T> x(static_cast<size_t>(count));
  for (T& at : x) at = arguments.random() % 8 ? arguments.next<T>(within, f.spread) : arguments.hard<T>(within);
  std::vector<T> y = x;
  Record<T> v{};
  v.data = y.data();
  v.points = count;
  of<T>(f)(&v);
  Worst worst;
  for (size_t k = 0; k < x.size(); ++k) {
    exact.of(f.exact, static_cast<double>(x[k]));
    worst.meet(exact.ulps(y[k]), static_cast<double>(x[k]));
  }
  return worst;
}

template <class T> Worst search(const PointFunction& f, int count) {
  Arguments arguments;
  Exact exact;
  std::vector<T> z(2 * static_cast<size_t>(count));
  constexpr double kBound = std::is_same_v<T, double> ? kMost : kMostSingle;
  for (size_t k = 0; k < z.size(); k += 2) {
    const bool spread = arguments.random() % 2;
    const Interval within = spread ? Interval{-kBound, kBound} : Interval{-2, 2};
    for (size_t part = 0; part < 2; ++part) z[k + part] = arguments.next<T>(within, spread);
    if (arguments.random() % 4 == 0) z[k + 1] = z[k] * arguments.next<T>({-2, 2}, false);
  }
  std::vector<T> y = z;
  Record<T> v{};
  v.data = y.data();
  v.points = count;
  v.complex = 1;
  of<T>(f)(&v);
  Worst worst;
  for (size_t k = 0; k < static_cast<size_t>(count); ++k) {
    const auto re = static_cast<double>(z[2 * k]), im = static_cast<double>(z[2 * k + 1]);
    f.imaginary_first ? exact.of(f.exact, im, re) : exact.of(f.exact, re, im);
    worst.meet(exact.ulps(y[k]), re, im);
  }
  return worst;
}

// Of every magnitude, evenly up to 20, and the zero that follows such an argument, to the last bit or near it.
template <class T> T bessel_argument(const BesselFunction& f, Arguments& arguments) {
  if (arguments.random() % 3 == 0) return arguments.next<T>(f.within, true);
  const T even = arguments.next<T>({0.01, 20}, false);
  if (arguments.random() % 2 == 0) return even;
  double low = static_cast<double>(even), high = low + 0.25;
  while (f.libm_double(low) * f.libm_double(high) > 0) low = high, high += 0.25;
  for (int k = 0; k < 60; ++k) {
    const double middle = (low + high) / 2;
    (f.libm_double(middle) * f.libm_double(high) > 0 ? high : low) = middle;
  }
  const auto steps = static_cast<T>(static_cast<int>(arguments.random() % 65) - 32);
  return static_cast<T>(low) * (1 + steps * std::numeric_limits<T>::epsilon());
}

// The errors in units of the result and of the amplitude, ours and the C library's.
template <class T> void search(const BesselFunction& f, int count) {
  Arguments arguments;
  Exact exact;
  std::vector<T> x(static_cast<size_t>(count));
  for (T& at : x) at = bessel_argument<T>(f, arguments);
  std::vector<T> y = x;
  Record<T> v{};
  v.data = y.data();
  v.points = count;
  of<T>(f)(&v);
  Worst ours[2], libm[2];
  for (size_t k = 0; k < x.size(); ++k) {
    const auto at = static_cast<double>(x[k]);
    exact.of(f.exact, at);
    T by_libm;
    if constexpr (std::is_same_v<T, double>) by_libm = f.libm_double(x[k]);
    else by_libm = f.libm_single(x[k]);
    const double amplitude = std::abs(at) < f.swings_from ? 0 : std::hypot(f.libm_double(at), f.other(std::abs(at)));
    for (const int which : {0, 1}) {
      ours[which].meet(exact.ulps(y[k], which * amplitude), at);
      libm[which].meet(exact.ulps(by_libm, which * amplitude), at);
    }
  }
  std::printf("  %-6s %s %8.3f ulp of the amplitude at %a, %8.2g of the result at %a   libm %8.3f at %a, %8.2g at %a\n",
              f.name, std::is_same_v<T, double> ? "double" : "single", ours[1].ulps, ours[1].x, ours[0].ulps, ours[0].x,
              libm[1].ulps, libm[1].x, libm[0].ulps, libm[0].x);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 200000;
  const std::string name = argc > 2 ? argv[2] : "", target_name = argc > 3 ? argv[3] : "";
  sigvex_test::for_each_cpu_target([&](const std::string& target) {
    if (target.find(target_name) == std::string::npos) return;
    std::printf("%s\n", target.c_str());
    const auto rows = [&](const auto& functions) {
      for (const auto& f : functions) {
        if (std::string(f.name).find(name) == std::string::npos) continue;
        const Worst in_double = search<double>(f, count), in_single = search<float>(f, count);
        std::printf("  %-6s %8.4f ulp at %a %a   single %8.4f ulp at %a %a\n", f.name, in_double.ulps, in_double.x,
                    in_double.y, in_single.ulps, in_single.x, in_single.y);
        std::fflush(stdout);
      }
    };
    rows(kFunctions);
    rows(kPointFunctions);
    rows(kComposed);
    for (const BesselFunction& f : kBesselFunctions) {
      if (std::string(f.name).find(name) != std::string::npos) search<double>(f, count), search<float>(f, count);
    }
  });
}
