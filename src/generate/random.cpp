// dspc_rand
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/exports.h"
#include "core/limits.h"
#include "core/locks.h"
#include "core/scratch.h"
#include "elementwise/kernels.h"
#include "generate/random_source.h"

namespace sigvex::dspc {
namespace {

// Samples are drawn one after the other and worked out so many at once.
constexpr size_t kBatch = 512;

// The distributions by way of one uniform variate. Each fills n <= kBatch samples, or points.
template <class T> class Variates {
 public:
  explicit Variates(RandomSource& source) : source_(source) {}

  // In -1 .. 1, the upper end excluded.
  void symmetric(T* x, size_t n) {
    draw(x, n, [](T u) { return 2 * u - 1; });
  }

  void in_unit_disc(T* z, size_t n) {
    const auto keep = [z](size_t k, T, T re, T im) {
      z[2 * k] = re;
      z[2 * k + 1] = im;
    };
    draw_pairs(n, keep, [](T s) { return s < 1; });
  }

  // Two independent normal variates at a time by the polar method.
  void gauss(T* x, size_t n) {
    const size_t pairs = (n + 1) / 2;
    T *const s = first_, *const log = second_, last[2];
    const auto pair = [&](size_t k) { return 2 * k + 1 < n ? x + 2 * k : last; };
    const auto keep = [&](size_t k, T square, T re, T im) {
      s[k] = square;
      pair(k)[0] = re;
      pair(k)[1] = im;
    };
    draw_pairs(pairs, keep, [](T square) { return (square < 1) & (square != 0); });
    math_.log_or_floor(s, log, pairs);
    for (size_t k = 0; k < pairs; ++k) s[k] = std::sqrt(-2 * log[k] / s[k]);
    for (size_t k = 0; k < pairs; ++k) {
      pair(k)[0] *= s[k];
      pair(k)[1] *= s[k];
    }
    if (n % 2 == 1) x[n - 1] = last[0];
  }

  // The same after Box and Muller: no rejection, but an angle.
  void gauss_points(T* z, size_t n) {
    T *const r = first_, *const angle = second_, *const part = third_;
    draw(z, 2 * n, [](T u) { return u; });
    for (size_t k = 0; k < n; ++k) {
      r[k] = above_zero(z[2 * k]);
      angle[k] = 2 * z[2 * k + 1] * std::numbers::pi_v<T>;
    }
    math_.log_or_floor(r, r, n);
    for (size_t k = 0; k < n; ++k) r[k] = std::sqrt(-2 * r[k]);
    math_.cos(angle, part, n);
    for (size_t k = 0; k < n; ++k) z[2 * k] = r[k] * part[k];
    math_.sin(angle, part, n);
    for (size_t k = 0; k < n; ++k) z[2 * k + 1] = r[k] * part[k];
  }

  void exponential(T* x, size_t n) {
    draw(x, n, above_zero);
    math_.log_or_floor(x, x, n);
    for (size_t k = 0; k < n; ++k) x[k] = -x[k];
  }

  void laplace(T* x, size_t n) {
    T* const sign = first_;
    RandomSource source = source_;
    const auto set = [=](size_t k, uint64_t last_of_three, uint64_t digits) {
      constexpr T kSigns[] = {-1, 1};  // chosen by a branch, they would be mispredicted every other time
      sign[k] = kSigns[last_of_three >> 14 & 1];
      x[k] = above_zero(fraction(digits));
    };
    // Four samples use up whole words, of which each draw is then known where it stands.
    constexpr int kPerSample = 3 + kDraws;
    const auto set_four = [&]<int... S>(size_t k, std::integer_sequence<int, S...>) {
      uint64_t words[kPerSample];
      for (uint64_t& word : words) word = source.word();
      (set(k + S, RandomSource::draws_of<kPerSample * S + 2, 1>(words),
           RandomSource::draws_of<kPerSample * S + 3, kDraws>(words)),
       ...);
    };
    for (size_t k = 0; k < n;) {
      if (source.at_word() && n - k >= 4) {
        set_four(k, std::make_integer_sequence<int, 4>());
        k += 4;
      } else {
        const uint32_t last_of_three = source.draw31();
        set(k++, last_of_three, source.draws(kDraws));
      }
    }
    source_ = source;
    math_.log_or_floor(x, x, n);
    for (size_t k = 0; k < n; ++k) x[k] *= sign[k];
  }

 private:
  // The draws as binary digits of a fraction, the last one the most significant: 60 bits, in float 30. These are more
  // than the precision holds, and what rounds to 1 is taken back below it.
  static constexpr int kDraws = sizeof(T) == sizeof(double) ? 4 : 2;
  static T fraction(uint64_t digits) {
    constexpr T kUnit = T(1) / static_cast<T>(uint64_t{1} << 15 * kDraws);
    return std::min(static_cast<T>(static_cast<int64_t>(digits)) * kUnit, 1 - Limits<T>::epsilon / 2);
  }
  static T uniform(RandomSource& source) { return fraction(source.draws(kDraws)); }
  static T above_zero(T u) { return std::max(u, Limits<T>::tiny); }

  // x = f(u) of uniform variates. The source is worked on as a local variable, which stays in registers.
  template <class F> void draw(T* x, size_t n, F f) {
    RandomSource source = source_;
    for (size_t k = 0; k < n; ++k) x[k] = f(uniform(source));
    source_ = source;
  }

  // keep(k, |z|^2, re, im) for pairs of symmetric variates, until n of them were accepted. Each takes the place of the
  // one before that was not: a branch for it would be mispredicted one time in five.
  template <class Keep, class Accepted> void draw_pairs(size_t n, Keep keep, Accepted accepted) {
    for (size_t k = 0; k < n;) {
      const size_t wanted = std::min(n - k, kBatch / 2);
      symmetric(third_, 2 * wanted);
      for (size_t j = 0; j < wanted; ++j) {
        const Point<T> z{third_[2 * j], third_[2 * j + 1]};
        const T s = magsq(z);
        keep(k, s, z.re, z.im);
        k += accepted(s);
      }
    }
  }

  RandomSource& source_;
  const MathKernels<T>& math_ = math_kernels<T>();
  T first_[kBatch], second_[kBatch], third_[kBatch];  // what a batch leaves between its steps
};

template <class T> using Fill = void (Variates<T>::*)(T*, size_t);

template <class T> Fill<T> distribution(int32_t kind, bool complex) {
  switch (kind) {
    case DSP_RAND_UNIFORM:
      return complex ? &Variates<T>::in_unit_disc : &Variates<T>::symmetric;
    case DSP_RAND_GAUSS:
      return complex ? &Variates<T>::gauss_points : &Variates<T>::gauss;
    case DSP_RAND_EXPONENTIAL:
      return complex ? nullptr : &Variates<T>::exponential;
    case DSP_RAND_LAPLACE:
      return complex ? nullptr : &Variates<T>::laplace;
    default:
      return nullptr;
  }
}

}  // namespace

template <class T> Status rand(Vector<T>& v, int32_t kind) {
  SIGVEX_TRY(dsp::alloc<T>(v));
  const Fill<T> fill = distribution<T>(kind, v.complex);
  if (!fill) return kFailure;
  const WorkLock lock;
  Variates<T> variates(random_source<T>());
  for (size_t k = 0, n = points<T>(v); k < n; k += kBatch) {
    (variates.*fill)(v.data + (v.complex ? 2 * k : k), std::min(kBatch, n - k));
  }
  return kSuccess;
}

}  // namespace sigvex::dspc

SIGVEX_EXPORT(c, rand, 2)
