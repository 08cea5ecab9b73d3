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

#include "spectral/passes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// One pass over `width` groups of columns of n rows. load(row, group) and store(row, group, z) reach a vector of
// columns.
template <size_t R, class D, class Load, class Store>
HWY_INLINE void column_pass(D d, size_t n, size_t stride, size_t width, const hn::TFromD<D>* HWY_RESTRICT roots,
                            Load load, Store store) {
  const size_t columns = n / R / stride;
  for (size_t p = 0; p < columns; ++p, roots += 2 * (R - 1)) {
    for (size_t q = 0; q < stride; ++q) {
      for (size_t group = 0; group < width; ++group) {
        ComplexOf<D> x[R];
        for (size_t k = 0; k < R; ++k) x[k] = load(q + stride * (p + columns * k), group);
        transform(d, x);
        if (columns > 1) {
          for (size_t k = 1; k < R; ++k) x[k] = x[k] * broadcast(d, roots + 2 * (k - 1));
        }
        for (size_t k = 0; k < R; ++k) store(q + stride * (R * p + k), group, x[k]);
      }
    }
  }
}

template <class D, class Load, class Store>
HWY_INLINE void column_pass(D d, size_t radix, size_t n, size_t stride, size_t width, const hn::TFromD<D>* roots,
                            Load load, Store store) {
  switch (radix) {
    case 4:
      return column_pass<4>(d, n, stride, width, roots, load, store);
    case 8:
      return column_pass<8>(d, n, stride, width, roots, load, store);
    default:
      return column_pass<16>(d, n, stride, width, roots, load, store);
  }
}

// The radices of a column of 2^bits rows, bits >= 5: as few as sixteens and eights allow, the eights first.
struct Radices {
  explicit Radices(int bits) : count((bits + 3) / 4) {
    int rest = bits;
    for (int k = 0; k < count; ++k) {
      const int share = rest / (count - k);
      radix[k] = size_t{1} << share;
      rest -= share;
    }
  }
  int count;
  size_t radix[8];
};

template <class T> size_t column_roots_size(int bits) {
  const Radices r(bits);
  size_t size = 0, n = size_t{1} << bits;
  for (int k = 0; k + 1 < r.count; ++k) {
    size += 2 * (r.radix[k] - 1) * (n / r.radix[k]);
    n /= r.radix[k];
  }
  return size;
}

template <class T> struct Split {
  explicit Split(int bits) : bits1((bits + 1) / 2), bits2(bits / 2), n1(size_t{1} << bits1), n2(size_t{1} << bits2) {}
  int bits1, bits2;
  size_t n1, n2;
};

// Strips of several groups turn short runs in memory into longer ones, as far as they fit the second-level cache.
template <class D> size_t strip_width(size_t rows, size_t other) {
  constexpr size_t kBytes = size_t{1} << 18, kGroup = 2 * kLanes<D> * sizeof(hn::TFromD<D>);
  size_t width = kBytes / (rows * kGroup);
  if (width > 4) width = 4;
  if (width > other / kLanes<D>) width = other / kLanes<D>;
  return width < 1 ? 1 : width;
}

