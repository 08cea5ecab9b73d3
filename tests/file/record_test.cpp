#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "file/temporary_stream.h"

namespace sigvex_test {
namespace {

TWIN(f, fread);
TWIN(f, fwrite);
TWIN(f, fwrite2);

constexpr uint32_t kMagic = 0xEB0330BE, kOldDouble = 0xEB0110BE, kOldFloat = 0xEB0220BE;

// A record as another machine or another precision may have written it.
struct Image {
  std::string bytes;
  bool swapped = false;

  template <class V> Image& add(V value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    if (swapped) std::reverse(raw, raw + sizeof value);
    bytes.append(raw, sizeof value);
    return *this;
  }
};

template <class S>
std::string image(uint32_t magic, bool swapped, int32_t points, int32_t complex, std::vector<S> values) {
  Image record{.bytes = "", .swapped = swapped};
  record.add(magic);
  if (magic == kMagic) record.add(static_cast<uint32_t>(0xABCD00 + sizeof(S)));  // only the low byte counts
  record.add(points).add(complex).add(S(0.3));
  for (const S value : values) record.add(value);
  return record.bytes;
}

template <class T> struct Records : ::testing::Test {};
TYPED_TEST_SUITE(Records, Precisions);

TYPED_TEST(Records, EveryKindInEitherByteOrderIsReadIntoThisPrecision) {
  using T = TypeParam;
  const auto check = [](const std::string& bytes, int32_t complex, T delta, const std::vector<T>& expected) {
    Stream stream(bytes + "next");
    Vec<T> v{9};
    EXPECT_EQ(fread(v.get(), stream.get()), 1);
    EXPECT_TRUE(exactly(v, expected));
    EXPECT_EQ(v->complex, complex);
    EXPECT_EQ(v->delta, delta);
    EXPECT_EQ(stream.rest(), "next");
  };
  for (const bool swapped : {false, true}) {
    for (const int32_t complex : {0, 1, -2}) {
      const int32_t points = complex ? 2 : 4;
      const std::vector<double> wide{1, -0.0, 0.1, kNaN<double>};
      const std::vector<float> narrow{1, -0.0F, 0.1F, kInf<float>};
      const std::vector<T> from_wide(wide.begin(), wide.end()), from_narrow(narrow.begin(), narrow.end());
      check(image(kMagic, swapped, points, complex, wide), complex, T(0.3), from_wide);
      check(image(kOldDouble, swapped, points, complex, wide), complex, T(0.3), from_wide);
      check(image(kMagic, swapped, points, complex, narrow), complex, T(0.3F), from_narrow);
      check(image(kOldFloat, swapped, points, complex, narrow), complex, T(0.3F), from_narrow);
    }
    check(image<double>(kMagic, swapped, 0, 1, {}), 1, T(0.3), {});
    check(image<double>(kMagic, swapped, -5, 0, {}), 0, T(0.3), {});  // fewer than none is none
  }
}

TYPED_TEST(Records, WrittenBytesAreTheStatedOnesAndReadBack) {
  using T = TypeParam;
  Vec<T> v = Vec<T>::pairs({{1, -2}, {kNaN<T>, kInf<T>}});
  v->delta = T(0.3);
  Image expected;
  expected.add(kMagic).add(static_cast<uint32_t>(0x400 + sizeof(T))).add(int32_t{2}).add(int32_t{1}).add(v->delta);
  const std::string header = expected.bytes;
  for (const T x : v.samples()) expected.add(x);
  const std::string data = expected.bytes.substr(header.size());
  const std::pair<uint32_t, std::string> rows[] = {{0, header + data},
                                                   {DSP_FILE_NO_HEADER, data},
                                                   {DSP_FILE_NO_DATA, header},
                                                   {DSP_FILE_NO_HEADER | DSP_FILE_NO_DATA, ""}};
  for (const auto& [flags, bytes] : rows) {
    Stream stream;
    EXPECT_EQ(fwrite2(v.operator->(), stream.get(), flags), 0);
    EXPECT_EQ(stream.text(), bytes);
  }
  Stream stream;
  EXPECT_EQ(fwrite(v.operator->(), stream.get()), 0);
  v->points = -1;
  EXPECT_EQ(fwrite(v.operator->(), stream.get()), 0);
  v->points = 2;
  EXPECT_EQ(stream.text().size(), 2 * header.size() + data.size());
  std::rewind(stream.get());
  Vec<T> back;
  EXPECT_EQ(fread(back.get(), stream.get()), 1);
  EXPECT_TRUE(exactly(back, v.samples()));
  EXPECT_EQ(fread(back.get(), stream.get()), 1);
  EXPECT_EQ(back->points, -1);
  EXPECT_EQ(fread(back.get(), stream.get()), 0);
  EXPECT_EQ(back->points, 0);
  EXPECT_EQ(fwrite2(v.operator->(), stream.get(), 5U), -1);
}

}  // namespace
}  // namespace sigvex_test
