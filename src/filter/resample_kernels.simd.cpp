#include "filter/resample_kernels.h"

#include <algorithm>
#include <cstddef>

#include "core/kernel_choice.h"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/resample_kernels.simd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace sigvex::resample {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Sums of a few samples run in eight lanes on every target, and the lanes are added in pairs: eight outputs at a time
// in interpolate, one in weigh, with the same bits.
template <class T> using GroupTag = hn::CappedTag<T, kGroup>;

template <class T> T sum_of_group(const T* l) {
  return ((l[0] + l[1]) + (l[2] + l[3])) + ((l[4] + l[5]) + (l[6] + l[7]));
}

// The sums of neighbours, those in a and then those in b.
#if HWY_TARGET == HWY_SCALAR
template <class D> HWY_INLINE hn::Vec<D> sums_of_pairs(D, hn::Vec<D> a, hn::Vec<D> b) { return hn::Add(a, b); }
#else
template <class D> HWY_INLINE hn::Vec<D> sums_of_pairs(D d, hn::Vec<D> a, hn::Vec<D> b) {
  return hn::Add(hn::ConcatEven(d, b, a), hn::ConcatOdd(d, b, a));
}
#endif

// The sums of pairs in the first `from` vectors, of pairs of those and so on, in the first `to` in the end.
template <class D> HWY_INLINE void add_pairs(D d, hn::Vec<D>* v, size_t from, size_t to) {
  for (size_t n = from / 2; n >= to; n /= 2) {
    for (size_t k = 0; k < n; ++k) v[k] = sums_of_pairs(d, v[2 * k], v[2 * k + 1]);
  }
}

// The first eight points and the last eight; of those the ones that are among the first count as zeros, samples and
// weights both: an infinite sample must not meet a zero weight.
template <class T> T weighted_sum(const T* x, const T* w, size_t n) {
  const GroupTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  T sum = 0;
  if (n < kGroup) {
    for (size_t k = 0; k < n; ++k) sum += x[k] * w[k];
    return sum;
  }
  HWY_ALIGN T lanes[kGroup];
  const size_t rest = n % kGroup, tail = n - kGroup;
  for (size_t i = 0; i < kGroup; i += kLanes) {
    auto lane = hn::Mul(hn::LoadU(d, x + i), hn::LoadU(d, w + i));
    for (size_t k = kGroup; k + kGroup <= n; k += kGroup) {
      lane = hn::MulAdd(hn::LoadU(d, x + k + i), hn::LoadU(d, w + k + i), lane);
    }
    if (rest > 0) {
      const auto done = hn::FirstN(d, std::min(kLanes, kGroup - rest > i ? kGroup - rest - i : 0));
      lane = hn::MulAdd(hn::IfThenZeroElse(done, hn::LoadU(d, x + tail + i)),
                        hn::IfThenZeroElse(done, hn::LoadU(d, w + tail + i)), lane);
    }
    hn::Store(lane, d, lanes + i);
  }
  return sum_of_group(lanes);
}

template <class T> HWY_INLINE T fused(T a, T b, T c) {
  const hn::CappedTag<T, 1> one;
  return hn::GetLane(hn::MulAdd(hn::Set(one, a), hn::Set(one, b), hn::Set(one, c)));
}

// Both parts of a point, weighted by weight(k).
template <class T, class Weight> HWY_INLINE void weighted_point(const T* x, size_t n, Weight weight, T* y) {
  T re = 0, im = 0;
  for (size_t k = 0; k < n; ++k) {
    const T w = weight(k);
    re = fused(x[2 * k], w, re);
    im = fused(x[2 * k + 1], w, im);
  }
  y[0] = re;
  y[1] = im;
}

template <class T> void weigh(const T* x, size_t width, const T* w, size_t n, T* y) {
  if (width == 1) y[0] = weighted_sum(x, w, n);
  else
    weighted_point(
        x, n, [w](size_t k) { return w[k]; }, y);
}

// What an output is made of: the points from x on, and weights the part t of the way from a row to the next one.
template <class T, bool kLinear> struct Site {
  const T *x, *row;
  T t;

  // No fused product, so that the weights are those of scalar code.
  template <class D> HWY_INLINE hn::Vec<D> weights(D d, size_t place) const {
    const auto low = hn::Load(d, row + place);
    if constexpr (!kLinear) return low;
    else return hn::Add(low, hn::Mul(hn::Set(d, t), hn::Load(d, row + place + kGroup)));
  }
  HWY_INLINE T weight(size_t place) const { return kLinear ? row[place] + t * row[place + kGroup] : row[place]; }
};

