#include <thread>

#include "support/cpu_targets.h"
#include "support/reference_transform.h"

namespace sigvex_test {
namespace {

TWIN(i, fft);
TWIN(i, rfft);
TWIN(, free_internal);

template <class T> struct Engine : ::testing::Test {};
TYPED_TEST_SUITE(Engine, Precisions);

// The forward transform in extended precision, unscaled, by halving; the roots are those of all points.
std::vector<Wide> transformed(const std::vector<Wide>& x, const std::vector<Wide>& roots, size_t start, size_t step) {
  const size_t n = x.size() / step;
  if (n == 1) return {x[start]};
  const std::vector<Wide> even = transformed(x, roots, start, 2 * step),
                          odd = transformed(x, roots, start + step, 2 * step);
  std::vector<Wide> bins(n);
  for (size_t k = 0; k < n / 2; ++k) {
    const long double re = odd[k].real(), im = odd[k].imag(), c = roots[k * step].real(), s = roots[k * step].imag();
    const Wide turned(re * c - im * s, re * s + im * c);
    bins[k] = even[k] + turned;
    bins[k + n / 2] = even[k] - turned;
  }
  return bins;
}

std::vector<Wide> transformed(const std::vector<Wide>& x) {
  std::vector<Wide> roots;
  for (size_t k = 0; k < x.size() / 2; ++k) {
    roots.push_back(std::polar(1.0L, -2 * kPi * static_cast<long double>(k) / static_cast<long double>(x.size())));
  }
  return transformed(x, roots, 0, 1);
}

// Relative error in the mean square of the points that a vector has.
template <class T> double error_of(const Vec<T>& v, const std::vector<Wide>& expected, long double scale) {
  long double error = 0, power = 0;
  for (size_t k = 0; k < static_cast<size_t>(v->points); ++k) {
    error += std::norm(Wide(v.at(k)) - expected[k] * scale);
    power += std::norm(expected[k] * scale);
  }
  return static_cast<double>(std::sqrt(error / power));
}

// Rounding errors of the passes add like a random walk, so the error grows with the root of their number.
template <class T> double bound(size_t n) { return 0.6 * kEps<T> * std::sqrt(std::log2(static_cast<double>(n))); }

template <class T> void check_length(size_t n, const char* target) {
  SCOPED_TRACE(::testing::Message() << n << " points, " << target);
  const Vec<T> z = noise<T>(n, true), x = noise<T>(n, false);
  std::vector<Wide> complex(n), swapped(n), real(n);
  for (size_t k = 0; k < n; ++k) {
    complex[k] = Wide(z.at(k));
    real[k] = Wide(x[k]);
    swapped[k] = {complex[k].imag(), complex[k].real()};
  }
  const long double scale = 1 / static_cast<long double>(n);
  Vec<T> forward = z, inverse = z, half = x;
  EXPECT_EQ(fft(forward.get(), 0U), 0);
  const std::vector<Wide> bins = transformed(complex);
  EXPECT_LE(error_of(forward, bins, scale), bound<T>(n));
  EXPECT_EQ(fft(inverse.get(), 1U), 0);
  std::vector<Wide> back = transformed(swapped);
  for (Wide& w : back) w = {w.imag(), w.real()};
  EXPECT_LE(error_of(inverse, back, 1), bound<T>(n));
  EXPECT_EQ(free_internal.template of<T>()(), 0);  // the real tables, built first, bring those of half the length
  EXPECT_EQ(rfft(half.get()), 0);
  EXPECT_EQ(half->points, static_cast<int32_t>(n / 2 + 1));
  EXPECT_EQ(half->allocated, static_cast<int32_t>(2 * n));
  EXPECT_LE(error_of(half, transformed(real), scale), bound<T>(n));

  // A view at an odd address: the same bits, and nothing beside them is touched.
  std::vector<T> storage(2 * n + 2, T(7));
  std::copy_n(z->data, 2 * n, storage.data() + 1);
  Record<T> view = *z.operator->();
  view.data = storage.data() + 1;
  view.allocated = 0;
  EXPECT_EQ(fft(&view, 0U), 0);
  EXPECT_TRUE(std::equal(forward->data, forward->data + 2 * n, view.data));
  EXPECT_EQ(storage.front(), T(7));
  EXPECT_EQ(storage.back(), T(7));
}

TYPED_TEST(Engine, ErrorsStayWithinTheBoundOnEveryCpuTarget) {
  for_each_cpu_target([](const char* target) {
    for (int bits = 2; bits <= 13; ++bits) check_length<TypeParam>(size_t{1} << bits, target);
  });
  for (const int bits : {14, 15, 16, 18}) check_length<TypeParam>(size_t{1} << bits, "best target");
}

TYPED_TEST(Engine, ImpulsesAndConstantsAreExact) {
  using T = TypeParam;
  for_each_cpu_target([](const char* target) {
    for (int bits = 2; bits <= 14; ++bits) {
      const size_t n = size_t{1} << bits;
      Vec<T> impulse(std::vector<T>(n, 0)), constant(std::vector<T>(n, T(3)));
      impulse[0] = static_cast<T>(n);
      std::vector<T> ones(2 * n, 0), first(2 * n, 0);
      for (size_t k = 0; k < n; ++k) ones[2 * k] = 1;
      first[0] = 3;
      Vec<T> impulse_half = impulse, constant_half = constant;
      fft(impulse.get(), 0U);
      fft(constant.get(), 0U);
      rfft(impulse_half.get());
      rfft(constant_half.get());
      const auto equal = [](const Vec<T>& v, const std::vector<T>& expected) {  // zeros of either sign
        return std::equal(v->data, v->data + v.size(), expected.begin());
      };
      EXPECT_TRUE(equal(impulse, ones) && equal(impulse_half, ones)) << n << ' ' << target;
      EXPECT_TRUE(equal(constant, first) && equal(constant_half, first)) << n << ' ' << target;
    }
  });
}

TYPED_TEST(Engine, MoreThreadsThanSpareWorkSpaceAgreeToTheBit) {
  using T = TypeParam;
  ASSERT_EQ(dsp_lib_init(), 0);
  const size_t n = 8192;  // its work space does not fit the stack
  const Vec<T> x = noise<T>(n, true);
  Vec<T> expected = x;
  EXPECT_EQ(fft(expected.get(), 0U), 0);
  EXPECT_EQ(free_internal.template of<T>()(), 0);
  std::vector<Vec<T>> results(12, x);
  std::vector<std::thread> threads;
  for (Vec<T>& v : results) threads.emplace_back([&v] { fft(v.get(), 0U); });
  for (std::thread& thread : threads) thread.join();
  for (const Vec<T>& v : results) EXPECT_TRUE(exactly(v, expected.samples()));
}

}  // namespace
}  // namespace sigvex_test