template <class T> struct Columns {
  using D = hn::ScalableTag<T>;
  static constexpr size_t L = kLanes<D>;
  using C = ComplexOf<D>;

  static size_t strip_size(int bits) {
    const Split<T> s(bits);
    const size_t a = (strip_width<D>(s.n1, s.n2) + 1) * s.n1, b = (strip_width<D>(s.n2, s.n1) + 1) * s.n2;
    return 2 * L * (a > b ? a : b);
  }
  static size_t work_size(int bits) { return (size_t{2} << bits) + strip_size(bits); }
  static size_t table_size(int bits) {
    const Split<T> s(bits);
    return column_roots_size<T>(s.bits1) + column_roots_size<T>(s.bits2) + 2 * s.n1 * L + 2 * s.n1 * (s.n2 / L);
  }
  static T* fill_column(int bits, const TripleTable<T>& roots, T* to) {
    const Radices r(bits);
    size_t n = size_t{1} << bits;
    for (int k = 0; k + 1 < r.count; n /= r.radix[k++]) to = fill_pass(hn::CappedTag<T, 1>(), n, r.radix[k], roots, to);
    return to;
  }
  static void fill(int bits, const TripleTable<T>& roots, T* table) {
    const Split<T> s(bits);
    T* to = fill_column(s.bits2, roots, fill_column(s.bits1, roots, table));
    const auto put = [&](T* re, T* im, size_t k) {
      const Point<T> w = root_of(roots, k, s.n1 * s.n2);
      *re = w.re;
      *im = w.im;
    };
    for (size_t k = 0; k < s.n1; ++k, to += 2 * L) {
      for (size_t l = 0; l < L; ++l) put(to + l, to + L + l, k * lane_point<D>(l));
    }
    for (size_t j = 0; j < s.n2; j += L) {
      for (size_t k = 0; k < s.n1; ++k, to += 2) put(to, to + 1, k * j);
    }
  }

  template <bool kInverse> static void run(int bits, const T* table, T* data, T* work, T factor) {
    const D d;
    const Split<T> s(bits);
    T* const tiles = work;
    T* const strip = work + (size_t{2} << bits);
    const T* const roots2 = table + column_roots_size<T>(s.bits1);
    const T* const inner = roots2 + column_roots_size<T>(s.bits2);
    const T* const outer = inner + 2 * s.n1 * L;
    columns<kInverse>(d, s, table, inner, outer, data, tiles, strip);
    rows<kInverse>(d, s, roots2, tiles, data, strip, factor);
  }

  template <bool kInverse>
  static void columns(D d, const Split<T>& s, const T* table, const T* inner, const T* outer, const T* data, T* tiles,
                      T* strip) {
    const Radices r(s.bits1);
    const size_t width = strip_width<D>(s.n1, s.n2), group_size = 2 * L * s.n1;
    T* const spare = strip + width * group_size;
    for (size_t j = 0; j < s.n2 / L; j += width) {
      const T* const from = data + 2 * L * j;
      column_pass(
          d, r.radix[0], s.n1, 1, width, table,
          [&](size_t k, size_t group) HWY_ATTR { return load_points<kInverse>(d, from + 2 * (s.n2 * k + L * group)); },
          [&](size_t k, size_t group, C z) HWY_ATTR { store_block(d, z, strip + group * group_size, k); });
      for (size_t group = 0; group < width; ++group) {
        const T* roots = table + 2 * (r.radix[0] - 1) * (s.n1 / r.radix[0]);
        T *x = strip + group * group_size, *y = spare;
        size_t stride = r.radix[0];
        for (int k = 1; k < r.count; ++k) {
          const size_t radix = r.radix[k];
          column_pass(
              d, radix, s.n1, stride, 1, roots, [&](size_t i, size_t) HWY_ATTR { return load_block(d, x, i); },
              [&](size_t i, size_t, C z) HWY_ATTR { store_block(d, z, y, i); });
          stride *= radix;
          roots += 2 * (radix - 1) * (s.n1 / stride);
          T* const t = x;
          x = y;
          y = t;
        }
        tile_column(d, s, x, inner, outer + 2 * s.n1 * (j + group), tiles + 2 * L * L * (j + group));
      }
    }
  }

  // A group of transformed columns, times the roots, into its tile of every row of tiles.
  static HWY_INLINE void tile_column(D d, const Split<T>& s, const T* x, const T* inner, const T* outer, T* to) {
    for (size_t k = 0; k < s.n1; k += L, to += 2 * L * s.n2) {
      C z[L], y[L];
      for (size_t l = 0; l < L; ++l, inner += 2 * L, outer += 2) {
        z[l] = load_block(d, x, k + l) * (load_block(d, inner, 0) * broadcast(d, outer));
      }
      transpose_points(d, z, y);
      for (size_t l = 0; l < L; ++l) store_block(d, y[l], to, l);
    }
  }

  template <bool kInverse>
  static void rows(D d, const Split<T>& s, const T* table, const T* tiles, T* data, T* strip, T factor) {
    const Radices r(s.bits2);
    const size_t width = strip_width<D>(s.n2, s.n1), group_size = 2 * L * s.n2;
    const auto scale = hn::Set(d, factor);
    for (size_t k1 = 0; k1 < s.n1 / L; k1 += width) {
      T* spare = strip + width * group_size;
      T* group_data[4];
      const T* roots = table;
      for (size_t group = 0; group < width; ++group) {
        const T* x = tiles + (k1 + group) * group_size;
        T *y = strip + group * group_size, *other = spare;
        roots = table;
        size_t stride = 1;
        for (int k = 0; k + 1 < r.count; ++k) {
          const size_t radix = r.radix[k];
          column_pass(
              d, radix, s.n2, stride, 1, roots, [&](size_t i, size_t) HWY_ATTR { return load_block(d, x, i); },
              [&](size_t i, size_t, C z) HWY_ATTR { store_block(d, z, y, i); });
          stride *= radix;
          roots += 2 * (radix - 1) * (s.n2 / stride);
          x = y;
          T* const t = other;
          other = y;
          y = t;
        }
        group_data[group] = other;
        spare = y;
      }
      const size_t radix = r.radix[r.count - 1];
      T* const to = data + 2 * L * k1;
      column_pass(
          d, radix, s.n2, s.n2 / radix, width, roots,
          [&](size_t i, size_t group) HWY_ATTR { return load_block(d, group_data[group], i); },
          [&](size_t i, size_t group, C z)
              HWY_ATTR { store_points<kInverse>(d, kInverse ? z : z * scale, to + 2 * (s.n1 * i + L * group)); });
    }
  }
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
