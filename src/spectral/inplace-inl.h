// Long transforms in place, in two sweeps over memory and with little memory beside the data, so that what fits a cache
// stays there. n = p * q * p points are seen as p blocks of q rows of p points:
//
//   1. a strip of neighbouring columns at a time: transform all its p * q rows, multiply by the roots of order n that
//      join both steps, and leave result u + p * v in row v of block u;
//   2. for each v, the square that rows v of all blocks make: transform the rows, and leave result w of row u where
//      point u of row w was, which is its place in natural order.
//
// Within a strip every lane is a transform of its own, so that nothing is exchanged between lanes except in the
// squares.
#if defined(SIGVEX_SPECTRAL_INPLACE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_INPLACE_INL_H
#undef SIGVEX_SPECTRAL_INPLACE_INL_H
#else
#define SIGVEX_SPECTRAL_INPLACE_INL_H
#endif

#include "spectral/strips-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Shorter ones take less time by way of a second array.
inline constexpr int kInPlace = 14;

// p, in bits and as it is: a row is several cache lines, a square a fraction of the second-level cache.
inline constexpr int kSideBits = 6;
inline constexpr size_t kSide = size_t{1} << kSideBits;

template <class T> class InPlace {
 public:
  explicit InPlace(int bits)
      : q_(size_t{1} << (bits - 2 * kSideBits)), strips_(bits - kSideBits, p_), side_(kSideBits, 2) {}

  size_t work_size() const { return std::max(strips_.work_size(), 2 * p_ * p_); }

  // The roots of the columns, then those of the squares' rows.
  size_t table_size() const { return strips_.table_size() + side_.roots_size(); }
  void fill(const TripleTable<T>& roots, T* table) const { fill_column(side_, roots, strips_.fill(roots, table)); }

  template <bool kInverse> void run(const T* table, T* data, T* work, T factor) const {
    const auto first = [&](size_t row) { return place_of(strips_.result_in(row)); };
    const auto apart = [&](size_t k) { return place_of(strips_.result_of_block(k)); };
    for (size_t c = 0; c < p_; c += L) {
      const auto load = [&](size_t row) HWY_ATTR { return load_points<kInverse>(d, data + 2 * (p_ * row + c)); };
      strips_.template there<false>(table, c, load, work, data + 2 * c, first, apart);
    }
    const T* const side_roots = table + strips_.table_size();
    for (size_t v = 0; v < q_; ++v) square<kInverse>(side_roots, data + 2 * p_ * v, work, factor);
  }

  // A square, its rows read as blocks and left as points. The blocks of the last pass are taken in the order of their
  // first results.
  template <bool kInverse> void square(const T* roots, T* data, T* work, T factor) const {
    const size_t row = 2 * strips_.rows();
    for (size_t u = 0; u < p_; u += L) {
      T* const x = work + 2 * p_ * u;
      transpose_rows(data + row * u, x, row);
      column_passes<Way::kThere>(d, side_, 0, side_.count - 1, 1, p_, roots, x);
    }
    const auto scale = hn::Set(d, factor);
    with_radix(side_.radix[side_.count - 1], [&](auto radix) HWY_ATTR {
      const size_t blocks = p_ / radix;
      for (size_t block = 0; block < blocks; ++block) {
        const T* const first = work + 2 * L * side_.row_of(block);
        for (size_t u = 0; u < p_; u += L) {
          const T* const x = first + 2 * p_ * u;
          T* const to = data + row * block + 2 * u;
          column_pass(
              radix, d, radix, static_cast<const T*>(nullptr), [&](size_t k) HWY_ATTR { return load_block(d, x, k); },
              [&](size_t k, C z)
                  HWY_ATTR { store_points<kInverse>(d, kInverse ? z : z * scale, to + row * blocks * k); });
        }
      }
    });
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;
  static constexpr size_t p_ = kSide;

  // Where the points of result k of the columns go, in scalars.
  size_t place_of(size_t k) const { return 2 * p_ * ((k & (p_ - 1)) * q_ + (k >> kSideBits)); }

  // As many rows as there are lanes, so many scalars apart, transposed into x.
  HWY_INLINE void transpose_rows(const T* data, T* x, size_t apart) const {
    for (size_t c = 0; c < p_; c += L) {
      C z[L], y[L];
      for (size_t l = 0; l < L; ++l) z[l] = load_block(d, data + apart * l + 2 * c, 0);
      transpose_points(d, z, y);
      for (size_t l = 0; l < L; ++l) store_block(d, y[l], x, c + l);
    }
  }

  size_t q_;
  Strips<T> strips_;
  Radices side_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
