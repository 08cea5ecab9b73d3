// dspf_fwrite2 dspf_fwrite_ascii
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "core/exports.h"
#include "core/limits.h"
#include "core/scratch.h"
#include "file/operations.h"
#include "file/text_output.h"
#include "stats/operations.h"

namespace sigvex {
namespace {

// Each sample on a line of its own, or both parts of a point.
template <class T> void write_lines(const Vector<T>& v, TextOutput& out, char separator) {
  for (size_t k = 0, n = points<T>(v); k < n; ++k) {
    if (v.complex) {
      out.put(v.data[2 * k], separator, v.data[2 * k + 1], '\n');
    } else {
      out.put(v.data[k], '\n');
    }
  }
}

template <class T> Status write_ascii(const Vector<T>& v, TextOutput& out, Pieces pieces) {
  if (pieces.header) {
    out.put("#DSP ASCII data from sigvex package\n");
    out.put("#DSP points = ", v.points, '\n');
    out.put("#DSP complex = ", v.complex, '\n');
    out.put("#DSP type = ", static_cast<int32_t>(sizeof(T)), '\n');
    out.put("#DSP delta = ", v.delta, '\n');
  }
  if (pieces.data) write_lines<T>(v, out, ' ');
  return kSuccess;
}

// Four digits, but counts and other numbers of ordinary size whole.
void write_brief(TextOutput& out, double x) {
  const double magnitude = std::abs(x);
  if (magnitude >= 9999 && magnitude <= 999999999) {
    out.number(x, std::chars_format::fixed, 0);
  } else {
    out.number(x, std::chars_format::general, 4);
  }
}

template <class T> Status write_summary(const Vector<T>& v, TextOutput& out, Pieces pieces) {
  constexpr size_t kShown = 32;
  const size_t n = points<T>(v);
  if (pieces.header) {
    out.put('[');
    write_brief(out, v.points);
    out.put('/');
    write_brief(out, v.delta);
    out.put(']');
    if (n > 0) out.put(' ');
  }
  if (pieces.data) {
    for (size_t k = 0; k < std::min(n, kShown); ++k) {
      if (k > 0) out.put(' ');
      if (v.complex) {
        write_brief(out, v.data[2 * k]);
        out.put(',');
        write_brief(out, v.data[2 * k + 1]);
      } else {
        write_brief(out, v.data[k]);
      }
    }
    if (n > kShown) out.put(" ...");
  }
  out.put('\n');
  return kSuccess;
}

constexpr std::string_view kPlotReal =
    "plot '-' title \"Data\" with lines\n"
    "\n"
    "# X Y\n";
constexpr std::string_view kPlotComplex =
    "plot '-' using 1:(sqrt($2**2+$3**2)) title \"Magnitude\" with lines\n"
    "#plot '-' using 1:(atan2($3,$2)) title \"Phase\" with lines\n"
    "#plot '-' using 1:2 title \"Real\" with lines\n"
    "#plot '-' using 1:3 title \"Imag\" with lines\n"
    "#plot '-' using 2:3 title \"Real vs. Imag\" with lines\n"
    "#splot '-' title \"Data\" with lines\n"
    "\n"
    "# X Yreal Yimag\n";

template <class T> Status write_gnuplot(const Vector<T>& v, TextOutput& out, Pieces pieces) {
  if (pieces.header) {
    out.put("# gnuplot data from sigvex package\nset zeroaxis\n\n", v.complex ? kPlotComplex : kPlotReal);
  }
  if (pieces.data) {
    constexpr int kDigits = sizeof(T) == sizeof(double) ? 16 : 7;
    for (size_t k = 0, n = points<T>(v); k < n; ++k) {
      // The abscissa is a double in both precisions, so that a long float vector still has distinct ones.
      out.number(static_cast<double>(k) * v.delta, std::chars_format::general, kDigits);
      if (v.complex) {
        out.put(' ', v.data[2 * k], ' ', v.data[2 * k + 1], '\n');
      } else {
        out.put(' ', v.data[k], '\n');
      }
    }
  }
  if (pieces.header && pieces.data) out.put("e\n\npause mouse key\n");
  return kSuccess;
}

// The largest or smallest peak's value: refined between the samples unless it is beyond every bound.
template <class T> Status peak_value(const Vector<T>& v, uint32_t search, T& value) {
  constexpr uint32_t kParabolic = 256;
  Scratch<T> peak;
  for (const uint32_t refinement : {0U, kParabolic}) {
    SIGVEX_TRY(dsps::peak<T>(v, peak, search | refinement, 0));
    value = v.complex ? std::sqrt(peak.data[0]) : std::abs(peak.data[0]);
    if (!(value < Limits<T>::huge)) break;
  }
  return kSuccess;
}

template <class T> bool nearly_equal(T v, T c) {
  constexpr T kSmall = 20 * Limits<T>::tiny, kTolerance = 20 * Limits<T>::epsilon;
  if (v == c || (std::abs(v) <= kSmall && std::abs(c) <= kSmall)) return true;
  return std::abs(v) > kSmall && c / v >= 1 - kTolerance && c / v <= 1 + kTolerance;
}

// The largest magnitude, rounded up to 1, 2, 4 or 5 times a power of ten.
template <class T> Status display_range(const Vector<T>& v, T& range) {
  constexpr uint32_t kMaximum = 0, kMinimum = 8192;
  T largest = 0;
  SIGVEX_TRY(peak_value<T>(v, kMaximum, largest));
  if (!v.complex) {
    T lowest = 0;
    SIGVEX_TRY(peak_value<T>(v, kMinimum, lowest));
    largest = std::fmax(largest, lowest);
  }
  if (!(largest > 0)) largest = 1;
  const T power = std::pow(T(10), std::floor(std::log10(largest)));
  range = 10 * power;
  for (const int step : {5, 4, 2, 1}) {
    const T candidate = static_cast<T>(step) * power;
    if (largest <= candidate || nearly_equal(largest, candidate)) range = candidate;
  }
  range = std::min(range, Limits<T>::huge);
  return kSuccess;
}

template <class T> Status write_trace(const Vector<T>& v, TextOutput& out, Pieces pieces) {
  if (pieces.header) {
    out.put("SigvexData\tTrue\n");
    T range = 0;
    SIGVEX_TRY(display_range<T>(v, range));
    out.put("InputRange\t", range, '\n');
    out.put("InputZoom\t", v.complex ? "True" : "False", '\n');
    out.put("TrcTtl\tSigvex Data\n");
    out.put("XDelta\t", v.delta, '\n');
    out.put("Y\n");
  }
  if (pieces.data) write_lines<T>(v, out, '\t');
  return kSuccess;
}

}  // namespace

namespace dspf {

template <class T> Status fwrite2(const Vector<T>& v, std::FILE& stream, uint32_t flags) {
  const Pieces pieces{.header = !(flags & DSP_FILE_NO_HEADER), .data = !(flags & DSP_FILE_NO_DATA)};
  const uint32_t format = flags & 0xFF;
  if (format == DSP_FILE_BINARY) return write_record<T>(v, stream, pieces);
  TextOutput out(stream);
  switch (format) {
    case DSP_FILE_ASCII:
      return write_ascii<T>(v, out, pieces);
    case DSP_FILE_SUMMARY:
      return write_summary<T>(v, out, pieces);
    case DSP_FILE_GNUPLOT:
      return write_gnuplot<T>(v, out, pieces);
    case DSP_FILE_TRACE:
      return write_trace<T>(v, out, pieces);
    default:
      return kFailure;
  }
}

template <class T> Status fwrite_ascii(const Vector<T>& v, std::FILE& stream) {
  return fwrite2<T>(v, stream, DSP_FILE_ASCII);
}

}  // namespace dspf
}  // namespace sigvex

SIGVEX_EXPORT(f, fwrite2, 3)
SIGVEX_EXPORT(f, fwrite_ascii, 2)
