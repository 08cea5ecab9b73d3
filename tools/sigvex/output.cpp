#include "output.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "text.h"

namespace sigvex_tool {
namespace {

// The temporary files of this process, for the signal handler; a free place holds an empty string.
std::array<char[4096], 4> temporaries;

void remove_and_die(int signal) {
  for (const auto& name : temporaries)
    if (name[0]) unlink(name);
  ::signal(signal, SIG_DFL);
  raise(signal);
}

void remember(const std::string& name) {
  for (int s : {SIGINT, SIGTERM, SIGHUP}) signal(s, remove_and_die);
  for (auto& place : temporaries)
    if (!place[0]) {
      std::strncpy(place, name.c_str(), sizeof place - 1);
      return;
    }
}

void forget(const std::string& name) {
  for (auto& place : temporaries)
    if (name == place) place[0] = '\0';
}

struct VectorFormat {
  const char* name;
  uint32_t flags;
};
constexpr VectorFormat kVectorFormats[] = {{"binary", 0}, {"dsp", 1}, {"summary", 2}, {"gnuplot", 3}, {"trace", 4}};

}  // namespace

OutputFile::OutputFile(const std::string& name) : name_(name), target_(name) {
  if (name.empty() || name == "-") {
    name_ = "standard output";
    stream_ = stdout;
    return;
  }
  // A link stays a link: what it points to is replaced.
  if (char* real = realpath(name.c_str(), nullptr)) {
    target_ = real;
    std::free(real);
  }
  struct stat status {};
  const bool exists = stat(target_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) throw DataError(name_ + ": is a directory");
  if (exists && !S_ISREG(status.st_mode)) {
    stream_ = std::fopen(target_.c_str(), "wb");
    if (!stream_) fail();
    return;
  }
  if (exists && access(target_.c_str(), W_OK) != 0) fail();
  temporary_ = target_ + ".XXXXXX";
  const int descriptor = mkstemp(temporary_.data());
  if (descriptor < 0) {
    temporary_.clear();
    fail();
  }
  remember(temporary_);
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(descriptor, exists ? status.st_mode & 07777 : 0666 & ~mask);
  stream_ = fdopen(descriptor, "w+b");
}

OutputFile::~OutputFile() {
  if (stream_ && stream_ != stdout) std::fclose(stream_);
  if (temporary_.empty()) return;
  unlink(temporary_.c_str());
  forget(temporary_);
}

void OutputFile::fail() const { throw DataError(name_ + ": " + std::strerror(errno)); }

void OutputFile::write(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) fail();
}

void OutputFile::commit() {
  if (std::fflush(stream_) != 0 || std::ferror(stream_)) fail();
  if (temporary_.empty()) return;
  const int closed = std::fclose(std::exchange(stream_, nullptr));
  if (closed != 0 || std::rename(temporary_.c_str(), target_.c_str()) != 0) fail();
  forget(temporary_);
  temporary_.clear();
}

std::string csv_cell(const std::string& text) {
  if (text.find_first_of(",\"") == text.npos) return text;
  std::string out(1, '"');
  for (char c : text) out.append(c == '"' ? 2 : 1, c);
  out += '"';
  return out;
}

void write_csv(OutputFile& out, const std::vector<std::string>& names,
               const std::vector<const std::vector<double>*>& columns) {
  std::string line;
  for (const std::string& name : names) {
    if (!line.empty()) line += ',';
    line += csv_cell(name);
  }
  out.write(line + "\n");
  for (size_t k = 0; k < columns[0]->size(); ++k) {
    line.clear();
    for (const auto* column : columns) {
      if (!line.empty()) line += ',';
      append_number(line, (*column)[k]);
    }
    out.write(line += '\n');
  }
}

bool is_vector_format(const std::string& name) {
  for (const VectorFormat& format : kVectorFormats)
    if (name == format.name) return true;
  return false;
}

void write_vector(OutputFile& out, const Vector<double>& vector, const std::string& format, bool single,
                  uint32_t parts) {
  uint32_t flags = 0;
  for (const VectorFormat& known : kVectorFormats)
    if (format == known.name) flags = known.flags | parts;
  int32_t status = 0;
  if (single) {
    Vector<float> narrow;
    if (parts & DSP_FILE_NO_DATA) {
      narrow.points = vector.points;
      narrow.complex = vector.complex;
      narrow.delta = static_cast<float>(vector.delta);
    } else {
      check(dspu_tof(&vector, &narrow), "the conversion to single precision");
    }
    status = dspff_fwrite2(&narrow, out.stream(), flags);
  } else {
    status = dspf_fwrite2(&vector, out.stream(), flags);
  }
  if (status < 0) throw DataError("the result could not be written: " + std::string(std::strerror(errno)));
}

}  // namespace sigvex_tool
