// CSV and plain columns of numbers. Delimiter, header, decimal comma and time column are found in the first lines; the
// values are then read line by line, so that the length of a file does not matter.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "errors.h"
#include "source.h"
#include "text.h"

namespace sigvex_tool {
namespace {

using Cells = std::vector<std::string_view>;

// The next line that is neither blank nor a comment; false at the end.
class Lines {
 public:
  explicit Lines(File file, std::string name) : file_(std::move(file)), name_(std::move(name)) {}
  ~Lines() { std::free(buffer_); }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  bool next(std::string_view& line) {
    for (;;) {
      const ssize_t length = getline(&buffer_, &capacity_, file_.get());
      if (length < 0) {
        if (std::ferror(file_.get())) throw DataError(name_ + ": " + std::strerror(errno));
        return false;
      }
      line = std::string_view(buffer_, static_cast<size_t>(length));
      if (++number_ == 1 && line.starts_with("\xef\xbb\xbf")) line.remove_prefix(3);
      while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
      if (!trimmed(line).empty() && !trimmed(line).starts_with('#')) return true;
    }
  }
  void rewind() {
    std::rewind(file_.get());
    number_ = 0;
  }
  size_t number() const { return number_; }

 private:
  File file_;
  std::string name_;
  char* buffer_ = nullptr;
  size_t capacity_ = 0, number_ = 0;
};

// Cells of a line; a blank as delimiter stands for any run of blanks, 0 for none. Quotes protect a delimiter.
void split(std::string_view line, char delimiter, Cells& cells) {
  cells.clear();
  if (delimiter == ' ') line = trimmed(line);
  for (size_t start = 0; start <= line.size();) {
    size_t end = start;
    for (bool inside = false; end < line.size(); ++end) {
      if (line[end] == '"') inside = !inside;
      const bool blank = delimiter == ' ' && line[end] == '\t';
      if (!inside && delimiter && (line[end] == delimiter || blank)) break;
    }
    std::string_view cell = trimmed(line.substr(start, end - start));
    if (cell.size() >= 2 && cell.front() == '"' && cell.back() == '"') cell = cell.substr(1, cell.size() - 2);
    cells.push_back(cell);
    start = end + 1;
    if (delimiter == ' ')
      while (start < line.size() && (line[start] == ' ' || line[start] == '\t')) ++start;
  }
}

// A cell as a number, a decimal comma included where a comma does not separate cells.
std::optional<double> cell_number(std::string_view cell, char delimiter) {
  const size_t comma = cell.find(',');
  if (delimiter == ',' || comma == cell.npos) return to_number(cell);
  std::string copy(cell);
  copy[comma] = '.';
  return to_number(copy);
}

// The delimiter that cuts all lines into the same number of cells, two or more. Where several do, the one that is never
// part of a number comes first: "1,5;2,5" is two numbers.
char find_delimiter(const std::vector<std::string>& lines) {
  Cells cells;
  for (char delimiter : {'\t', ';', ',', '|', ' '}) {
    size_t width = 0;
    const bool same = std::all_of(lines.begin(), lines.end(), [&](const std::string& line) {
      split(line, delimiter, cells);
      if (width == 0) width = cells.size();
      return cells.size() == width;
    });
    if (same && width > 1) return delimiter;
  }
  return '\0';
}

char delimiter_of(const std::string& text) {
  if (text == "tab" || text == "\\t") return '\t';
  if (text == "space") return ' ';
  if (text.size() == 1) return text[0];
  throw UsageError("--delimiter " + in_quotes(text) + ": give one character, or tab, or space");
}

struct TimeUnit {
  const char* name;
  double seconds;
};
constexpr TimeUnit kTimeUnits[] = {{"s", 1},     {"ms", 1e-3}, {"us", 1e-6}, {"\xc2\xb5s", 1e-6},
                                   {"ns", 1e-9}, {"min", 60},  {"h", 3600}};

// The name in a cell, where a quote within quotes is written twice.
std::string name_in(std::string_view cell) {
  std::string name(cell);
  for (size_t at = 0; (at = name.find("\"\"", at)) != name.npos; ++at) name.erase(at, 1);
  return name;
}

// "U (mV)" and "U [mV]" carry their unit.
std::string unit_in(std::string_view label) {
  if (!label.ends_with(')') && !label.ends_with(']')) return {};
  const size_t open = label.rfind(label.back() == ')' ? '(' : '[');
  return open == label.npos ? std::string{} : std::string(trimmed(label.substr(open + 1, label.size() - open - 2)));
}

class CsvSource : public Source {
 public:
  CsvSource(File file, const InputOptions& options) : lines_(std::move(file), options.file) {
    info_.name = options.file;
    info_.time_unit = "sample";
    look_ahead(options);
    choose_columns(options);
    if (!options.rate && !options.delta) find_time_column();
    lines_.rewind();
    std::string_view line;
    if (has_header_) lines_.next(line);
  }

