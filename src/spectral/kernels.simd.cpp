#include "spectral/kernels.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "spectral/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <type_traits>

#include "spectral/columns-inl.h"
#include "spectral/convolver-inl.h"
#include "spectral/far-inl.h"
#include "spectral/real-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// A transform of n = R1 * R2 * ... points, each radix one pass over vectors of all lanes. From the first buffer to the
// second and back; the last pass works in place where their number is odd.
template <class T, size_t... R> struct Passes;

template <class T, size_t R> struct Passes<T, R> {
  static size_t table_size() { return 0; }
  static size_t work_size() { return 0; }
  static void fill(const TripleTable<T>&, T*) {}
  template <bool kInverse> static void run(int, const T*, T* data, T*, T factor) {
    const Lanes<T, 1> d;
    ComplexOf<Lanes<T, 1>> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load_points<kInverse>(d, data + 2 * k);
    transform(d, x);
    const auto scale = hn::Set(d, factor);
    for (size_t k = 0; k < R; ++k) store_points<kInverse>(d, kInverse ? x[k] : x[k] * scale, data + 2 * k);
  }
};

template <class T, size_t R1, size_t R2> struct Passes<T, R1, R2> {
  static constexpr size_t n = R1 * R2, kBlocks = n / kMaxLanes<T>;
  static constexpr hn::ScalableTag<T> d{};
  static size_t table_size() { return 2 * (R1 - 1) * R2; }
  static size_t work_size() { return 2 * n; }
  static void fill(const TripleTable<T>& roots, T* table) { fill_pass(d, n, R1, roots, table); }
  template <bool kInverse> static void run(int, const T* table, T* data, T* work, T factor) {
    first_pass<R1, kInverse>(d, data, work, n, table);
    last_pass<R2, kInverse>(d, work, data, kBlocks, factor);
  }
};

template <class T, size_t R1, size_t R2, size_t R3> struct Passes<T, R1, R2, R3> {
  static constexpr size_t n = R1 * R2 * R3, kBlocks = n / kMaxLanes<T>, kFirstRoots = 2 * (R1 - 1) * R2 * R3;
  static constexpr hn::ScalableTag<T> d{};
  static size_t table_size() { return kFirstRoots + 2 * (R2 - 1) * R3; }
  static size_t work_size() { return 2 * n; }
  static void fill(const TripleTable<T>& roots, T* table) {
    fill_pass(Lanes<T, 1>(), R2 * R3, R2, roots, fill_pass(d, n, R1, roots, table));
  }
  template <bool kInverse> static void run(int, const T* table, T* data, T* work, T factor) {
    first_pass<R1, kInverse>(d, data, work, n, table);
    middle_pass<R2>(d, work, data, kBlocks, R1 / kMaxLanes<T>, table + kFirstRoots);
    last_pass<R3, kInverse>(d, data, data, kBlocks, factor);
  }
};

// A transform of R * L points that never leaves the registers: both passes at once, R a multiple of the L lanes.
template <class T, size_t R, size_t L> struct InRegisters {
  static constexpr Lanes<T, L> d{};
  static size_t table_size() { return 2 * (R - 1) * L; }
  static size_t work_size() { return 0; }
  static void fill(const TripleTable<T>& roots, T* table) { fill_pass(d, R * L, R, roots, table); }
  template <bool kInverse> static void run(int, const T* table, T* data, T*, T factor) {
    ComplexOf<Lanes<T, L>> x[R], y[L];
    for (size_t k = 0; k < R; ++k) x[k] = load_points<kInverse>(d, data + 2 * L * k);
    transform(d, x);
    const auto scale = hn::Set(d, factor);  // joins the roots, which wait for nothing
    if (!kInverse) x[0] = x[0] * scale;
    for (size_t k = 1; k < R; ++k) {
      const auto w = load_block(d, table, k - 1);
      x[k] = x[k] * (kInverse ? w : w * scale);
    }
    for (size_t k = 0; k < R; k += L) {
      transpose_points(d, x + k, y);
      transform(d, y);
      for (size_t j = 0; j < L; ++j) store_points<kInverse>(d, y[j], data + 2 * (k + R * j));
    }
  }
};

// Interleaved points in a vector. The shortest transforms stay below it where exchanging the lanes of the widest
// vectors takes longer than their number saves.
template <class T> constexpr size_t kPoints = kMaxLanes<T> / 2;

template <class T, size_t R, size_t L>
using Small = std::conditional_t<(kMaxLanes<T> >= L), InRegisters<T, R, L>, Passes<T, R, L>>;
#if HWY_TARGET != HWY_SCALAR
template <class T, size_t R, size_t C, size_t P>
using Smallest = std::conditional_t<(kMaxLanes<T> >= 2 * P), InPairs<T, R, C, P>, Small<T, R, C>>;
#else
template <class T, size_t R, size_t C, size_t P> using Smallest = Small<T, R, C>;
#endif

