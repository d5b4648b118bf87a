// What scanning hands to typing: the cells of some rows, cut out of the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace runtime::data {

/// Cells stand row by row, each row `columns` of them: the cell of a column is every `columns`-th. Not owned; the texts
/// are valid until the next block is scanned.
struct CellBlock {
  const std::string_view* cells = nullptr;
  std::size_t columns = 0;
  std::size_t rows = 0;
  std::int64_t firstRow = 0;            // of the data, from 0
  const std::int64_t* lines = nullptr;  // of each row: the line of the file in which it begins, from 1; null: no lines
  std::string_view source;              // the file, for messages

  std::string_view Cell(std::size_t row, std::size_t column) const { return cells[row * columns + column]; }
};

}  // namespace runtime::data
