#include <atomic>
#include <thread>

#include "support/reference_transform.h"

namespace sigvex_test::concurrency_test {

TWINS(i, dft, rdft, irdft, dct, window);
TWIN(, free_internal);

SUITE_OF_BOTH(Concurrency);

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

template <class T> Vec<T> weights(uint32_t type) {
  Vec<T> v(std::vector<T>(40, 1));
  EXPECT_EQ(window(v.get(), type, 0U), 0);
  return v;
}

// 8192 points need work space beyond the stack, from more threads than the library keeps spare blocks for.
TEST_BOTH(Concurrency, CachesMayBeReleasedWhileThreadsTransformAndWeight) {
  ASSERT_EQ(dsp_lib_init(), 0);
  std::atomic<int> wrong = 0;
  std::atomic<bool> released = false;
  std::vector<std::thread> threads;
  for (const size_t n : {4, 64, 3, 50, 129, 8192, 8192, 8192, 8192, 8192, 8192, 8192, 8192, 8192, 8192}) {
    const uint32_t type = static_cast<uint32_t>(11 * threads.size() % 32);
    threads.emplace_back([&, n, type, expected = weights<T>(type)] {
      const Vec<T> x = noise<T>(n, false);
      do {
        wrong += !there_and_back<T>(x, n);
        for (int k = 0; k < 20; ++k) wrong += !exactly(weights<T>(type), expected.samples());
      } while (!released);
    });
  }
  for (int release = 0; release < 40; ++release) {
    wrong += free_internal.of<T>()() != 0;
    std::this_thread::yield();
  }
  released = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace sigvex_test::concurrency_test
