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
//
// A convolution needs no order: there every result of a column stays in the row it comes in, each row is transformed,
// multiplied and transformed back where it stands, and a third sweep takes the columns back.
#if defined(SIGVEX_SPECTRAL_INPLACE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_INPLACE_INL_H
#undef SIGVEX_SPECTRAL_INPLACE_INL_H
#else
#define SIGVEX_SPECTRAL_INPLACE_INL_H
#endif

#include <array>

#include "spectral/columns-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Shorter ones take less time by way of a second array.
inline constexpr int kInPlace = 14;

// For the convolutions of one input with several kernels.
template <class T, size_t S> using Pointers = std::array<T*, S>;
template <class T, size_t S> using Turns = std::array<Turn<T>, S>;

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
    for (size_t c = 0; c < p_; c += L, joining += joining_size()) {
      const auto load = [&](size_t row) HWY_ATTR { return load_points<kInverse>(d, data + 2 * (p_ * row + c)); };
      strip<true, false>(table, joining, load, data + 2 * c, work);
    }
    for (size_t v = 0; v < q_; ++v) square<kInverse>(side_roots, data + 2 * p_ * v, work, factor);
  }

  // In place, the spectrum of load(k), vectors of points from k on, in the order in which convolve multiplies.
  template <class Load> void spectrum(const T* table, T* data, T* work, T factor, Load load) const {
    columns(table, rows_ * p_, load, data, work);
    const auto scale = hn::Set(d, factor);
    for (size_t at = 0; at < 2 * rows_ * p_; at += 2 * L * p_) {
      transpose_rows<false>(data + at, work, 2 * p_);
      column_passes<Way::kThere>(d, side_, 0, side_.count, 1, p_, table + column_.roots_size(), work);
      for (size_t k = 0; k < p_; ++k) store_block(d, load_block(d, work, k) * scale, data + at, k);
    }
  }

  // In data[0], the transform of load(k), the first `given` points of which may differ from zero, times the spectra of
  // some turns, each product in its data and transformed back: to store(s, k, z), the first `wanted` points at least,
  // their parts exchanged.
  template <size_t S, class Load, class Store>
  void convolve(const T* table, const Pointers<T, S>& data, T* work, size_t given, Load load, const Turns<T, S>& turns,
                size_t wanted, Store store) const {
    columns(table, given, load, data[0], work);
    for (size_t at = 0; at < 2 * rows_ * p_; at += 2 * L * p_) {
      for (size_t s = S; s-- > 0;) {
        transpose_rows<false>(data[0] + at, work, 2 * p_);
        column_passes<Way::kThereAndBack>(d, side_, 0, side_.count, 1, p_, table + column_.roots_size(), work,
                                          turns[s].from(at));
        transpose_rows<true>(data[s] + at, work, 2 * p_);
      }
    }
    for (size_t s = 0; s < S; ++s) {
      columns_back(
          table, wanted, [&](size_t k, C z) HWY_ATTR { store(s, k, z); }, data[s], work);
    }
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

  // A group of columns, load(row), left as blocks: in place for the squares, or in the rows where they come.
  template <bool kSquares, bool kHalf, class Load>
  void strip(const T* roots, const T* joining, Load load, T* data, T* x) const {
    const size_t radix = column_.radix[0], apart = rows_ / radix;
    with_radix(radix, [&](auto constant) HWY_ATTR {
      column_pass<kHalf>(constant, d, rows_, roots, load, [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
    });
    for (size_t row = 0; row < rows_; row += apart) {
      column_passes<Way::kThere>(d, column_, 1, column_.count - 1, 1, apart, roots + 2 * (radix - 1) * apart,
                                 x + 2 * L * row);
      with_radix(last_, [&](auto constant) HWY_ATTR { join<kSquares>(constant, x, row, row + apart, joining, data); });
    }
  }

  // The last pass over rows of a strip, and the joining roots. Of a block's results only the first is looked up: the
  // others lie as far from it as those of the first block do from each other.
  template <bool kSquares, size_t R>
  HWY_INLINE void join(Radix<R>, const T* x, size_t row, size_t end, const T* joining, T* data) const {
    size_t place[R];
    for (size_t k = 0; k < R; ++k) place[k] = kSquares ? place_of(rows_ / R * k) : 2 * p_ * k;
    for (; row < end; row += R) {
      C z[R];
      for (size_t k = 0; k < R; ++k) z[k] = load_block(d, x, row + k);
      transform(d, z);
      const C first = load_block(d, joining, R + row / R);
      T* const to = data + (kSquares ? place_of(column_.result_in(row)) : 2 * p_ * row);
      store_block(d, z[0] * first, to, 0);
      for (size_t k = 1; k < R; ++k) store_block(d, z[k] * (first * load_block(d, joining, k)), to + place[k], 0);
    }
  }

  // The way back of join from the rows where the results came.
  template <size_t R>
  HWY_INLINE void part(Radix<R>, const T* data, size_t row, size_t end, const T* joining, T* x) const {
    for (; row < end; row += R) {
      const T* const from = data + 2 * p_ * row;
      const C first = load_block(d, joining, R + row / R);
      C z[R];
      z[0] = load_block(d, from, 0) * first;
      for (size_t k = 1; k < R; ++k) z[k] = load_block(d, from + 2 * p_ * k, 0) * (first * load_block(d, joining, k));
      transform(d, z);
      for (size_t k = 0; k < R; ++k) store_block(d, z[k], x, row + k);
    }
  }

  // Whether of the points before `end` none is in the second half of the rows of the group of columns from c on.
  bool in_first_half(size_t end, size_t c) const { return end <= rows_ / 2 * p_ + c; }

  // All columns, the points from `given` on being zero.
  template <class Load> void columns(const T* table, size_t given, Load load, T* data, T* x) const {
    const T* joining = table + column_.roots_size() + side_.roots_size();
    for (size_t c = 0; c < p_; c += L, joining += joining_size()) {
      const auto row_of = [&](size_t row) HWY_ATTR { return load(p_ * row + c); };
      if (in_first_half(given, c)) {
        strip<false, true>(table, joining, row_of, data + 2 * c, x);
      } else {
        strip<false, false>(table, joining, row_of, data + 2 * c, x);
      }
    }
  }

  template <class Store> void columns_back(const T* table, size_t wanted, Store store, const T* data, T* x) const {
    const size_t radix = column_.radix[0], apart = rows_ / radix;
    const T* joining = table + column_.roots_size() + side_.roots_size();
    for (size_t c = 0; c < p_; c += L, joining += joining_size()) {
      for (size_t row = 0; row < rows_; row += apart) {
        with_radix(last_, [&](auto constant) HWY_ATTR { part(constant, data + 2 * c, row, row + apart, joining, x); });
        column_passes<Way::kBack>(d, column_, 1, column_.count - 1, 1, apart, table + 2 * (radix - 1) * apart,
                                  x + 2 * L * row);
      }
      with_radix(radix, [&](auto constant) HWY_ATTR {
        const auto from = [&](size_t row) HWY_ATTR { return load_block(d, x, row); };
        const auto to = [&](size_t row, C z) HWY_ATTR { store(p_ * row + c, z); };
        if (in_first_half(wanted, c)) {
          column_pass_back<true>(constant, d, rows_, table, from, to);
        } else {
          column_pass_back(constant, d, rows_, table, from, to);
        }
      });
    }
  }

  // As many rows as there are lanes, so many scalars apart, transposed into x or back from there.
  template <bool kBack> HWY_INLINE void transpose_rows(T* data, T* x, size_t apart) const {
    for (size_t c = 0; c < p_; c += L) {
      const auto row = [&](size_t l) { return data + apart * l + 2 * c; };
      C z[L], y[L];
      for (size_t l = 0; l < L; ++l) z[l] = kBack ? load_block(d, x, c + l) : load_block(d, row(l), 0);
      transpose_points(d, z, y);
      for (size_t l = 0; l < L; ++l) kBack ? store_block(d, y[l], row(l), 0) : store_block(d, y[l], x, c + l);
    }
  }

  // A square, its rows read as blocks and left as points. The blocks of the last pass are taken in the order of their
  // first results.
  template <bool kInverse> void square(const T* roots, T* data, T* work, T factor) const {
    const size_t row = 2 * rows_;
    for (size_t u = 0; u < p_; u += L) {
      T* const x = work + 2 * p_ * u;
      transpose_rows<false>(data + row * u, x, row);
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