// A position in two halves, whose sums compilers keep in registers.
struct Halves {
  uint64_t high, low;
  explicit HWY_INLINE Halves(Fixed x) : high(static_cast<uint64_t>(x >> 64)), low(static_cast<uint64_t>(x)) {}
  HWY_INLINE void operator+=(const Halves& b) {
    low += b.low;
    high += b.high + (low < b.low ? 1 : 0);
  }
};
constexpr int kHighBits = kFractionBits - 64;  // of the fraction, in the upper half

// The parts t for kLanes positions side by side, each a step behind the last.
template <class T> class Parts {
 public:
  static constexpr size_t kLanes = hn::MaxLanes(hn::CappedTag<uint64_t, kGroup>());

  HWY_INLINE Parts(Fixed step, int step_bits) : step_bits_(step_bits) {
    for (size_t bit = 1; bit < kLanes; bit *= 2) {
      const auto odd = hn::TestBit(hn::Iota(kTag, 0), hn::Set(kTag, bit));
      const Halves by(bit * step);
      add(hn::IfThenElseZero(odd, hn::Set(kTag, by.high)), hn::IfThenElseZero(odd, hn::Set(kTag, by.low)), high_, low_);
    }
  }

  // The digits below the rows' are those of a double from 1 to 2.
  HWY_INLINE void store(Halves first, T* t) const {
    const hn::RebindToFloat<decltype(kTag)> d;
    auto high = hn::Set(kTag, first.high), low = hn::Set(kTag, first.low);
    add(high_, low_, high, low);
    const auto digits = hn::And(hn::Or(hn::ShiftLeft<64 - kHighBits>(high), hn::ShiftRight<kHighBits>(low)),
                                hn::Set(kTag, ~uint64_t{0} << (64 - 53)));  // those of fraction()
    const auto one = hn::BitCast(kTag, hn::Set(d, 1.0)),
               above_one = hn::Or(hn::ShiftRight<12>(hn::ShiftLeftSame(digits, step_bits_)), one);
    const auto part = hn::Sub(hn::BitCast(d, above_one), hn::BitCast(d, one));
    if constexpr (sizeof(T) == sizeof(double)) hn::Store(part, d, t);
    else hn::Store(hn::DemoteTo(hn::Rebind<T, decltype(d)>(), part), hn::Rebind<T, decltype(d)>(), t);
  }

 private:
  static constexpr hn::CappedTag<uint64_t, kGroup> kTag{};
  using V = hn::Vec<decltype(kTag)>;
  static HWY_INLINE void add(V b_high, V b_low, V& high, V& low) {
    low = hn::Add(low, b_low);
    high = hn::Sub(hn::Add(high, b_high), hn::VecFromMask(kTag, hn::Lt(low, b_low)));
  }

  int step_bits_;
  V high_ = hn::Zero(kTag), low_ = hn::Zero(kTag);
};

// The sites of one output after the other. Points and rows are found in registers, from one to the next. The parts are
// stored for a block at once: single ones are read at full speed only when the vectors they are in have left the core.
template <class T, bool kLinear> class Sites {
 public:
  static constexpr size_t kBlock = 64;

  HWY_INLINE Sites(const WeightTable<T>& table, const T* x, size_t width, Fixed place, Fixed step)
      : x_(x),
        width_(width),
        rows_(table.rows),
        below_(kHighBits - table.step_bits),
        place_(place),
        step_(step),
        group_step_(Parts<T>::kLanes * step),
        parts_(step, table.step_bits) {}

  // Comes before the next n sites; n is at most a block.
  HWY_INLINE void prepare(size_t n) {
    if constexpr (kLinear) {
      Halves first = place_;
      for (size_t i = 0; i < n; i += Parts<T>::kLanes, first += group_step_) parts_.store(first, t_ + i);
      next_ = t_;
    }
  }

  HWY_INLINE Site<T, kLinear> next() {
    const uint64_t fraction = place_.high & ((uint64_t{1} << kHighBits) - 1), half = kLinear ? 0 : 1;
    const T* const x = x_ + (place_.high >> kHighBits) * width_;
    const T* const row = rows_ + row_place((fraction + (half << below_ >> 1)) >> below_) * kWeightRow;
    place_ += step_;
    return {x, row, kLinear ? *next_++ : T(0)};
  }

 private:
  const T* x_;
  size_t width_;
  const T* rows_;
  int below_;
  Halves place_, step_, group_step_;
  Parts<T> parts_;
  const T* next_ = nullptr;
  HWY_ALIGN T t_[kBlock];
};

