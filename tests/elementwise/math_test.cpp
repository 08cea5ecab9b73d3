// The elementary functions on every CPU target: errors over their ranges, special cases, and that a sample gives the
// same bits wherever it stands.
#include "support/cpu_targets.h"
#include "support/twin.h"

namespace sigvex_test::math_test {

SUITE_OF_BOTH(Math);

struct Range {
  long double low = 0, high = 0;
};

template <class T> struct Function {
  const char* name;
  int32_t (*operation)(Record<T>*);
  long double (*exact)(long double) = nullptr;
  Range even = {};    // of arguments that lie evenly
  Range spread = {};  // of magnitudes that lie evenly by their logarithm, with both signs where the lower one is 0
};

#define UNMEASURED(family, op) {TWIN_ROW(family, op)},
template <class T> std::vector<Function<T>> functions() {
  constexpr bool kSingle = std::is_same_v<T, float>;
  const long double most = std::numeric_limits<T>::max(), tiny = kTiny<T>, ln_huge = kSingle ? 34.5L : 230.2L;
  const Range faithful{0, kSingle ? 88 : 710};  // of sinh and cosh
  return {{TWIN_ROW(i, exp), std::exp, {kSingle ? -103 : -744, ln_huge}, {0, 1}},
          {TWIN_ROW(i, log), std::log, {0.5L, 2}, {tiny, most}},
          {TWIN_ROW(i, log10), std::log10, {0.5L, 2}, {tiny, most}},
          {TWIN_ROW(i, sin), std::sin, {-8, 8}, {0, 1e7L}},
          {TWIN_ROW(i, cos), std::cos, {-8, 8}, {0, 1e7L}},
          {TWIN_ROW(i, tan), std::tan, {-8, 8}, {0, 1e7L}},
          {TWIN_ROW(i, atan), std::atan, {-2, 2}, {0, most}},
          {TWIN_ROW(i, asin), std::asin, {-1, 1}, {0, 1}},
          {TWIN_ROW(i, acos), std::acos, {-1, 1}, {0, 1}},
          {TWIN_ROW(i, sinh), std::sinh, {-4, 4}, faithful},
          {TWIN_ROW(i, cosh), std::cosh, {-4, 4}, faithful},
          {TWIN_ROW(i, tanh), std::tanh, {-2, 2}, {0, 30}},
          FOR_EACH(UNMEASURED, i, exp10, sinc, sqrt, besi0, besj1, besy0, mag, phase, rtop, ptor)};
}

// n of each range.
template <class T> std::vector<T> arguments(const Function<T>& f, int n) {
  const long double low = std::max<long double>(f.spread.low, std::numeric_limits<T>::denorm_min());
  std::vector<T> x;
  for (int k = 0; k < n; ++k) {
    const long double at = (k + 0.37L) / n;
    const long double size = std::min(low * std::exp(std::log(f.spread.high / low) * at), f.spread.high);
    x.push_back(static_cast<T>(f.even.low + (f.even.high - f.even.low) * at));
    x.push_back(static_cast<T>(f.spread.low == 0 && k % 2 ? -size : size));
  }
  return x;
}

template <class T> long double ulps(T result, long double exact) {
  const int least = std::numeric_limits<T>::min_exponent - 1;
  return std::abs(result - exact) / std::ldexp(static_cast<long double>(kEps<T>), std::max(std::ilogb(exact), least));
}

TEST_BOTH(Math, FunctionsAreWithinAnUlp) {
  for_each_cpu_target([](const char* target) {
    for (const Function<T>& f : functions<T>()) {
      if (!f.exact) continue;
      const std::vector<T> x = arguments<T>(f, 3001);
      Vec<T> v(x);
      EXPECT_EQ(f.operation(v), 0);
      for (size_t k = 0; k < x.size(); ++k) {
        ASSERT_LE(ulps(v[k], f.exact(x[k])), 1) << f.name << " of " << x[k] << ", " << target;
      }
    }
    std::vector<std::complex<T>> z;
    for (int k = 0; k < 3000; ++k) z.push_back(std::polar(std::exp(T(0.02) * T(k - 1500)), T(0.7) * T(k)));
    Vec<T> magnitude(z), phase(z);
    EXPECT_EQ(TWIN_OF(i, mag)(magnitude) + TWIN_OF(i, phase)(phase), 0);
    for (size_t k = 0; k < z.size(); ++k) {
      const long double re = z[k].real(), im = z[k].imag();
      ASSERT_LE(ulps(magnitude[k], std::hypot(re, im)), 1) << z[k] << target;
      ASSERT_LE(ulps(phase[k], std::atan2(im, re)), 1) << z[k] << target;
    }
  });
}

// The same bits alone, in a row of any length, at any address.
TEST_BOTH(Math, ASampleGivesTheSameBitsWhereverItStands) {
  const T inf = kInf<T>, nan = kNaN<T>;
  const std::vector<T> x = {T(0.3),       -1,   1e-30F, 700,      T(-0.0), inf,      1e9F,    T(0.7), nan,
                            kTiny<T> / 8, -inf, 3,      1e37F,    T(-2.5), T(0.999), -1e-30F, 12,     T(0.1),
                            1e-7F,        2,    40,     T(-0.55), 5,       T(0.25),  33};
  for_each_cpu_target([&](const char* target) {
    for (const Function<T>& f : functions<T>()) {
      for (const bool complex : {false, true}) {
        const size_t width = complex ? 2 : 1, count = x.size() / width;
        std::vector<T> alone, room(x.size() + 8);
        const auto run = [&](size_t first, T* data, size_t n) {  // the scalars that a point becomes, 0 for a refusal
          std::copy_n(&x[width * first], width * n, data);
          Record<T> v{};
          v.data = data;
          v.points = static_cast<int32_t>(n);
          v.complex = complex;
          return f.operation(&v) < 0 ? 0 : v.complex ? 2 : 1;
        };
        for (size_t k = 0; k < count; ++k) {
          const int out = run(k, room.data(), 1);
          alone.insert(alone.end(), room.data(), room.data() + out);
        }
        for (size_t n = 1; n <= count; ++n) {
          T* const data = room.data() + n % 8;  // every misalignment
          data[width * n] = 77;
          run(0, data, n);
          for (size_t k = 0; k < alone.size() * n / count; ++k) {
            ASSERT_TRUE(identical(data[k], alone[k])) << f.name << complex << n << ' ' << k << target;
          }
          ASSERT_EQ(data[width * n], 77) << f.name << target;
        }
      }
    }
  });
}

}  // namespace sigvex_test::math_test
