#include "support/cpu_targets.h"
#include "support/reference_transform.h"

namespace sigvex_test::engine_test {

TWINS(i, fft, rfft, irfft);
TWIN(, free_internal);

SUITE_OF_BOTH(Engine);

// Rounding errors of the passes add like a random walk, so the error grows with the root of their number.
template <class T> double bound(size_t n) { return 0.6 * kEps<T> * std::sqrt(std::log2(static_cast<double>(n))); }

// All bins of a short transform, and some of a long one, which has to come back whole.
template <class T> void check_length(size_t n, const char* target) {
  SCOPED_TRACE(::testing::Message() << n << " points, " << target);
  const Vec<T> z = noise<T>(n, true), x = noise<T>(n, false);
  const size_t step = std::min(n / 16, n * n >> 18) | 1;
  Vec<T> forward = z, inverse = z, half = x;
  EXPECT_EQ(fft(forward.get(), 0U) | fft(inverse.get(), 1U), 0);
  EXPECT_LE(transform_error(forward, ReferenceTransform(z, false), step), bound<T>(n));
  EXPECT_LE(transform_error(inverse, ReferenceTransform(z, true), step), bound<T>(n));
  EXPECT_EQ(fft(inverse.get(), 0U), 0);
  EXPECT_LE(difference(inverse, z), 2 * bound<T>(n));
  EXPECT_EQ(free_internal.template of<T>()(), 0);  // the real tables, built first, bring those of half the length
  EXPECT_EQ(rfft(half.get()), 0);
  EXPECT_EQ(half->allocated, static_cast<int32_t>(2 * n));
  EXPECT_LE(transform_error(half, ReferenceTransform(x, false), step), bound<T>(n));
  half[1] = half[n + 1] = T(5);  // no real transform has imaginary parts there
  EXPECT_EQ(irfft(half.get()), 0);
  EXPECT_EQ(half->allocated, static_cast<int32_t>(2 * n));
  EXPECT_LE(difference(half, x), 2 * bound<T>(n));

  // A view at an odd address: the same bits, and nothing beside them is touched.
  std::vector<T> storage(2 * n + 2, T(7));
  std::copy_n(z->data, 2 * n, storage.data() + 1);
  Vec<T> view = Vec<T>::over(storage.data() + 1, z->points, 1);
  EXPECT_EQ(fft(view.get(), 0U), 0);
  EXPECT_TRUE(exactly(view, forward.samples()));
  EXPECT_TRUE(storage.front() == T(7) && storage.back() == T(7));
}

TEST_BOTH(Engine, ErrorsStayWithinTheBoundOnEveryCpuTarget) {
  for_each_cpu_target([](const char* target) {
    for (int bits = 2; bits <= 14; ++bits) check_length<T>(size_t{1} << bits, target);
    check_length<T>(size_t{1} << 17, target);  // in three sweeps
  });
  for (const int bits : {15, 16, 18, 19, 22}) check_length<T>(size_t{1} << bits, "best target");
}

TEST_BOTH(Engine, ImpulsesAndConstantsAreExact) {
  for_each_cpu_target([](const char* target) {
    for (int bits = 2; bits <= 15; ++bits) {
      const size_t n = size_t{1} << bits;
      for (const bool impulse : {false, true}) {
        Vec<T> v(std::vector<T>(n, T(impulse ? 0 : 3)));
        if (impulse) v[0] = static_cast<T>(n);
        Vec<T> half = v;
        EXPECT_EQ(fft(v.get(), 0U) | rfft(half.get()), 0);
        for (const Vec<T>& w : {v, half}) {
          bool exact = true;  // zeros of either sign
          for (size_t k = 0; k < w.size(); ++k) exact &= w[k] == (impulse ? T(k % 2 == 0) : k == 0 ? T(3) : T(0));
          EXPECT_TRUE(exact) << n << ' ' << target;
        }
      }
    }
  });
}

}  // namespace sigvex_test::engine_test
