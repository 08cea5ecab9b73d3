// Transforms too long for the nearest cache, in two sweeps over memory. n = n1 * n2 points are seen as a matrix of n1
// rows of n2 points, row by row in memory:
//
//   1. a strip of neighbouring columns at a time: transform the columns (length n1), multiply by the roots of order n
//      that join both steps, and leave the strip transposed in the work space, in tiles of lanes by lanes points;
//   2. a strip of neighbouring rows at a time, which the tiles hold side by side: transform them (length n2) and write
//      point k2 of row k1 to k1 + n1 * k2.
//
// Within a strip every lane is a transform of its own, so that nothing is exchanged between lanes except in the tiles,
// and a strip of up to some thousand rows stays in the second-level cache.
#if defined(SIGVEX_SPECTRAL_COLUMNS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_COLUMNS_INL_H
#undef SIGVEX_SPECTRAL_COLUMNS_INL_H
#else
#define SIGVEX_SPECTRAL_COLUMNS_INL_H
#endif

#include <algorithm>
#include <type_traits>

#include "spectral/passes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// The radices of a column of 2^bits rows, bits >= 5: as few as sixteens allow, the smaller first. In a strip, a pass
// leaves its results where its inputs were: the block of rows it works on becomes `radix` blocks, one for each result,
// which the next pass takes one by one, so that the smaller they are, the nearer is their cache.
struct Radices {
  explicit Radices(int bits) : count((bits + 3) / 4) {
    for (int k = 0, rest = bits; k < count; ++k) {
      const int share = rest / (count - k);
      radix[k] = size_t{1} << share;
      rest -= share;
    }
  }

  // The row of a strip that holds result `index`.
  size_t row_of(size_t index, size_t rows) const {
    size_t row = 0;
    for (int k = 0; k < count; ++k) {
      rows /= radix[k];
      row += index % radix[k] * rows;
      index /= radix[k];
    }
    return row;
  }

  int count;
  size_t radix[8];
};

template <class T> size_t column_roots_size(size_t n) {
  const Radices r(static_cast<int>(hwy::CeilLog2(n)));
  size_t size = 0;
  for (int k = 0; k + 1 < r.count; n /= r.radix[k++]) size += 2 * (r.radix[k] - 1) * (n / r.radix[k]);
  return size;
}

template <class T> T* fill_column(size_t n, const TripleTable<T>& roots, T* to) {
  const Radices r(static_cast<int>(hwy::CeilLog2(n)));
  for (int k = 0; k + 1 < r.count; n /= r.radix[k++]) to = fill_pass(hn::CappedTag<T, 1>(), n, r.radix[k], roots, to);
  return to;
}

template <size_t R> using Radix = std::integral_constant<size_t, R>;

template <class F> HWY_INLINE void with_radix(size_t radix, F f) {
  switch (radix) {
    case 4:
      return f(Radix<4>());
    case 8:
      return f(Radix<8>());
    default:
      return f(Radix<16>());
  }
}

// One pass over a block of `rows` rows. load(row) and store(row, z) reach a vector of columns.
template <size_t R, class D, class Load, class Store>
HWY_INLINE void column_pass(Radix<R>, D d, size_t rows, const hn::TFromD<D>* HWY_RESTRICT roots, Load load,
                            Store store) {
  const size_t apart = rows / R;
  for (size_t p = 0; p < apart; ++p, roots += 2 * (R - 1)) {
    ComplexOf<D> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load(p + apart * k);
    transform(d, x);
    if (apart > 1) {
      for (size_t k = 1; k < R; ++k) x[k] = x[k] * broadcast(d, roots + 2 * (k - 1));
    }
    for (size_t k = 0; k < R; ++k) store(p + apart * k, x[k]);
  }
}

// The passes from `pass` to before `end` on neighbouring blocks of a strip.
template <class D, class T = hn::TFromD<D>>
void column_passes(D d, const Radices& r, int pass, int end, size_t blocks, size_t rows, const T* roots, T* x) {
  for (; pass < end; ++pass) {
    const size_t radix = r.radix[pass];
    with_radix(radix, [&](auto constant) HWY_ATTR {
      for (size_t block = 0; block < blocks; ++block) {
        T* const from = x + 2 * kLanes<D> * rows * block;
        column_pass(
            constant, d, rows, roots, [&](size_t k) HWY_ATTR { return load_block(d, from, k); },
            [&](size_t k, ComplexOf<D> z) HWY_ATTR { store_block(d, z, from, k); });
      }
    });
    blocks *= radix;
    rows /= radix;
    roots += 2 * (radix - 1) * rows;
  }
}

// All passes before `end` but the first, whose blocks are taken one by one where all together exceed the nearest cache.
template <class D, class T = hn::TFromD<D>>
HWY_INLINE void inner_passes(D d, const Radices& r, int end, size_t rows, const T* roots, T* x) {
  const size_t radix = r.radix[0], apart = rows / radix;
  roots += 2 * (radix - 1) * apart;
  if (r.count < 3) return column_passes(d, r, 1, end, radix, apart, roots, x);
  for (size_t k = 0; k < radix; ++k) column_passes(d, r, 1, end, 1, apart, roots, x + 2 * kLanes<D> * apart * k);
}

