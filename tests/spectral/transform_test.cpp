// The transforms against their definitions and back again, over lengths, forms and directions.
#include <bit>
#include <functional>
#include <limits>

#include "support/cpu_targets.h"
#include "support/failing_storage.h"
#include "support/reference_transform.h"

namespace sigvex_test::transform_test {

TWINS(i, fft, rfft, irfft, dft, rdft, irdft, dct, hilbert, analytic);

SUITE_OF_BOTH(Transform);

struct Length {
  size_t n, step = 1;  // every step-th bin is compared
};
// Convolutions of two points up to those that begin with quarters; 4097 points are one more than half of what is
// padded.
// clang-format off
constexpr Length kLengths[] = {
    {2},  {3},  {4},  {5},   {6},       {7},       {8},         {9},        {12},         {16},         {31},
    {33}, {64}, {99}, {100}, {1009, 7}, {1024, 7}, {4097, 911}, {4098, 61}, {8191, 1777}, {20011, 997},
    {65537, 13001}, {262147, 99991}};
// clang-format on

// Either transform of a length: the one for powers of two only there.
template <class F> void for_each_way(const Length& length, F check) {
  for (const bool fast : {false, true}) {
    if (!fast || std::has_single_bit(length.n)) check(fast);
  }
}

TEST_BOTH(Transform, EveryLengthWithinItsErrorBoundOnEveryCpuTarget) {
  for (const Length& length : kLengths) {
    const size_t n = length.n, step = length.step;
    for (const bool complex : {false, true}) {
      const Vec<T> x = noise<T>(n, complex);
      const ReferenceTransform references[] = {{x, false}, {x, true}};
      for_each_cpu_target([&](const char* target) {
        for (const uint32_t inverse : {0U, 2U, 0U}) {
          for_each_way(length, [&](bool fast) {
            SCOPED_TRACE(::testing::Message() << n << ' ' << inverse << ' ' << target);
            Vec<T> v = x;
            v->delta = T(0.5);
            ASSERT_EQ(fast ? fft(v.get(), inverse) : dft(v.get(), inverse), 0);
            EXPECT_LE(transform_error(v, references[inverse / 2], step), transform_bound<T>(n));
            EXPECT_TRUE(v->points == static_cast<int32_t>(n) && v->complex == 1);
            EXPECT_EQ(v->delta, T(1) / (static_cast<T>(n) * T(0.5)));
            if (complex || inverse || fast || std::has_single_bit(n)) return;
            Vec<T> half = x;
            EXPECT_EQ(rdft(half.get()), 0);
            EXPECT_LE(transform_error(half, references[0], step), transform_bound<T>(n));
          });
        }
      });
    }
  }
}

TEST_BOTH(Transform, HalfSpectraAndBack) {
  for (const Length& length : kLengths) {
    const size_t n = length.n, step = length.step;
    const Vec<T> x = noise<T>(n, false);
    const ReferenceTransform reference(x, false);
    for_each_way(length, [&](bool fast) {
      Vec<T> v = x;
      v->delta = T(0.5);
      ASSERT_EQ(fast ? rfft(v.get()) : rdft(v.get()), 0);
      EXPECT_EQ(v->points, static_cast<int32_t>(n / 2 + 1));
      EXPECT_EQ(v->delta, T(1) / (static_cast<T>(n) * T(0.5)));
      EXPECT_LE(transform_error(v, reference, step), transform_bound<T>(n)) << n;
      ASSERT_EQ(fast ? irfft(v.get()) : irdft(v.get(), n % 2 ? 4U : 0U), 0);  // any nonzero flag means odd
      EXPECT_EQ(v->complex, 0);
      EXPECT_LE(difference(v, x), 2 * transform_bound<T>(n)) << n;
      EXPECT_NEAR(v->delta, 0.5, 2 * kEps<T>);
    });
  }
}

TEST_BOTH(Transform, CosineCoefficientsAndBack) {
  for (const size_t n : {1, 2, 3, 4, 5, 6, 7, 8, 15, 16, 100, 127, 1000}) {
    const double bound = transform_bound<T>(n) + 2.0 * kEps<T>;  // one more rounding, for the half angles
    const Vec<T> x = noise<T>(n, false);
    const auto mean_of_cosines = [&](size_t k) {
      long double sum = 0;
      for (size_t j = 0; j < n; ++j) {
        const size_t quarter_turns = k * (2 * j + 1) % (4 * n);
        sum += x[j] * std::cos(kPi * static_cast<long double>(quarter_turns) / static_cast<long double>(2 * n));
      }
      return sum / static_cast<long double>(n);
    };
    for (const uint32_t orthonormal : {0U, 2U}) {
      Vec<T> v = x;
      v->delta = T(0.25);
      ASSERT_EQ(dct(v.get(), orthonormal), 0);
      EXPECT_EQ(v->complex, 0);
      EXPECT_NEAR(v->delta, 2.0 / static_cast<double>(n), 2.0 * kEps<T>);
      const auto expected = [&](size_t k) {
        return Wide(mean_of_cosines(k) * (!orthonormal ? 1 : k == 0 ? std::sqrt(2.0L) : 2));
      };
      EXPECT_LE(transform_error(v, expected), bound) << n;
      ASSERT_EQ(dct(v.get(), orthonormal | 1), 0);
      EXPECT_LE(difference(v, x), 2 * bound) << n;
      EXPECT_NEAR(v->delta, 0.25, 2.0 * kEps<T>);
    }
  }
}

// A cosine becomes the sine; its offset, and for even n an alternation, have no Hilbert transform.
TEST_BOTH(Transform, HilbertTurnsACosineIntoTheSine) {
  for (const size_t n : {7, 8, 12, 15, 64, 100}) {
    Vec<T> x = noise<T>(n, false), sine = x, z = noise<T>(n, true);
    for (size_t k = 0; k < n; ++k) {
      const long double angle = 2 * kPi * 3 * static_cast<long double>(k) / static_cast<long double>(n);
      sine[k] = static_cast<T>(std::sin(angle));
      z[2 * k] = 0;
      z[2 * k + 1] = x[k] = static_cast<T>(std::cos(angle)) + (n % 2 == 0 && k % 2 ? T(-0.5) : T(0.5));
    }
    const auto check = [n](auto operation, Vec<T> v, int32_t complex, auto expected) {
      v->delta = T(0.25);
      EXPECT_EQ(operation(v.get()), 0);
      EXPECT_EQ(v->complex, complex);
      EXPECT_EQ(v->points, static_cast<int32_t>(n));
      EXPECT_NEAR(v->delta, 0.25, kEps<T>);
      EXPECT_LE(transform_error(v, expected), 2 * transform_bound<T>(n)) << n;
    };
    check(hilbert, x, 0, [&](size_t k) { return Wide(sine[k]); });
    check(hilbert, z, 1, [&](size_t k) { return Wide(0, sine[k]); });
    check(analytic, x, 1, [&](size_t k) { return Wide(x[k], sine[k]); });
  }
}

// What has nothing to transform, or is refused, keeps everything but the spacing.
TEST_BOTH(Transform, ShortVectorsAndRefusals) {
  using R = Record<T>;
  const struct {
    std::function<int32_t(R*)> call;
    std::vector<int32_t> points;
    int32_t complex, status;
    T delta;  // afterwards, when it was 0.25
  } rows[] = {{WITH(i, dft, 0), {1, 0, -3}, 0, 0, 4},
              {TWIN_OF(i, rdft), {1, 0}, 0, 0, 4},
              {WITH(i, fft, 0), {1}, 0, 0, 4},
              {WITH(i, fft, 1), {1}, 1, 0, 4},
              {TWIN_OF(i, rfft), {1}, 0, 0, 4},
              {WITH(i, dct, 0), {0, -2}, 0, 0, 2},
              {WITH(i, dct, 3), {0, -2}, 0, 0, 2},
              {TWIN_OF(i, hilbert), {0, -5}, 0, 0, T(0.25)},
              {TWIN_OF(i, analytic), {0, -5}, 0, 0, T(0.25)},
              {WITH(i, fft, 0), {0, -1, -8, INT32_MIN, 3, 6}, 0, -1, T(0.25)},
              {TWIN_OF(i, rfft), {0, -1, -8, INT32_MIN, 3, 6}, 0, -1, T(0.25)},
              {TWIN_OF(i, rfft), {4}, 1, -1, T(0.25)},
              {TWIN_OF(i, rdft), {3}, 1, -1, T(0.25)},
              {WITH(i, dct, 0), {3}, 1, -1, T(0.25)}};
  for (const auto& row : rows) {
    for (const int32_t points : row.points) {
      for (const T delta : {T(0.25), T(0), T(-0.0)}) {
        SCOPED_TRACE(::testing::Message() << "row " << &row - rows << ", " << points << " points");
        Vec<T> storage{1, 2, 3, 4, 5, 6, 7, 8}, v = Vec<T>::over(storage->data, points, row.complex, delta);
        EXPECT_EQ(row.call(v), row.status);
        EXPECT_EQ(v->delta, delta != 0 ? row.delta : row.delta == T(0.25) ? 0 : kHuge<T>);
        EXPECT_TRUE(v->points == points && v->complex == row.complex && v->data == storage->data);
        EXPECT_TRUE(exactly(storage, {1, 2, 3, 4, 5, 6, 7, 8}));
      }
    }
  }
  Vec<T> one{7}, pair{1, 5}, point = Vec<T>::pairs({{7, 8}}), nothing{1};
  EXPECT_EQ(irfft(nothing.get()), -1);  // the half spectrum of no sample
  EXPECT_EQ(analytic(one.get()), 0);
  EXPECT_TRUE(exactly(one, {7}));
  for (Vec<T>* const v : {&one, &pair, &point}) {
    EXPECT_EQ(hilbert(v->get()), 0);
    EXPECT_TRUE(exactly(*v, std::vector<T>(v->size())));
  }
  for (const uint32_t n : {3, 4}) {  // a spacing of zero; the cosine transform goes by twice the points
    for (const auto& [huge, call] : std::initializer_list<std::pair<T, std::function<int32_t(R*)>>>{
             {kHuge<T>, [n](R* v) { return n == 4 ? rfft(v) : irfft(v); }},
             {kHuge<T>, [](R* v) { return rdft(v); }},
             {kHuge<T> / 2, [](R* v) { return dct(v, DSP_DCT_INVERSE); }},
             {kHuge<T> / 2, [](R* v) { return dct(v, 0U); }}}) {
      Vec<T> v = noise<T>(n, false);
      v->delta = T(-0.0);
      EXPECT_EQ(call(v), 0);
      EXPECT_EQ(v->delta, huge);
    }
  }
}

TEST_BOTH(Transform, StorageGrowsToTheConvolutionLengthOnce) {
  for (const uint32_t n : {3, 5, 6, 9, 10, 17, 18, 1000, 1025, 1026}) {
    const Vec<T> x = noise<T>(n, true);
    Vec<T> v = x;
    ASSERT_EQ(dft(v.get(), 0U), 0);
    EXPECT_EQ(v->allocated, static_cast<int32_t>(2 * std::bit_ceil(2 * n - 2))) << n;
    const std::vector<T> first = v.samples();
    Vec<T> view = Vec<T>::over(x->data, x->points, 1);  // of a view, the storage is left
    EXPECT_EQ(dft(view.get(), 0U), 0);
    EXPECT_EQ(view->allocated, v->allocated) << n;
    EXPECT_TRUE(exactly(view, first) && exactly(x, noise<T>(n, true).samples())) << n;

    const FailingStorage<T> counter(0);  // changing the direction rebuilds nothing and loses nothing
    for (const uint32_t inverse : {1U, 0U, 1U, 0U}) {
      std::copy_n(x->data, 2 * n, v->data);
      ASSERT_EQ(dft(v.get(), inverse), 0);
    }
    EXPECT_EQ(counter.growths, 0);
    EXPECT_TRUE(exactly(v, first)) << n;
    v->points = (1 << 28) + 2;  // 2^30 points for the convolution are beyond the record
    EXPECT_EQ(dft(v.get(), 0U), -1);
    EXPECT_EQ(counter.growths, 0);
    EXPECT_TRUE(!v->data && v->allocated == 0 && v->points == 0);
  }
}

// Sums of all samples are the largest numbers on the way to bins that are means.
TEST_BOTH(Transform, NothingOverflowsWhereTheSumsFit) {
  for (const size_t n : {12, 100, 1009, 10007, 48000}) {
    const T most = std::numeric_limits<T>::max() / T(8 * n);
    for (const bool real : {true, false}) {
      Vec<T> v(std::vector<T>(n, most));
      EXPECT_EQ(real ? rdft(v.get()) : dft(v.get(), 0U), 0);
      EXPECT_NEAR(v[0] / most, 1, transform_bound<T>(n)) << n;
      EXPECT_NEAR(v[2] / most, 0, transform_bound<T>(n)) << n;
    }
  }
}

}  // namespace sigvex_test::transform_test
