// Vector text files of a million values, written and read back, beside the same values by std::to_chars with as many
// digits and by std::from_chars, through the same streams: millions of values a second of both, and their ratio.
//
//   build/bench/bench/text_bench
#include <sigvex.h>

#include <charconv>
#include <cstdio>
#include <random>
#include <string>
#include <type_traits>

#include "turns.h"

namespace {

constexpr size_t kValues = 1000000;

template <class T> using Record = std::conditional_t<std::is_same_v<T, double>, dsp_vector, dspf_vector>;

template <class T> void write_plainly(const std::vector<T>& x, std::FILE* stream) {
  constexpr int kDigits = std::is_same_v<T, double> ? 16 : 7;
  std::string text(x.size() * 32, '\0');
  char* to = text.data();
  for (const T value : x) {
    to = std::to_chars(to, to + 31, value, std::chars_format::general, kDigits).ptr;
    *to++ = '\n';
  }
  std::fwrite(text.data(), 1, static_cast<size_t>(to - text.data()), stream);
  std::fflush(stream);
}

template <class T> size_t read_plainly(std::FILE* stream, std::vector<T>& x) {
  std::string text(x.size() * 32, '\0');
  const char* at = text.data();
  const char* const end = at + std::fread(text.data(), 1, text.size(), stream);
  size_t n = 0;
  while (at < end && n < x.size()) {
    const auto [next, error] = std::from_chars(at, end, x[n]);
    if (error != std::errc()) {  // a line of the header
      while (at < end && *at++ != '\n') continue;
      continue;
    }
    ++n;
    for (at = next; at < end && *at <= ' ';) ++at;
  }
  return n;
}

template <class T, class Write, class Read> bool measure(const char* name, Write write, Read read) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<T> uniform(T(-10), T(10));
  std::vector<T> x(kValues), other(kValues);
  for (T& value : x) value = uniform(random);
  Record<T> v{}, back{};
  v.data = x.data();
  v.points = static_cast<int32_t>(kValues);
  v.delta = back.delta = 1;
  std::FILE *const ours = std::tmpfile(), *const plain = std::tmpfile();
  if (!ours || !plain) return false;
  bool good = true;
  const auto written = best_of_turns(5, {[&] {
                                           std::rewind(ours);
                                           good &= write(&v, ours) == 0;
                                           std::fflush(ours);
                                         },
                                         [&] {
                                           std::rewind(plain);
                                           write_plainly(x, plain);
                                         }});
  const auto taken = best_of_turns(5, {[&] {
                                         std::rewind(ours);
                                         good &= read(&back, ours) == 1;
                                       },
                                       [&] {
                                         std::rewind(ours);
                                         good &= read_plainly(ours, other) == kValues;
                                       }});
  good = good && back.points == v.points;
  for (size_t k = 0; good && k < kValues; ++k) good = back.data[k] == other[k];
  const auto print = [name](const char* what, const std::vector<double>& seconds) {
    std::printf("%-7s %-8s %6.1f M/s, plain %6.1f M/s, ratio %.2f\n", name, what, kValues / seconds[0] / 1e6,
                kValues / seconds[1] / 1e6, seconds[1] / seconds[0]);
  };
  print("writing", written);
  print("reading", taken);
  std::fclose(ours);
  std::fclose(plain);
  std::free(back.data);
  return good;
}

}  // namespace

int main() {
  dsp_lib_init();
  const bool good = measure<double>("double", dspf_fwrite_ascii, dspf_fread) &
                    measure<float>("single", dspff_fwrite_ascii, dspff_fread);
  if (!good) std::puts("a value did not come back");
  return good ? 0 : 1;
}
