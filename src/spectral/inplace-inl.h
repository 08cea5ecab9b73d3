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

#include "spectral/columns-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Shorter ones take less time by way of a second array.
inline constexpr int kInPlace = 14;

template <class T> class InPlace {
 public:
  explicit InPlace(int bits)
      : side_bits_(side_bits(bits)),
        p_(size_t{1} << side_bits_),
        q_(size_t{1} << (bits - 2 * side_bits_)),
        rows_(p_ * q_),
        column_(bits - side_bits_, (bits - side_bits_) / 4 + 1),  // the first pass meets long strides: at most an eight
        side_(side_bits_, (side_bits_ + 3) / 4),
        last_(column_.radix[column_.count - 1]) {}

  size_t work_size() const { return 2 * std::max(L * rows_, p_ * p_); }

  // The roots of the columns, those of the squares' rows, and for each group of columns those that join both: w^(kc)
  // for the results k that a block of the last pass gives, counted from its first, then w^(kc) for the first k of every
  // block, in whose products are all.
  size_t table_size() const { return column_.roots_size() + side_.roots_size() + p_ / L * joining_size(); }
  void fill(const TripleTable<T>& roots, T* table) const {
    T* to = fill_column(side_, roots, fill_column(column_, roots, table));
    const auto put = [&](size_t k, size_t c) {
      for (size_t l = 0; l < L; ++l, ++to) {
        const Point<T> w = root_of(roots, k * (c + lane_point<D>(l)), rows_ * p_);
        to[0] = w.re;
        to[L] = w.im;
      }
      to += L;
    };
    for (size_t c = 0; c < p_; c += L) {
      for (size_t k = 0; k < last_; ++k) put(rows_ / last_ * k, c);
      for (size_t row = 0; row < rows_; row += last_) put(column_.result_in(row), c);
    }
  }

  template <bool kInverse> void run(const T* table, T* data, T* work, T factor) const {
    const T *const side_roots = table + column_.roots_size(), *joining = side_roots + side_.roots_size();
    for (size_t c = 0; c < p_; c += L, joining += joining_size()) strip<kInverse>(table, joining, data + 2 * c, work);
    for (size_t v = 0; v < q_; ++v) square<kInverse>(side_roots, data + 2 * p_ * v, work, factor);
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;

  // The smallest squares have rows of several cache lines; larger ones where the strips would outgrow the caches.
  static int side_bits(int bits) { return std::max(6, bits / 3); }

  size_t joining_size() const { return 2 * L * (last_ + rows_ / last_); }

  // Where the points of result k of the columns go, in scalars.
  size_t place_of(size_t k) const { return 2 * p_ * ((k & (p_ - 1)) * q_ + (k >> side_bits_)); }

  // A group of columns, read as points and left as blocks.
  template <bool kInverse> void strip(const T* roots, const T* joining, T* data, T* x) const {
    const size_t radix = column_.radix[0], apart = rows_ / radix;
    with_radix(radix, [&](auto constant) HWY_ATTR {
      column_pass(
          constant, d, rows_, roots, [&](size_t k) HWY_ATTR { return load_points<kInverse>(d, data + 2 * p_ * k); },
          [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
    });
    for (size_t row = 0; row < rows_; row += apart) {
      column_passes<Way::kThere>(d, column_, 1, column_.count - 1, 1, apart, roots + 2 * (radix - 1) * apart,
                                 x + 2 * L * row);
      with_radix(last_, [&](auto constant) HWY_ATTR { join(constant, x, row, row + apart, joining, data); });
    }
  }

  // The last pass over rows of a strip, and the joining roots. Of a block's results only the first is looked up: the
  // others lie as far from it as those of the first block do from each other.
  template <size_t R>
  HWY_INLINE void join(Radix<R>, const T* x, size_t row, size_t end, const T* joining, T* data) const {
    size_t place[R];
    for (size_t k = 0; k < R; ++k) place[k] = place_of(rows_ / R * k);
    for (; row < end; row += R) {
      C z[R];
      for (size_t k = 0; k < R; ++k) z[k] = load_block(d, x, row + k);
      transform(d, z);
      const C first = load_block(d, joining, R + row / R);
      T* const to = data + place_of(column_.result_in(row));
      store_block(d, z[0] * first, to, 0);
      for (size_t k = 1; k < R; ++k) store_block(d, z[k] * (first * load_block(d, joining, k)), to + place[k], 0);
    }
  }

  // A square, its rows read as blocks and left as points. The blocks of the last pass are taken in the order of their
  // first results.
  template <bool kInverse> void square(const T* roots, T* data, T* work, T factor) const {
    const size_t row = 2 * rows_;
    for (size_t u = 0; u < p_; u += L) {
      T* const x = work + 2 * p_ * u;
      for (size_t c = 0; c < p_; c += L) {
        C z[L], y[L];
        for (size_t l = 0; l < L; ++l) z[l] = load_block(d, data + row * (u + l) + 2 * c, 0);
        transpose_points(d, z, y);
        for (size_t l = 0; l < L; ++l) store_block(d, y[l], x, c + l);
      }
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

  int side_bits_;
  size_t p_, q_, rows_;
  Radices column_, side_;
  size_t last_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
