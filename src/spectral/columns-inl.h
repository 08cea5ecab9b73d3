// Transforms too long for the nearest cache, in two sweeps over memory. n = n1 * n2 points are seen as a matrix of n1
// rows of n2 points, row by row in memory:
//
//   1. a strip of neighbouring columns at a time: transform the columns (length n1), multiply by the roots of order n
//      that join both steps, and leave the strip transposed in the work space, in tiles of lanes by lanes points;
//   2. a strip of neighbouring rows at a time, which the tiles hold side by side: transform them (length n2) and write
//      point k2 of row k1 to k1 + n1 * k2.
//
// Within a strip every lane is a transform of its own, so that nothing is exchanged between lanes except in the tiles.
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

// The radices of a column of 2^bits rows, bits >= 5, as few as sixteens allow or more, the smaller first. In a strip, a
// pass leaves its results where its inputs were: the block of rows it works on becomes `radix` blocks, one for each
// result, which the next pass takes one by one, so that the smaller they are, the nearer is their cache.
struct Radices {
  Radices(int rows_bits, int passes) : count(passes), all(rows_bits) {
    for (int k = 0, rest = all; k < count; ++k) {
      bits[k] = rest / (count - k);
      radix[k] = size_t{1} << bits[k];
      rest -= bits[k];
    }
  }

  // The row of a strip that holds result `index`, and the way back.
  size_t row_of(size_t index) const {
    size_t row = 0;
    for (int k = 0, rest = all; k < count; ++k) {
      rest -= bits[k];
      row += (index & (radix[k] - 1)) << rest;
      index >>= bits[k];
    }
    return row;
  }
  size_t result_in(size_t row) const {
    size_t index = 0;
    for (int k = 0, rest = all; k < count; ++k) {
      rest -= bits[k];
      index += (row >> rest & (radix[k] - 1)) << (all - rest - bits[k]);
    }
    return index;
  }

  // What the roots of all passes but the last take, in scalars.
  HWY_INLINE size_t roots_size() const {
    size_t size = 0;
    for (int k = 0, rest = all; k + 1 < count; ++k) {
      rest -= bits[k];
      size += 2 * (radix[k] - 1) << rest;
    }
    return size;
  }

  int count, all;
  int bits[8] = {};
  size_t radix[8] = {};
};

