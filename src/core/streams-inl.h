// Blocks of a sequence that do not depend on each other, side by side in the lanes of a vector: each block is a stream,
// read or written a piece of 128 bits at a time, and in between scalar i of every stream stands in one vector.
#if defined(SIGVEX_CORE_STREAMS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_CORE_STREAMS_INL_H
#undef SIGVEX_CORE_STREAMS_INL_H
#else
#define SIGVEX_CORE_STREAMS_INL_H
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace sigvex::streams {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The scalars of a piece.
template <class D> constexpr size_t kPiece = hn::MaxLanes(D()) == 1 ? 1 : 16 / sizeof(hn::TFromD<D>);

#if HWY_TARGET != HWY_SCALAR
// The pieces of the streams first, first + step ... as one vector; stream s begins at x + at(s).
template <class D, class T, class At> HWY_INLINE hn::Vec<D> gather(D d, const T* x, size_t first, size_t step, At at) {
  if constexpr (hn::MaxLanes(d) <= kPiece<D>) {
    return hn::LoadU(d, x + at(first));
  } else {
    const hn::Half<D> half;
    constexpr size_t kStreams = hn::MaxLanes(half) / kPiece<D>;
    return hn::Combine(d, gather(half, x, first + step * kStreams, step, at), gather(half, x, first, step, at));
  }
}
template <class D, class T, class At>
HWY_INLINE void scatter(D d, hn::Vec<D> v, T* y, size_t first, size_t step, At at) {
  if constexpr (hn::MaxLanes(d) <= kPiece<D>) {
    hn::StoreU(v, d, y + at(first));
  } else {
    const hn::Half<D> half;
    constexpr size_t kStreams = hn::MaxLanes(half) / kPiece<D>;
    scatter(half, hn::LowerHalf(half, v), y, first, step, at);
    scatter(half, hn::UpperHalf(half, v), y, first + step * kStreams, step, at);
  }
}

// Turns rows into columns within every 128 bits of as many vectors as these hold scalars.
template <class D> HWY_INLINE void turn(D d, hn::Vec<D>* m) {
  if constexpr (kPiece<D> == 2) {
    const auto a = m[0], b = m[1];
    m[0] = hn::InterleaveLower(d, a, b);
    m[1] = hn::InterleaveUpper(d, a, b);
  } else {
    const hn::Repartition<double, D> pairs;
    const auto ab = hn::BitCast(pairs, hn::InterleaveLower(d, m[0], m[1]));
    const auto ce = hn::BitCast(pairs, hn::InterleaveLower(d, m[2], m[3]));
    const auto ab2 = hn::BitCast(pairs, hn::InterleaveUpper(d, m[0], m[1]));
    const auto ce2 = hn::BitCast(pairs, hn::InterleaveUpper(d, m[2], m[3]));
    m[0] = hn::BitCast(d, hn::InterleaveLower(pairs, ab, ce));
    m[1] = hn::BitCast(d, hn::InterleaveUpper(pairs, ab, ce));
    m[2] = hn::BitCast(d, hn::InterleaveLower(pairs, ab2, ce2));
    m[3] = hn::BitCast(d, hn::InterleaveUpper(pairs, ab2, ce2));
  }
}

// y[i] takes scalar i of every stream, stream s in lane s, for one piece of each; and back.
template <class D, class T, class At> HWY_INLINE void load(D d, const T* x, At at, hn::Vec<D>* y) {
  for (size_t i = 0; i < kPiece<D>; ++i) y[i] = gather(d, x, i, kPiece<D>, at);
  turn(d, y);
}
template <class D, class T, class At> HWY_INLINE void store(D d, hn::Vec<D>* y, T* x, At at) {
  turn(d, y);
  for (size_t i = 0; i < kPiece<D>; ++i) scatter(d, y[i], x, i, kPiece<D>, at);
}
#endif
template <class T, class At> HWY_INLINE void load(hn::Simd<T, 1, 0> d, const T* x, At at, hn::Vec<decltype(d)>* y) {
  *y = hn::LoadU(d, x + at(0));
}
template <class T, class At> HWY_INLINE void store(hn::Simd<T, 1, 0> d, hn::Vec<decltype(d)>* y, T* x, At at) {
  hn::StoreU(*y, d, x + at(0));
}

// run as below for a few blocks in lanes that are not much more than they are; those behind the last block repeat it.
template <size_t kStride, size_t kBlock, class D, class Run>
HWY_INLINE void few_blocks(D d, size_t k, size_t few, Run run) {
  if constexpr (hn::MaxLanes(D()) > kPiece<D>) {
    if (few <= hn::MaxLanes(D()) / 2) return few_blocks<kStride, kBlock>(hn::Half<D>(), k, few, run);
  }
  run(d, k, few, kBlock, [few](size_t b) { return std::min(b, few - 1) * kStride; });
}

// run(d, first, blocks, length, at) for all of n points of kWidth scalars in blocks of kBlock: `blocks` of them from
// point `first` on, the streams of a d; block b begins at(b) scalars further. The rest that fills no block stands
// alone.
template <size_t kBlock, size_t kWidth, class D, class Run> HWY_INLINE void side_by_side(D d, size_t n, Run run) {
  constexpr size_t kLanes = hn::MaxLanes(D()), kStride = kWidth * kBlock;
  size_t k = 0;
  for (; n - k >= kLanes * kBlock; k += kLanes * kBlock)
    run(d, k, kLanes, kBlock, [](size_t b) { return b * kStride; });
  if (const size_t few = (n - k) / kBlock; few > 1) {
    few_blocks<kStride, kBlock>(d, k, few, run);
    k += few * kBlock;
  }
  for (; k < n; k += kBlock) {
    run(hn::CappedTag<hn::TFromD<D>, 1>(), k, 1, std::min(n - k, kBlock), [](size_t) { return size_t{0}; });
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::streams
HWY_AFTER_NAMESPACE();

#endif
