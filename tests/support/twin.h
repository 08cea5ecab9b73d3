// What every test builds on: one name for both precisions of an operation, and records written as lists.
#pragma once

#include <gtest/gtest.h>
#include <sigvex.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace sigvex_test {

using ::testing::AssertionResult;

template <class T> struct RecordOf;
template <> struct RecordOf<double> { using type = dsp_vector; };
template <> struct RecordOf<float> { using type = dspf_vector; };
template <class T> using Record = typename RecordOf<T>::type;

// Both C functions of an operation, chosen by the precision of the records that are passed.
template <class Double, class Float> struct Twin {
  Double in_double;
  Float in_float;

  template <class... A> auto operator()(A&&... arguments) const {
    if constexpr (std::is_invocable_v<Double, A...>) return in_double(std::forward<A>(arguments)...);
    else return in_float(std::forward<A>(arguments)...);
  }
  template <class T> auto of() const {
    if constexpr (std::is_same_v<T, double>) return in_double;
    else return in_float;
  }
};

template <class Double, class Float> Twin(Double, Float) -> Twin<Double, Float>;

// TWIN(i, log) makes log stand for dspi_log and dspfi_log.
#define TWIN(family, op) \
  [[maybe_unused]] constexpr sigvex_test::Twin op { &dsp##family##_##op, &dspf##family##_##op }
// TWINS(i, log, exp) does so for each of the operations.
#define TWINS(family, ...)     FOR_EACH(TWIN_ENTRY, family, __VA_ARGS__) static_assert(true)
#define TWIN_ENTRY(family, op) TWIN(family, op);

// FOR_EACH(entry, common, a, b) becomes entry(common, a) entry(common, b), for up to 64 of them: each step leaves the
// next one unexpanded, and every level of REPEAT scans the rest four times more.
#define FOR_EACH(entry, common, ...) REPEAT(FOR_EACH_STEP(entry, common, __VA_ARGS__))
#define FOR_EACH_STEP(entry, common, first, ...) \
  entry(common, first) __VA_OPT__(FOR_EACH_NEXT NO_ARGUMENTS(entry, common, __VA_ARGS__))
#define FOR_EACH_NEXT() FOR_EACH_STEP
#define NO_ARGUMENTS    ()
#define REPEAT(...)     REPEAT_16(REPEAT_16(REPEAT_16(REPEAT_16(__VA_ARGS__))))
#define REPEAT_16(...)  REPEAT_4(REPEAT_4(REPEAT_4(REPEAT_4(__VA_ARGS__))))
#define REPEAT_4(...)   REPEAT_1(REPEAT_1(REPEAT_1(REPEAT_1(__VA_ARGS__))))
#define REPEAT_1(...)   __VA_ARGS__

using Precisions = ::testing::Types<double, float>;

// A suite of tests that run in both precisions, and one of its tests, whose body knows the precision as T.
#define SUITE_OF_BOTH(Suite)                            \
  template <class T> struct Suite : ::testing::Test {}; \
  TYPED_TEST_SUITE(Suite, Precisions)
#define TEST_BOTH(Suite, Name)                             \
  template <class T> void Suite##_##Name();                \
  TYPED_TEST(Suite, Name) { Suite##_##Name<TypeParam>(); } \
  template <class T> void Suite##_##Name()

template <class T> constexpr T kHuge = std::is_same_v<T, double> ? T(1e100) : T(999999986991104.0);
template <class T> constexpr T kTiny = std::numeric_limits<T>::min();
template <class T> constexpr T kEps = std::numeric_limits<T>::epsilon();
template <class T> constexpr T kInf = std::numeric_limits<T>::infinity();
template <class T> constexpr T kNaN = std::numeric_limits<T>::quiet_NaN();
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// The C function of an operation for the precision T, and with it its name for a row of a table.
#define TWIN_OF(family, op)  (sigvex_test::Twin{&dsp##family##_##op, &dspf##family##_##op}.template of<T>())
#define TWIN_ROW(family, op) #op, TWIN_OF(family, op)
// The operation of the first arguments, its last ones given.
#define WITH(family, op, ...) [](auto... first) { return TWIN_OF(family, op)(first..., __VA_ARGS__); }

// A record that owns its samples and releases them; converts to the pointer that the C functions take.
template <class T> class Vec {
 public:
  Vec() : v_{} { kInit(get()); }
  Vec(std::initializer_list<T> samples) : Vec(std::vector<T>(samples)) {}
  explicit Vec(const std::vector<T>& samples) : Vec() {
    v_.points = static_cast<int32_t>(samples.size());
    fill(samples.data(), samples.size());
  }
  // Samples, or the parts of points in turn.
  Vec(const std::vector<T>& scalars, bool complex) : Vec(scalars) {
    v_.complex = complex;
    if (complex) v_.points /= 2;
  }
  explicit Vec(const std::vector<std::complex<T>>& samples)
      : Vec({reinterpret_cast<const T*>(samples.data()), reinterpret_cast<const T*>(samples.data() + samples.size())},
            true) {}
  // Complex points from a list of pairs.
  static Vec pairs(std::initializer_list<std::complex<T>> samples) {
    return Vec(std::vector<std::complex<T>>(samples));
  }
  // Storage of somebody else, or none.
  static Vec over(T* data, int32_t points, int32_t complex = 0, T delta = 1) {
    Vec v;
    v.v_ = {delta, data, 0, points, complex, 0};
    return v;
  }
  Vec view() { return over(v_.data, v_.points, v_.complex, v_.delta); }
  Vec(const Vec& other) : Vec() {
    v_.points = other.v_.points;
    v_.complex = other.v_.complex;
    v_.delta = other.v_.delta;
    fill(other.v_.data, other.size());
  }
  Vec(Vec&& other) noexcept : v_(std::exchange(other.v_, Record<T>{})) {}
  Vec& operator=(Vec other) {
    std::swap(v_, other.v_);
    return *this;
  }
  ~Vec() { kDestroy(get()); }

  operator Record<T>*() { return &v_; }
  operator const Record<T>*() const { return &v_; }
  Record<T>* operator->() { return &v_; }
  const Record<T>* operator->() const { return &v_; }
  Record<T>* get() { return &v_; }

  size_t size() const { return v_.points > 0 ? static_cast<size_t>(v_.points) * (v_.complex ? 2 : 1) : 0; }
  T& operator[](size_t k) { return v_.data[k]; }
  T operator[](size_t k) const { return v_.data[k]; }
  std::complex<T> at(size_t k) const { return {v_.data[2 * k], v_.data[2 * k + 1]}; }
  // Every scalar: the samples, or both parts of each point.
  std::vector<T> samples() const { return std::vector<T>(v_.data, v_.data + size()); }

 private:
  static constexpr Twin kInit{&dsp_init, &dspf_init}, kDestroy{&dsp_destroy, &dspf_destroy},
      kAlloc{&dsp_alloc, &dspf_alloc};

  void fill(const T* from, size_t n) {
    ASSERT_EQ(kAlloc(get()), 0);
    if (n > 0) std::copy_n(from, n, v_.data);
  }

  Record<T> v_;
};

// Same value and, for zeros, same sign; any NaN equals any other.
template <class T> bool identical(T a, T b) {
  return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

template <class T, class U, class Agree>
AssertionResult scalars_agree(const Vec<T>& v, const std::vector<U>& expected, Agree agree) {
  if (v.size() != expected.size()) {
    return ::testing::AssertionFailure() << v.size() << " scalars, expected " << expected.size();
  }
  for (size_t k = 0; k < expected.size(); ++k) {
    if (!agree(v[k], expected[k])) {
      return ::testing::AssertionFailure() << "scalar " << k << " is " << ::testing::PrintToString(v[k])
                                           << ", expected " << ::testing::PrintToString(expected[k]);
    }
  }
  return ::testing::AssertionSuccess();
}

// The scalars of a vector equal the expected ones exactly (NaN to NaN, -0.0 apart from 0.0).
template <class T> AssertionResult exactly(const Vec<T>& v, const std::vector<T>& expected) {
  return scalars_agree(v, expected, identical<T>);
}

// So do they, form and spacing.
template <class T> AssertionResult same(const Vec<T>& v, const Vec<T>& expected) {
  if (v->complex == expected->complex && v->delta == expected->delta) return exactly(v, expected.samples());
  return ::testing::AssertionFailure() << "form " << v->complex << ", spacing " << v->delta;
}

// The scalars of a vector are within `tolerance` times the magnitude of the expected ones (at least `floor`).
template <class T, class U>
AssertionResult close(const Vec<T>& v, const std::vector<U>& expected, double tolerance, double floor = 0) {
  return scalars_agree(v, expected, [=](T x, U e) {
    const double wanted = static_cast<double>(e);
    return std::abs(static_cast<double>(x) - wanted) <= tolerance * std::max(std::abs(wanted), floor);
  });
}

}  // namespace sigvex_test
