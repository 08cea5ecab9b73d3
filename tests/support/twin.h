// What every test builds on: one name for both precisions of an operation, and records written as lists.
#pragma once

#include <gtest/gtest.h>
#include <sigvex.h>

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

// Both C functions of an operation, chosen by the precision of the record that is passed.
template <class Double, class Float> struct Twin {
  Double in_double;
  Float in_float;

  template <class... A> auto operator()(A... arguments) const {
    if constexpr (std::is_invocable_v<Double, A...>) return in_double(arguments...);
    else return in_float(arguments...);
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

using Precisions = ::testing::Types<double, float>;

template <class T> constexpr T kHuge = std::is_same_v<T, double> ? T(1e100) : T(999999986991104.0);
template <class T> constexpr T kTiny = std::numeric_limits<T>::min();
template <class T> constexpr T kEps = std::numeric_limits<T>::epsilon();
template <class T> constexpr T kInf = std::numeric_limits<T>::infinity();
template <class T> constexpr T kNaN = std::numeric_limits<T>::quiet_NaN();
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// A record that owns its samples and releases them; converts to the pointer that the C functions take.
template <class T> class Vec {
 public:
  Vec() : v_{} { init(); }
  Vec(std::initializer_list<T> samples) : Vec(std::vector<T>(samples)) {}
  explicit Vec(const std::vector<T>& samples) : Vec() {
    v_.points = static_cast<int32_t>(samples.size());
    fill(samples.data(), samples.size());
  }
  explicit Vec(const std::vector<std::complex<T>>& samples) : Vec() {
    v_.points = static_cast<int32_t>(samples.size());
    v_.complex = 1;
    fill(reinterpret_cast<const T*>(samples.data()), 2 * samples.size());
  }
  // Complex points from a list of pairs.
  static Vec pairs(std::initializer_list<std::complex<T>> samples) {
    return Vec(std::vector<std::complex<T>>(samples));
  }
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
  ~Vec() {
    if constexpr (std::is_same_v<T, double>) dsp_destroy(&v_);
    else dspf_destroy(&v_);
  }

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
  void init() {
    if constexpr (std::is_same_v<T, double>) dsp_init(&v_);
    else dspf_init(&v_);
  }
  void fill(const T* from, size_t n) {
    if constexpr (std::is_same_v<T, double>) ASSERT_EQ(dsp_alloc(&v_), 0);
    else ASSERT_EQ(dspf_alloc(&v_), 0);
    if (n > 0) std::copy_n(from, n, v_.data);
  }

  Record<T> v_;
};

// Same value and, for zeros, same sign; any NaN equals any other.
template <class T> bool identical(T a, T b) {
  return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

// The scalars of a vector equal the expected ones exactly (NaN to NaN, -0.0 apart from 0.0).
template <class T> AssertionResult exactly(const Vec<T>& v, const std::vector<T>& expected) {
  if (v.size() != expected.size()) {
    return ::testing::AssertionFailure() << v.size() << " scalars, expected " << expected.size();
  }
  for (size_t k = 0; k < expected.size(); ++k) {
    if (!identical<T>(v[k], expected[k])) {
      return ::testing::AssertionFailure() << "scalar " << k << " is " << ::testing::PrintToString(v[k])
                                           << ", expected " << ::testing::PrintToString(expected[k]);
    }
  }
  return ::testing::AssertionSuccess();
}

// The scalars of a vector are within `tolerance` times the magnitude of the expected ones (at least `floor`).
template <class T, class U>
AssertionResult close(const Vec<T>& v, const std::vector<U>& expected, double tolerance, double floor = 0) {
  if (v.size() != expected.size()) {
    return ::testing::AssertionFailure() << v.size() << " scalars, expected " << expected.size();
  }
  for (size_t k = 0; k < expected.size(); ++k) {
    const double e = static_cast<double>(expected[k]), x = static_cast<double>(v[k]);
    if (!(std::abs(x - e) <= tolerance * std::max(std::abs(e), floor))) {
      return ::testing::AssertionFailure()
             << "scalar " << k << " is " << ::testing::PrintToString(x) << ", expected " << ::testing::PrintToString(e);
    }
  }
  return ::testing::AssertionSuccess();
}

}  // namespace sigvex_test
