#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
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

// Reads whatever the bytes are; the record must then be whole: as much storage as it says, all of it readable.
template <class T> int32_t read_safely(const std::string& bytes, Vec<T>& v) {
  Stream stream(bytes);
  const int32_t status = fread(v.get(), stream.get());
  EXPECT_GE(v->allocated, static_cast<int64_t>(v.size()));
  EXPECT_LE(v->allocated, 1 << 21);  // nothing here backs more
  EXPECT_EQ(v.samples().size(), v.size());
  EXPECT_TRUE(status == -1 || status == 1 || (status == 0 && v->points == 0));
  return status;
}

TYPED_TEST(Records, CutAnywhereTheyKeepWhatCameOrNothing) {
  using T = TypeParam;
  for (const bool swapped : {false, true}) {
    for (const std::string& bytes :
         {image<double>(kMagic, swapped, 2, 1, {1, 2, 3, 4}), image<float>(kOldFloat, swapped, 2, 1, {1, 2, 3, 4})}) {
      const size_t width = bytes.size() > 40 ? 8 : 4, header = bytes.size() - 4 * width, form = header - width;
      for (size_t n = 0; n < bytes.size(); ++n) {
        Vec<T> v{9, 9, 9};
        EXPECT_EQ(read_safely<T>(bytes.substr(0, n), v), n == 0 ? 0 : -1) << n;
        EXPECT_EQ(v->points, n < form - 4 ? 0 : 2) << n;
        EXPECT_EQ(v->complex, n < form ? 0 : 1) << n;
        EXPECT_EQ(v->delta, n < header ? T(1) : width == 8 ? T(0.3) : T(0.3F)) << n;
        for (size_t k = 0; k < v.size(); ++k) EXPECT_EQ(v[k], n < header + (k + 1) * width ? T(0) : T(k + 1)) << n;
      }
    }
  }
  Stream text;
  EXPECT_EQ(fwrite2(Vec<T>{1, 2, 3}.operator->(), text.get(), DSP_FILE_ASCII | 0U), 0);
  const std::string whole = text.text();
  for (size_t n = 0; n < whole.size(); ++n) {
    Vec<T> v;
    read_safely<T>(whole.substr(0, n), v);
  }
}

TYPED_TEST(Records, AClaimedCountIsBelievedOnlyAsFarAsDataArrive) {
  using T = TypeParam;
  constexpr int32_t kTrusted = 1 << 20;
  Vec<T> v{1, 2, 3};
  for (const int32_t claimed : {INT32_MAX, kTrusted + 1}) {
    for (const int32_t complex : {0, 1}) {
      EXPECT_EQ(read_safely<T>(image<double>(kMagic, false, claimed, complex, {1}), v), -1);
      EXPECT_EQ(v->data, nullptr);
      EXPECT_EQ(v->points, 0);
    }
  }
  EXPECT_EQ(read_safely<T>(image<float>(kMagic, true, kTrusted, 0, {7}), v), -1);
  EXPECT_EQ(v->points, kTrusted);
  EXPECT_EQ(v[0], 7);
  EXPECT_EQ(v[1], 0);

  std::vector<T> many(3 * kTrusted + 5);
  for (size_t k = 0; k < many.size(); ++k) many[k] = static_cast<T>(k);
  Stream stream(image<T>(kMagic, true, static_cast<int32_t>(many.size()), 0, many));
  Vec<T> grown;
  EXPECT_EQ(fread(grown.get(), stream.get()), 1);
  EXPECT_TRUE(exactly(grown, many));
  EXPECT_EQ(grown->allocated, static_cast<int32_t>(many.size()));
}

TYPED_TEST(Records, DamagedBytesNeverDamageTheRecord) {
  using T = TypeParam;
  std::mt19937 random(2);
  Stream text;
  EXPECT_EQ(fwrite2(Vec<T>::pairs({{1, 2}, {T(0.1), -4}}).operator->(), text.get(), DSP_FILE_ASCII | 0U), 0);
  const std::string seeds[] = {image<double>(kMagic, false, 2, 0, {1, 2}), image<float>(kMagic, true, 1, 1, {1, 2}),
                               text.text()};
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = seeds[round % 3];
    for (int k = 0; k < 3; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
    Vec<T> v{9};
    read_safely<T>(bytes, v);
  }
}

TYPED_TEST(Records, BinaryAndTextFollowOneAnother) {
  using T = TypeParam;
  Stream stream;
  Vec<T> a{1, 2}, b = Vec<T>::pairs({{3, -0.0}}), none;
  none->delta = T(0.5);
  const std::pair<const Record<T>*, uint32_t> records[] = {
      {a, DSP_FILE_BINARY}, {none, DSP_FILE_ASCII}, {none, DSP_FILE_BINARY}, {b, DSP_FILE_ASCII},
      {a, DSP_FILE_ASCII},  {none, DSP_FILE_ASCII}, {b, DSP_FILE_ASCII},     {b, DSP_FILE_BINARY}};
  for (const auto& [v, format] : records) EXPECT_EQ(fwrite2(v, stream.get(), format), 0);
  std::rewind(stream.get());
  for (const auto& [v, format] : records) {
    Vec<T> back;
    EXPECT_EQ(fread(back.get(), stream.get()), 1);
    EXPECT_EQ(back->delta, v->delta);
    EXPECT_EQ(back->complex, v->complex);
    EXPECT_TRUE(exactly(back, std::vector<T>(v->data, v->data + v->points * (v->complex ? 2 : 1))));
  }
  Vec<T> end{1};
  EXPECT_EQ(fread(end.get(), stream.get()), 0);
  EXPECT_EQ(end->points, 0);
}

TYPED_TEST(Records, AFullDeviceFailsOnlyTheBinaryFormat) {
  using T = TypeParam;
  FILE* const full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  std::setvbuf(full, nullptr, _IONBF, 0);
  const Vec<T> v{1, 2};
  EXPECT_EQ(fwrite(v.operator->(), full), -1);
  for (uint32_t format = DSP_FILE_ASCII; format <= DSP_FILE_TRACE; ++format) {
    EXPECT_EQ(fwrite2(v.operator->(), full, format), 0);
  }
  std::fclose(full);
}

TEST(Streams, StandardNamesAndRefusals) {
  EXPECT_EQ(dspf_fopen("-", "rb"), stdin);
  EXPECT_EQ(dspff_fopen("-", "w+b"), stdout);
  EXPECT_EQ(dspf_fopen("-", "a"), nullptr);
  EXPECT_EQ(dspf_fopen("-", ""), nullptr);
  EXPECT_EQ(dspf_fopen(nullptr, "r"), nullptr);
  EXPECT_EQ(dspf_fopen("-", nullptr), nullptr);
  EXPECT_EQ(dspf_fopen("no such folder/file", "r"), nullptr);
  EXPECT_EQ(dspf_fclose(stdin), 0);
  EXPECT_EQ(dspff_fclose(stdout), 0);
  EXPECT_GE(fcntl(STDOUT_FILENO, F_GETFD), 0);  // still open
  EXPECT_EQ(dspf_fclose(nullptr), -1);
  FILE* const null = dspf_fopen("/dev/null", "r");
  Vec<double> v{1};
  EXPECT_EQ(dspf_fread(v, null), 0);
  EXPECT_EQ(dspf_fwrite(v, null), -1);
  EXPECT_EQ(dspf_fclose(null), 0);
  EXPECT_EQ(dspf_fread(v, nullptr), -1);
  EXPECT_EQ(dspf_fwrite2(nullptr, stdout, 1), -1);
}

}  // namespace
}  // namespace sigvex_test