template <class T> class Columns {
 public:
  explicit Columns(int bits)
      : n1_(size_t{1} << (bits + 1) / 2), n2_(size_t{1} << bits / 2), r1_((bits + 1) / 2), r2_(bits / 2) {}

  size_t work_size() const { return 2 * n1_ * n2_ + 2 * L * std::max(width(n1_) * n1_, width(n2_) * n2_); }

  // The roots of the columns, those of the rows, and for each group of columns those that join both: w^(k l) for
  // k < L, then w^(k l) for every L-th k, in whose products are all.
  size_t table_size() const { return column_roots_size<T>(n1_) + column_roots_size<T>(n2_) + n2_ / L * joining_size(); }
  void fill(const TripleTable<T>& roots, T* table) const {
    T* to = fill_column(n2_, roots, fill_column(n1_, roots, table));
    const auto put = [&](size_t k, size_t j) {
      for (size_t l = 0; l < L; ++l, ++to) {
        const Point<T> w = root_of(roots, k * (j + lane_point<D>(l)), n1_ * n2_);
        to[0] = w.re;
        to[L] = w.im;
      }
      to += L;
    };
    for (size_t j = 0; j < n2_; j += L) {
      for (size_t k = 0; k < L; ++k) put(k, j);
      for (size_t k = 0; k < n1_; k += L) put(k, j);
    }
  }

  template <bool kInverse> void run(const T* table, T* data, T* work, T factor) const {
    T* const strip = work + 2 * n1_ * n2_;
    const T* const row_roots = table + column_roots_size<T>(n1_);
    columns<kInverse>(table, row_roots + column_roots_size<T>(n2_), data, work, strip);
    rows<kInverse>(row_roots, work, data, strip, factor);
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;

  size_t joining_size() const { return 2 * L * (L + n1_ / L); }

  // Groups of lanes in a strip of `rows` rows. Where the points come from beyond the second-level cache, several groups
  // make longer runs in memory, as far as the strip still fits that cache.
  size_t width(size_t rows) const {
    constexpr size_t kNear = size_t{1} << 19, kStrip = size_t{1} << 18;
    const size_t points = n1_ * n2_, most = points * 2 * sizeof(T) > kNear ? 4 : 2;
    return std::clamp(kStrip / (rows * 2 * L * sizeof(T)), size_t{1}, std::min(most, points / rows / L));
  }

  template <bool kInverse> void columns(const T* roots, const T* joining, const T* data, T* tiles, T* strip) const {
    const size_t groups = width(n1_), group_size = 2 * L * n1_;
    for (size_t j = 0; j < n2_ / L; j += groups) {
      with_radix(r1_.radix[0], [&](auto radix) HWY_ATTR {
        for (size_t g = 0; g < groups; ++g) {
          const T* const from = data + 2 * L * (j + g);
          T* const x = strip + g * group_size;
          column_pass(
              radix, d, n1_, roots, [&](size_t k) HWY_ATTR { return load_points<kInverse>(d, from + 2 * n2_ * k); },
              [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
        }
      });
      for (size_t g = 0; g < groups; ++g, joining += joining_size()) {
        T* const x = strip + g * group_size;
        inner_passes(d, r1_, r1_.count, n1_, roots, x);
        join(x, joining, tiles + 2 * L * L * (j + g));
      }
    }
  }

  // A group of transformed columns, times the joining roots, into its tile of every row of tiles.
  HWY_INLINE void join(const T* x, const T* joining, T* to) const {
    size_t row[L];
    for (size_t l = 0; l < L; ++l) row[l] = r1_.row_of(l, n1_);
    for (size_t k = 0; k < n1_; k += L, to += 2 * L * n2_) {
      const C w = load_block(d, joining, L + k / L);
      const T* const first = x + 2 * L * r1_.row_of(k, n1_);
      C z[L], y[L];
      for (size_t l = 0; l < L; ++l) z[l] = load_block(d, first, row[l]) * (w * load_block(d, joining, l));
      transpose_points(d, z, y);
      for (size_t l = 0; l < L; ++l) store_block(d, y[l], to, l);
    }
  }

  template <bool kInverse> void rows(const T* roots, const T* tiles, T* data, T* strip, T factor) const {
    const size_t groups = width(n2_), group_size = 2 * L * n2_;
    for (size_t k1 = 0; k1 < n1_ / L; k1 += groups) {
      for (size_t g = 0; g < groups; ++g) {
        const T* const from = tiles + (k1 + g) * group_size;
        T* const x = strip + g * group_size;
        with_radix(r2_.radix[0], [&](auto radix) HWY_ATTR {
          column_pass(
              radix, d, n2_, roots, [&](size_t k) HWY_ATTR { return load_block(d, from, k); },
              [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
        });
        inner_passes(d, r2_, r2_.count - 1, n2_, roots, x);
      }
      last_rows<kInverse>(strip, groups, data + 2 * L * k1, factor);
    }
  }

  // The last pass over the groups of a strip; its blocks are taken in the order of their first results.
  template <bool kInverse> HWY_INLINE void last_rows(const T* strip, size_t groups, T* data, T factor) const {
    const auto scale = hn::Set(d, factor);
    with_radix(r2_.radix[r2_.count - 1], [&](auto radix) HWY_ATTR {
      const size_t blocks = n2_ / radix;
      for (size_t block = 0; block < blocks; ++block) {
        const T* x = strip + 2 * L * r2_.row_of(block, n2_);
        T* to = data + 2 * n1_ * block;
        for (size_t g = 0; g < groups; ++g, x += 2 * L * n2_, to += 2 * L) {
          column_pass(
              radix, d, radix, static_cast<const T*>(nullptr), [&](size_t k) HWY_ATTR { return load_block(d, x, k); },
              [&](size_t k, C z)
                  HWY_ATTR { store_points<kInverse>(d, kInverse ? z : z * scale, to + 2 * n1_ * blocks * k); });
        }
      }
    });
  }

  size_t n1_, n2_;
  Radices r1_, r2_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
