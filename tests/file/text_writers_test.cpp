#include <cstdio>
#include <string>

#include "file/temporary_stream.h"

namespace sigvex_test {
namespace {

TWIN(f, fwrite2);
TWIN(f, fwrite_ascii);
TWIN(, lib_alloc);

template <class T> std::string written(const Vec<T>& v, uint32_t flags) {
  Stream stream;
  EXPECT_EQ(fwrite2(v.operator->(), stream.get(), flags), 0);
  return stream.text();
}

constexpr uint32_t kNoHeader = DSP_FILE_NO_HEADER, kNoData = DSP_FILE_NO_DATA;

template <class T> struct TextWriters : ::testing::Test {};
TYPED_TEST_SUITE(TextWriters, Precisions);

TYPED_TEST(TextWriters, EveryFormatOfARealAndAComplexVectorByteForByte) {
  using T = TypeParam;
  const bool wide = sizeof(T) == 8;
  Vec<T> real{T(0.1), -3, T(1e-7)}, complex = Vec<T>::pairs({{1, 2}, {T(-0.0), kInf<T>}});
  real->delta = T(0.25);
  complex->delta = 2;
  complex->complex = 7;  // any flag but 0 is complex, and written as it stands
  const std::string type = wide ? "8" : "4";
  const std::string magnitude = "plot '-' using 1:(sqrt($2**2+$3**2)) title \"Magnitude\" with lines\n";
  struct Row {
    uint32_t format;
    const Vec<T>& v;
    std::string header, data, end;
  };
  const Row rows[] = {
      {DSP_FILE_ASCII, real,
       "#DSP ASCII data from sigvex package\n#DSP points = 3\n#DSP complex = 0\n#DSP type = " + type +
           "\n#DSP delta = 0.25\n",
       "0.1\n-3\n1e-07\n", ""},
      {DSP_FILE_ASCII, complex,
       "#DSP ASCII data from sigvex package\n#DSP points = 2\n#DSP complex = 7\n#DSP type = " + type +
           "\n#DSP delta = 2\n",
       "1 2\n-0 inf\n", ""},
      {DSP_FILE_GNUPLOT, real,
       "# gnuplot data from sigvex package\nset zeroaxis\n\nplot '-' title \"Data\" with lines\n\n# X Y\n",
       "0 0.1\n0.25 -3\n0.5 1e-07\n", "e\n\npause mouse key\n"},
      {DSP_FILE_GNUPLOT, complex,
       "# gnuplot data from sigvex package\nset zeroaxis\n\n" + magnitude +
           "#plot '-' using 1:(atan2($3,$2)) title \"Phase\" with lines\n"
           "#plot '-' using 1:2 title \"Real\" with lines\n"
           "#plot '-' using 1:3 title \"Imag\" with lines\n"
           "#plot '-' using 2:3 title \"Real vs. Imag\" with lines\n"
           "#splot '-' title \"Data\" with lines\n\n# X Yreal Yimag\n",
       "0 1 2\n2 -0 inf\n", "e\n\npause mouse key\n"},
      {DSP_FILE_TRACE, real,
       "SigvexData\tTrue\nInputRange\t4\nInputZoom\tFalse\nTrcTtl\tSigvex Data\nXDelta\t0.25\nY\n", "0.1\n-3\n1e-07\n",
       ""},
      {DSP_FILE_TRACE, complex,
       "SigvexData\tTrue\nInputRange\t" + std::string(wide ? "1e+50" : "4e+07") +
           "\nInputZoom\tTrue\nTrcTtl\tSigvex Data\nXDelta\t2\nY\n",
       "1\t2\n-0\tinf\n", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(written(row.v, row.format), row.header + row.data + row.end);
    EXPECT_EQ(written(row.v, row.format | kNoHeader), row.data);
    EXPECT_EQ(written(row.v, row.format | kNoData), row.header);
    EXPECT_EQ(written(row.v, row.format | kNoHeader | kNoData), "");
  }
  Stream ascii;
  EXPECT_EQ(fwrite_ascii(real.operator->(), ascii.get()), 0);
  EXPECT_EQ(ascii.text(), rows[0].header + rows[0].data);
}

TYPED_TEST(TextWriters, SummaryShowsThirtyTwoPointsAndWholeNumbersOfOrdinarySize) {
  using T = TypeParam;
  std::vector<T> ramp(40);
  std::string shown;
  for (size_t k = 0; k < ramp.size(); ++k) {
    ramp[k] = static_cast<T>(k + 1);
    if (k < 32) shown.append(k > 0 ? " " : "").append(std::to_string(k + 1));
  }
  EXPECT_EQ(written(Vec<T>(ramp), DSP_FILE_SUMMARY), "[40/1] " + shown + " ...\n");
  ramp.resize(32);
  EXPECT_EQ(written(Vec<T>(ramp), DSP_FILE_SUMMARY), "[32/1] " + shown + "\n");

  Vec<T> edges{9998.5,     9999, 9999.5,  -9999,   12345.5, -123456.78F, T(999999936),
               1000000000, 2e9F, kNaN<T>, kInf<T>, -0.0,    1e-9F};
  EXPECT_EQ(written(edges, DSP_FILE_SUMMARY | kNoHeader),
            "9998 9999 10000 -9999 12346 -123457 999999936 1e+09 2e+09 nan inf -0 1e-09\n");
  Vec<T> pairs = Vec<T>::pairs({{1, 2}, {3, 4}}), empty;
  pairs->delta = T(0.5);
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY), "[2/0.5] 1,2 3,4\n");
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY | kNoHeader), "1,2 3,4\n");
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY | kNoData), "[2/0.5] \n");
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY | kNoData | kNoHeader), "\n");
  EXPECT_EQ(written(empty, DSP_FILE_SUMMARY), "[0/1]\n");
  empty->points = -7;
  EXPECT_EQ(written(empty, DSP_FILE_SUMMARY), "[-7/1]\n");
  EXPECT_EQ(written(empty, DSP_FILE_ASCII | kNoHeader), "");
  std::vector<T> long_vector(12000);
  EXPECT_EQ(written(Vec<T>(long_vector), DSP_FILE_SUMMARY | kNoData), "[12000/1] \n");
}

