// Transforms longer than the second-level cache, in place, in three sweeps over memory. That is one more than
// inplace-inl.h takes, but all of them read and write whole rows, where a strip of columns shares most of its cache
// lines with its neighbours, and no pass needs a radix above 8, whose operands fill half the registers.
//
// As there, n = p * q * p points are seen as p blocks of q rows of p points:
//
//   1. for each r, rows r of all blocks: transform the columns, which are p points long, and multiply by the roots of
//      order p * q that join this step and the next; result u goes to block u;
//   2. for each block, its q rows: transform the columns, and multiply by the roots of order n that join this step and
//      the next; result v goes to row v;
//   3. for each v, the square that rows v of all blocks make, as there.
#if defined(SIGVEX_SPECTRAL_FAR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_FAR_INL_H
#undef SIGVEX_SPECTRAL_FAR_INL_H
#else
#define SIGVEX_SPECTRAL_FAR_INL_H
#endif

#include "spectral/inplace-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// Shorter ones take less time in two sweeps.
inline constexpr int kFar = 17;

template <class T> class Far {
 public:
  explicit Far(int bits)
      : squares_(bits),
        side_(kSideBits, 2),
        middle_(bits - 2 * kSideBits, (bits - 2 * kSideBits + 2) / 3),
        q_(size_t{1} << middle_.all),
        last_(middle_.radix[middle_.count - 1]) {}

  size_t work_size() const { return 2 * kSide * std::max(kSide, q_); }

  // The roots of the columns of both kinds; those that join the first step and the second, by row and result as they
  // come; and those that join the second and the third, w^(kc) for result k = u + p * v and column c: for the results v
  // that a block of the last pass gives, counted from its first, for the first v of every such block, and for every u,
  // in whose products are all.
  size_t table_size() const {
    return side_.roots_size() + middle_.roots_size() + 2 * kSide * (q_ + last_ + q_ / last_ + kSide);
  }
  void fill(const TripleTable<T>& roots, T* table) const {
    T* to = fill_column(middle_, roots, fill_column(side_, roots, table));
    for (size_t r = 0; r < q_; ++r) {
      for (size_t row = 0; row < kSide; ++row) {
        to = fill_roots(Lanes<T, 1>(), side_.result_in(row), r, kSide * q_, roots, to);
      }
    }
    const auto put = [&](size_t k, size_t c) { to = fill_roots(d, k, c, kSide * q_ * kSide, roots, to); };
    const auto put_row = [&](size_t k) {
      for (size_t c = 0; c < kSide; c += L) put(k, c);
    };
    for (size_t c = 0; c < kSide; c += L) {
      for (size_t k = 0; k < last_; ++k) put(kSide * middle_.result_in(k), c);
    }
    for (size_t row = 0; row < q_; row += last_) put_row(kSide * middle_.result_in(row));
    for (size_t u = 0; u < kSide; ++u) put_row(u);
  }

  template <bool kInverse> void run(const T* table, T* data, T* work, T factor) const {
    const T *const middle = table + side_.roots_size(), *const turns = middle + middle_.roots_size();
    for (size_t r = 0; r < q_; ++r) across<kInverse>(table, turns + 2 * kSide * r, data + kRow * r, work);
    for (size_t u = 0; u < kSide; ++u) within(middle, turns + kRow * q_, u, data + kRow * q_ * u, work);
    for (size_t v = 0; v < q_; ++v) squares_.template square<kInverse>(table, data + kRow * v, work, factor);
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;
  static constexpr size_t kRow = 2 * kSide;  // scalars

  // Rows of the work space.
  struct Rows {
    const T* x;
    HWY_INLINE C operator()(size_t row, size_t c) const { return load_block(d, x + kRow * row + 2 * c, 0); }
  };

  // The passes over `rows` rows from `row` on, load(row, c), over all columns in step, the blocks that a pass leaves
  // one by one. Of the last pass, finish(radix, row, c, z) takes the results of the block that begins in that row.
  template <class Load, class Finish>
  static void passes(const Radices& radices, int pass, size_t row, size_t rows, const T* roots, Load load, T* work,
                     Finish finish) {
    with_radix(radices.radix[pass], [&](auto radix) HWY_ATTR {
      if (pass + 1 == radices.count) {
        for (size_t c = 0; c < kSide; c += L) {
          C z[radix];
          for (size_t k = 0; k < radix; ++k) z[k] = load(row + k, c);
          transform(d, z);
          finish(radix, row, c, z);
        }
        return;
      }
      const size_t apart = rows / radix;
      for (size_t p = row; p < row + apart; ++p, roots += 2 * (radix - 1)) {
        for (size_t c = 0; c < kSide; c += L) {
          column_butterfly(
              radix, d, apart, roots, [&](size_t k) HWY_ATTR { return load(p + k, c); },
              [&](size_t k, C z) HWY_ATTR { store_block(d, z, work + kRow * (p + k) + 2 * c, 0); });
        }
      }
      for (size_t k = 0; k < radix; ++k) {
        passes(radices, pass + 1, row + apart * k, apart, roots, Rows{work}, work, finish);
      }
    });
  }

  template <bool kInverse> void across(const T* roots, const T* turns, T* data, T* work) const {
    const size_t block = kRow * q_;
    const auto load = [&](size_t u, size_t c) HWY_ATTR { return load_points<kInverse>(d, data + block * u + 2 * c); };
    passes(side_, 0, 0, kSide, roots, load, work, [&](auto radix, size_t row, size_t c, const C* z) HWY_ATTR {
      const T* const turn = turns + 2 * row;
      T* const to = data + block * side_.result_in(row) + 2 * c;
      for (size_t k = 0; k < radix; ++k) {
        store_block(d, z[k] * broadcast(d, turn + 2 * k), to + block * (kSide / radix) * k, 0);
      }
    });
  }

  void within(const T* roots, const T* joining, size_t u, T* data, T* work) const {
    const T* const first_rows = joining + kRow * last_;
    const T* const own = first_rows + kRow * (q_ / last_ + u);
    const auto load = [&](size_t row, size_t c) HWY_ATTR { return load_block(d, data + kRow * row + 2 * c, 0); };
    passes(middle_, 0, 0, q_, roots, load, work, [&](auto radix, size_t row, size_t c, const C* z) HWY_ATTR {
      const C first = load_block(d, own + 2 * c, 0) * load_block(d, first_rows + kRow * (row / radix) + 2 * c, 0);
      T* const to = data + kRow * middle_.result_in(row) + 2 * c;
      store_block(d, z[0] * first, to, 0);
      for (size_t k = 1; k < radix; ++k) {
        store_block(d, z[k] * (first * load_block(d, joining + 2 * c * radix, k)), to + kRow * (q_ / radix) * k, 0);
      }
    });
  }

  InPlace<T> squares_;
  Radices side_, middle_;
  size_t q_, last_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
