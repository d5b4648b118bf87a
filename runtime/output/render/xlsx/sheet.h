// One kind of rows of a workbook: a sheet, and further ones where it is full.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/model/report.h"
#include "runtime/output/render/xlsx/workbook.h"

namespace runtime::output {

struct SheetCell {
  enum class Kind : std::uint8_t { Blank, Text, Number };

  Kind kind = Kind::Blank;
  std::string text;
  double number = 0.0;  // finite
  CellLook look;
  std::string link;  // of a text: where it leads, from CellPlace::Link; empty: nowhere

  static SheetCell Text(std::string_view text, CellLook::Face face = CellLook::Face::Plain);
  static SheetCell Number(double number, std::string format);
  /// A label or a cell: as a number where a workbook can show it as the text shows it, otherwise the text.
  static SheetCell Of(const CellContent& content, CellLook::Face face = CellLook::Face::Plain);
  /// The number that a text stands for which Of makes of a content; blank when there is none.
  static SheetCell NumberBehind(const CellContent& content);
};

/// How many rows and links a sheet can have.
struct SheetLimits {
  std::uint32_t rows = 1'048'576;
  std::uint32_t links = 65'530;
};

class Sheet {
 public:
  /// A sheet with a head has it frozen and repeated on further sheets, and its rows can be filtered. `frozenColumns`
  /// stay in sight too.
  Sheet(Workbook& workbook, std::string_view name, std::vector<SheetCell> head, std::uint16_t frozenColumns,
        const SheetLimits& limits);

  /// Writes the next row; tells where its first cell stands.
  CellPlace AddRow(const std::vector<SheetCell>& cells);
  /// Rows so far, of all its sheets.
  std::size_t rows() const { return fRows; }
  /// Where the next row will stand.
  CellPlace Next();
  /// The rows from this place to the last one can be filtered by the first of them. Goes without where further sheets
  /// were begun since.
  void FilterFrom(const CellPlace& head, std::uint16_t columns);
  /// To be called behind the last row: widths of columns, filters.
  void Finish();

 private:
  void BeginSheet();
  void EndSheet();
  void WriteRow(const std::vector<SheetCell>& cells);
  void WriteText(const SheetCell& cell, std::uint16_t column);
  void Widen(std::uint16_t column, const SheetCell& cell);

  Workbook& fWorkbook;
  std::string fName;
  std::vector<SheetCell> fHead;
  std::uint16_t fFrozenColumns;
  SheetLimits fLimits;
  std::vector<lxw_worksheet*> fSheets;
  CellPlace fNext;
  std::size_t fRows = 0;
  std::uint32_t fLinks = 0;  // on the last sheet
  std::vector<int> fWidths;
};

}  // namespace runtime::output
