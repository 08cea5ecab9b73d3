#include <numeric>

#include "file/temporary_stream.h"

namespace sigvex_test::text_writers_test {

TWINS(f, fwrite2, fwrite_ascii);

template <class T> std::string written(const Vec<T>& v, uint32_t flags) {
  Stream stream;
  EXPECT_EQ(fwrite2(v, stream, flags), 0);
  return stream.text();
}

constexpr uint32_t kNoHeader = DSP_FILE_NO_HEADER, kNoData = DSP_FILE_NO_DATA;

SUITE_OF_BOTH(TextWriters);

TEST_BOTH(TextWriters, EveryFormatOfARealAndAComplexVectorByteForByte) {
  const bool wide = sizeof(T) == 8;
  Vec<T> real{T(0.1), -3, T(1e-7)}, complex = Vec<T>::pairs({{1, 2}, {T(-0.0), kInf<T>}});
  real->delta = T(0.25);
  complex->delta = 2;
  complex->complex = 7;  // any flag but 0 is complex, and written as it stands
  const std::string type = std::string("\n#DSP type = ") + (wide ? "8" : "4") + "\n#DSP delta = ";
  struct Row {
    uint32_t format;
    const Vec<T>& v;
    std::string header, data, end;
  };
  const std::string ascii = "#DSP ASCII data from sigvex package\n#DSP points = ";
  const std::string title = "\nTrcTtl\tSigvex Data\nXDelta\t", trace = "SigvexData\tTrue\nInputRange\t";
  const std::string plot = "# gnuplot data from sigvex package\nset zeroaxis\n\n", end = "e\n\npause mouse key\n";
  const Row rows[] = {
      {DSP_FILE_ASCII, real, ascii + "3\n#DSP complex = 0" + type + "0.25\n", "0.1\n-3\n1e-07\n", ""},
      {DSP_FILE_ASCII, complex, ascii + "2\n#DSP complex = 7" + type + "2\n", "1 2\n-0 inf\n", ""},
      {DSP_FILE_GNUPLOT, real, plot + "plot '-' title \"Data\" with lines\n\n# X Y\n", "0 0.1\n0.25 -3\n0.5 1e-07\n",
       end},
      {DSP_FILE_GNUPLOT, complex,
       plot + "plot '-' using 1:(sqrt($2**2+$3**2)) title \"Magnitude\" with lines\n"
              "#plot '-' using 1:(atan2($3,$2)) title \"Phase\" with lines\n"
              "#plot '-' using 1:2 title \"Real\" with lines\n"
              "#plot '-' using 1:3 title \"Imag\" with lines\n"
              "#plot '-' using 2:3 title \"Real vs. Imag\" with lines\n"
              "#splot '-' title \"Data\" with lines\n\n# X Yreal Yimag\n",
       "0 1 2\n2 -0 inf\n", end},
      {DSP_FILE_TRACE, real, trace + "4\nInputZoom\tFalse" + title + "0.25\nY\n", "0.1\n-3\n1e-07\n", ""},
      {DSP_FILE_TRACE, complex, trace + (wide ? "1e+50" : "4e+07") + "\nInputZoom\tTrue" + title + "2\nY\n",
       "1\t2\n-0\tinf\n", ""}};
  for (const Row& row : rows) {
    EXPECT_EQ(written(row.v, row.format), row.header + row.data + row.end);
    EXPECT_EQ(written(row.v, row.format | kNoHeader), row.data);
    EXPECT_EQ(written(row.v, row.format | kNoData), row.header);
    EXPECT_EQ(written(row.v, row.format | kNoHeader | kNoData), "");
  }
  Stream plain;
  EXPECT_EQ(fwrite_ascii(real, plain), 0);
  EXPECT_EQ(plain.text(), rows[0].header + rows[0].data);
}

TEST_BOTH(TextWriters, SummaryShowsThirtyTwoPointsAndWholeNumbersOfOrdinarySize) {
  std::vector<T> ramp(12000);
  std::string shown = "1";
  for (int k = 2; k <= 32; ++k) shown.append(" ").append(std::to_string(k));
  std::iota(ramp.begin(), ramp.end(), T(1));
  EXPECT_EQ(written(Vec<T>(ramp), DSP_FILE_SUMMARY), "[12000/1] " + shown + " ...\n");
  ramp.resize(32);
  EXPECT_EQ(written(Vec<T>(ramp), DSP_FILE_SUMMARY), "[32/1] " + shown + "\n");
  Vec<T> edges{9998.5,     9999, 9999.5,  -9999,   12345.5, -123456.78F, T(999999936),
               1000000000, 2e9F, kNaN<T>, kInf<T>, -0.0,    1e-9F};
  EXPECT_EQ(written(edges, DSP_FILE_SUMMARY | kNoHeader),
            "9998 9999 10000 -9999 12346 -123457 999999936 1e+09 2e+09 nan inf -0 1e-09\n");
  Vec<T> pairs = Vec<T>::pairs({{1, 2}, {3, 4}}), empty;
  pairs->delta = T(0.5);
  empty->points = -7;
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY), "[2/0.5] 1,2 3,4\n");
  EXPECT_EQ(written(pairs, DSP_FILE_SUMMARY | kNoData | kNoHeader), "\n");
  EXPECT_EQ(written(empty, DSP_FILE_SUMMARY), "[-7/1]\n");
}

TEST_BOTH(TextWriters, DisplayRangeIsTheNextOfOneTwoFourFiveTen) {
  const auto range = [](const Vec<T>& v) {
    const std::string text = written(v, DSP_FILE_TRACE | kNoData), from = text.substr(text.find("Range\t") + 6);
    return from.substr(0, from.find('\n'));
  };
  std::string ranges = range({}) + range({-3, 1}) + range({0, 3, 4, 3, 0});
  EXPECT_EQ(ranges + range({0, T(3.6), 4, T(3.8), 0}), "1445");  // the parabola through the last rises above 4
  for (const T peak : {T(0), kNaN<T>, T(0.3), T(7), 5 * (1 + 4 * kEps<T>), 5 * (1 + 40 * kEps<T>), T(1000), T(-20),
                       T(0.045), -kInf<T>}) {
    ranges.append(" ").append(range({peak}));
  }
  EXPECT_EQ(ranges, "144 1 1 0.4 10 5 10 1000 20 0.05 " + std::string(sizeof(T) == 8 ? "1e+100" : "1e+15"));
}

}  // namespace sigvex_test::text_writers_test
