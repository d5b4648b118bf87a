// The rows of a REDCap data dictionary.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// The columns, in the order in which they are downloaded.
enum class RedcapColumn {
  Name,
  Form,
  Section,
  Type,
  Label,
  Choices,
  Note,
  Validation,
  Minimum,
  Maximum,
  Identifier,
  Branching,
  Required,
  Alignment,
  QuestionNumber,
  MatrixGroup,
  MatrixRanking,
  Annotation
};
inline constexpr std::size_t kRedcapColumns = 18;

/// A row; columns that the file does not have are empty, and so are blanks around a cell.
struct RedcapRow {
  std::int64_t line = 0;
  std::array<std::string, kRedcapColumns> cells;
  const std::string& operator[](RedcapColumn column) const { return cells[static_cast<std::size_t>(column)]; }
};

struct RedcapTable {
  bool isDictionary = false;  // its header is that of one
  std::vector<RedcapRow> rows;
};

/// Throws DataError when the file cannot be read as CSV; of a file that is no dictionary the header alone is read.
RedcapTable ReadRedcapTable(const std::string& path, std::vector<Note>& notes);

}  // namespace runtime::data
