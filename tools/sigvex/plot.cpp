#include "plot.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "text.h"

extern char** environ;

namespace sigvex_tool {
namespace {

// More points than a picture has columns are shown by the largest of each column, so that no line is lost; where
// `lowest` is set, by the smallest too.
Curve thinned(const Curve& curve, size_t columns, bool lowest) {
  const size_t n = curve.x.size();
  if (n <= columns) return curve;
  Curve thin = curve;
  thin.x.clear();
  thin.y.clear();
  for (size_t c = 0; c < columns; ++c) {
    const auto first = curve.y.begin() + static_cast<ptrdiff_t>(c * n / columns);
    const auto last = curve.y.begin() + static_cast<ptrdiff_t>((c + 1) * n / columns);
    const auto [low, high] = std::minmax_element(first, last);
    for (const auto y : {std::min(low, high), std::max(low, high)})
      if (lowest || y == high) {
        thin.y.push_back(*y);
        thin.x.push_back(curve.x[static_cast<size_t>(y - curve.y.begin())]);
        if (low == high) break;
      }
  }
  return thin;
}

bool drawable(const Curve& curve, double y) { return std::isfinite(y) && (curve.axis != Curve::Logarithmic || y > 0); }

std::pair<double, double> limits(const Curve& curve) {
  double low = HUGE_VAL, high = -HUGE_VAL;
  for (double y : curve.y)
    if (drawable(curve, y)) low = std::min(low, y), high = std::max(high, y);
  if (low > high) return {curve.axis == Curve::Logarithmic ? 0.1 : 0, 1};
  if (curve.axis == Curve::Logarithmic) return {std::max(low, high * 1e-8), high * 2};
  if (curve.axis == Curve::Decibels) return {std::max(low, high - 160), high + 3};
  const double margin = high > low ? 0.05 * (high - low) : 0.5 * std::max(std::fabs(high), 1e-300);
  return {std::min(low - margin, 0.0), high + margin};
}

std::string escaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\n') continue;
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  return out;
}

std::string script(const Curve& curve) {
  const auto [low, high] = limits(curve);
  std::string s = "set title \"" + escaped(curve.title) + "\" noenhanced\nset xlabel \"" + escaped(curve.x_label) +
                  "\" noenhanced\nset ylabel \"" + escaped(curve.y_label) + "\" noenhanced\nset grid\nunset key\n";
  s += curve.axis == Curve::Logarithmic ? "set logscale y\nset format y \"%g\"\n" : "unset logscale y\n";
  s += "unset label\n";
  s += format("set xrange [%.17g:%.17g]\nset yrange [%.17g:%.17g]\n", curve.x.front(), curve.x.back(), low, high);
  for (const Curve::Mark& mark : curve.marks)
    s += format("set label \"%s\" at %.17g,%.17g offset 0.6,0.3 point pointtype 7 pointsize 0.5 noenhanced\n",
                escaped(mark.text).c_str(), mark.x, mark.y);
  s += "plot '-' with lines linewidth 1 linecolor rgb \"#1f4e9e\"\n";
  for (size_t k = 0; k < curve.x.size(); ++k)
    if (drawable(curve, curve.y[k])) s += format("%.9g %.9g\n", curve.x[k], curve.y[k]);
  return s + "e\n";
}

void run_gnuplot(const std::string& commands) {
  const std::unique_ptr<FILE, int (*)(FILE*)> input(std::tmpfile(), std::fclose);
  if (!input || std::fwrite(commands.data(), 1, commands.size(), input.get()) != commands.size() ||
      std::fflush(input.get()) != 0)
    throw DataError(std::string("no temporary file for gnuplot: ") + std::strerror(errno));
  std::rewind(input.get());
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fileno(input.get()), STDIN_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  char name[] = "gnuplot";
  char* arguments[] = {name, nullptr};
  pid_t child = 0;
  const int failure = posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (failure == 0) waitpid(child, &status, 0);
  if (failure == ENOENT || (failure == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 127))
    throw DataError("--plot: the program gnuplot is not installed (Debian: gnuplot-nox)");
  if (failure != 0 || status != 0) throw DataError("--plot: gnuplot failed");
}

// The level that a text row of the plot stands for counts from 0 at the bottom to 1 at the top.
double height(const Curve& curve, double y, double low, double high) {
  if (!drawable(curve, y)) return 0;
  const double h =
      curve.axis == Curve::Logarithmic ? std::log(y / low) / std::log(high / low) : (y - low) / (high - low);
  return std::clamp(h, 0.0, 1.0);
}

}  // namespace

void plot_file(const std::vector<Curve>& curves, OutputFile& picture) {
  const bool svg = picture.name().ends_with(".svg");
  const char* terminal = svg ? "svg size 960,480 background \"white\"" : "pngcairo size 960,480";
  std::string s = std::string("set terminal ") + terminal + "\nset output \"" + escaped(picture.path()) + "\"\n";
  if (curves.size() > 1) s += format("set multiplot layout 1,%zu\n", curves.size());
  for (const Curve& curve : curves) s += script(thinned(curve, 4000, curve.axis == Curve::Linear));
  run_gnuplot(s + (curves.size() > 1 ? "unset multiplot\n" : "") + "unset output\n");
}

bool terminal_is_utf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (!locale) return false;
  const bool utf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
  freelocale(locale);
  return utf8;
}

size_t terminal_columns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col >= 40 ? size.ws_col : 80;
}

std::string plot_text(const Curve& curve, size_t columns, size_t rows) {
  static const char* const kBlocks[] = {" ",      "\u2581", "\u2582", "\u2583", "\u2584",
                                        "\u2585", "\u2586", "\u2587", "\u2588"};
  const bool blocks = terminal_is_utf8();
  constexpr size_t kLabel = 11;
  const size_t width = columns - kLabel - 2;
  const Curve thin = thinned(curve, width, false);
  const auto [low, high] = limits(thin);
  std::string out = curve.y_label + "\n";
  for (size_t row = rows; row-- > 0;) {
    const double share = (static_cast<double>(row) + 0.5) / static_cast<double>(rows);
    const double level =
        curve.axis == Curve::Logarithmic ? low * std::pow(high / low, share) : low + share * (high - low);
    const std::string label =
        row % 4 == 0 || row + 1 == rows ? format("%*.4g", static_cast<int>(kLabel), level) : std::string(kLabel, ' ');
    out += label + (blocks ? " \u2502" : " |");
    std::string line;
    size_t used = 0;
    for (size_t c = 0; c < width; ++c) {
      const size_t k = c * thin.x.size() / width;
      const double fill = height(curve, thin.y[k], low, high) * static_cast<double>(rows) - static_cast<double>(row);
      const int eighths = static_cast<int>(std::clamp(std::round(8 * fill), 0.0, 8.0));
      line += blocks ? kBlocks[eighths] : eighths >= 4 ? "#" : " ";
      if (eighths > 0) used = line.size();
    }
    out += line.substr(0, used) + "\n";
  }
  out += std::string(kLabel, ' ') + (blocks ? " \u2514" : " +");
  for (size_t c = 0; c < width; ++c) out += blocks ? "\u2500" : "-";
  const std::string left = format("%.6g", curve.x.front()),
                    right = format("%.6g", curve.x.back()) + " " + curve.x_label;
  const size_t gap = width > left.size() + right.size() ? width - left.size() - right.size() : 1;
  return out + "\n" + std::string(kLabel + 2, ' ') + left + std::string(gap, ' ') + right + "\n";
}

}  // namespace sigvex_tool
