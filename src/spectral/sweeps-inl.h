// Convolutions in three sweeps over memory, which need no order: n points are seen as rows so short that one stays in
// the registers. The columns are transformed a strip at a time, and every result stays in the row where it comes; each
// row is transformed, multiplied and transformed back; the strips go back. The rows stand apart by a little more than a
// power of two, because at such distances all of a column would fall into few places of each cache.
#if defined(SIGVEX_SPECTRAL_SWEEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_SWEEPS_INL_H
#undef SIGVEX_SPECTRAL_SWEEPS_INL_H
#else
#define SIGVEX_SPECTRAL_SWEEPS_INL_H
#endif

#include <array>

#include "spectral/strips-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

// What the transform of an input is multiplied with, to be transformed back: a spectrum in the order of the rows, its
// imaginary parts times sign.
template <class T> struct Turn {
  const T* spectrum = nullptr;
  T sign = 1;
};
template <class T, size_t S> using Turns = std::array<Turn<T>, S>;
template <class T, size_t S> using Pointers = std::array<T*, S>;  // to the arrays of as many kernels

// A row, seen as a square of side by side points: across its rows, and after the transposition of squares of lanes by
// lanes across its columns.
template <class T> struct Row {
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>, kSide = std::max<size_t>(8, L), kBits = kSide == 8 ? 6 : 8;
  static constexpr size_t kPoints = kSide * kSide, kVectors = kPoints / L, kGroups = kSide / L;

  static size_t table_size() { return 2 * (kSide - 1) * kSide; }
  static void fill(const TripleTable<T>& roots, T* table) { fill_pass(d, kPoints, kSide, roots, table); }

  static HWY_INLINE void there(const T* roots, const T* from, C (&x)[kVectors]) {
    C z[kSide], y[L];
    for (size_t g = 0; g < kGroups; ++g) {
      for (size_t k = 0; k < kSide; ++k) z[k] = load_block(d, from, kGroups * k + g);
      transform(d, z);
      x[g] = z[0];
      for (size_t k = 1; k < kSide; ++k) x[kGroups * k + g] = z[k] * load_block(d, roots, (kSide - 1) * g + k - 1);
    }
    for (size_t k = 0; k < kVectors; k += kSide) {
      for (size_t g = 0; g < kGroups; ++g) {
        C column[L];
        for (size_t l = 0; l < L; ++l) column[l] = x[k + kGroups * l + g];
        transpose_points(d, column, y);
        for (size_t l = 0; l < L; ++l) z[L * g + l] = y[l];
      }
      transform(d, z);
      for (size_t c = 0; c < kSide; ++c) x[k + c] = z[c];
    }
  }

  // The same steps from the last to the first, on points whose parts are exchanged.
  static HWY_INLINE void back(const T* roots, C (&x)[kVectors], T* to) {
    C z[kSide], y[L];
    for (size_t k = 0; k < kVectors; k += kSide) {
      for (size_t c = 0; c < kSide; ++c) z[c] = x[k + c];
      transform(d, z);
      for (size_t g = 0; g < kGroups; ++g) {
        transpose_points(d, z + L * g, y);
        for (size_t l = 0; l < L; ++l) x[k + kGroups * l + g] = y[l];
      }
    }
    for (size_t g = 0; g < kGroups; ++g) {
      z[0] = x[g];
      for (size_t k = 1; k < kSide; ++k) z[k] = x[kGroups * k + g] * load_block(d, roots, (kSide - 1) * g + k - 1);
      transform(d, z);
      for (size_t k = 0; k < kSide; ++k) store_block(d, z[k], to, kGroups * k + g);
    }
  }
};