template <class T, bool kLinear, bool kTail>
void interpolate_samples(const WeightTable<T>& table, const T* x, Fixed place, Fixed step, T* y, size_t n) {
  const GroupTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d), kVectors = kGroup / kLanes;
  const size_t tail = table.length - kGroup, among_first = 2 * kGroup - table.length;
  hn::Mask<decltype(d)> fresh[kVectors];
  for (size_t k = 0; k < kVectors; ++k) {
    const size_t first = k * kLanes, done = among_first > first ? std::min(kLanes, among_first - first) : 0;
    fresh[k] = hn::Not(hn::FirstN(d, done));
  }
  Sites<T, kLinear> sites(table, x, 1, place, step);
  const auto output = [&]() HWY_ATTR {
    const Site<T, kLinear> site = sites.next();
    hn::Vec<decltype(d)> lanes[kVectors];
    for (size_t k = 0; k < kVectors; ++k) {
      const size_t at = k * kLanes;
      lanes[k] = hn::Mul(hn::LoadU(d, site.x + at), site.weights(d, at));
      if constexpr (kTail) {
        lanes[k] = hn::MulAdd(hn::IfThenElseZero(fresh[k], hn::LoadU(d, site.x + tail + at)),
                              site.weights(d, 2 * kGroup + at), lanes[k]);
      }
    }
    add_pairs(d, lanes, kVectors, 1);
    return lanes[0];
  };
  const auto store_sums = [&](hn::Vec<decltype(d)>* outputs, T* to) HWY_ATTR {
    add_pairs(d, outputs, kGroup, kVectors);
    for (size_t k = 0; k < kVectors; ++k) hn::StoreU(outputs[k], d, to + k * kLanes);
  };
  while (n > 0) {
    const size_t block = std::min(n, sites.kBlock), whole = block / kGroup * kGroup;
    sites.prepare(block);
    for (size_t m = 0; m < whole; m += kGroup) {
      hn::Vec<decltype(d)> outputs[kGroup];
      for (size_t i = 0; i < kGroup; ++i) outputs[i] = output();
      store_sums(outputs, y + m);
    }
    if (whole < block) {
      hn::Vec<decltype(d)> outputs[kGroup] = {};
      T last[kGroup];
      for (size_t i = 0; i < block - whole; ++i) outputs[i] = output();
      store_sums(outputs, last);
      std::copy_n(last, block - whole, y + whole);
    }
    y += block;
    n -= block;
  }
}

template <class T, bool kLinear>
void interpolate_all(const WeightTable<T>& table, const T* x, size_t width, Fixed place, Fixed step, T* y, size_t n) {
  if (width == 1) {
    return table.length == kGroup ? interpolate_samples<T, kLinear, false>(table, x, place, step, y, n)
                                  : interpolate_samples<T, kLinear, true>(table, x, place, step, y, n);
  }
  Sites<T, kLinear> sites(table, x, width, place, step);
  for (size_t m = 0; m < n; ++m, y += 2) {
    if (m % sites.kBlock == 0) sites.prepare(std::min(n - m, sites.kBlock));
    const Site<T, kLinear> site = sites.next();
    weighted_point(
        site.x, table.length, [&](size_t k) { return site.weight(weight_place(k, table.length)); }, y);
  }
}

template <class T>
void interpolate(const WeightTable<T>& table, bool linear, const T* x, size_t width, Fixed place, Fixed step, T* y,
                 size_t n) {
  if (linear) interpolate_all<T, true>(table, x, width, place, step, y, n);
  else interpolate_all<T, false>(table, x, width, place, step, y, n);
}

// The four rows around a place between two samples, and what each counts in the cubic through them.
template <class T> struct Mix {
  const T* row;
  size_t stride;
  double weight[4];
};

template <class T> HWY_INLINE Mix<T> mix(const ResampleBank<T>& bank, double place) {
  const double at = place * static_cast<double>(bank.steps);
  const size_t row = std::min(static_cast<size_t>(at), bank.steps - 1);
  const double t = at - static_cast<double>(row), below = t + 1, above = t - 1, far = t - 2;
  return {bank.rows + row * bank.stride,
          bank.stride,
          {-t * above * far / 6, below * above * far / 2, -below * t * far / 2, below * t * above / 6}};
}

