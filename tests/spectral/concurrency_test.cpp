#include <atomic>
#include <thread>

#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, dft);
TWIN(i, rdft);
TWIN(i, irdft);
TWIN(i, dct);
TWIN(, free_internal);

template <class T> struct Concurrency : ::testing::Test {};
TYPED_TEST_SUITE(Concurrency, Precisions);

// Every transform of the round has its way back, so that each thread checks its own result.
template <class T> bool there_and_back(const Vec<T>& x, size_t n) {
  Vec<T> complex = x, half = x, cosine = x;
  const uint32_t odd = n % 2;
  if (dft(complex.get(), 0U) || dft(complex.get(), 1U) || rdft(half.get()) || irdft(half.get(), odd)) return false;
  if (dct(cosine.get(), 0U) || dct(cosine.get(), 1U)) return false;
  for (size_t k = 0; k < n; ++k) complex[k] = complex[2 * k];
  complex->complex = 0;
  const double bound = 4 * transform_bound<T>(n);
  return difference(complex, x) < bound && difference(half, x) < bound && difference(cosine, x) < bound;
}

TYPED_TEST(Concurrency, CachesMayBeReleasedWhileEightThreadsTransform) {
  using T = TypeParam;
  ASSERT_EQ(dsp_lib_init(), 0);
  std::atomic<int> wrong = 0;
  std::atomic<bool> released = false;
  std::vector<std::thread> threads;
  for (const size_t n : {4, 8, 64, 512, 3, 6, 50, 129}) {
    threads.emplace_back([&, n] {
      const Vec<T> x = noise<T>(n, false);
      while (!released) wrong += !there_and_back<T>(x, n);
    });
  }
  for (int release = 0; release < 20; ++release) wrong += free_internal.of<T>()() != 0;
  released = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace sigvex_test
