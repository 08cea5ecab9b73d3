// What the tests of the in-place operations share: tables of exact results.
#pragma once

#include <cstring>
#include <functional>

#include "support/twin.h"

namespace sigvex_test {

template <class T> using InPlace = std::function<int32_t(Record<T>*)>;

// What an operation takes and leaves. Real only: it refuses complex vectors and leaves them alone.
enum Forms { kRealOnly, kReal, kComplex, kToReal, kToComplex };

template <class T> struct Exact {
  const char* name;
  InPlace<T> operation;
  Forms forms;
  std::vector<T> in, out;  // scalars
};

// Identical, or off by at most so many units in the last place of what is expected, if that is a number other than 0.
template <class T> bool within_ulps(T x, T expected, int ulps) {
  if (identical(x, expected) || ulps == 0 || expected == 0 || !std::isfinite(expected)) return identical(x, expected);
  const T ulp = std::ldexp(kEps<T>, std::max(std::ilogb(expected), std::numeric_limits<T>::min_exponent - 1));
  return std::abs(x - expected) <= static_cast<T>(ulps) * ulp;
}

// An elementary function is off by less than 1 ulp, here and in the C library; a product rounds half of one.
constexpr int kRoundings = 3;

// The samples of a row, over and over, so that every length around the lane counts occurs, none included; on an owned
// vector and on a view.
template <class T> void check(const std::vector<Exact<T>>& rows, int ulps = 0) {
  for (const Exact<T>& row : rows) {
    std::vector<T> in, out;
    for (size_t copies = 0; copies < 20; ++copies) {
      for (const bool view : {false, true}) {
        SCOPED_TRACE(row.name + std::to_string(copies) + (view ? " view" : ""));
        Vec<T> storage(in, row.forms == kComplex || row.forms == kToReal), v = view ? storage.view() : storage;
        v->delta = T(0.3);
        if (in.empty()) v->points = -1;  // counts as none
        const int32_t points = v->points;
        EXPECT_EQ(row.operation(v), 0);
        EXPECT_TRUE(scalars_agree(v, out, [=](T x, T e) { return within_ulps(x, e, ulps); }));
        EXPECT_EQ(v->complex, row.forms == kComplex || row.forms == kToComplex);
        EXPECT_TRUE(v->delta == T(0.3) && v->points == points);
      }
      in.insert(in.end(), row.in.begin(), row.in.end());
      out.insert(out.end(), row.out.begin(), row.out.end());
    }
    if (row.forms != kRealOnly) continue;
    Vec<T> v = Vec<T>::pairs({{T(0.5), -2}});
    EXPECT_EQ(row.operation(v), -1) << row.name;
    EXPECT_TRUE(v->complex == 1 && exactly(v, {T(0.5), -2})) << row.name;
  }
}

}  // namespace sigvex_test
