#include <cstdio>
#include <string>

#include "file/temporary_stream.h"

namespace sigvex_test {
namespace {

TWIN(f, fread);
TWIN(f, fwrite2);

template <class T> struct TextReader : ::testing::Test {};
TYPED_TEST_SUITE(TextReader, Precisions);

TYPED_TEST(TextReader, HeaderLinesAndValues) {
  using T = TypeParam;
  struct Row {
    const char* text;
    int32_t status;
    std::vector<T> expected;
    int32_t complex = 0;
    T delta = 1;
    const char* rest = "";
  };
  const Row rows[] = {
      {"1 2\n3", 1, {1, 2, 3}},
      {"#DSP complex = 1\n1 2 3", 1, {1, 2, 3, 0}, 1},
      {"#DSP points = 4\n1 2 3", -1, {1, 2, 3}},
      {"#DSP points = 4\n1 2 3 4 5", 1, {1, 2, 3, 4}, 0, 1, " 5"},
      {"#DSP points = 1\n#DSP complex = 7\n1,", -1, {1, 0}, 1},
      {"0x1A -0x1A 0xFFFFFFFF 0x1.8", 1, {26, -26, -1, 1, T(0.8)}},
  };
  for (const Row& row : rows) {
    Stream stream(row.text);
    Vec<T> v{9, 9};
    EXPECT_EQ(fread(v.get(), stream.get()), row.status) << row.text;
    EXPECT_TRUE(exactly(v, row.expected)) << row.text;
    EXPECT_EQ(v->complex, row.complex) << row.text;
    EXPECT_EQ(v->delta, row.delta) << row.text;
    if (row.status == 1) {
      EXPECT_EQ(stream.rest(), row.rest) << row.text;
    }
  }
}

}  // namespace
}  // namespace sigvex_test
