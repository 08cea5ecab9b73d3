// What ends a command: the message of either is printed as one line on the standard error.
#pragma once

#include <stdexcept>

namespace sigvex_tool {

// The input, the output or the machine is at fault: exit status 1.
struct DataError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The command line is at fault: exit status 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace sigvex_tool