TYPED_TEST(TextWriters, DisplayRangeIsTheNextOfOneTwoFourFiveTen) {
  using T = TypeParam;
  const T eps = kEps<T>;
  const char* const huge = sizeof(T) == 8 ? "1e+100" : "1e+15";
  const std::pair<Vec<T>, const char*> rows[] = {
      {{-3, 1}, "4"},
      {{T(0.3)}, "0.4"},
      {{7}, "10"},
      {{0, 0}, "1"},
      {{5 * (1 + 4 * eps)}, "5"},
      {{5 * (1 + 40 * eps)}, "10"},
      {{}, "1"},
      {{kNaN<T>}, "1"},
      {{1000}, "1000"},
      {{-20}, "20"},
      {{T(0.045)}, "0.05"},
      {{0, 3, 4, 3, 0}, "4"},
      // The parabola through the three in the middle rises above 4.
      {{0, T(3.6), 4, T(3.8), 0}, "5"},
      {Vec<T>::pairs({{3, 4}}), "5"},
      {{kInf<T>}, huge},
      {{-kInf<T>, 1}, huge},
  };
  for (const auto& [v, range] : rows) {
    const std::string expected = std::string("InputRange\t") + range + "\n";
    EXPECT_NE(written(v, DSP_FILE_TRACE | kNoData).find(expected), std::string::npos) << range;
  }
}

TYPED_TEST(TextWriters, ATraceWithoutItsRangeEndsBehindTheFirstLine) {
  using T = TypeParam;
  const Vec<T> v{1, 2};
  Stream stream;
  lib_alloc.of<T>()([](Record<T>* record) { return record->data = nullptr, 0; }, nullptr);
  EXPECT_EQ(fwrite2(v.operator->(), stream.get(), DSP_FILE_TRACE | 0U), -1);
  EXPECT_EQ(fwrite2(v.operator->(), stream.get(), DSP_FILE_TRACE | kNoHeader), 0);
  lib_alloc.of<T>()(nullptr, nullptr);
  EXPECT_EQ(fwrite2(v.operator->(), stream.get(), DSP_FILE_TRACE | 1U), -1);  // format 5
  EXPECT_EQ(stream.text(), "SigvexData\tTrue\n1\n2\n");
}

}  // namespace
}  // namespace sigvex_test
