// A piece of a numeric column: the loops that nearly all cells go through.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/columntyper.h"
#include "runtime/data/typing/shortnumber.h"

namespace runtime::data {

inline bool IsBlank(std::string_view text) { return text.find_first_not_of(' ') == std::string_view::npos; }

/// What an empty cell is: system-missing, or to be looked at like others.
enum class BlankCells { Missing, ReadInFull };

class NumericPiece : public ColumnPiece {
 public:
  ColumnStorage storage() const override { return fValues.storage(); }
  const std::byte* cells() const override { return fValues.cells(); }
  std::size_t rows() const override { return fValues.rows(); }
  void Clear() override {
    const FieldType type = fFacts.type;
    fValues.Clear();
    fFacts = ColumnFacts();
    fFacts.type = type;
  }

  void End() override {
    fFacts.rows = static_cast<std::int64_t>(fValues.rows());
    fValues.AddFactsTo(fFacts.values);
  }
  /// Rows and lines count from the piece's begin. REQUIRES: End.
  const ColumnFacts& facts() const { return fFacts; }

 protected:
  static constexpr std::size_t kBatch = 256;

  // The three loops; `readInFull(text, row)` gives the value of a cell that is not of the common form, NaN when it is
  // system-missing. A loop ends early, and gives false, as soon as fGaveUp is set.

  /// Common form: up to 8 characters of a whole number.
  template <class ReadInFull>
  bool AppendWholeNumbers(const CellBlock& block, std::size_t column, BlankCells blanks, ReadInFull readInFull) {
    std::size_t row = blanks == BlankCells::Missing ? AppendCodes(block, column) : 0;
    std::int32_t batch[kBatch];
    std::size_t filled = 0;
    std::int64_t blankCells = 0;
    for (const Cell* cell = block.cells + row * block.stride + column; row < block.rows; ++row, cell += block.stride) {
      if (cell->size - 1 < 8 && ReadShortInteger(block.text + cell->begin, cell->size, batch[filled])) {
        ++filled;
      } else if (cell->size == 0 && blanks == BlankCells::Missing) {
        batch[filled++] = NumericPart::kNoInteger;
        ++blankCells;
      } else {
        AppendOther(batch, filled, readInFull(block.Text(*cell), row));
        if (fGaveUp) return false;
      }
      if (filled == kBatch) Flush(batch, filled);
    }
    Flush(batch, filled);
    fFacts.blankCells += blankCells;
    return true;
  }

  /// Common form: up to 16 digits, or a decimal point with digits before and behind it.
  template <class ReadInFull>
  bool AppendNumbers(const CellBlock& block, std::size_t column, BlankCells blanks, ReadInFull readInFull) {
    double batch[kBatch];
    std::size_t filled = 0;
    const Cell* cell = block.cells + column;
    ShortNumber number;
    int decimals = fFacts.decimals;
    for (std::size_t row = 0; row < block.rows; ++row, cell += block.stride) {
      if (cell->size - 1 < kMostOfShortNumber && ReadShortNumber(block.text + cell->begin, cell->size, number)) {
        batch[filled++] = number.value;
        decimals = std::max(decimals, number.decimals);
      } else if (cell->size == 0 && blanks == BlankCells::Missing) {
        batch[filled++] = std::numeric_limits<double>::quiet_NaN();
        ++fFacts.blankCells;
      } else {
        batch[filled++] = readInFull(block.Text(*cell), row);
        if (fGaveUp) return false;
      }
      if (filled == kBatch) Flush(batch, filled);
    }
    Flush(batch, filled);
    fFacts.decimals = std::max(fFacts.decimals, decimals);
    return true;
  }

  template <class ReadInFull>
  bool AppendInFull(const CellBlock& block, std::size_t column, ReadInFull readInFull) {
    double batch[kBatch];
    std::size_t filled = 0;
    const Cell* cell = block.cells + column;
    for (std::size_t row = 0; row < block.rows; ++row, cell += block.stride) {
      batch[filled++] = readInFull(block.Text(*cell), row);
      if (fGaveUp) return false;
      if (filled == kBatch) Flush(batch, filled);
    }
    Flush(batch, filled);
    return true;
  }

  NumericPart fValues;
  ColumnFacts fFacts;  // those of the values come at the end
  bool fGaveUp = false;

 private:
  /// Takes cells as long as they are codes or blank; their number.
  std::size_t AppendCodes(const CellBlock& block, std::size_t column) {
    const CodeTable& table = CodeTable::Get();
    std::int8_t codes[kBatch];
    const Cell* cell = block.cells + column;
    std::size_t row = 0;
    std::size_t filled = kBatch;
    while (row < block.rows && filled == kBatch) {
      const std::size_t most = std::min(kBatch, block.rows - row);
      std::int64_t blankCells = 0;
      for (filled = 0; filled < most; ++filled, cell += block.stride) {
        if (cell->size > 2) break;
        const std::int8_t code = table.Read(block.text + cell->begin, cell->size);
        if (code == CodeTable::kNoCode) break;
        codes[filled] = code;
        blankCells += code == CodeTable::kBlank ? 1 : 0;
      }
      fValues.AppendBytes(codes, filled);
      fFacts.blankCells += blankCells;
      row += filled;
    }
    return row;
  }

  void Flush(const std::int32_t* batch, std::size_t& filled) {
    fValues.AppendIntegers(batch, filled);
    filled = 0;
  }
  void Flush(const double* batch, std::size_t& filled) {
    fValues.AppendDoubles(batch, filled);
    filled = 0;
  }
  void AppendOther(std::int32_t* batch, std::size_t& filled, double value) {
    if (std::isnan(value)) {
      batch[filled++] = NumericPart::kNoInteger;
      return;
    }
    if (std::abs(value) <= std::numeric_limits<std::int32_t>::max() && std::trunc(value) == value) {
      batch[filled++] = static_cast<std::int32_t>(value);
      return;
    }
    Flush(batch, filled);
    fValues.AppendDoubles(&value, 1);
  }
};

}  // namespace runtime::data