template <class T> HWY_INLINE T mixed_sum(const Mix<T>& m, const T* x, size_t n) {
  const hn::ScalableTag<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  hn::Vec<decltype(d)> even[4], odd[4];
  for (size_t i = 0; i < 4; ++i) even[i] = odd[i] = hn::Zero(d);
  const auto add = [&](auto* sums, auto samples, size_t k) HWY_ATTR {
    for (size_t i = 0; i < 4; ++i) sums[i] = hn::MulAdd(samples, hn::LoadU(d, m.row + i * m.stride + k), sums[i]);
  };
  size_t k = 0;
  for (; k + 2 * kLanes <= n; k += 2 * kLanes) {
    add(even, hn::LoadU(d, x + k), k);
    add(odd, hn::LoadU(d, x + k + kLanes), k + kLanes);
  }
  for (; k + kLanes <= n; k += kLanes) add(even, hn::LoadU(d, x + k), k);
  if (k < n) add(odd, hn::IfThenElseZero(hn::FirstN(d, n - k), hn::LoadU(d, x + k)), k);
  auto sum = hn::Zero(d);
  for (size_t i = 0; i < 4; ++i) {
    sum = hn::MulAdd(hn::Set(d, static_cast<T>(m.weight[i])), hn::Add(even[i], odd[i]), sum);
  }
  return hn::GetLane(hn::SumOfLanes(d, sum));
}

template <class T>
void gather(const ResampleBank<T>& bank, const T* x, size_t part, size_t parts, Fixed place, Fixed step, T* y,
            size_t n) {
  for (; n > 0; --n, place += step) {
    const Mix<T> m = mix(bank, fraction(place));
    const T* const from = x + whole(place);
    for (size_t k = 0; k < parts; ++k) *y++ = mixed_sum(m, from + k * part, bank.length);
  }
}

template <class D> HWY_INLINE hn::Vec<D> load(D d, const double* x) { return hn::LoadU(d, x); }
template <class D> HWY_INLINE hn::Vec<D> load(D d, const float* x) {
  return hn::PromoteTo(d, hn::LoadU(hn::Rebind<float, D>(), x));
}

// y[k] += x times the mix of the rows from `first` on, for k < n.
template <class T> HWY_INLINE void spread(const Mix<T>& m, double x, size_t first, double* y, size_t n) {
  const hn::ScalableTag<double> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  hn::Vec<decltype(d)> factor[4];
  for (size_t i = 0; i < 4; ++i) factor[i] = hn::Set(d, m.weight[i] * x);
  const auto sum = [&](size_t k, auto old) HWY_ATTR {
    for (size_t i = 0; i < 4; ++i) old = hn::MulAdd(factor[i], load(d, m.row + i * m.stride + first + k), old);
    return old;
  };
  size_t k = 0;
  for (; k + kLanes <= n; k += kLanes) hn::StoreU(sum(k, hn::LoadU(d, y + k)), d, y + k);
  if (k < n) {
    const auto old = hn::LoadU(d, y + k);
    hn::StoreU(hn::IfThenElse(hn::FirstN(d, n - k), sum(k, old), old), d, y + k);
  }
}

// In the spacing of the outputs the kernel has the length it has in the bank, and the places of the outputs have one
// fraction for all that a point enters: one row of weights, onto outputs that lie side by side.
template <class T> void scatter(const ResampleBank<T>& bank, const T* x, Fixed edge, Fixed step, double* y, size_t n) {
  const double scale = 1 / to_double(step);
  const Fixed one = to_fixed(size_t{1});
  const size_t reach = bank.length - 1;  // outputs before the first of y that its points may still enter
  const Fixed begin = edge - reach * step;
  size_t k = whole(begin - step) + 1, m = 0;  // m counts from `reach` outputs before y
  Fixed next = begin;                         // the edge of output m, the first that reaches point k
  for (; next < to_fixed(k); ++m) next += step;
  for (Fixed past = next - to_fixed(k); m < n + reach; ++k) {
    const size_t first = m < reach ? reach - m : 0, last = std::min(bank.length, n + reach - m);
    spread(mix(bank, 1 - to_double(past) * scale), static_cast<double>(x[k]) * scale, first, y + (m + first - reach),
           last - first);
    if (past >= one) {
      past -= one;
    } else {
      past += step - one;
      ++m;
    }
  }
}

template <class T> const ResampleKernels<T>* kernels() {
  static constexpr ResampleKernels<T> table = {weigh<T>, interpolate<T>, gather<T>, scatter<T>};
  return &table;
}
const ResampleKernels<double>* kernels_double() { return kernels<double>(); }
const ResampleKernels<float>* kernels_float() { return kernels<float>(); }

}  // namespace HWY_NAMESPACE
}  // namespace sigvex::resample
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
SIGVEX_CHOOSE_KERNELS(resample, ResampleKernels, resample_kernels)
#endif
