// A file's cells as texts.
#pragma once

#include <string>
#include <vector>

namespace cells {

using Row = std::vector<std::string>;

/// What a reader made of a file: rows of equal length, the header as the first of them; or why it refused the file.
struct Table {
  std::vector<Row> rows;
  std::string problem;

  bool isRead() const { return problem.empty(); }
};

}  // namespace cells
