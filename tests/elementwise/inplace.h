// What the tests of the in-place operations share: rows of edge values, sizes around the lane counts, refusals.
#pragma once

#include <cstring>
#include <functional>
#include <random>
#include <string>

#include "support/twin.h"

namespace sigvex_test {

enum class Form { kReal, kComplex };

template <class T> using InPlace = std::function<int32_t(Record<T>*)>;

template <class T> struct EdgeRow {
  std::string name;
  InPlace<T> operation;
  std::vector<T> in, out;  // scalars
  Form from = Form::kReal, to = from;
};

template <class T> Vec<T> make(const std::vector<T>& scalars, Form form) {
  if (form == Form::kReal) return Vec<T>(scalars);
  std::vector<std::complex<T>> points;
  for (size_t k = 0; k + 1 < scalars.size(); k += 2) points.emplace_back(scalars[k], scalars[k + 1]);
  return Vec<T>(points);
}

// Exact results; points and delta kept, the form as the row says; the same on an owned vector and on a view. Empty
// vectors succeed too and take the same form.
template <class T> void check_edges(const std::vector<EdgeRow<T>>& rows) {
  for (const EdgeRow<T>& row : rows) {
    for (const std::vector<T>& in : {row.in, std::vector<T>{}}) {
      Vec<T> owned = make(in, row.from), storage = owned, view;
      *view.get() = *storage.get();
      view->allocated = 0;
      for (Vec<T>* v : {&owned, &view}) {
        SCOPED_TRACE(row.name + (in.empty() ? ", empty" : v == &view ? ", view" : ""));
        const int32_t points = (*v)->points;
        (*v)->delta = T(0.125);
        EXPECT_EQ(row.operation(*v), 0);
        EXPECT_TRUE(exactly(*v, in.empty() ? in : row.out));
        EXPECT_EQ((*v)->complex, row.to == Form::kComplex);
        EXPECT_EQ((*v)->points, points);
        EXPECT_EQ((*v)->delta, T(0.125));
      }
    }
  }
}

// Every length around the lane counts gives, sample by sample, what the rule gives, and nothing behind is written.
template <class T>
void check_sizes(const std::string& name, const InPlace<T>& operation, const std::function<T(T)>& rule) {
  for (size_t n = 0; n <= 67; ++n) {
    std::vector<T> x(n + 1), expected(n);
    for (size_t k = 0; k <= n; ++k) x[k] = T(0.37) * static_cast<T>(k) - T(9);
    for (size_t k = 0; k < n; ++k) expected[k] = rule(x[k]);
    Vec<T> v(x);
    v->points = static_cast<int32_t>(n);
    EXPECT_EQ(operation(v), 0) << name;
    EXPECT_TRUE(exactly(v, expected)) << name << " of " << n;
    EXPECT_EQ(v[n], x[n]) << name << " of " << n;
  }
}

// The largest error over an interval, in ulps of the exact value: ends, and points spread over it.
template <class T>
double max_ulp(const InPlace<T>& operation, const std::function<long double(long double)>& reference, double low,
               double high) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> place(low, high);
  std::vector<T> x = {static_cast<T>(low), static_cast<T>(high)};
  while (x.size() < 20000) x.push_back(static_cast<T>(place(random)));
  Vec<T> v(x);
  EXPECT_EQ(operation(v), 0);
  long double worst = 0;
  for (size_t k = 0; k < x.size(); ++k) {
    const long double exact = reference(x[k]);
    const int exponent = std::max(std::ilogb(exact), std::numeric_limits<T>::min_exponent - 1);
    const long double ulp = std::ldexp(static_cast<long double>(kEps<T>), exponent);
    worst = std::max(worst, std::abs(v[k] - exact) / ulp);
  }
  return static_cast<double>(worst);
}

template <class T> void check_refuses_complex(const std::vector<InPlace<T>>& operations) {
  for (const InPlace<T>& operation : operations) {
    Vec<T> v = Vec<T>::pairs({{T(0.5), -2}, {-1, kNaN<T>}});
    EXPECT_EQ(operation(v), -1);
    EXPECT_TRUE(exactly(v, {T(0.5), -2, -1, kNaN<T>}));
    EXPECT_EQ(v->points, 2);
    EXPECT_EQ(v->complex, 1);
  }
}

}  // namespace sigvex_test
