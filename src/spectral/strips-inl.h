// The columns of a matrix of points that stands row by row in memory: a strip of neighbouring ones at a time, transform
// all its rows and multiply by the roots of order n that join columns and rows. Within a strip every lane is a
// transform of its own.
#if defined(SIGVEX_SPECTRAL_STRIPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_STRIPS_INL_H
#undef SIGVEX_SPECTRAL_STRIPS_INL_H
#else
#define SIGVEX_SPECTRAL_STRIPS_INL_H
#endif

#include "spectral/columns-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

template <class T> class Strips {
 public:
  Strips(int rows_bits, size_t columns)
      : rows_(size_t{1} << rows_bits),
        columns_(columns),
        column_(rows_bits, rows_bits / 4 + 1),  // the first pass meets long strides: at most an eight
        last_(column_.radix[column_.count - 1]) {}

  size_t rows() const { return rows_; }
  size_t work_size() const { return 2 * L * rows_; }

  // The roots of the columns, and for each strip those that join: w^(kc) for the results k that a block of the last
  // pass gives, counted from its first, then w^(kc) for the first k of every block, in whose products are all.
  size_t table_size() const { return column_.roots_size() + columns_ / L * joining_size(); }
  T* fill(const TripleTable<T>& roots, T* table) const {
    T* to = fill_column(column_, roots, table);
    const auto put = [&](size_t k, size_t c) { to = fill_roots(d, k, c, rows_ * columns_, roots, to); };
    for (size_t c = 0; c < columns_; c += L) {
      for (size_t k = 0; k < last_; ++k) put(rows_ / last_ * k, c);
      for (size_t row = 0; row < rows_; row += last_) put(column_.result_in(row), c);
    }
    return to;
  }

  // The result whose place a row takes, and the results of one block of the last pass, counted from its first.
  size_t result_in(size_t row) const { return column_.result_in(row); }
  size_t result_of_block(size_t k) const { return rows_ / last_ * k; }

  // The strip from column c on, load(row), joined, to data, as blocks: first(row) is where the first result of the
  // block of rows from `row` on goes, and apart(k) how far from there its result k goes, both in scalars. Of half: the
  // second half of the rows is zero and not loaded.
  template <bool kHalf, class Load, class First, class Apart>
  void there(const T* table, size_t c, Load load, T* x, T* data, First first, Apart apart) const {
    const size_t radix = column_.radix[0], block = rows_ / radix;
    with_radix(radix, [&](auto constant) HWY_ATTR {
      column_pass<kHalf>(constant, d, rows_, table, load, [&](size_t k, C z) HWY_ATTR { store_block(d, z, x, k); });
    });
    for (size_t row = 0; row < rows_; row += block) {
      column_passes<Way::kThere>(d, column_, 1, column_.count - 1, 1, block, table + 2 * (radix - 1) * block,
                                 x + 2 * L * row);
      with_radix(last_, [&](auto constant)
                            HWY_ATTR { join(constant, x, row, row + block, joining(table, c), data, first, apart); });
    }
  }

  // The way back, from rows `pitch` scalars apart in which the results stand as they came, to store(row, z). Of half:
  // only the first half of the rows is stored.
  template <bool kHalf, class Store>
  void back(const T* table, size_t c, const T* data, size_t pitch, T* x, Store store) const {
    const size_t radix = column_.radix[0], block = rows_ / radix;
    for (size_t row = 0; row < rows_; row += block) {
      with_radix(last_,
                 [&](auto constant) HWY_ATTR { part(constant, data, pitch, row, row + block, joining(table, c), x); });
      column_passes<Way::kBack>(d, column_, 1, column_.count - 1, 1, block, table + 2 * (radix - 1) * block,
                                x + 2 * L * row);
    }
    with_radix(radix, [&](auto constant) HWY_ATTR {
      column_pass_back<kHalf>(
          constant, d, rows_, table, [&](size_t row) HWY_ATTR { return load_block(d, x, row); }, store);
    });
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;

  size_t joining_size() const { return 2 * L * (last_ + rows_ / last_); }
  const T* joining(const T* table, size_t c) const { return table + column_.roots_size() + c / L * joining_size(); }

  // The last pass over rows of a strip, and the joining roots.
  template <size_t R, class First, class Apart>
  HWY_INLINE void join(Radix<R>, const T* x, size_t row, size_t end, const T* joining, T* data, First first,
                       Apart apart) const {
    size_t place[R];
    for (size_t k = 0; k < R; ++k) place[k] = apart(k);
    for (; row < end; row += R) {
      C z[R];
      for (size_t k = 0; k < R; ++k) z[k] = load_block(d, x, row + k);
      transform(d, z);
      const C root = load_block(d, joining, R + row / R);
      T* const to = data + first(row);
      store_block(d, z[0] * root, to, 0);
      for (size_t k = 1; k < R; ++k) store_block(d, z[k] * (root * load_block(d, joining, k)), to + place[k], 0);
    }
  }

  template <size_t R>
  HWY_INLINE void part(Radix<R>, const T* data, size_t pitch, size_t row, size_t end, const T* joining, T* x) const {
    for (; row < end; row += R) {
      const T* const from = data + pitch * row;
      const C root = load_block(d, joining, R + row / R);
      C z[R];
      z[0] = load_block(d, from, 0) * root;
      for (size_t k = 1; k < R; ++k) z[k] = load_block(d, from + pitch * k, 0) * (root * load_block(d, joining, k));
      transform(d, z);
      for (size_t k = 0; k < R; ++k) store_block(d, z[k], x, row + k);
    }
  }

  size_t rows_, columns_;
  Radices column_;
  size_t last_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
