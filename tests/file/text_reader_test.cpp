#include <random>

#include "file/temporary_stream.h"

namespace sigvex_test::text_reader_test {

TWIN(f, fread);

SUITE_OF_BOTH(TextReader);

TEST_BOTH(TextReader, HeaderLinesValuesAndWhatStaysInTheStream) {
  struct Row {
    std::string text;
    int32_t status;
    std::vector<T> expected;
    int32_t complex = 0;
    T delta = 1;
    std::string rest = "";
  };
  const std::string filler(250, 'c');
  const Row rows[] = {
      // clang-format off
      {"", 0, {}}, {" \n\t\v\f\r\n", 1, {}}, {"1 2\n+3.", 1, {1, 2, 3}}, {"#DSP complex = 1\n1 2 3", 1, {1, 2, 3, 0}, 1},
      {"#DSP points = 4\n1 2 3", -1, {1, 2, 3}}, {"#DSP points = 4\n1 2 3 4 5", 1, {1, 2, 3, 4}, 0, 1, " 5"},
      {"#DSP points = 1\n#DSP complex = -7\n1,", -1, {1, 0}, 1},
      {"#DSP points=2\n#DSPcomplex=1zz\n#DSP  delta\t=\t.5e0s\n1 2 3 4\n", 1, {1, 2, 3, 4}, 1, T(0.5), "\n"},
      {"1 #DSP delta = 0x1A\n#dsp delta = 3\n# #DSP delta = 4\n2", 1, {1, 2}, 0, 26},
      {"#DSP delta = 3", 1, {}, 0, 1},  // the last character of a comment line is its line end
      {"#" + filler + "\n1\n#" + filler + filler + "\n2", 1, {1, 2}},
      {"#DSP delta = " + std::string(238, ' ') + "25\n", 1, {}, 0, 25},
      {"#DSP delta = " + std::string(240, ' ') + "25\n", 1, {}, 0, 2},  // one character too far to the right
      {"#DSP points = -3\n#DSP delta = 2\n#DSP complex = 1\n7", 1, {}, 1, 2, "7"},
      {"#DSP points = +-3\n#DSP complex = x\n#DSP delta = x\n8", 1, {8}},
      {"#DSP points = 99999999999999999999\n8", -1, {8}}, {"1 2 3\n#DSP points = 2\n4", -1, {1, 2, 3}},
      {"0x1A -0x1A 0xFFFFFFFF 0x1.8 0.0e5xff", 1, {26, -26, -1, 1, T(0.8), 255}},
      {"0x80000000 -0x80000000 0x1F00000002 0x10000000000000000", 1, {-0x1p31F, 0x1p31F, 2, -1}},
      {"-0 1e999 -1e999 1e-999 INF -infinity 1e 2e+", 1, {-0.0F, kInf<T>, -kInf<T>, 0, kInf<T>, -kInf<T>, 1, 2}},
      // Halfway between two doubles but for the last of many digits; rounded to float in one step.
      {"9007199254740993." + std::string(5000, '0') + "1 " + std::string(5000, '0') + "1e-1 1.00000017881393432617187499",
       1, {T(9007199254740994.0), T(0.1), T(sizeof(T) == 8 ? 1.00000017881393432617 : 1.00000011920928955078125)}}};
  // clang-format on
  for (const Row& row : rows) {
    for (const size_t room : {0, 1, 7, 4096}) {  // the stream's own buffer, whose end may cut any number
      std::vector<char> buffer(room + 1);
      Stream stream(row.text);
      std::setvbuf(stream, buffer.data(), room ? _IOFBF : _IONBF, room);
      Vec<T> v{9, 9};
      v->delta = 7;
      EXPECT_EQ(fread(v, stream), row.status) << row.text;
      EXPECT_TRUE(exactly(v, row.expected)) << row.text;
      EXPECT_TRUE(v->complex == row.complex && (row.status == 0 || v->delta == row.delta)) << row.text;
      EXPECT_TRUE(row.status != 1 || stream.rest() == row.rest) << row.text;
    }
  }
  for (const char* malformed :
       {"x", "1 0X1", "0x", "0xg", "0x-1", "-", "+-1", ".", ".e1", "1,2", "infi", "na", "nan(1)", "1\xEB"}) {
    Stream stream(malformed);
    Vec<T> v;
    EXPECT_EQ(fread(v, stream), -1) << malformed;
  }
}

int c_library(const char* text, double& x, int& used) { return std::sscanf(text, "%lg%n", &x, &used); }
int c_library(const char* text, float& x, int& used) { return std::sscanf(text, "%g%n", &x, &used); }

// Every number the C library's own conversion takes, and no other, with the same value and the same end; every second
// one is a plain decimal, and what follows it leaves room for a reader that looks at many characters at once.
TEST_BOTH(TextReader, NumbersAreThoseOfTheCLibrary) {
  std::mt19937 random(1);
  for (int round = 0; round < 8000; ++round) {
    const bool plain = round % 2 == 0;
    const std::string alphabet = plain ? "0123456789" : "0123456789012345678901234567890+-..eEinfaty";
    std::string text(plain && round % 4 == 0 ? "-" : "");
    for (size_t n = 1 + random() % 24, point = plain ? random() % 8 : n; n > 0; --n) {
      text += alphabet[random() % alphabet.size()];
      if (point-- == 0) text += '.';
    }
    T expected = 0;
    int used = 0;
    const bool valid = c_library((text + " ").c_str(), expected, used) == 1;
    const std::string blanks(64, ' ');
    Stream stream("#DSP points = 1\n" + text + blanks);
    Vec<T> v;
    EXPECT_EQ(fread(v, stream), valid ? 1 : -1) << text;
    if (!valid) continue;
    EXPECT_TRUE(exactly(v, {expected})) << text;
    EXPECT_EQ(stream.rest(), text.substr(static_cast<size_t>(used)) + blanks) << text;
  }
}

TEST_BOTH(TextReader, StorageGrowsByOneThousandAndTwentyFourPoints) {
  for (const int32_t n : {0, 1, 1023, 1024, 1025, 5000}) {
    std::string text = "#\n";
    std::vector<T> expected;
    for (int32_t k = 0; k < n; ++k) text += std::to_string(k) + "\n", expected.push_back(static_cast<T>(k));
    Stream stream(text);
    Vec<T> v;
    EXPECT_EQ(fread(v, stream), 1);
    EXPECT_TRUE(exactly(v, expected) && v->allocated == (n + 1023) / 1024 * 1024);
  }
}

}  // namespace sigvex_test::text_reader_test
