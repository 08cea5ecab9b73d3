#include "filter/stream.h"

namespace sigvex_test {
namespace {

TWIN(d, deci);

template <class T> struct Decimation : ::testing::Test {};
TYPED_TEST_SUITE(Decimation, Precisions);

TYPED_TEST(Decimation, KeepsEveryFactorthPointFromTheRoundedOffset) {
  using T = TypeParam;
  struct Row {
    int32_t factor;
    T offset, first;
  };
  const T far = static_cast<T>(0x1p62);
  for (const Row& row : {Row{3, 0, 0}, Row{3, 2, 2}, Row{3, T(1.5), 2}, Row{3, T(1.4375), 1}, Row{3, T(-0.25), 0},
                         Row{3, -7, 0}, Row{4, 12, 12}, Row{4, 10, 10}, Row{4, 9, 9}, Row{100, 0, 0},
                         Row{INT32_MAX, 5, 5}, Row{0, 7, 7}, Row{-3, 8, 8}, Row{INT32_MIN, 9, 9}, Row{3, kNaN<T>, 0},
                         Row{3, -kInf<T>, 0}, Row{3, kInf<T>, far}, Row{3, kHuge<T>, std::min(kHuge<T>, far)}}) {
    SCOPED_TRACE(::testing::Message() << row.factor << ' ' << row.offset);
    std::vector<T> kept, kept_pairs;
    Vec<T> in{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, out{1, 2}, offset{row.offset, 7, 7}, pairs = noise<T>(10, true), out_pairs;
    T next = row.first;
    for (const T step = static_cast<T>(std::max(row.factor, 1)); next < 10; next += step) {
      const size_t k = static_cast<size_t>(next);
      kept.push_back(next);
      kept_pairs.insert(kept_pairs.end(), {pairs[2 * k], pairs[2 * k + 1]});
    }
    Vec<T> offset_pair = Vec<T>::pairs({{row.offset, 5}});  // its imaginary part means nothing
    in->delta = T(0.5);
    EXPECT_EQ(deci(in.get(), out.get(), row.factor, offset.get()), 0);
    EXPECT_EQ(deci(pairs.get(), out_pairs.get(), row.factor, offset_pair.get()), 0);
    EXPECT_TRUE(exactly(out, kept) && exactly(out_pairs, kept_pairs));
    EXPECT_TRUE(exactly(offset, {next - 10}) && exactly(offset_pair, {next - 10, 0}));
    EXPECT_TRUE(out->delta == T(0.5) * static_cast<T>(std::max(row.factor, 1)) && offset->delta == T(0.5));
    offset[0] = row.offset;  // the output may be the offset, or the input
    EXPECT_EQ(deci(in.get(), offset.get(), row.factor, offset.get()), 0);
    EXPECT_EQ(deci(pairs.get(), pairs.get(), row.factor, Vec<T>{row.offset}.get()), 0);
    EXPECT_TRUE(exactly(offset, kept) && exactly(pairs, kept_pairs));
  }
}

TYPED_TEST(Decimation, BlocksOfAnySizesKeepTheStep) {
  using T = TypeParam;
  for (const int32_t factor : {1, 2, 7, 64}) {
    Vec<T> in = noise<T>(900, factor == 7), whole;
    const auto run = [&](Vec<T>& x, Vec<T>& y, Vec<T>& s) { return deci(x.get(), y.get(), factor, s.get()); };
    EXPECT_EQ(deci(in.get(), whole.get(), factor, static_cast<Record<T>*>(nullptr)), 0);
    EXPECT_TRUE(exactly(whole, in_blocks(in, 40, 5, run)));
  }
}

}  // namespace
}  // namespace sigvex_test
