// A table of text.
#pragma once

#include <string>
#include <vector>

namespace sigvex_tool {

class Rows {
 public:
  // For each column r (to the right, as numbers stand) or l, which stands close to the column before it.
  explicit Rows(std::string alignment) : alignment_(std::move(alignment)) {}
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  // Columns as wide as their widest cell.
  std::string text() const;

 private:
  std::string alignment_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace sigvex_tool