// Calls f with the passes of n = 2^bits.
template <class T, class F> HWY_INLINE auto with_passes(int bits, F f) {
  switch (bits) {
    case 1:
      return f(Passes<T, 2>());
    case 2:
      return f(Smallest<T, 2, 2, 2>());
    case 3:
      return f(Smallest<T, 4, 2, 2>());
    case 4:
      return f(Smallest<T, 4, 4, std::clamp<size_t>(kPoints<T>, 2, 16 / sizeof(T))>());
    case 5:
      return f(Smallest<T, 4, 8, std::clamp<size_t>(kPoints<T>, 2, 4)>());
    case 6:
      return f(Smallest<T, 8, 8, std::max<size_t>(kPoints<T>, 4)>());
    case 7:
      return f(Small<T, 16, 8>());
    case 8:
      return f(Passes<T, 16, 16>());
    case 9:
      return f(std::conditional_t<kMaxLanes<T> == 16, Passes<T, 16, 8, 4>, Passes<T, 8, 8, 8>>());
    case 10:
      return f(Passes<T, 16, 8, 8>());
    case 11:
      return f(Passes<T, 16, 8, 16>());
    default:
      return f(Passes<T, 16, 16, 16>());
  }
}

// Calls f with the sweeps of n = 2^bits.
template <class T, class F> auto with_sweeps(int bits, F f) {
  if (bits >= kFar) return f(Far<T>(bits));
  if (bits >= kInPlace) return f(InPlace<T>(bits));
  return f(Columns<T>(bits));
}

// Short transforms in self-sorting passes, long ones in sweeps. The table of a long one holds the roots of its
// convolutions, then its own.
template <class T> size_t table_size(int bits) {
  if (bits < kLong<T>) return with_passes<T>(bits, [](auto passes) { return passes.table_size(); });
  return Convolver<T>(bits).table_size() + with_sweeps<T>(bits, [](auto sweeps) { return sweeps.table_size(); });
}
template <class T> size_t work_size(int bits) {
  if (bits < kLong<T>) return with_passes<T>(bits, [](auto passes) { return passes.work_size(); });
  return with_sweeps<T>(bits, [](auto sweeps) { return sweeps.work_size(); });
}
template <class T> void fill_table(int bits, const TripleTable<T>& roots, T* table) {
  if (bits < kLong<T>) return with_passes<T>(bits, [&](auto passes) { passes.fill(roots, table); });
  const Convolver<T> convolver(bits);
  convolver.fill(roots, table);
  with_sweeps<T>(bits, [&](auto sweeps) { sweeps.fill(roots, table + convolver.table_size()); });
}
template <class T, bool kInverse> void run_long(int bits, const T* table, T* data, T* work, T scale) {
  with_sweeps<T>(bits, [&](auto sweeps) HWY_ATTR {
    sweeps.template run<kInverse>(table + Convolver<T>(bits).table_size(), data, work, scale);
  });
}
// A function for each length: a short transform takes less time than finding its way through a common one.
template <class T, bool kInverse> Transform<T> transform_of(int bits) {
  if (bits >= kLong<T>) return run_long<T, kInverse>;
  return with_passes<T>(bits, [](auto passes) -> Transform<T> { return decltype(passes)::template run<kInverse>; });
}

template <class T> size_t split_size(int bits) { return (real_in_registers<T>(bits) ? size_t{8} : size_t{1}) << bits; }
template <class T> void fill_split(int bits, const TripleTable<T>& roots, T* table) {
  const size_t h = size_t{1} << bits;
  if (with_real_in_registers<T>(bits, [&](auto real) { real.fill(roots, table); })) return;
  with_lanes<T>(h / 2, [&](auto d) { fill_split(d, h, roots, table); });
}

template <class T> void real_forward(const RealTables<T>& tables, T* data, T* work, T scale) {
  const ComplexTables<T>& half = *tables.half;
  const size_t h = size_t{1} << half.bits;
  half.forward(half.bits, half.roots, data, work, scale / 2);
  with_lanes<T>(h / 2, [&](auto d) HWY_ATTR { split<false>(d, h, tables.roots, data); });
}
template <class T> void real_inverse(const RealTables<T>& tables, T* data, T* work, T scale) {
  const ComplexTables<T>& half = *tables.half;
  const size_t h = size_t{1} << half.bits;
  with_lanes<T>(h / 2, [&](auto d) HWY_ATTR { split<true>(d, h, tables.roots, data); });
  half.inverse(half.bits, half.roots, data, work, scale);
}
template <class T, bool kInverse> RealTransform<T> real_of(int bits) {
  RealTransform<T> transform = kInverse ? real_inverse<T> : real_forward<T>;
  with_real_in_registers<T>(bits, [&](auto real) { transform = decltype(real)::template run<kInverse>; });
  return transform;
}

template <class T> const EngineKernels<T>* kernels() {
  static constexpr EngineKernels<T> table = {table_size<T>,          work_size<T>,          fill_table<T>,
                                             transform_of<T, false>, transform_of<T, true>, split_size<T>,
                                             fill_split<T>,          real_of<T, false>,     real_of<T, true>};
  return &table;
}
const EngineKernels<double>* kernels_double() { return kernels<double>(); }
const EngineKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace sigvex {

HWY_EXPORT(kernels_double);
HWY_EXPORT(kernels_float);

template <> const EngineKernels<double>& engine_kernels<double>() { return *HWY_DYNAMIC_DISPATCH(kernels_double)(); }
template <> const EngineKernels<float>& engine_kernels<float>() { return *HWY_DYNAMIC_DISPATCH(kernels_float)(); }

}  // namespace sigvex
#endif
