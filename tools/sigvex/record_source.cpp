// Vector records and "#DSP" text, through the library's own reader.
#include <sys/stat.h>

#include <array>
#include <bit>
#include <cctype>
#include <cstring>
#include <string_view>

#include "choices.h"
#include "errors.h"
#include "source.h"
#include "text.h"
#include "vector.h"

namespace sigvex_tool {
namespace {

// What the header of a binary record says besides what the library's reader hands over.
struct Header {
  bool single = false, swapped = false;
  int64_t points = 0;
};

Header binary_header(FILE* file) {
  std::array<uint32_t, 4> word{};
  const long start = std::ftell(file);
  if (std::fread(word.data(), 4, 4, file) < 4) word[2] = word[3] = 0;
  std::fseek(file, start, SEEK_SET);

  Header header;
  header.swapped = (word[0] & 0xff) == (std::endian::native == std::endian::little ? 0xEBu : 0xBEu);
  if (header.swapped)
    for (uint32_t& w : word) w = __builtin_bswap32(w);
  const bool has_format = word[0] == 0xEB0330BE;
  header.single = has_format ? (word[1] & 0xff) == 4 : word[0] == 0xEB0220BE;
  header.points = static_cast<int32_t>(word[has_format ? 2 : 1]);
  return header;
}

// Past the line end behind a text record, so that the end of the file is seen as such.
void skip_space(FILE* file) {
  int c;
  do c = std::getc(file);
  while (c != EOF && std::isspace(c));
  std::ungetc(c, file);
}

uint64_t size_of(FILE* file) {
  struct stat status {};
  return fstat(fileno(file), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

// The position of the last character that was read, as a person counts.
std::string text_position(FILE* file) {
  const long end = std::ftell(file);
  std::rewind(file);
  long line = 1, column = 0;
  for (long k = 0; k < end; ++k) {
    const int c = std::getc(file);
    if (c == EOF) break;
    if (c == '\n') ++line, column = 0;
    else ++column;
  }
  return format("line %ld, column %ld", line, std::max(1L, column));
}

[[noreturn]] void fail(FILE* file, const std::string& name, bool text, int record, long start, const Header& header) {
  const std::string which = record > 1 ? format("record %d: ", record) : "";
  if (text) {
    const bool ended = std::feof(file);
    const std::string where = text_position(file);
    throw DataError(name + ": " + which + where +
                    (ended ? ": ends before the declared number of values" : ": not a number"));
  }
  const uint64_t size = size_of(file);
  if (std::feof(file) || static_cast<uint64_t>(std::ftell(file)) >= size)
    throw DataError(name + format(": %sbyte %llu: ends inside a record that claims %lld points", which.c_str(),
                                  static_cast<unsigned long long>(size), static_cast<long long>(header.points)));
  throw DataError(name + format(": %sbyte %ld: not a vector record that can be read", which.c_str(), start + 1));
}

class RecordSource : public Source {
 public:
  RecordSource(File file, const InputOptions& options, bool text) {
    info_.name = options.file;
    const int first = std::max(1, options.channel);
    const int second = options.pair ? static_cast<int>(whole_number(options.imag, "--with", 1)) : first;
    const int wanted = std::max(first, second);
    Header header;
    Vector<double> passed;
    for (int record = 1; record <= wanted; ++record) {
      const long start = std::ftell(file.get());
      if (text) skip_space(file.get());
      else header = binary_header(file.get());
      Vector<double>& into = record == first ? vector_ : record == second ? beside_ : passed;
      const int32_t status = dspf_fread(&into, file.get());
      if (status == 0)
        throw DataError(info_.name + format(": %s %d, but the file holds %d record%s",
                                            wanted > first || !options.part.empty() ? "--with" : "--channel", wanted,
                                            record - 1, record == 2 ? "" : "s"));
      if (status < 0) fail(file.get(), info_.name, text, record, start, header);
      if (into.points < 0)  // to the library as good as none
        throw DataError(info_.name + format(": byte %ld: a record that claims %d points", start + 1, into.points));
    }
    if (options.pair) pair_up(first, second);
    if (text) header.single = declares_single(file.get());
    info_.kind = text ? "\"#DSP\" text"
                      : format("vector record, %s precision, %s byte order", header.single ? "single" : "double",
                               header.swapped ? "foreign" : "native");
    info_.delta = vector_.delta;
    info_.complex = vector_.complex != 0;
    info_.channels = (info_.complex ? 2 : 1) * (options.pair ? 2 : 1);
    info_.single = header.single;
    info_.frames = static_cast<uint64_t>(vector_.points);
  }

 private:
  static bool declares_single(FILE* file) {
    std::array<char, 4096> head{};
    std::rewind(file);
    const std::string_view text(head.data(), std::fread(head.data(), 1, head.size(), file));
    return text.find("#DSP type = 4\n") != text.npos;
  }

  void pair_up(int first, int second) {
    if (first == second) check(dsp_copy(&beside_, &vector_), "the second record");
    if (beside_.points != vector_.points || !beside_.complex != !vector_.complex || beside_.delta != vector_.delta)
      throw DataError(info_.name + format(": records %d and %d differ in length, form or spacing", first, second));
  }

  size_t fetch(double* out, size_t frames) override {
    const size_t values = info_.complex ? 2 : 1;
    const size_t count = std::min(frames, static_cast<size_t>(vector_.points) - next_);
    for (size_t k = next_; k < next_ + count; ++k)
      for (const Vector<double>* v : {&vector_, &beside_})
        if (v == &vector_ || info_.channels > values) out = std::copy_n(v->data + k * values, values, out);
    next_ += count;
    return count;
  }

  Vector<double> vector_, beside_;  // the second of a pair
  size_t next_ = 0;
};

}  // namespace

std::unique_ptr<Source> open_record(File file, const InputOptions& options, bool text) {
  if (!options.imag.empty() && !options.pair)
    throw UsageError(
        "--imag is for CSV columns and audio channels; a vector file says itself "
        "whether it is complex");
  if (!options.column.empty()) throw UsageError("--column is for CSV; " + options.file + " is a vector file");
  return std::make_unique<RecordSource>(std::move(file), options, text);
}

}  // namespace sigvex_tool
