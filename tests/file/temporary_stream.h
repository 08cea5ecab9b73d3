// A temporary stream that tests write, rewind and look into.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "support/twin.h"

namespace sigvex_test {

class Stream {
 public:
  Stream() : file_(std::tmpfile()) {}
  explicit Stream(std::string_view contents) : Stream() {
    EXPECT_EQ(std::fwrite(contents.data(), 1, contents.size(), file_), contents.size());
    std::rewind(file_);
  }
  ~Stream() { std::fclose(file_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  operator FILE*() { return file_; }
  // Everything from the present position on.
  std::string rest() {
    std::string text;
    for (int c; (c = std::getc(file_)) != EOF;) text += static_cast<char>(c);
    return text;
  }
  // Everything from the beginning.
  std::string text() {
    std::rewind(file_);
    return rest();
  }

 private:
  FILE* file_;
};

}  // namespace sigvex_test
