#include "runtime/output/render/xlsx/sheet.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <xlsxwriter.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/textwidth.h"
#include "runtime/output/render/xlsx/numberformat.h"

namespace runtime::output {
namespace {

constexpr int kNarrowest = 8;  // columns, in characters
constexpr int kWidest = 60;
constexpr int kBesideText = 2;          // room for the border, and some of the filter's button
constexpr std::size_t kMeasured = 400;  // bytes of a text; what lies behind is wrapped anyway

/// Greater ones are not read back by every reader once they are rounded to 16 digits.
constexpr double kGreatestNumber = 9.99999999999999e307;

bool CanBeNumber(double number) { return std::isfinite(number) && std::fabs(number) <= kGreatestNumber; }

bool HasNumber(const CellContent& content) {
  return content.kind == CellContent::Kind::Number ||
         (content.kind == CellContent::Kind::DataValue && !content.origin->isString);
}

int LineWidth(std::string_view line) { return IsPlainAscii(line) ? static_cast<int>(line.size()) : DisplayWidth(line); }

int WidthOf(std::string_view text) {
  text = text.substr(0, kMeasured);
  int width = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    width = std::max(width, LineWidth(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return width;
}

}  // namespace

SheetCell SheetCell::Text(std::string_view text, CellLook::Face face) {
  SheetCell cell;
  cell.kind = Kind::Text;
  cell.text = text;
  cell.look.face = face;
  return cell;
}

SheetCell SheetCell::Number(double number, std::string format) {
  SheetCell cell;
  cell.kind = Kind::Number;
  cell.number = number;
  cell.look.numberFormat = std::move(format);
  return cell;
}

SheetCell SheetCell::Of(const CellContent& content, CellLook::Face face) {
  if (!HasNumber(content) || !CanBeNumber(content.number)) return Text(content.text, face);
  std::string format = WorkbookNumberFormat(content.format);
  if (format.empty()) return Text(content.text, face);
  SheetCell cell = Number(content.number, std::move(format));
  cell.text = content.text;  // for the width of its column
  cell.look.face = face;
  return cell;
}

SheetCell SheetCell::NumberBehind(const CellContent& content) {
  const bool shownAsText = HasNumber(content) && WorkbookNumberFormat(content.format).empty();
  if (!shownAsText || !CanBeNumber(content.number)) return {};
  return Number(content.number, "General");
}

Sheet::Sheet(Workbook& workbook, std::string_view name, std::vector<SheetCell> head, std::uint16_t frozenColumns,
             const SheetLimits& limits)
    : fWorkbook(workbook), fName(name), fHead(std::move(head)), fFrozenColumns(frozenColumns), fLimits(limits) {
  BeginSheet();
}

void Sheet::BeginSheet() {
  fSheets.push_back(fWorkbook.AddSheet(fName, fNext.sheet));
  fNext.row = 0;
  fLinks = 0;
  if (fHead.empty()) return;
  worksheet_freeze_panes(fSheets.back(), 1, fFrozenColumns);
  WriteRow(fHead);
}

void Sheet::EndSheet() {
  if (fHead.empty()) return;
  const auto lastColumn = static_cast<lxw_col_t>(fHead.size() - 1);
  CheckWorkbook(worksheet_autofilter(fSheets.back(), 0, 0, fNext.row - 1, lastColumn));
}

CellPlace Sheet::Next() {
  if (fNext.row >= fLimits.rows) {
    EndSheet();
    BeginSheet();
  }
  return fNext;
}

CellPlace Sheet::AddRow(const std::vector<SheetCell>& cells) {
  CellPlace place = Next();
  WriteRow(cells);
  ++fRows;
  return place;
}

void Sheet::WriteRow(const std::vector<SheetCell>& cells) {
  std::uint16_t column = 0;
  for (const SheetCell& cell : cells) {
    switch (cell.kind) {
      case SheetCell::Kind::Blank:
        break;
      case SheetCell::Kind::Text:
        WriteText(cell, column);
        break;
      case SheetCell::Kind::Number:
        CheckWorkbook(
            worksheet_write_number(fSheets.back(), fNext.row, column, cell.number, fWorkbook.Look(cell.look)));
        break;
    }
    Widen(column, cell);
    ++column;
  }
  ++fNext.row;
}

void Sheet::WriteText(const SheetCell& cell, std::uint16_t column) {
  lxw_worksheet* const sheet = fSheets.back();
  CellPlace place = fNext;
  place.column = column;
  const std::string text = fWorkbook.Fit(cell.text, place);
  CellLook look = cell.look;
  if (!cell.link.empty() && fLinks < fLimits.links) {
    ++fLinks;
    look.isLink = true;
    CheckWorkbook(worksheet_write_url(sheet, place.row, column, cell.link.c_str(), fWorkbook.Look(look)));
  }
  CheckWorkbook(worksheet_write_string(sheet, place.row, column, text.c_str(), fWorkbook.Look(look)));
}

void Sheet::Widen(std::uint16_t column, const SheetCell& cell) {
  if (cell.look.face == CellLook::Face::Title) return;  // reaches beyond its column
  if (column >= fWidths.size()) fWidths.resize(column + 1U, kNarrowest);
  if (fWidths[column] >= kWidest) return;
  fWidths[column] = std::clamp(WidthOf(cell.text) + kBesideText, fWidths[column], kWidest);
}

void Sheet::FilterFrom(const CellPlace& head, std::uint16_t columns) {
  if (head.sheet != fNext.sheet || fNext.row == 0) return;
  const auto lastColumn = static_cast<lxw_col_t>(columns - 1);
  CheckWorkbook(worksheet_autofilter(fSheets.back(), head.row, 0, fNext.row - 1, lastColumn));
}

void Sheet::Finish() {
  EndSheet();
  for (lxw_worksheet* const sheet : fSheets) {
    for (std::size_t column = 0; column < fWidths.size(); ++column) {
      const auto at = static_cast<lxw_col_t>(column);
      CheckWorkbook(worksheet_set_column(sheet, at, at, fWidths[column], nullptr));
    }
    if (fWidths.empty()) continue;
    // Texts that look like numbers are texts: "007" is not 7.
    std::string all = "A1:";
    all += CellPlace{"", fLimits.rows - 1, static_cast<std::uint16_t>(fWidths.size() - 1)}.Name();
    CheckWorkbook(worksheet_ignore_errors(sheet, LXW_IGNORE_NUMBER_STORED_AS_TEXT, all.c_str()));
  }
}

}  // namespace runtime::output
