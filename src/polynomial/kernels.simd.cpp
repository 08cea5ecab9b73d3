#include "polynomial/kernels.h"

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "polynomial/kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::polynomial {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class V> struct Exact { V value, error; };

template <class V> HWY_INLINE Exact<V> two_sum(V a, V b) {
  const V s = hn::Add(a, b), t = hn::Sub(s, a);
  return {s, hn::Add(hn::Sub(a, hn::Sub(s, t)), hn::Sub(b, t))};
}

// Without a fused product the factors are split into halves of 26 bits, whose products are exact (Dekker, 1971).
template <class V> HWY_INLINE Exact<V> two_product(V a, V b) {
  const V p = hn::Mul(a, b);
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || HWY_TARGET == HWY_SSE4
  const hn::DFromV<V> d;
  const auto upper = [&](V x) HWY_ATTR {
    const V c = hn::Mul(x, hn::Set(d, 134217729.0));  // 2^27 + 1
    return hn::Sub(c, hn::Sub(c, x));
  };
  const V ah = upper(a), al = hn::Sub(a, ah), bh = upper(b), bl = hn::Sub(b, bh);
  const V rest = hn::Sub(hn::Sub(hn::Sub(p, hn::Mul(ah, bh)), hn::Mul(al, bh)), hn::Mul(ah, bl));
  return {p, hn::Sub(hn::Mul(al, bl), rest)};
#else
  return {p, hn::MulSub(a, b, p)};
#endif
}

// Value plus correction; where the value is no number any more, so is its correction, which must not hide it.
template <class V> HWY_INLINE V corrected(V value, V correction) {
  const V sum = hn::Add(value, correction);
  return hn::IfThenElse(hn::IsFinite(sum), sum, value);
}

// The steps of Horner's rule for samples and points, which come as one vector or as two. In double the errors of both
// operations run through the same rule; what remains of single precision in double is below its rounding.
template <class V> struct CompensatedSample {
  static constexpr size_t kWidth = 1;
  V value, correction;
  HWY_INLINE CompensatedSample(const V* leading, V zero) : value(*leading), correction(zero) {}

  HWY_INLINE void step(const V* x, const V* a) {
    const Exact<V> product = two_product(value, *x), sum = two_sum(product.value, *a);
    value = sum.value;
    correction = hn::Add(hn::Mul(correction, *x), hn::Add(product.error, sum.error));
  }
  HWY_INLINE V part(size_t) const { return corrected(value, correction); }
};

template <class V> struct PlainSample {
  static constexpr size_t kWidth = 1;
  V value;
  HWY_INLINE PlainSample(const V* leading, V) : value(*leading) {}

  HWY_INLINE void step(const V* x, const V* a) { value = hn::Add(hn::Mul(value, *x), *a); }
  HWY_INLINE V part(size_t) const { return value; }
};

template <class V> HWY_INLINE V real_product(const V* a, const V* b) {
  return hn::Sub(hn::Mul(a[0], b[0]), hn::Mul(a[1], b[1]));
}
template <class V> HWY_INLINE V imaginary_product(const V* a, const V* b) {
  return hn::Add(hn::Mul(a[1], b[0]), hn::Mul(a[0], b[1]));
}

template <class V> struct CompensatedPoint {
  static constexpr size_t kWidth = 2;
  V value[2], correction[2];
  HWY_INLINE CompensatedPoint(const V* leading, V zero) : value{leading[0], leading[1]}, correction{zero, zero} {}

  HWY_INLINE void step(const V* x, const V* a) {
    const Exact<V> re = sum(two_product(value[0], x[0]), two_product(hn::Neg(value[1]), x[1]), a[0]);
    const Exact<V> im = sum(two_product(value[1], x[0]), two_product(value[0], x[1]), a[1]);
    const V carried = real_product(correction, x);
    correction[1] = hn::Add(imaginary_product(correction, x), im.error);
    correction[0] = hn::Add(carried, re.error);
    value[0] = re.value;
    value[1] = im.value;
  }
  HWY_INLINE V part(size_t i) const { return corrected(value[i], correction[i]); }

 private:
  static HWY_INLINE Exact<V> sum(Exact<V> a, Exact<V> b, V c) {
    const Exact<V> ab = two_sum(a.value, b.value), abc = two_sum(ab.value, c);
    return {abc.value, hn::Add(hn::Add(a.error, b.error), hn::Add(ab.error, abc.error))};
  }
};

template <class V> struct PlainPoint {
  static constexpr size_t kWidth = 2;
  V value[2];
  HWY_INLINE PlainPoint(const V* leading, V) : value{leading[0], leading[1]} {}

  HWY_INLINE void step(const V* x, const V* a) {
    const V re = real_product(value, x);
    value[1] = hn::Add(imaginary_product(value, x), a[1]);
    value[0] = hn::Add(re, a[0]);
  }
  HWY_INLINE V part(size_t i) const { return value[i]; }
};

// Blocks of two vectors, whose recurrences hide each other's latency. The parts of the points lie apart in them, and
// what a last block has too much is dropped.
template <template <class> class RuleOf, class T> void evaluate(const T* p, size_t count, const T* x, size_t n, T* y) {
  const hn::ScalableTag<double> d;
  using V = hn::Vec<decltype(d)>;
  using Rule = RuleOf<V>;
  constexpr size_t kLanes = hn::MaxLanes(d), kBlock = 2 * kLanes, kWidth = Rule::kWidth;
  double block[kWidth][kBlock] = {};
  for (size_t start = 0; start < n; start += kBlock) {
    const size_t rest = n - start < kBlock ? n - start : kBlock;
    for (size_t j = 0; j < rest * kWidth; ++j) block[j % kWidth][j / kWidth] = x[start * kWidth + j];
    V low[kWidth], high[kWidth], a[kWidth];
    for (size_t i = 0; i < kWidth; ++i) {
      low[i] = hn::LoadU(d, block[i]);
      high[i] = hn::LoadU(d, block[i] + kLanes);
    }
    const auto coefficient = [&](size_t k) HWY_ATTR {
      for (size_t i = 0; i < kWidth; ++i) a[i] = hn::Set(d, p[k * kWidth + i]);
      return a;
    };
    Rule in_low(coefficient(count - 1), hn::Zero(d)), in_high(a, hn::Zero(d));
    for (size_t k = count - 1; k-- > 0;) {
      coefficient(k);
      in_low.step(low, a);
      in_high.step(high, a);
    }
    for (size_t i = 0; i < kWidth; ++i) {
      hn::StoreU(in_low.part(i), d, block[i]);
      hn::StoreU(in_high.part(i), d, block[i] + kLanes);
    }
    for (size_t j = 0; j < rest * kWidth; ++j) y[start * kWidth + j] = static_cast<T>(block[j % kWidth][j / kWidth]);
  }
}

const PolynomialKernels<double>* kernels_double() {
  static constexpr PolynomialKernels<double> table = {evaluate<CompensatedSample>, evaluate<CompensatedPoint>};
  return &table;
}
const PolynomialKernels<float>* kernels_float() {
  static constexpr PolynomialKernels<float> table = {evaluate<PlainSample>, evaluate<PlainPoint>};
  return &table;
}

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::polynomial
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(polynomial, PolynomialKernels, polynomial_kernels)
#endif
