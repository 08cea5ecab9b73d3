#include <clocale>
#include <cstring>
#include <set>
#include <string>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(, window_from_str);
TWIN(, window_to_str);

struct Named {
  uint32_t type;
  std::vector<const char*> plain;  // the first is the one the type is shown by
};
const Named kPlain[] = {
    {0, {"Uniform", "Rectangular", "None", "P000"}},
    {1, {"Bartlett", "Triangular"}},
    {2, {"Hann", "P110"}},
    {3, {"Hamming", "P100"}},
    {4, {"Blackman"}},
    {5, {"BlackmanHarris3", "Blackman_Harris3", "P200"}},
    {6, {"BlackmanHarris4", "Blackman_Harris4", "P310", "Lowleak"}},
    {7, {"Gausstop", "P400", "Cheby5"}},
    {8, {"Flat4", "P301"}},
    {9, {"FlatTop", "Flattop", "Flat5", "P401"}},
    {10, {"Flat6", "P511"}},
    {11, {"Flat7", "P611"}},
    {12, {"P501"}},
    {13, {"P601"}},
    {14, {"Kaiser70"}},
    {15, {"Kaiser80"}},
    {16, {"Kaiser90"}},
    {17, {"Kaiser100"}},
    {18, {"Kaiser110"}},
    {19, {"Kaiser120"}},
    {20, {"Gauss60"}},
    {21, {"Gauss70"}},
    {22, {"Gauss80"}},
    {23, {"Riemann", "Sinc_Lobe"}},
    {24, {"Tukey25"}},
    {25, {"CosineLobe", "Cos_Lobe", "RRC", "Sqrt_Hann"}},
    {26, {"Chebyshev6", "Cheby6"}},
    {27, {"Chebyshev7", "Cheby7"}},
    {28, {"Nuttall", "Cheby4", "Blackman_Nuttall"}},
    {29, {"OriginalBlackmanHarris4", "Orig_Blackman_Harris4"}},
    {30, {"Kaiser89"}},
    {31, {"Gauss73"}},
};

