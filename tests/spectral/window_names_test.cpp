#include <cstring>
#include <iterator>
#include <sstream>
#include <string>

#include "support/twin.h"

namespace sigvex_test::window_names_test {

TWINS(, window_from_str, window_to_str);

// The plain names of types 0 to 31; a type is shown by its first.
constexpr char kPlain[] =
    "Uniform Rectangular None P000, Bartlett Triangular, Hann P110, Hamming P100, Blackman, "
    "BlackmanHarris3 Blackman_Harris3 P200, BlackmanHarris4 Blackman_Harris4 P310 Lowleak, Gausstop P400 Cheby5, "
    "Flat4 P301, FlatTop Flattop Flat5 P401, Flat6 P511, Flat7 P611, P501, P601, Kaiser70, Kaiser80, Kaiser90, "
    "Kaiser100, "
    "Kaiser110, Kaiser120, Gauss60, Gauss70, Gauss80, Riemann Sinc_Lobe, Tukey25, CosineLobe Cos_Lobe RRC Sqrt_Hann, "
    "Chebyshev6 Cheby6, Chebyshev7 Cheby7, Nuttall Cheby4 Blackman_Nuttall, "
    "OriginalBlackmanHarris4 Orig_Blackman_Harris4, Kaiser89, Gauss73";

#define ENUMERATOR(prefix, name) {#prefix #name, prefix##name},
constexpr std::pair<const char*, uint32_t> kEnumerators[] = {
    FOR_EACH(ENUMERATOR, DSP_WINDOW_, UNIFORM, RECTANGULAR, NONE, P000, BARTLETT, TRIANGULAR, HANN, P110, HAMMING, P100,
             BLACKMAN, BLACKMAN_HARRIS3, P200, BLACKMAN_HARRIS4, P310, LOWLEAK, GAUSSTOP, P400, CHEBY5, FLAT4, P301,
             FLATTOP, FLAT5, P401, FLAT6, P511, FLAT7, P611, P501, P601, KAISER70, KAISER80, KAISER90, KAISER100,
             KAISER110, KAISER120, GAUSS60, GAUSS70, GAUSS80, RIEMANN, SINC_LOBE, TUKEY25, COS_LOBE, RRC, SQRT_HANN,
             CHEBY6, CHEBY7, CHEBY4, NUTTALL, BLACKMAN_NUTTALL, ORIG_BLACKMAN_HARRIS4, KAISER89, GAUSS73)};

SUITE_OF_BOTH(WindowNames);

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

TEST_BOTH(WindowNames, AllNamesAreFoundInAnyCaseAndOnlyWhole) {
  size_t names = 0;
  std::istringstream rows(kPlain);
  std::string row;
  for (uint32_t type = 0; std::getline(rows, row, ','); ++type) {
    std::istringstream plain(row);
    const std::vector<std::string> spellings(std::istream_iterator<std::string>(plain), {});
    for (const std::string& name : spellings) ++names, expect_type<T>(name, type);
    char shown[40];
    EXPECT_EQ(window_to_str.template of<T>()(type, shown, sizeof shown), 0);
    EXPECT_EQ(shown, spellings[0]);
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

TEST_BOTH(WindowNames, ShownNamesAreCutAndPaddedToTheBuffer) {
  const auto show = window_to_str.template of<T>();
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

}  // namespace sigvex_test::window_names_test