 private:
  static constexpr size_t kLookAhead = 64;

  void look_ahead(const InputOptions& o) {
    std::string_view line;
    while (sample_.size() < kLookAhead && lines_.next(line)) sample_.emplace_back(line);
    if (sample_.empty()) throw DataError(info_.name + ": holds no data line");
    delimiter_ = o.delimiter.empty() ? find_delimiter(sample_) : delimiter_of(o.delimiter);

    Cells first, second;
    split(sample_[0], delimiter_, first);
    width_ = first.size();
    if (sample_.size() > 1) split(sample_[1], delimiter_, second);
    has_header_ = o.header == "yes";
    if (o.header == "auto")
      for (size_t c = 0; c < std::min(first.size(), second.size()); ++c)
        has_header_ |= !cell_number(first[c], delimiter_) && cell_number(second[c], delimiter_);
    if (has_header_) std::transform(first.begin(), first.end(), std::back_inserter(names_), name_in);
    else second = first;
    if (has_header_ && !delimiter_ && o.delimiter.empty()) refuse_ragged_lines();

    for (size_t c = 0; c < second.size(); ++c)
      if (cell_number(second[c], delimiter_)) numeric_.push_back(c);
    if (has_header_) sample_.erase(sample_.begin());
    if (sample_.empty()) throw DataError(info_.name + ": holds column names and no data line");
    if (numeric_.empty() && o.column.empty())
      throw DataError(info_.name + format(": line %d: no number in ", has_header_ ? 2 : 1) + in_quotes(sample_[0]));
  }

  // Commas between the names, and not as many in every line: a cell is missing, or they are decimal commas.
  void refuse_ragged_lines() const {
    Cells cells;
    split(sample_[0], ',', cells);
    if (cells.size() > 1)
      throw DataError(info_.name +
                      format(": line 1 has %zu columns, a line behind it not; give --delimiter", cells.size()));
  }

  void choose_columns(const InputOptions& o) {
    time_ = rising_in_equal_steps() ? 0 : -1;
    if (!o.column.empty()) columns_.push_back(column(o.column));
    else
      for (size_t c : numeric_)
        if (static_cast<int>(c) != time_ && (columns_.empty() || (o.all_channels && o.imag.empty())))
          columns_.push_back(c);
    if (!o.imag.empty()) {
      columns_.push_back(column(o.imag));
      info_.complex = !o.pair;
    }
    if (o.channel > 0) throw UsageError("--channel is for audio and vector files; " + o.file + " is CSV: use --column");
    if (columns_[0] == 0) time_ = -1;

    info_.channels = columns_.size();
    info_.file_channels = numeric_.size() - (time_ == 0);
    info_.kind = delimiter_ ? format("CSV, %zu columns", width_) : "text, one number a line";
    if (delimiter_ && delimiter_ != ',')
      info_.kind += delimiter_ == '\t' ? ", tab" : delimiter_ == ' ' ? ", blanks" : format(", '%c'", delimiter_);
    for (size_t c : columns_)
      info_.labels.push_back(has_header_ && c < names_.size() ? names_[c] : format("column %zu", c + 1));
    info_.unit = unit_in(info_.labels[0]);
  }

