#include "rows.h"

#include <algorithm>

namespace sigvex_tool {

std::string Rows::text() const {
  std::string out;
  std::vector<size_t> width(alignment_.size());
  for (const auto& row : rows_)
    for (size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
  for (const auto& row : rows_) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string blanks(width[c] - row[c].size(), ' ');
      const bool right = alignment_[c] == 'r';
      line += (c ? (right ? "  " : " ") : "") + (right ? blanks + row[c] : row[c] + blanks);
    }
    out += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return out;
}

}  // namespace sigvex_tool
