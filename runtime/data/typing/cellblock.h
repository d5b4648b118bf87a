// What scanning hands to typing: the cells of some rows, cut out of the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace runtime::data {

/// A cell as a place in the text of its block: `size` characters from `begin` on. Where its characters do not stand
/// there as they are to be read (doubled quotes), or where it is very long, kOwnText is set in `size` and `begin` is an
/// index into the block's own texts; such a size is larger than that of any other cell.
struct Cell {
  static constexpr std::uint32_t kOwnText = std::uint32_t{1} << 31;

  std::uint32_t begin = 0;
  std::uint32_t size = 0;
};

/// Cells stand row by row: the cell of a row and column is cells[row * stride + column]. Nothing is owned; all is valid
/// until the next block is scanned.
struct CellBlock {
  /// So many bytes from the begin of any cell without an own text can be read, whatever its size.
  static constexpr std::size_t kReadAhead = 32;

  const char* text = nullptr;
  const Cell* cells = nullptr;
  std::size_t stride = 0;  // at least `columns`
  std::size_t columns = 0;
  std::size_t rows = 0;
  const std::string_view* ownTexts = nullptr;
  std::int64_t firstRow = 0;            // from 0: of the data, or of the part of it that is read on its own
  const std::int64_t* lines = nullptr;  // of each row: the line in which it begins, from 0 likewise; null: no lines
  std::string_view source;              // the file, for messages

  std::string_view Text(const Cell& cell) const {
    if ((cell.size & Cell::kOwnText) != 0) return ownTexts[cell.begin];
    return {text + cell.begin, cell.size};
  }
  std::string_view Text(std::size_t row, std::size_t column) const { return Text(cells[row * stride + column]); }
};

}  // namespace runtime::data