  size_t column(const std::string& wanted) const {
    for (size_t c = 0; c < names_.size(); ++c)
      if (names_[c] == wanted) return c;
    for (size_t c = 0; c < names_.size(); ++c)
      if (equal_ignoring_case(names_[c], wanted)) return c;
    const std::optional<double> number = to_number(wanted);
    if (number && *number >= 1 && *number <= static_cast<double>(width_) && *number == std::floor(*number))
      return static_cast<size_t>(*number) - 1;
    std::string known;
    for (const std::string& name : names_) known += (known.empty() ? " (" : ", ") + name;
    throw DataError(info_.name + ": no column " + in_quotes(wanted) + format(" among %zu", width_) +
                    (known.empty() ? known : known + ")"));
  }

  // Whether the first of several numeric columns counts up steadily, as time does: no value strays by half a step.
  bool rising_in_equal_steps() {
    if (numeric_.size() < 2 || numeric_[0] != 0 || sample_.size() < 3) return false;
    std::vector<double> t;
    Cells cells;
    for (const std::string& line : sample_) {
      split(line, delimiter_, cells);
      t.push_back(cell_number(cells[0], delimiter_).value_or(NAN));
    }
    const double step = (t.back() - t.front()) / static_cast<double>(t.size() - 1);
    for (size_t k = 0; k < t.size(); ++k)
      if (!(step > 0) || !(std::fabs(t[k] - t.front() - static_cast<double>(k) * step) < 0.5 * step)) return false;
    return true;
  }

  // The spacing is taken over the whole file, because the times in it are rounded.
  void find_time_column() {
    if (time_ != 0) return;
    lines_.rewind();
    std::string_view line;
    if (has_header_) lines_.next(line);
    Cells cells;
    double first = 0, last = 0;
    uint64_t count = 0;
    while (lines_.next(line)) {
      split(line, delimiter_, cells);
      last = number(cells, 0);
      if (count++ == 0) first = last;
    }
    info_.frames = count;
    info_.time_unit = "s";
    double scale = 1;
    for (const TimeUnit& unit : kTimeUnits)
      if (has_header_ && unit_in(names_[0]) == unit.name) scale = unit.seconds;
    start_ = first;
    step_ = (last - first) / static_cast<double>(count - 1);
    info_.delta = step_ * scale;
  }

  double number(const Cells& cells, size_t c) const {
    if (c < cells.size())
      if (const std::optional<double> value = cell_number(cells[c], delimiter_)) return *value;
    const std::string reason = c >= cells.size()  ? format("only %zu of %zu columns", cells.size(), width_)
                               : cells[c].empty() ? "empty cell"
                                                  : in_quotes(cells[c]) + " is not a number";
    throw DataError(info_.name + format(": line %zu, column %zu: ", lines_.number(), c + 1) + reason);
  }

  size_t fetch(double* out, size_t frames) override {
    std::string_view line;
    size_t done = 0;
    for (; done < frames && lines_.next(line); ++done) {
      split(line, delimiter_, cells_);
      for (size_t c : columns_) *out++ = number(cells_, c);
      if (step_ > 0) check_time();
      ++position_;
    }
    return done;
  }

  void check_time() const {
    const double time = number(cells_, 0), due = start_ + static_cast<double>(position_) * step_;
    if (!(std::fabs(time - due) < 0.5 * step_))
      throw DataError(info_.name +
                      format(": line %zu, column 1: the time is %g where equal steps lead to %g; give --rate or "
                             "--delta to take the samples as equally spaced",
                             lines_.number(), time, due));
  }

  Lines lines_;
  std::vector<std::string> sample_, names_;
  std::vector<size_t> numeric_, columns_;
  Cells cells_;
  size_t width_ = 1;
  char delimiter_ = '\0';
  bool has_header_ = false;
  int time_ = -1;
  double start_ = 0, step_ = 0;
  uint64_t position_ = 0;
};

}  // namespace

std::unique_ptr<Source> open_csv(File file, const InputOptions& options) {
  return std::make_unique<CsvSource>(std::move(file), options);
}

}  // namespace sigvex_tool
