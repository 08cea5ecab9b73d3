#include "generate/kernels.h"

#include <cmath>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "generate/kernels.simd.cpp"
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

// The angles are double in both precisions: in float, k w would have lost its fraction long before the end of a record.
template <size_t kWidth, class T> void phasor(T* y, size_t n, double w, double phase) {
  const T c = static_cast<T>(std::cos(w)), s = static_cast<T>(std::sin(w));
  const auto run = [=](auto d, size_t first, size_t blocks, size_t length, auto at) HWY_ATTR {
    using D = decltype(d);
    constexpr size_t kPiece = streams::kPiece<D>, kTile = std::max(kWidth, kPiece);
    HWY_ALIGN T starts[2][hn::MaxLanes(D())] = {};
    for (size_t b = 0; b < blocks; ++b) {
      const double angle = static_cast<double>(first + b * kRestart) * w + phase;
      starts[0][b] = static_cast<T>(std::cos(angle));
      starts[1][b] = static_cast<T>(std::sin(angle));
    }
    for (auto& row : starts) std::fill(row + blocks, row + hn::MaxLanes(D()), row[blocks - 1]);
    hn::Vec<D> re = hn::Load(d, starts[0]), im = hn::Load(d, starts[1]), tile[kTile];
    const auto by_c = hn::Set(d, c), by_s = hn::Set(d, s);
    for (size_t k = 0; k < kWidth * length; k += kTile) {
      for (size_t i = 0; i < kTile; i += kWidth) {
        tile[i] = re;
        if constexpr (kWidth == 2) tile[i + 1] = im;
        const auto turned = re * by_c - im * by_s;
        im = re * by_s + im * by_c;
        re = turned;
      }
      for (size_t i = 0; i < kTile; i += kPiece) streams::store(d, tile + i, y + kWidth * first + k + i, at);
    }
  };
  streams::side_by_side<kRestart, kWidth>(hn::ScalableTag<T>(), n, run);
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
