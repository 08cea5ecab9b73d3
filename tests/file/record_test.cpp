#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <numeric>
#include <random>

#include "file/temporary_stream.h"

namespace sigvex_test::record_test {

TWINS(f, fread, fwrite, fwrite2);

constexpr uint32_t kMagic = 0xEB0330BE, kOldDouble = 0xEB0110BE, kOldFloat = 0xEB0220BE;

// A record as another machine or another precision may have written it.
template <class S>
std::string image(uint32_t magic, bool swapped, int32_t points, int32_t complex, S delta,
                  const std::vector<S>& values) {
  std::string bytes;
  const auto add = [&](auto value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    if (swapped) std::reverse(raw, raw + sizeof value);
    bytes.append(raw, sizeof value);
  };
  add(magic);
  if (magic == kMagic)
    add(static_cast<uint32_t>((swapped ? 0xABCD00 : 0x400) + sizeof(S)));  // only the low byte counts
  add(points), add(complex), add(delta);
  for (const S value : values) add(value);
  return bytes;
}

SUITE_OF_BOTH(Records);

TEST_BOTH(Records, EveryKindInEitherByteOrderIsReadIntoThisPrecision) {
  const std::vector<double> wide{1, -0.0, 0.1, kNaN<double>};
  const std::vector<float> narrow{1, -0.0F, 0.1F, kInf<float>};
  const auto check = [](const auto& values, uint32_t magic, bool swapped, int32_t points, int32_t complex) {
    const auto delta = static_cast<std::decay_t<decltype(values[0])>>(0.3);
    Stream stream(image(magic, swapped, points, complex, delta, values) + "next");
    Vec<T> v{9};
    EXPECT_EQ(fread(v, stream), 1);
    EXPECT_TRUE(exactly(v, std::vector<T>(values.begin(), values.end())));
    EXPECT_TRUE(v->complex == complex && v->delta == static_cast<T>(delta) && stream.rest() == "next");
  };
  for (const bool swapped : {false, true}) {
    for (const int32_t complex : {0, 1, -2}) {
      for (const uint32_t magic : {kMagic, kOldDouble}) check(wide, magic, swapped, complex ? 2 : 4, complex);
      for (const uint32_t magic : {kMagic, kOldFloat}) check(narrow, magic, swapped, complex ? 2 : 4, complex);
    }
    for (const int32_t points : {0, -5}) check(std::vector<double>(), kMagic, swapped, points, 1);  // none
  }
}

TEST_BOTH(Records, WrittenBytesAreTheStatedOnes) {
  Vec<T> v = Vec<T>::pairs({{1, -2}, {kNaN<T>, kInf<T>}});
  v->delta = T(0.3);
  const std::string header = image<T>(kMagic, false, 2, 1, v->delta, {});
  const std::string data = image(kMagic, false, 2, 1, v->delta, v.samples()).substr(header.size());
  const std::pair<uint32_t, std::string> rows[] = {
      {0, header + data}, {DSP_FILE_NO_HEADER, data}, {DSP_FILE_NO_DATA, header}, {0x300, ""}};
  for (const auto& [flags, bytes] : rows) {
    Stream stream;
    EXPECT_EQ(fwrite2(v, stream, flags), 0);
    EXPECT_EQ(stream.text(), bytes);
  }
  Stream stream;
  EXPECT_EQ(fwrite(v, stream), 0);
  v->points = -1;
  EXPECT_EQ(fwrite(v, stream), 0);
  EXPECT_EQ(stream.text(), header + data + image<T>(kMagic, false, -1, 1, v->delta, {}));
}

// Reads whatever the bytes are; the record must then be whole: as much storage as it says, all of it readable.
template <class T> int32_t read_safely(const std::string& bytes, Vec<T>& v) {
  Stream stream(bytes);
  const int32_t status = fread(v, stream);
  EXPECT_TRUE(v->allocated >= static_cast<int64_t>(v.size()) && v->allocated <= 1 << 21);  // nothing here backs more
  EXPECT_EQ(v.samples().size(), v.size());
  EXPECT_TRUE(status == -1 || status == 1 || (status == 0 && v->points == 0));
  return status;
}

TEST_BOTH(Records, CutAnywhereTheyKeepWhatCameOrNothing) {
  for (const bool swapped : {false, true}) {
    for (const std::string& bytes : {image<double>(kMagic, swapped, 2, 1, 0.5, {1, 2, 3, 4}),
                                     image<float>(kOldFloat, swapped, 2, 1, 0.5F, {1, 2, 3, 4})}) {
      const size_t width = bytes.size() > 40 ? 8 : 4, header = bytes.size() - 4 * width, form = header - width;
      for (size_t n = 0; n < bytes.size(); ++n) {
        Vec<T> v{9, 9, 9};
        EXPECT_EQ(read_safely<T>(bytes.substr(0, n), v), n == 0 ? 0 : -1) << n;
        EXPECT_TRUE(v->points == (n < form - 4 ? 0 : 2) && v->complex == (n >= form)) << n;
        EXPECT_EQ(v->delta, n < header ? T(1) : T(0.5)) << n;
        for (size_t k = 0; k < v.size(); ++k) EXPECT_EQ(v[k], n < header + (k + 1) * width ? T(0) : T(k + 1)) << n;
      }
    }
  }
}

TEST_BOTH(Records, AClaimedCountIsBelievedOnlyAsFarAsDataArrive) {
  constexpr int32_t kTrusted = 1 << 20;
  Vec<T> v{1, 2, 3}, grown;
  for (const int32_t claimed : {INT32_MAX, kTrusted + 1}) {
    for (const int32_t complex : {0, 1}) {
      EXPECT_EQ(read_safely<T>(image<double>(kMagic, false, claimed, complex, 1, {1}), v), -1);
      EXPECT_TRUE(v->data == nullptr && v->points == 0);
    }
  }
  EXPECT_EQ(read_safely<T>(image<float>(kMagic, true, kTrusted, 0, 1, {7}), v), -1);
  EXPECT_TRUE(v->points == kTrusted && v[0] == 7 && v[1] == 0);
  std::vector<T> many(3 * kTrusted + 5);
  std::iota(many.begin(), many.end(), T(0));
  Stream stream(image<T>(kMagic, true, static_cast<int32_t>(many.size()), 0, 1, many));
  EXPECT_EQ(fread(grown, stream), 1);
  EXPECT_TRUE(exactly(grown, many) && grown->allocated == static_cast<int32_t>(many.size()));
}

TEST_BOTH(Records, DamagedBytesAndCutTextNeverDamageTheRecord) {
  std::mt19937 random(2);
  Stream text;
  EXPECT_EQ(fwrite2(Vec<T>::pairs({{1, 2}, {T(0.1), -4}}), text, DSP_FILE_ASCII), 0);
  const std::string seeds[] = {image<double>(kMagic, false, 2, 0, 1, {1, 2}),
                               image<float>(kMagic, true, 1, 1, 1, {1, 2}), text.text()};
  for (unsigned round = 0; round < 3000; ++round) {
    std::string bytes = seeds[round % 3], cut = seeds[2].substr(0, round % seeds[2].size());
    for (int k = 0; k < 3; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
    for (const std::string& input : {bytes, cut}) read_safely<T>(input, *std::make_unique<Vec<T>>());
  }
}

TEST_BOTH(Records, BinaryAndTextFollowOneAnother) {
  Stream stream;
  Vec<T> a{1, 2}, b = Vec<T>::pairs({{3, -0.0}}), none, back;
  none->delta = T(0.5);
  const std::pair<Vec<T>&, uint32_t> records[] = {{a, DSP_FILE_BINARY}, {none, DSP_FILE_ASCII}, {none, DSP_FILE_BINARY},
                                                  {b, DSP_FILE_ASCII},  {a, DSP_FILE_ASCII},    {none, DSP_FILE_ASCII},
                                                  {b, DSP_FILE_ASCII},  {b, DSP_FILE_BINARY},   {a, DSP_FILE_ASCII}};
  for (const auto& [v, format] : records) EXPECT_EQ(fwrite2(v, stream, format), 0);
  std::rewind(stream);
  for (const auto& [v, format] : records) {
    EXPECT_EQ(fread(back, stream), 1);
    EXPECT_TRUE(exactly(back, v.samples()) && back->delta == v->delta && back->complex == v->complex);
  }
  for (const int32_t status : {1, 0}) {  // the last line end, and behind it
    EXPECT_TRUE(fread(back, stream) == status && back->points == 0);
  }
}

TEST(Streams, StandardNamesAndRefusals) {
  const Vec<double> v{1};
  Vec<double> read;
  EXPECT_TRUE(dspf_fopen("-", "rb") == stdin && dspff_fopen("-", "w+b") == stdout && !dspf_fopen("-", "a"));
  EXPECT_TRUE(!dspf_fopen(nullptr, "r") && !dspf_fopen("-", nullptr) && !dspf_fopen("no such folder/file", "r"));
  EXPECT_TRUE(dspf_fclose(stdin) == 0 && dspff_fclose(stdout) == 0 && dspf_fclose(nullptr) == -1);
  EXPECT_GE(fcntl(STDOUT_FILENO, F_GETFD), 0);  // still open
  FILE *const null = dspf_fopen("/dev/null", "r"), *const full = dspf_fopen("/dev/full", "w");
  std::setvbuf(full, nullptr, _IONBF, 0);
  EXPECT_TRUE(dspf_fread(read, null) == 0 && dspf_fwrite(v, null) == -1 && dspf_fwrite2(v, null, 5) == -1);
  EXPECT_EQ(dspf_fwrite(v, full), -1);
  for (uint32_t format = DSP_FILE_ASCII; format <= DSP_FILE_TRACE; ++format)
    EXPECT_EQ(dspf_fwrite2(v, full, format), 0);
  EXPECT_TRUE(dspf_fclose(null) == 0 && dspf_fclose(full) == 0);
}

}  // namespace sigvex_test::record_test
