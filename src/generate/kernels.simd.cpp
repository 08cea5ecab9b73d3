#include "generate/kernels.h"

#include <cmath>
#include <numbers>
#include <type_traits>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "generate/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/fetch.h"
#include "core/streams-inl.h"
#include "elementwise/circular-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::generate {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace math = sigvex::elementwise::HWY_NAMESPACE;
namespace streams = sigvex::streams::HWY_NAMESPACE;

// A phasor turned sample by sample drifts by its rounding; computed afresh every so many samples, it cannot go far.
constexpr size_t kRestart = 256;

// sin x and cos x with a relative error below 2^-46, or NaN where that is not certain.
inline void near_sin_cos(const double* x, double* s, double* c) {
  constexpr double kFar = math::kFused ? 0x1p40 : 0x1.9p20, kNear = math::kFused ? 0x1p-60 : 0x1p-33;
  const auto at = math::load(x), far = math::set<double>(kFar), nan = hn::NaN(math::D<double>());
  const auto n = math::whole<double>(at, 2 * std::numbers::inv_pi);
  const auto r = math::less_right_angles<double>(at, n.value);
  const auto fine = hn::And(hn::Le(hn::Abs(at), far), hn::Gt(hn::Abs(r.high), hn::Abs(at) * math::set<double>(kNear)));
  const auto of_r = math::sin_cos<double>(r);
  math::store(hn::IfThenElse(fine, math::cos_of_quadrant<double>(n.bits, of_r), nan), c);
  math::store(hn::IfThenElse(fine, math::sin_of_quadrant<double>(n.bits, of_r), nan), s);
}

// What the C library gives for f(x), rounded to single precision. That is y rounded, unless what lies within the error
// of y would be rounded apart: then, and for NaN, the library is asked.
template <class F> float rounded(double y, double x, F f) {
  const double error = y * 0x1p-46;
  const float low = static_cast<float>(y - error), high = static_cast<float>(y + error);
  return low == high ? high : static_cast<float>(f(x));
}

// The phasors with which the blocks side by side begin. The angles are double in both precisions: in float, k w would
// have lost its fraction long before the end of a record.
template <class T> struct Starts {
  static constexpr size_t kMost = 2 * hn::MaxLanes(hn::ScalableTag<T>());
  size_t n;
  double w, phase;
  HWY_ALIGN T re[kMost] = {}, im[kMost] = {};

  double angle(size_t k) const { return static_cast<double>(k) * w + phase; }

  // Of so many blocks from point k on.
  void compute_all(size_t blocks, size_t k) {
    if (blocks == 1) return compute(0, k);
    for (size_t first = 0; first < blocks; first += math::kLanes<double>) {
      HWY_ALIGN double x[math::kLanes<double>], c[math::kLanes<double>], s[math::kLanes<double>];
      for (size_t i = 0; i < math::kLanes<double>; ++i) x[i] = angle(k + (first + i) * kRestart);
      near_sin_cos(x, s, c);
      for (size_t i = 0; i < math::kLanes<double> && first + i < blocks; ++i) {
        re[first + i] = rounded(c[i], x[i], [](double at) { return std::cos(at); });
        im[first + i] = rounded(s[i], x[i], [](double at) { return std::sin(at); });
      }
    }
  }
  // Of block b, if there are points from k on.
  void compute(size_t b, size_t k) {
    if (k >= n) return;
    re[b] = static_cast<T>(std::cos(angle(k)));
    im[b] = static_cast<T>(std::sin(angle(k)));
  }
};

// While some blocks are written, those after them are fetched, and in double precision their starts computed a few
// points apart, so that both take place while the stores wait for memory.
template <size_t kWidth, class T> void phasor(T* y, size_t n, double w, double phase) {
  const T c = static_cast<T>(std::cos(w)), s = static_cast<T>(std::sin(w));
  Starts<T> starts{n, w, phase};
  constexpr bool kTogether = std::is_same_v<T, float>;
  const auto run = [&](auto d, auto vectors, size_t first, size_t blocks, size_t length, auto at) HWY_ATTR {
    using D = decltype(d);
    constexpr size_t kVectors = decltype(vectors)::value, kLanes = hn::MaxLanes(D()), kSide = kVectors * kLanes;
    constexpr size_t kPiece = streams::kPiece<D>, kTile = std::max(kWidth, kPiece), kLine = kCacheLine<T>;
    T* const from = y + kWidth * first;
    const size_t next = first + blocks * kRestart, ahead = n - first >= 2 * blocks * kRestart ? next - first : 0;
    if (kTogether) starts.compute_all(blocks, first);
    for (size_t b = 0; !kTogether && first == 0 && b < blocks; ++b) starts.compute(b, b * kRestart);
    for (T* row : {starts.re, starts.im}) std::fill(row + blocks, row + kSide, row[blocks - 1]);
    const auto by_c = hn::Set(d, c), by_s = hn::Set(d, s);
    hn::Vec<D> re[kVectors], im[kVectors], tile[kVectors][kTile];
    for (size_t v = 0; v < kVectors; ++v) {
      re[v] = hn::Load(d, starts.re + v * kLanes);
      im[v] = hn::Load(d, starts.im + v * kLanes);
    }
    for (size_t k = 0; k < kWidth * length; k += kTile) {
      constexpr size_t kShare = kWidth * kRestart / kSide;
      static_assert(kShare % kTile == 0, "every start of the next blocks has its turn");
      if (!kTogether && k % kShare == 0) starts.compute(k / kShare, next + k / kShare * kRestart);
      for (size_t b = 0; k % kLine == 0 && b < kSide; ++b) fetch(from, kWidth * ahead + k * kSide + b * kLine);
      for (size_t i = 0; i < kTile; i += kWidth) {
        for (size_t v = 0; v < kVectors; ++v) {
          tile[v][i] = re[v];
          if constexpr (kWidth == 2) tile[v][i + 1] = im[v];
          const auto turned = re[v] * by_c - im[v] * by_s;
          im[v] = re[v] * by_s + im[v] * by_c;
          re[v] = turned;
        }
      }
      for (size_t v = 0; v < kVectors; ++v) {
        const auto of_vector = [=](size_t b) { return at(v * kLanes + b); };
        for (size_t i = 0; i < kTile; i += kPiece) streams::store(d, tile[v] + i, from + k + i, of_vector);
      }
    }
  };
  constexpr std::integral_constant<size_t, 1> one;
  constexpr std::integral_constant<size_t, 2> two;
  constexpr size_t kMost = Starts<T>::kMost;
  size_t k = 0;
  if constexpr (kWidth == 1) {  // blocks of points are longer: too many of them would crowd each other out of the cache
    for (; n - k >= kMost * kRestart; k += kMost * kRestart)
      run(hn::ScalableTag<T>(), two, k, kMost, kRestart, [](size_t b) { return b * kRestart; });
  }
  streams::side_by_side<kRestart, kWidth>(hn::ScalableTag<T>(), n - k,
                                          [&](auto d, size_t first, size_t blocks, size_t length, auto at)
                                              HWY_ATTR { run(d, one, k + first, blocks, length, at); });
}

template <class T> const GenerateKernels<T>* kernels() {
  static constexpr GenerateKernels<T> table = {.cosine = phasor<1, T>, .circle = phasor<2, T>};
  return &table;
}
const GenerateKernels<double>* kernels_double() { return kernels<double>(); }
const GenerateKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::generate
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(generate, GenerateKernels, generate_kernels)
#endif
