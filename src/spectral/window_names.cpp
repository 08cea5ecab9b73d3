// dsp_window_from_str dsp_window_to_str
#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/exports.h"

namespace sigvex::dsp {
namespace {

struct WindowName {
  const char* name;
  uint32_t type;
};

// The first name of a type is the one it is shown by: seven preferred spellings lead, then the plain names and the
// enumerators follow, each by type.
constexpr WindowName kNames[] = {
    {"BlackmanHarris3", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"BlackmanHarris4", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"FlatTop", DSP_WINDOW_FLATTOP},
    {"CosineLobe", DSP_WINDOW_COS_LOBE},
    {"Chebyshev6", DSP_WINDOW_CHEBY6},
    {"Chebyshev7", DSP_WINDOW_CHEBY7},
    {"OriginalBlackmanHarris4", DSP_WINDOW_ORIG_BLACKMAN_HARRIS4},
    {"Uniform", DSP_WINDOW_UNIFORM},
    {"Rectangular", DSP_WINDOW_UNIFORM},
    {"None", DSP_WINDOW_UNIFORM},
    {"P000", DSP_WINDOW_UNIFORM},
    {"Bartlett", DSP_WINDOW_BARTLETT},
    {"Triangular", DSP_WINDOW_BARTLETT},
    {"Hann", DSP_WINDOW_HANN},
    {"P110", DSP_WINDOW_HANN},
    {"Hamming", DSP_WINDOW_HAMMING},
    {"P100", DSP_WINDOW_HAMMING},
    {"Blackman", DSP_WINDOW_BLACKMAN},
    {"Blackman_Harris3", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"P200", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"Blackman_Harris4", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"P310", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"Lowleak", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"Gausstop", DSP_WINDOW_GAUSSTOP},
    {"P400", DSP_WINDOW_GAUSSTOP},
    {"Cheby5", DSP_WINDOW_GAUSSTOP},
    {"Flat4", DSP_WINDOW_FLAT4},
    {"P301", DSP_WINDOW_FLAT4},
    {"Flattop", DSP_WINDOW_FLATTOP},
    {"Flat5", DSP_WINDOW_FLATTOP},
    {"P401", DSP_WINDOW_FLATTOP},
    {"Flat6", DSP_WINDOW_FLAT6},
    {"P511", DSP_WINDOW_FLAT6},
    {"Flat7", DSP_WINDOW_FLAT7},
    {"P611", DSP_WINDOW_FLAT7},
    {"P501", DSP_WINDOW_P501},
    {"P601", DSP_WINDOW_P601},
    {"Kaiser70", DSP_WINDOW_KAISER70},
    {"Kaiser80", DSP_WINDOW_KAISER80},
    {"Kaiser90", DSP_WINDOW_KAISER90},
    {"Kaiser100", DSP_WINDOW_KAISER100},
    {"Kaiser110", DSP_WINDOW_KAISER110},
    {"Kaiser120", DSP_WINDOW_KAISER120},
    {"Gauss60", DSP_WINDOW_GAUSS60},
    {"Gauss70", DSP_WINDOW_GAUSS70},
    {"Gauss80", DSP_WINDOW_GAUSS80},
    {"Riemann", DSP_WINDOW_RIEMANN},
    {"Sinc_Lobe", DSP_WINDOW_RIEMANN},
    {"Tukey25", DSP_WINDOW_TUKEY25},
    {"Cos_Lobe", DSP_WINDOW_COS_LOBE},
    {"RRC", DSP_WINDOW_COS_LOBE},
    {"Sqrt_Hann", DSP_WINDOW_COS_LOBE},
    {"Cheby6", DSP_WINDOW_CHEBY6},
    {"Cheby7", DSP_WINDOW_CHEBY7},
    {"Nuttall", DSP_WINDOW_CHEBY4},
    {"Cheby4", DSP_WINDOW_CHEBY4},
    {"Blackman_Nuttall", DSP_WINDOW_CHEBY4},
    {"Orig_Blackman_Harris4", DSP_WINDOW_ORIG_BLACKMAN_HARRIS4},
    {"Kaiser89", DSP_WINDOW_KAISER89},
    {"Gauss73", DSP_WINDOW_GAUSS73},
    {"DSP_WINDOW_UNIFORM", DSP_WINDOW_UNIFORM},
    {"DSP_WINDOW_RECTANGULAR", DSP_WINDOW_UNIFORM},
    {"DSP_WINDOW_NONE", DSP_WINDOW_UNIFORM},
    {"DSP_WINDOW_P000", DSP_WINDOW_UNIFORM},
    {"DSP_WINDOW_BARTLETT", DSP_WINDOW_BARTLETT},
    {"DSP_WINDOW_TRIANGULAR", DSP_WINDOW_BARTLETT},
    {"DSP_WINDOW_HANN", DSP_WINDOW_HANN},
    {"DSP_WINDOW_P110", DSP_WINDOW_HANN},
    {"DSP_WINDOW_HAMMING", DSP_WINDOW_HAMMING},
    {"DSP_WINDOW_P100", DSP_WINDOW_HAMMING},
    {"DSP_WINDOW_BLACKMAN", DSP_WINDOW_BLACKMAN},
    {"DSP_WINDOW_BLACKMAN_HARRIS3", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"DSP_WINDOW_P200", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"DSP_WINDOW_BLACKMAN_HARRIS4", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"DSP_WINDOW_P310", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"DSP_WINDOW_LOWLEAK", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"DSP_WINDOW_GAUSSTOP", DSP_WINDOW_GAUSSTOP},
    {"DSP_WINDOW_P400", DSP_WINDOW_GAUSSTOP},
    {"DSP_WINDOW_CHEBY5", DSP_WINDOW_GAUSSTOP},
    {"DSP_WINDOW_FLAT4", DSP_WINDOW_FLAT4},
    {"DSP_WINDOW_P301", DSP_WINDOW_FLAT4},
    {"DSP_WINDOW_FLATTOP", DSP_WINDOW_FLATTOP},
    {"DSP_WINDOW_FLAT5", DSP_WINDOW_FLATTOP},
    {"DSP_WINDOW_P401", DSP_WINDOW_FLATTOP},
    {"DSP_WINDOW_FLAT6", DSP_WINDOW_FLAT6},
    {"DSP_WINDOW_P511", DSP_WINDOW_FLAT6},
    {"DSP_WINDOW_FLAT7", DSP_WINDOW_FLAT7},
    {"DSP_WINDOW_P611", DSP_WINDOW_FLAT7},
    {"DSP_WINDOW_P501", DSP_WINDOW_P501},
    {"DSP_WINDOW_P601", DSP_WINDOW_P601},
    {"DSP_WINDOW_KAISER70", DSP_WINDOW_KAISER70},
    {"DSP_WINDOW_KAISER80", DSP_WINDOW_KAISER80},
    {"DSP_WINDOW_KAISER90", DSP_WINDOW_KAISER90},
    {"DSP_WINDOW_KAISER100", DSP_WINDOW_KAISER100},
    {"DSP_WINDOW_KAISER110", DSP_WINDOW_KAISER110},
    {"DSP_WINDOW_KAISER120", DSP_WINDOW_KAISER120},
    {"DSP_WINDOW_GAUSS60", DSP_WINDOW_GAUSS60},
    {"DSP_WINDOW_GAUSS70", DSP_WINDOW_GAUSS70},
    {"DSP_WINDOW_GAUSS80", DSP_WINDOW_GAUSS80},
    {"DSP_WINDOW_RIEMANN", DSP_WINDOW_RIEMANN},
    {"DSP_WINDOW_SINC_LOBE", DSP_WINDOW_RIEMANN},
    {"DSP_WINDOW_TUKEY25", DSP_WINDOW_TUKEY25},
    {"DSP_WINDOW_COS_LOBE", DSP_WINDOW_COS_LOBE},
    {"DSP_WINDOW_RRC", DSP_WINDOW_COS_LOBE},
    {"DSP_WINDOW_SQRT_HANN", DSP_WINDOW_COS_LOBE},
    {"DSP_WINDOW_CHEBY6", DSP_WINDOW_CHEBY6},
    {"DSP_WINDOW_CHEBY7", DSP_WINDOW_CHEBY7},
    {"DSP_WINDOW_CHEBY4", DSP_WINDOW_CHEBY4},
    {"DSP_WINDOW_NUTTALL", DSP_WINDOW_CHEBY4},
    {"DSP_WINDOW_BLACKMAN_NUTTALL", DSP_WINDOW_CHEBY4},
    {"DSP_WINDOW_ORIG_BLACKMAN_HARRIS4", DSP_WINDOW_ORIG_BLACKMAN_HARRIS4},
    {"DSP_WINDOW_KAISER89", DSP_WINDOW_KAISER89},
    {"DSP_WINDOW_GAUSS73", DSP_WINDOW_GAUSS73},
};

// Names are ASCII: the locale of the host must not change what a letter is.
constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool same_name(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

// The names do not depend on the precision.
template <class> Status window_from_str(const char* text, uint32_t* type) {
  if (!text || !type) return kFailure;
  const std::string_view wanted = text;
  const auto* const found =
      std::ranges::find_if(kNames, [&](const WindowName& entry) { return same_name(wanted, entry.name); });
  const bool known = found != std::end(kNames);
  *type = known ? found->type : 0;
  return known ? kSuccess : kFailure;
}

template <class> Status window_to_str(uint32_t type, char* buffer, int32_t size) {
  if (!buffer || size < 1) return kFailure;
  const auto* const found = std::ranges::find(kNames, type, &WindowName::type);
  if (found == std::end(kNames)) {
    buffer[0] = 0;
    return kFailure;
  }
  std::strncpy(buffer, found->name, static_cast<size_t>(size));
  buffer[size - 1] = 0;
  return kSuccess;
}

}  // namespace sigvex::dsp

SIGVEX_EXPORT(, window_from_str, 2)
SIGVEX_EXPORT(, window_to_str, 3)
