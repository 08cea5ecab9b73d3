// dspf_fopen dspf_fclose
#include <cstdio>
#include <string_view>
#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#include "core/exports.h"

namespace sigvex {
namespace {

// Only where text and binary streams differ is there anything to switch.
void set_binary([[maybe_unused]] std::FILE& stream) {
#if defined(_WIN32)
  _setmode(_fileno(&stream), _O_BINARY);
#endif
}

std::FILE* standard_stream(std::string_view mode) {
  std::FILE* const stream = mode.starts_with('r') ? stdin : mode.starts_with('w') ? stdout : nullptr;
  if (stream && mode.substr(1, 2).find('b') != mode.npos) set_binary(*stream);
  return stream;
}

}  // namespace

namespace dspf {

template <class> std::FILE* fopen(const char* name, const char* mode) {
  if (!name || !mode) return nullptr;
  return name == std::string_view("-") ? standard_stream(mode) : std::fopen(name, mode);
}

template <class> Status fclose(std::FILE& stream) {
  return &stream == stdin || &stream == stdout ? kSuccess : std::fclose(&stream);
}

}  // namespace dspf
}  // namespace sigvex

SIGVEX_EXPORT(f, fopen, 2)
SIGVEX_EXPORT(f, fclose, 1)
