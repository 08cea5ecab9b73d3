// Convolutions too long for the nearest cache. The order of a spectrum is free, so that a pass of radix 4 over all
// points, quarter by quarter in step, leaves four convolutions of a quarter of the length, each in a quarter of the
// memory. They are done one after the other, the same way as long as they are longer than three sweeps pay, and a pass
// back joins them.
#if defined(SIGVEX_SPECTRAL_CONVOLVER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef SIGVEX_SPECTRAL_CONVOLVER_INL_H
#undef SIGVEX_SPECTRAL_CONVOLVER_INL_H
#else
#define SIGVEX_SPECTRAL_CONVOLVER_INL_H
#endif

#include "spectral/sweeps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace sigvex {
namespace HWY_NAMESPACE {

template <class T> class Convolver {
 public:
  explicit Convolver(int bits) : n_(size_t{1} << bits), near_(near_bits(bits)), near_n_(size_t{1} << near_bits(bits)) {}

  // An array for each kernel, or for a spectrum, and what the sweeps need.
  size_t work_size(size_t kernels) const { return kernels * place(n_) + near_.work_size(); }

  // For each length on the way down the roots of its pass, then those of the shortest.
  size_t table_size() const {
    size_t size = near_.table_size();
    for (size_t n = n_; n > near_n_; n /= 4) size += pass_size(n);
    return size;
  }
  void fill(const TripleTable<T>& roots, T* table) const {
    for (size_t n = n_; n > near_n_; n /= 4) table = fill_fours(n, roots, table);
    near_.fill(roots, table);
  }

  // As those of Sweeps, the spectrum in place of data.
  void spectrum(const T* table, T* data, T* work, T factor) const {
    spectrum(
        n_, table, work, work + place(n_), factor,
        [&](size_t k) HWY_ATTR { return load_points<false>(d, data + 2 * k); }, data);
  }
  template <size_t S, class Load, class Store>
  void convolve(const T* table, T* work, size_t given, Load load, const Turns<T, S>& turns, size_t wanted,
                Store store) const {
    Pointers<T, S> arrays;
    for (size_t s = 0; s < S; ++s) arrays[s] = work + s * place(n_);
    convolve(n_, table, arrays, work + S * place(n_), given, load, turns, wanted, store);
  }

 private:
  using D = hn::ScalableTag<T>;
  using C = ComplexOf<D>;
  static constexpr D d{};
  static constexpr size_t L = kLanes<D>;

  // Up to 2^18 points the strips and what the sweeps leave for each other stay in the caches.
  static int near_bits(int bits) { return bits < 19 ? bits : 18 - bits % 2; }
  static size_t place(size_t k) { return Sweeps<T>::place(k); }

  // The points of one array or of several, in blocks.
  struct Blocks {
    T* x;
    HWY_INLINE C operator()(size_t k) const { return load_block(d, x + place(k), 0); }
    HWY_INLINE void operator()(size_t k, C z) const { store_block(d, z, x + place(k), 0); }
  };

  template <size_t S> struct Stores {
    Pointers<T, S> x;
    HWY_INLINE void operator()(size_t s, size_t k, C z) const { store_block(d, z, x[s] + place(k), 0); }
  };

  template <class Load> void spectrum(size_t n, const T* table, T* array, T* strip, T factor, Load load, T* to) const {
    if (n == near_n_) return near_.spectrum(table, array, strip, factor, load, to);
    fours(n, table, n, load, Blocks{array});
    for (size_t k = 0; k < n; k += n / 4) {
      T* const quarter = array + place(k);
      spectrum(n / 4, table + pass_size(n), quarter, strip, factor, Blocks{quarter}, to + 2 * k);
    }
  }

  template <size_t S, class Load, class Store>
  void convolve(size_t n, const T* table, const Pointers<T, S>& arrays, T* strip, size_t given, Load load,
                const Turns<T, S>& turns, size_t wanted, Store store) const {
    if (n == near_n_) return near_.convolve(table, arrays, strip, given, load, turns, wanted, store);
    fours(n, table, given, load, Blocks{arrays[0]});
    for (size_t k = 0; k < n; k += n / 4) {
      Pointers<T, S> quarter = arrays;
      Turns<T, S> turned = turns;
      for (size_t s = 0; s < S; ++s) {
        quarter[s] += place(k);
        turned[s].spectrum += 2 * k;
      }
      convolve(n / 4, table + pass_size(n), quarter, strip, n / 4, Blocks{quarter[0]}, turned, n / 4,
               Stores<S>{quarter});
    }
    for (size_t s = 0; s < S; ++s) {
      fours_back(n, table, wanted, Blocks{arrays[s]}, [&](size_t k, C z) HWY_ATTR { store(s, k, z); });
    }
  }

  // The roots of a pass are products: those of a run of points, and one of each kind for every run.
  static constexpr size_t kRun = 256;
  static size_t pass_size(size_t n) { return 2 * 3 * (kRun + n / 4 / kRun); }
  static T* fill_fours(size_t n, const TripleTable<T>& roots, T* to) {
    for (size_t p = 0; p < kRun; p += L) {
      for (size_t k = 1; k < 4; ++k) to = fill_roots(d, k, p, n, roots, to);
    }
    for (size_t p = 0; p < n / 4; p += kRun) {
      for (size_t k = 1; k < 4; ++k) to = fill_roots(Lanes<T, 1>(), k, p, n, roots, to);
    }
    return to;
  }

  // Calls f(p, w) for every vector of points p of a quarter, w(k) being the roots of result k.
  template <class F> HWY_INLINE static void each_of_quarter(size_t n, const T* table, F f) {
    const T *const runs = table + 2 * 3 * kRun, *run = runs;
    for (size_t p = 0; p < n / 4; run += 2 * 3) {
      for (const T* fine = table; fine < runs; fine += 2 * 3 * L, p += L) {
        f(p, [&](size_t k) HWY_ATTR { return load_block(d, fine, k - 1) * broadcast(d, run + 2 * (k - 1)); });
      }
    }
  }

  // The pass there and the pass back. Of points from `given` on, zeros, and from `wanted` on, which nobody wants, those
  // in the second half are left out.
  template <class Load> static void fours(size_t n, const T* table, size_t given, Load load, Blocks to) {
    each_of_quarter(n, table, [&](size_t p, auto root) HWY_ATTR {
      const auto in = [&](size_t k) HWY_ATTR { return load(p + n / 4 * k); };
      C x[4] = {in(0), in(1)};
      if (given <= n / 2 + p) {
        transform<true>(d, x);
      } else {
        x[2] = in(2);
        x[3] = in(3);
        transform(d, x);
      }
      to(p, x[0]);
      for (size_t k = 1; k < 4; ++k) to(p + n / 4 * k, x[k] * root(k));
    });
  }
  template <class Store> static void fours_back(size_t n, const T* table, size_t wanted, Blocks from, Store store) {
    each_of_quarter(n, table, [&](size_t p, auto root) HWY_ATTR {
      C x[4] = {from(p)};
      for (size_t k = 1; k < 4; ++k) x[k] = from(p + n / 4 * k) * root(k);
      transform(d, x);
      for (size_t k = 0, end = wanted <= n / 2 + p ? 2 : 4; k < end; ++k) store(p + n / 4 * k, x[k]);
    });
  }

  size_t n_;
  Sweeps<T> near_;
  size_t near_n_;
};

}  // namespace HWY_NAMESPACE
}  // namespace sigvex
HWY_AFTER_NAMESPACE();

#endif