template <class T> T* fill_column(const Radices& r, const TripleTable<T>& roots, T* to) {
  size_t n = size_t{1} << r.all;
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

// A pass over `R` rows that are `apart`: load(row) and store(row, z) reach a vector of columns. Of half: the second
// half of the rows is zero and not loaded.
template <bool kHalf = false, size_t R, class D, class Load, class Store>
HWY_INLINE void column_butterfly(Radix<R>, D d, size_t apart, const hn::TFromD<D>* HWY_RESTRICT roots, Load load,
                                 Store store) {
  ComplexOf<D> x[R];
  for (size_t k = 0; k < (kHalf ? R / 2 : R); ++k) x[k] = load(apart * k);
  transform<kHalf>(d, x);
  if (apart > 1) {
    for (size_t k = 1; k < R; ++k) x[k] = x[k] * broadcast(d, roots + 2 * (k - 1));
  }
  for (size_t k = 0; k < R; ++k) store(apart * k, x[k]);
}

// One pass over a block of `rows` rows.
template <bool kHalf = false, size_t R, class D, class Load, class Store>
HWY_INLINE void column_pass(Radix<R> radix, D d, size_t rows, const hn::TFromD<D>* HWY_RESTRICT roots, Load load,
                            Store store) {
  const size_t apart = rows / R;
  for (size_t p = 0; p < apart; ++p, roots += 2 * (R - 1)) {
    column_butterfly<kHalf>(
        radix, d, apart, roots, [&](size_t k) HWY_ATTR { return load(p + k); },
        [&](size_t k, ComplexOf<D> z) HWY_ATTR { store(p + k, z); });
  }
}

// The same pass on the way back, from its results to its inputs: of points whose parts are exchanged, the conjugate
// roots and the inverse transform are the roots and the forward transform. Of half: only the first rows are stored.
template <bool kHalf = false, size_t R, class D, class Load, class Store>
HWY_INLINE void column_pass_back(Radix<R>, D d, size_t rows, const hn::TFromD<D>* HWY_RESTRICT roots, Load load,
                                 Store store) {
  const size_t apart = rows / R;
  for (size_t p = 0; p < apart; ++p, roots += 2 * (R - 1)) {
    ComplexOf<D> x[R];
    for (size_t k = 0; k < R; ++k) x[k] = load(p + apart * k);
    if (apart > 1) {
      for (size_t k = 1; k < R; ++k) x[k] = x[k] * broadcast(d, roots + 2 * (k - 1));
    }
    transform(d, x);
    for (size_t k = 0; k < (kHalf ? R / 2 : R); ++k) store(p + apart * k, x[k]);
  }
}

enum class Way { kThere, kBack };

// The passes from `pass` to before `end` on neighbouring blocks of a strip. Where more than two are left, the blocks
// that a pass leaves are taken one by one, because all together may exceed the nearest cache.
template <Way way, class D, class T = hn::TFromD<D>>
void column_passes(D d, const Radices& r, int pass, int end, size_t blocks, size_t rows, const T* roots, T* x) {
  if (pass >= end) return;
  const size_t radix = r.radix[pass], apart = rows / radix;
  const auto each_block = [&](auto pass_of) HWY_ATTR {
    with_radix(radix, [&](auto constant) HWY_ATTR {
      for (size_t block = 0; block < blocks; ++block) pass_of(constant, 2 * kLanes<D> * rows * block);
    });
  };
  if (way == Way::kThere) {
    each_block([&](auto constant, size_t at) HWY_ATTR {
      column_pass(
          constant, d, rows, roots, [&](size_t k) HWY_ATTR { return load_block(d, x + at, k); },
          [&](size_t k, ComplexOf<D> z) HWY_ATTR { store_block(d, z, x + at, k); });
    });
  }
  const T* const next = roots + 2 * (radix - 1) * apart;
  if (end - pass <= 2) {
    column_passes<way>(d, r, pass + 1, end, blocks * radix, apart, next, x);
  } else {
    for (size_t at = 0; at < 2 * kLanes<D> * rows * blocks; at += 2 * kLanes<D> * apart) {
      column_passes<way>(d, r, pass + 1, end, 1, apart, next, x + at);
    }
  }
  if (way == Way::kBack) {
    each_block([&](auto constant, size_t at) HWY_ATTR {
      column_pass_back(
          constant, d, rows, roots, [&](size_t k) HWY_ATTR { return load_block(d, x + at, k); },
          [&](size_t k, ComplexOf<D> z) HWY_ATTR { store_block(d, z, x + at, k); });
    });
  }
}

// Up to 32 KiB of points stay in the nearest cache, where other ways are shorter.
template <class T> constexpr int kLong = sizeof(T) == 8 ? 12 : 13;

// Of 2^10 to 2^16 points: columns and rows take two passes each.
template <class T> class Columns {
 public:
  explicit Columns(int bits)
      : r1_(column_bits(bits), 2),
        r2_(bits - column_bits(bits), 2),
        n1_(size_t{1} << column_bits(bits)),
        n2_(size_t{1} << (bits - column_bits(bits))) {}

  size_t work_size() const { return 2 * n1_ * n2_ + 2 * L * kGroups * std::max(n1_, n2_); }

  // The roots of the columns, those of the rows, and for each group of columns those that join both: w^(k l) for
  // k < L, then w^(k l) for every L-th k, in whose products are all.
  size_t table_size() const { return r1_.roots_size() + r2_.roots_size() + n2_ / L * joining_size(); }
  void fill(const TripleTable<T>& roots, T* table) const {
    T* to = fill_column(r2_, roots, fill_column(r1_, roots, table));
    for (size_t j = 0; j < n2_; j += L) {
      for (size_t k = 0; k < L; ++k) to = fill_roots(d, k, j, n1_ * n2_, roots, to);
      for (size_t k = 0; k < n1_; k += L) to = fill_roots(d, k, j, n1_ * n2_, roots, to);
    }
  }

  template <bool kInverse> void run(const T* table, T* data, T* work, T factor) const {
    const Tables t = tables(table, work);
    columns<kInverse>(t, data);
    rows<kInverse>(t, data, factor);
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;
  static constexpr size_t kGroups = 2;  // groups of lanes in a strip

  static int column_bits(int bits) { return (bits + 1) / 2; }

  size_t joining_size() const { return 2 * L * (L + n1_ / L); }

  struct Tables {
    const T *columns, *rows, *joining;
    T *tiles, *strip;
  };
  Tables tables(const T* table, T* work) const {
    const T* const rows = table + r1_.roots_size();
    return {table, rows, rows + r2_.roots_size(), work, work + 2 * n1_ * n2_};
  }

  template <bool kInverse> void columns(const Tables& t, const T* data) const {
    const size_t group_size = 2 * L * n1_;
    const T* joining = t.joining;
    for (size_t j = 0; j < n2_ / L; j += kGroups) {
      with_radix(r1_.radix[0], [&](auto radix) HWY_ATTR {
        for (size_t g = 0; g < kGroups; ++g) {
          T* const x = t.strip + g * group_size;
          column_pass(
              radix, d, n1_, t.columns,
              [&](size_t k) HWY_ATTR { return load_points<kInverse>(d, data + 2 * (n2_ * k + L * (j + g))); },
              [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
        }
      });
      for (size_t g = 0; g < kGroups; ++g, joining += joining_size()) {
        T* const x = t.strip + g * group_size;
        column_passes<Way::kThere>(d, r1_, 1, 2, r1_.radix[0], n1_ / r1_.radix[0], t.columns + r1_.roots_size(), x);
        join(x, joining, t.tiles + 2 * L * L * (j + g));
      }
    }
  }

  // A group of transformed columns, times the joining roots, into its tile of every row of tiles.
  HWY_INLINE void join(const T* x, const T* joining, T* to) const {
    size_t row[L];
    for (size_t l = 0; l < L; ++l) row[l] = r1_.row_of(l);
    for (size_t k = 0; k < n1_; k += L, to += 2 * L * n2_) {
      const C w = load_block(d, joining, L + k / L);
      const T* const first = x + 2 * L * r1_.row_of(k);
      C z[L], y[L];
      for (size_t l = 0; l < L; ++l) z[l] = load_block(d, first, row[l]) * (w * load_block(d, joining, l));
      transpose_points(d, z, y);
      for (size_t l = 0; l < L; ++l) store_block(d, y[l], to, l);
    }
  }

  template <bool kInverse> void rows(const Tables& t, T* data, T factor) const {
    const size_t group_size = 2 * L * n2_;
    for (size_t k1 = 0; k1 < n1_ / L; k1 += kGroups) {
      for (size_t g = 0; g < kGroups; ++g) {
        const T* const from = t.tiles + (k1 + g) * group_size;
        T* const x = t.strip + g * group_size;
        with_radix(r2_.radix[0], [&](auto radix) HWY_ATTR {
          column_pass(
              radix, d, n2_, t.rows, [&](size_t k) HWY_ATTR { return load_block(d, from, k); },
              [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
        });
      }
      last_rows<kInverse>(t.strip, data + 2 * L * k1, factor);
    }
  }

  // The last pass over the groups of a strip; its blocks are taken in the order of their first results.
  template <bool kInverse> HWY_INLINE void last_rows(const T* strip, T* data, T factor) const {
    const auto scale = hn::Set(d, factor);
    with_radix(r2_.radix[1], [&](auto radix) HWY_ATTR {
      const size_t blocks = n2_ / radix;
      for (size_t block = 0; block < blocks; ++block) {
        const T* x = strip + 2 * L * r2_.row_of(block);
        T* to = data + 2 * n1_ * block;
        for (size_t g = 0; g < kGroups; ++g, x += 2 * L * n2_, to += 2 * L) {
          column_pass(
              radix, d, radix, static_cast<const T*>(nullptr), [&](size_t k) HWY_ATTR { return load_block(d, x, k); },
              [&](size_t k, C z)
                  HWY_ATTR { store_points<kInverse>(d, kInverse ? z : z * scale, to + 2 * n1_ * blocks * k); });
        }
      }
    });
  }

  Radices r1_, r2_;
  size_t n1_, n2_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
