// Plain loops for the widest vectors of the CPU. A rule stays scalar code, written once; the compiler vectorises the
// loop over it for each CPU target, and with contraction off every target gives the same bits.
#pragma once

#include <cstddef>

namespace sigvex {

// Before a loop that reads no place which an earlier turn of it has written: the result may be an input, place by
// place, and the compiler need not look where it lies.
#ifdef __clang__
#define SIGVEX_INDEPENDENT_TURNS _Pragma("clang loop vectorize(assume_safety)")
#else
#define SIGVEX_INDEPENDENT_TURNS _Pragma("GCC ivdep")
#endif

enum class Vectors { kBaseline, kAvx2, kAvx512 };

Vectors widest_vectors();  // of this CPU, within the targets that Highway is confined to

#if defined(__x86_64__)
#if defined(__clang__)
#define SIGVEX_AVX512 "avx512f,avx512vl,avx512bw,avx512dq"
#else
#define SIGVEX_AVX512 "avx512f,avx512vl,avx512bw,avx512dq,prefer-vector-width=512"
#endif
template <class F> __attribute__((flatten, target(SIGVEX_AVX512))) void on_avx512(F loop) { loop(); }
template <class F> __attribute__((flatten, target("avx2"))) void on_avx2(F loop) { loop(); }
#undef SIGVEX_AVX512

template <class F> void on_widest_vectors(F loop) {
  switch (widest_vectors()) {
    case Vectors::kAvx512:
      return on_avx512(loop);
    case Vectors::kAvx2:
      return on_avx2(loop);
    case Vectors::kBaseline:
      return loop();
  }
}
#else
template <class F> void on_widest_vectors(F loop) { loop(); }
#endif

// The same for a loop of n turns; few of them take less time than the choice and the wide loop's beginning.
template <class F> void on_widest_vectors(std::size_t n, F loop) {
  constexpr std::size_t kWidePays = 64;
  if (n < kWidePays) return loop();
  on_widest_vectors(loop);
}

}  // namespace sigvex
