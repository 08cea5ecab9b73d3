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
    T offset;
    std::vector<T> kept;
    T next;
  };
  const T far = static_cast<T>(0x1p62);
  const Row rows[] = {{3, 0, {0, 3, 6, 9}, 2},
                      {3, 2, {2, 5, 8}, 1},
                      {3, T(1.5), {2, 5, 8}, 1},
                      {3, T(1.4375), {1, 4, 7}, 0},
                      {3, T(-0.25), {0, 3, 6, 9}, 2},
                      {3, -7, {0, 3, 6, 9}, 2},
                      {4, 12, {}, 2},
                      {4, 10, {}, 0},
                      {4, 9, {9}, 3},
                      {100, 0, {0}, 90},
                      {INT32_MAX, 5, {5}, static_cast<T>(INT32_MAX - 5)},
                      {0, 7, {7, 8, 9}, 0},
                      {-3, 8, {8, 9}, 0},
                      {INT32_MIN, 9, {9}, 0},
                      {3, kNaN<T>, {0, 3, 6, 9}, 2},
                      {3, -kInf<T>, {0, 3, 6, 9}, 2},
                      {3, kInf<T>, {}, far - 10},
                      {3, kHuge<T>, {}, std::min(kHuge<T>, far) - 10}};
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::Message() << row.factor << ' ' << row.offset);
    Vec<T> in{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, out{1, 2}, offset{row.offset, 7, 7}, pairs = noise<T>(10, true), none;
    in->delta = T(0.5);
    EXPECT_EQ(deci(in.get(), out.get(), row.factor, offset.get()), 0);
    EXPECT_TRUE(exactly(out, row.kept));
    EXPECT_EQ(out->delta, T(0.5) * static_cast<T>(std::max(row.factor, 1)));
    EXPECT_TRUE(exactly(offset, {row.next}));
    EXPECT_EQ(offset->delta, T(0.5));
    EXPECT_TRUE(exactly(in, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    Vec<T> wide = Vec<T>::pairs({{row.offset, 5}});  // its imaginary part means nothing
    EXPECT_EQ(deci(pairs.get(), none.get(), row.factor, wide.get()), 0);
    EXPECT_TRUE(exactly(wide, {row.next, 0}));
    ASSERT_EQ(none.size(), 2 * row.kept.size());
    for (size_t k = 0; k < row.kept.size(); ++k) EXPECT_EQ(none.at(k), pairs.at(static_cast<size_t>(row.kept[k])));
  }
}

TYPED_TEST(Decimation, BlocksOfAnySizesKeepTheStep) {
  using T = TypeParam;
  for (const int32_t factor : {1, 2, 7, 64}) {
    Vec<T> in = noise<T>(900, factor == 7), whole;
    EXPECT_EQ(deci(in.get(), whole.get(), factor, static_cast<Record<T>*>(nullptr)), 0);
    EXPECT_TRUE(exactly(whole, in_blocks(in, 40, 5, [&](Vec<T>& x, Vec<T>& y, Vec<T>& s) {
                          return deci(x.get(), y.get(), factor, s.get());
                        })));
  }
}

TYPED_TEST(Decimation, TheOutputMayBeTheInputOrTheOffset) {
  using T = TypeParam;
  Vec<T> in{0, 1, 2, 3, 4}, offset{1}, null_in;
  Record<T>* const null = nullptr;
  EXPECT_EQ(deci(in.get(), in.get(), 2, null), 0);
  EXPECT_TRUE(exactly(in, {0, 2, 4}));
  EXPECT_EQ(in->delta, T(2));
  EXPECT_EQ(deci(in.get(), offset.get(), 2, offset.get()), 0);
  EXPECT_TRUE(exactly(offset, {2}));
  EXPECT_EQ(deci(in.get(), null_in.get(), 1, in.get()), 0);  // the first sample, 0, is the offset
  EXPECT_TRUE(exactly(null_in, {0, 2, 4}));
  EXPECT_TRUE(exactly(in, {0}));
  in->points = -3;
  EXPECT_EQ(deci(in.get(), offset.get(), 2, null), 0);
  EXPECT_EQ(offset->points, 0);
  EXPECT_EQ(deci(null, offset.get(), 2, null), -1);
  EXPECT_EQ(deci(in.get(), null, 2, null), -1);
}

}  // namespace
}  // namespace sigvex_test
