#include "generate/kernels.h"

#include <cmath>
#include <type_traits>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "generate/kernels.simd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/streams-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex::generate {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace streams = sigvex::streams::HWY_NAMESPACE;

// A phasor turned sample by sample drifts by its rounding; computed afresh every so many samples, it cannot go far.
constexpr size_t kRestart = 256;

// The phasors with which the blocks side by side begin.
template <class T> struct Starts {
  size_t n;
  double w, phase;
  HWY_ALIGN T re[2 * hn::MaxLanes(hn::ScalableTag<T>())] = {}, im[2 * hn::MaxLanes(hn::ScalableTag<T>())] = {};

  // Of block b, if there are points from k on. The angles are double in both precisions: in float, k w would have lost
  // its fraction long before the end of a record.
  void compute(size_t b, size_t k) {
    if (k >= n) return;
    const double angle = static_cast<double>(k) * w + phase;
    re[b] = static_cast<T>(std::cos(angle));
    im[b] = static_cast<T>(std::sin(angle));
  }
};

// While some blocks are written, those after them are fetched, and their starts computed a few points apart, so that
// both take place while the stores wait for memory.
template <size_t kWidth, class T> void phasor(T* y, size_t n, double w, double phase) {
  const T c = static_cast<T>(std::cos(w)), s = static_cast<T>(std::sin(w));
  Starts<T> starts{n, w, phase};
  const auto run = [&](auto d, auto vectors, size_t first, size_t blocks, size_t length, auto at) HWY_ATTR {
    using D = decltype(d);
    constexpr size_t kVectors = decltype(vectors)::value, kLanes = hn::MaxLanes(D()), kSide = kVectors * kLanes;
    constexpr size_t kPiece = streams::kPiece<D>, kTile = std::max(kWidth, kPiece), kLine = 64 / sizeof(T);
    T* const from = y + kWidth * first;
    const size_t next = first + blocks * kRestart, ahead = n - first >= 2 * blocks * kRestart ? next - first : 0;
    for (size_t b = 0; first == 0 && b < blocks; ++b) starts.compute(b, b * kRestart);
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
      if (k % kShare == 0) starts.compute(k / kShare, next + k / kShare * kRestart);
      for (size_t b = 0; k % kLine == 0 && b < kSide; ++b) hwy::Prefetch(from + kWidth * ahead + k * kSide + b * kLine);
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
  constexpr size_t kMost = two * hn::MaxLanes(hn::ScalableTag<T>());
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
