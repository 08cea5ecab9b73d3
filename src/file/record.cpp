// dspf_fread dspf_fwrite
#include <algorithm>
#include <bit>
#include <cstdio>
#include <iterator>
#include <type_traits>

#include "core/exports.h"
#include "core/scratch.h"
#include "file/input.h"
#include "file/operations.h"

namespace sigvex {
namespace {

constexpr uint32_t kMagic = 0xEB0330BE;
constexpr int kFirstByte = kMagic & 0xFF, kFirstByteSwapped = kMagic >> 24;  // of every kind; no text begins with them
constexpr uint32_t kOldMagicDouble = 0xEB0110BE, kOldMagicFloat = 0xEB0220BE;  // without a format word
constexpr uint32_t kFormat = 0x0400;                                           // plus the size of a value

// A claimed count up to this many points is believed at once; beyond it storage follows the data that really arrive.
constexpr int32_t kTrustedPoints = 1 << 20;

// Reverses the bytes of one field or value.
template <class V> V reversed(V value) {
  auto* const bytes = reinterpret_cast<unsigned char*>(&value);
  std::reverse(bytes, bytes + sizeof(V));
  return value;
}

// A binary record as it comes from the stream, in either byte order and with values of either size.
class RecordReader {
 public:
  explicit RecordReader(std::FILE& stream) : stream_(stream) {}

  // The magic and, in the present form, the format word.
  bool read_kind() {
    uint32_t magic = 0;
    if (!field(magic)) return false;
    swapped_ = (magic & 0xFF) == kFirstByteSwapped;
    if (swapped_) magic = reversed(magic);
    if (magic == kMagic) {
      uint32_t format = 0;
      if (!field(format)) return false;
      value_size_ = format & 0xFF;
      return true;
    }
    value_size_ = magic == kOldMagicDouble ? sizeof(double) : sizeof(float);
    return magic == kOldMagicDouble || magic == kOldMagicFloat;
  }

  bool field(auto& value) {
    auto read = value;
    if (std::fread(&read, sizeof read, 1, &stream_) != 1) return false;
    value = swapped_ ? reversed(read) : read;
    return true;
  }

  // Up to n values into the vector's precision; how many came whole.
  template <class T> size_t values(T* out, size_t n) {
    if (value_size_ == sizeof(double)) return values_of<double>(out, n);
    if (value_size_ == sizeof(float)) return values_of<float>(out, n);
    return 0;
  }

 private:
  template <class Stored, class T> size_t values_of(T* out, size_t n) {
    if constexpr (std::is_same_v<Stored, T>) {
      const size_t came = n > 0 ? std::fread(out, sizeof(T), n, &stream_) : 0;
      if (swapped_) std::transform(out, out + came, out, reversed<T>);
      return came;
    } else {
      Stored block[1024];
      size_t done = 0;
      while (done < n) {
        const size_t wanted = std::min(n - done, std::size(block)), came = values_of<Stored>(block, wanted);
        std::transform(block, block + came, out + done, [](Stored x) { return static_cast<T>(x); });
        done += came;
        if (came < wanted) break;
      }
      return done;
    }
  }

  std::FILE& stream_;
  bool swapped_ = false;
  size_t value_size_ = 0;
};

// The count, form and delta as they come, into the vector's fields.
template <class T> bool read_fields(RecordReader& in, Vector<T>& v) {
  T delta;
  if (!in.read_kind() || !in.field(v.points) || !in.field(v.complex) || in.values(&delta, 1) != 1) return false;
  v.delta = delta;
  return true;
}

// Keeps the fields and the first `came` values of a record that ends too early, if its claimed count is a credible one:
// whatever they say is then backed by storage.
template <class T> Status cut_short(Vector<T>& v, size_t came) {
  if (v.points > kTrustedPoints) return exhausted<T>(v);
  SIGVEX_TRY(dsp::alloc<T>(v));
  std::fill(v.data + came, v.data + size<T>(v), T(0));
  return kFailure;
}

template <class T> Status read_record(Vector<T>& v, std::FILE& stream) {
  RecordReader in(stream);
  if (!read_fields<T>(in, v)) return cut_short<T>(v, 0);
  const int32_t claimed = v.points;
  if (!fits(size<T>(v))) return exhausted<T>(v);
  v.points = std::min(claimed, kTrustedPoints);
  SIGVEX_TRY(dsp::alloc<T>(v));
  size_t came = in.values(v.data, size<T>(v));
  while (came == size<T>(v) && v.points < claimed) {
    SIGVEX_TRY(reshape<T>(v, std::min<size_t>(claimed, 2 * points<T>(v)), v.complex));
    came += in.values(v.data + came, size<T>(v) - came);
  }
  if (came == size<T>(v)) return kRead;
  v.points = claimed;
  return cut_short<T>(v, came);
}

// The first byte that is not white space, which is left in the stream: a binary record may follow the line end behind
// the last value of a text record. White space with nothing behind it is the text of an empty record.
int first_byte(std::FILE& stream) {
  StreamText in(stream);
  const int first = in.next();
  const int visible = is_space(first) ? next_visible(in) : first;
  return visible == EOF && in.at_end() ? first : in.back(visible);
}

}  // namespace

template <class T> Status write_record(const Vector<T>& v, std::FILE& stream, Pieces pieces) {
  const auto put = [&stream](const auto* items, size_t n) {
    return n == 0 || std::fwrite(items, sizeof *items, n, &stream) == n;
  };
  const uint32_t kind[] = {kMagic, kFormat + sizeof(T)};
  const int32_t form[] = {v.points, v.complex};
  if (pieces.header && !(put(kind, 2) && put(form, 2) && put(&v.delta, 1))) return kFailure;
  return !pieces.data || put(v.data, size<T>(v)) ? kSuccess : kFailure;
}

template Status write_record<double>(const Vector<double>&, std::FILE&, Pieces);
template Status write_record<float>(const Vector<float>&, std::FILE&, Pieces);

namespace dspf {

template <class T> Status fread(Vector<T>& v, std::FILE& stream) {
  v.points = 0;
  const int first = first_byte(stream);
  if (first == EOF) return std::feof(&stream) ? kEnd : kFailure;
  return first == kFirstByte || first == kFirstByteSwapped ? read_record<T>(v, stream) : read_text<T>(v, stream);
}

template <class T> Status fwrite(const Vector<T>& v, std::FILE& stream) { return write_record<T>(v, stream, {}); }

}  // namespace dspf
}  // namespace sigvex

SIGVEX_EXPORT(f, fread, 2)
SIGVEX_EXPORT(f, fwrite, 2)
