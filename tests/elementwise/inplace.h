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

template <class T> Vec<T> make(const std::vector<T>& scalars, bool complex) {
  Vec<T> v(scalars);
  v->complex = complex;
  if (complex) v->points /= 2;
  return v;
}

// The samples of a row, over and over, so that every length around the lane counts occurs, none included; on an owned
// vector and on a view.
template <class T> void check(const std::vector<Exact<T>>& rows) {
  for (const Exact<T>& row : rows) {
    std::vector<T> in, out;
    for (size_t copies = 0; copies < 20; ++copies) {
      for (const bool view : {false, true}) {
        SCOPED_TRACE(row.name + std::to_string(copies) + (view ? " view" : ""));
        Vec<T> storage = make(in, row.forms == kComplex || row.forms == kToReal), v;
        *v.get() = *storage.get();
        (view ? v : storage)->allocated = 0;
        v->delta = T(0.3);
        EXPECT_EQ(row.operation(v), 0);
        EXPECT_TRUE(exactly(v, out));
        EXPECT_EQ(v->complex, row.forms == kComplex || row.forms == kToComplex);
        EXPECT_EQ(v->delta, T(0.3));
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