#define ENUMERATOR(name) \
  { #name, name }
const std::pair<const char*, uint32_t> kEnumerators[] = {ENUMERATOR(DSP_WINDOW_UNIFORM),
                                                         ENUMERATOR(DSP_WINDOW_RECTANGULAR),
                                                         ENUMERATOR(DSP_WINDOW_NONE),
                                                         ENUMERATOR(DSP_WINDOW_P000),
                                                         ENUMERATOR(DSP_WINDOW_BARTLETT),
                                                         ENUMERATOR(DSP_WINDOW_TRIANGULAR),
                                                         ENUMERATOR(DSP_WINDOW_HANN),
                                                         ENUMERATOR(DSP_WINDOW_P110),
                                                         ENUMERATOR(DSP_WINDOW_HAMMING),
                                                         ENUMERATOR(DSP_WINDOW_P100),
                                                         ENUMERATOR(DSP_WINDOW_BLACKMAN),
                                                         ENUMERATOR(DSP_WINDOW_BLACKMAN_HARRIS3),
                                                         ENUMERATOR(DSP_WINDOW_P200),
                                                         ENUMERATOR(DSP_WINDOW_BLACKMAN_HARRIS4),
                                                         ENUMERATOR(DSP_WINDOW_P310),
                                                         ENUMERATOR(DSP_WINDOW_LOWLEAK),
                                                         ENUMERATOR(DSP_WINDOW_GAUSSTOP),
                                                         ENUMERATOR(DSP_WINDOW_P400),
                                                         ENUMERATOR(DSP_WINDOW_CHEBY5),
                                                         ENUMERATOR(DSP_WINDOW_FLAT4),
                                                         ENUMERATOR(DSP_WINDOW_P301),
                                                         ENUMERATOR(DSP_WINDOW_FLATTOP),
                                                         ENUMERATOR(DSP_WINDOW_FLAT5),
                                                         ENUMERATOR(DSP_WINDOW_P401),
                                                         ENUMERATOR(DSP_WINDOW_FLAT6),
                                                         ENUMERATOR(DSP_WINDOW_P511),
                                                         ENUMERATOR(DSP_WINDOW_FLAT7),
                                                         ENUMERATOR(DSP_WINDOW_P611),
                                                         ENUMERATOR(DSP_WINDOW_P501),
                                                         ENUMERATOR(DSP_WINDOW_P601),
                                                         ENUMERATOR(DSP_WINDOW_KAISER70),
                                                         ENUMERATOR(DSP_WINDOW_KAISER80),
                                                         ENUMERATOR(DSP_WINDOW_KAISER90),
                                                         ENUMERATOR(DSP_WINDOW_KAISER100),
                                                         ENUMERATOR(DSP_WINDOW_KAISER110),
                                                         ENUMERATOR(DSP_WINDOW_KAISER120),
                                                         ENUMERATOR(DSP_WINDOW_GAUSS60),
                                                         ENUMERATOR(DSP_WINDOW_GAUSS70),
                                                         ENUMERATOR(DSP_WINDOW_GAUSS80),
                                                         ENUMERATOR(DSP_WINDOW_RIEMANN),
                                                         ENUMERATOR(DSP_WINDOW_SINC_LOBE),
                                                         ENUMERATOR(DSP_WINDOW_TUKEY25),
                                                         ENUMERATOR(DSP_WINDOW_COS_LOBE),
                                                         ENUMERATOR(DSP_WINDOW_RRC),
                                                         ENUMERATOR(DSP_WINDOW_SQRT_HANN),
                                                         ENUMERATOR(DSP_WINDOW_CHEBY6),
                                                         ENUMERATOR(DSP_WINDOW_CHEBY7),
                                                         ENUMERATOR(DSP_WINDOW_CHEBY4),
                                                         ENUMERATOR(DSP_WINDOW_NUTTALL),
                                                         ENUMERATOR(DSP_WINDOW_BLACKMAN_NUTTALL),
                                                         ENUMERATOR(DSP_WINDOW_ORIG_BLACKMAN_HARRIS4),
                                                         ENUMERATOR(DSP_WINDOW_KAISER89),
                                                         ENUMERATOR(DSP_WINDOW_GAUSS73)};

template <class T> struct WindowNames : ::testing::Test {};
TYPED_TEST_SUITE(WindowNames, Precisions);

template <class T> void expect_type(std::string name, uint32_t type) {
  const auto from = window_from_str.template of<T>();
  for (const auto change :
       {+[](int c) { return c; }, +[](int c) { return std::toupper(c); }, +[](int c) { return std::tolower(c); }}) {
    for (char& c : name) c = static_cast<char>(change(static_cast<unsigned char>(c)));
    uint32_t found = 99;
    EXPECT_EQ(from(name.c_str(), &found), 0) << name;
    EXPECT_EQ(found, type) << name;
  }
  uint32_t found = 99;
  EXPECT_EQ(from((name + "x").c_str(), &found), -1) << name;
  EXPECT_EQ(found, 0U) << name;
}

TYPED_TEST(WindowNames, AllNamesAreFoundInAnyCaseAndOnlyWhole) {
  using T = TypeParam;
  size_t names = 0;
  for (const Named& row : kPlain) {
    for (const char* const name : row.plain) ++names, expect_type<T>(name, row.type);
    char shown[40];
    EXPECT_EQ(window_to_str.template of<T>()(row.type, shown, sizeof shown), 0);
    EXPECT_STREQ(shown, row.plain[0]);
  }
  for (const auto& [name, type] : kEnumerators) ++names, expect_type<T>(name, type);
  EXPECT_EQ(names, 113U);
  uint32_t found = 99;
  for (const char* const unknown : {"", "Kaiser", " Hann", "P\xC4\xB0", "@ann"}) {
    EXPECT_EQ(window_from_str.template of<T>()(unknown, &found), -1);
    EXPECT_EQ(found, 0U);
  }
  found = 99;
  EXPECT_EQ(window_from_str.template of<T>()(nullptr, &found), -1);
  EXPECT_EQ(found, 99U);
  EXPECT_EQ(window_from_str.template of<T>()("Hann", nullptr), -1);
}

TYPED_TEST(WindowNames, ShownNamesAreCutAndPaddedToTheBuffer) {
  const auto show = window_to_str.template of<TypeParam>();
  struct Row {
    uint32_t type;
    int32_t size, status;
    std::string written;
  };
  using namespace std::string_literals;
  const Row rows[] = {{0, 4, 0, "Uni\0##"s},   {0, 6, 0, "Unifo\0"s}, {2, 6, 0, "Hann\0\0"s}, {2, 1, 0, "\0#####"s},
                      {32, 6, -1, "\0#####"s}, {2, 0, -1, "######"s}, {2, -5, -1, "######"s}};
  for (const Row& row : rows) {
    char buffer[6];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(show(row.type, buffer, row.size), row.status);
    EXPECT_EQ(std::string(buffer, sizeof buffer), row.written) << row.type << ' ' << row.size;
  }
  EXPECT_EQ(show(0, nullptr, 9), -1);
}

}  // namespace
}  // namespace sigvex_test