template <class T> class Sweeps {
 public:
  explicit Sweeps(int bits) : strips_(bits - static_cast<int>(Row<T>::kBits), p_) {}

  size_t work_size() const { return strips_.work_size(); }

  // Where point k of an array stands, in scalars.
  static size_t place(size_t k) { return 2 * k + k / p_ * kPad; }

  size_t table_size() const { return strips_.table_size() + Row<T>::table_size(); }
  void fill(const TripleTable<T>& roots, T* table) const { Row<T>::fill(roots, strips_.fill(roots, table)); }

  // The spectrum of load(k), vectors of points from k on, in the order in which convolve multiplies, by way of an
  // array.
  template <class Load> void spectrum(const T* table, T* array, T* strip, T factor, Load load, T* to) const {
    columns(table, strips_.rows() * p_, load, array, strip);
    const auto scale = hn::Set(d, factor);
    for (size_t row = 0; row < strips_.rows(); ++row) {
      C x[Row<T>::kVectors];
      Row<T>::there(table + strips_.table_size(), array + kPitch * row, x);
      for (size_t k = 0; k < Row<T>::kVectors; ++k) store_block(d, x[k] * scale, to + 2 * p_ * row, k);
    }
  }

  // In the first of the arrays, the transform of load(k), the first `given` points of which may differ from zero, times
  // the spectra of some turns, each product in its array and transformed back: to store(s, k, z), the first `wanted`
  // points at least, their parts exchanged.
  template <size_t S, class Load, class Store>
  void convolve(const T* table, const Pointers<T, S>& arrays, T* strip, size_t given, Load load,
                const Turns<T, S>& turns, size_t wanted, Store store) const {
    columns(table, given, load, arrays[0], strip);
    for (size_t row = 0; row < strips_.rows(); ++row) turn<S>(table + strips_.table_size(), arrays, row, turns);
    for (size_t s = 0; s < S; ++s) {
      columns_back(
          table, wanted, [&](size_t k, C z) HWY_ATTR { store(s, k, z); }, arrays[s], strip);
    }
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>, p_ = Row<T>::kPoints, kPad = 128 / sizeof(T), kPitch = 2 * p_ + kPad;

  // Whether of the points before `end` none is in the second half of the rows of the strip from column c on.
  bool in_first_half(size_t end, size_t c) const { return end <= strips_.rows() / 2 * p_ + c; }

  template <class Load> void columns(const T* table, size_t given, Load load, T* data, T* strip) const {
    const auto row = [](size_t k) { return kPitch * k; };
    for (size_t c = 0; c < p_; c += L) {
      const auto from = [&](size_t k) HWY_ATTR { return load(p_ * k + c); };
      if (in_first_half(given, c)) strips_.template there<true>(table, c, from, strip, data + 2 * c, row, row);
      else strips_.template there<false>(table, c, from, strip, data + 2 * c, row, row);
    }
  }
  template <class Store> void columns_back(const T* table, size_t wanted, Store store, const T* data, T* strip) const {
    for (size_t c = 0; c < p_; c += L) {
      const auto to = [&](size_t row, C z) HWY_ATTR { store(p_ * row + c, z); };
      if (in_first_half(wanted, c)) strips_.template back<true>(table, c, data + 2 * c, kPitch, strip, to);
      else strips_.template back<false>(table, c, data + 2 * c, kPitch, strip, to);
    }
  }

  template <size_t S>
  void turn(const T* roots, const Pointers<T, S>& arrays, size_t row, const Turns<T, S>& turns) const {
    C x[Row<T>::kVectors];
    Row<T>::there(roots, arrays[0] + kPitch * row, x);
    for (size_t s = 0; s < S; ++s) {
      const T* const spectrum = turns[s].spectrum + 2 * p_ * row;
      const auto sign = hn::Set(d, turns[s].sign);
      C y[Row<T>::kVectors];
      for (size_t k = 0; k < Row<T>::kVectors; ++k) {
        C w = load_block(d, spectrum, k);
        w.im = hn::Mul(w.im, sign);
        const C z = x[k] * w;
        y[k] = {z.im, z.re};
      }
      Row<T>::back(roots, y, arrays[s] + kPitch * row);
    }
  }

  Strips<T> strips_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
