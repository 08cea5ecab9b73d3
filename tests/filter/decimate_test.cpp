#include "filter/stream.h"

namespace sigvex_test::decimate_test {

TWIN(d, deci);

SUITE_OF_BOTH(Decimation);

TEST_BOTH(Decimation, KeepsEveryFactorthPointFromTheRoundedOffset) {
  struct Row {
    int32_t factor;
    T offset, first;
  };
  const T far = static_cast<T>(0x1p62);
  for (const Row& row : {Row{3, 0, 0}, Row{3, 2, 2}, Row{3, T(1.5), 2}, Row{3, T(1.4375), 1}, Row{3, T(-0.25), 0},
                         Row{3, -7, 0}, Row{4, 12, 12}, Row{4, 10, 10}, Row{4, 9, 9}, Row{100, 0, 0},
                         Row{INT32_MAX, 5, 5}, Row{0, 7, 7}, Row{-3, 8, 8}, Row{INT32_MIN, 9, 9}, Row{3, kNaN<T>, 0},
                         Row{3, -kInf<T>, 0}, Row{3, kInf<T>, far}, Row{3, kHuge<T>, std::min(kHuge<T>, far)}}) {
    for (const bool complex : {false, true}) {
      SCOPED_TRACE(::testing::Message() << row.factor << ' ' << row.offset << ' ' << complex);
      std::vector<T> kept;
      Vec<T> in = noise<T>(10, complex), out{1, 2}, offset{row.offset, 7, 7};
      if (complex) offset = Vec<T>::pairs({{row.offset, 5}});  // its imaginary part means nothing
      const Vec<T> start = offset;
      Vec<T> carried = offset.view();
      T next = row.first;
      for (const T step = static_cast<T>(std::max(row.factor, 1)); next < 10; next += step) {
        for (const T x : cut(in, static_cast<size_t>(next), static_cast<size_t>(next) + 1).samples()) kept.push_back(x);
      }
      in->delta = T(0.5);
      EXPECT_EQ(deci(in, out, row.factor, carried), 0);
      EXPECT_TRUE(exactly(out, kept) && carried->points == 1 && carried->allocated == 0);
      EXPECT_TRUE(offset[0] == next - 10 && (!complex || offset[1] == 0));  // in the storage it views
      EXPECT_TRUE(out->delta == T(0.5) * static_cast<T>(std::max(row.factor, 1)) && carried->delta == T(0.5));
      EXPECT_EQ(deci(in, (offset = start), row.factor, offset), 0);  // the output may be the offset
      EXPECT_TRUE(exactly(offset, kept));
    }
  }
}

}  // namespace sigvex_test::decimate_test
