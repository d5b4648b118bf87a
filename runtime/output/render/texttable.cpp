#include "runtime/output/render/texttable.h"

#include <algorithm>
#include <numeric>

#include "runtime/output/render/frame.h"
#include "runtime/output/render/textwidth.h"
#include "runtime/output/render/textwrap.h"

namespace runtime::output {
namespace {

constexpr int kLongestKeptWord = 24;    // a longer word may be broken before another column has to suffer
constexpr int kLongestKeptNumber = 40;  // the same for a number
constexpr int kComfortableText = 20;    // a text that is wrapped has at least this much room
constexpr int kSpanningLabel = 20;      // a label with several rows to fill takes more only when there is a longer word

/// A cell broken into lines.
struct LaidCell {
  std::vector<std::string_view> lines;
  int width = 0;
  int indent = 0;
  bool right = false;
  bool bold = false;
  std::size_t firstRow = 0;
  std::size_t rowSpan = 1;
};

int CellWidth(const TextCell& cell, const std::vector<int>& widths, int gap) {
  int width = gap * static_cast<int>(cell.columnSpan - 1);
  for (std::size_t i = 0; i < cell.columnSpan; ++i) width += widths[cell.column + i];
  return width;
}

}  // namespace

TextTable::TextTable(std::size_t columns, const std::vector<TextRow>& rows)
    : fColumns(columns), fNumeric(columns, false), fWidened(columns, 0) {
  fRows.reserve(rows.size());
  for (const TextRow& row : rows) {
    Row measured{{}, row.ruleAbove, row.isHeader};
    measured.cells.reserve(row.cells.size());
    for (const TextCell& cell : row.cells) {
      const int longestWord = std::min(LongestWord(cell.text), kLongestKeptWord);
      measured.cells.push_back({cell, WidestLine(cell.text), longestWord, 0, 0});
    }
    fRows.push_back(std::move(measured));
  }
  AlignNumbers();
}

void TextTable::AlignBlock(const std::vector<Measured*>& numbers) {
  int before = 0;
  int behind = 0;
  for (const Measured* number : numbers) {
    before = std::max(before, number->widest - number->cell.behindPoint);
    behind = std::max(behind, number->cell.behindPoint);
  }
  for (Measured* number : numbers) {
    number->shift = before - (number->widest - number->cell.behindPoint);
    number->blockWidth = before + behind;
  }
}

void TextTable::AlignNumbers() {
  std::vector<bool> hasText(fColumns, false);
  std::vector<std::vector<Measured*>> all(fColumns);
  std::vector<std::vector<Measured*>> block(fColumns);
  std::vector<std::vector<std::vector<Measured*>>> blocks(fColumns);
  const auto endBlocks = [&] {
    for (std::size_t column = 0; column < fColumns; ++column) {
      if (!block[column].empty()) blocks[column].push_back(std::move(block[column]));
      block[column].clear();
    }
  };
  for (Row& row : fRows) {
    if (row.ruleAbove) endBlocks();
    if (row.isHeader) continue;
    for (Measured& measured : row.cells) {
      const std::size_t column = measured.cell.column;
      if (measured.cell.isNumber) block[column].push_back(&measured);
      if (measured.cell.columnSpan > 1) continue;
      if (measured.cell.isNumber) {
        all[column].push_back(&measured);
      } else {
        hasText[column] = true;
      }
    }
  }
  endBlocks();
  for (std::size_t column = 0; column < fColumns; ++column) {
    for (const auto& numbers : blocks[column]) AlignBlock(numbers);
    fNumeric[column] = !all[column].empty() && !hasText[column];
    if (fNumeric[column]) AlignBlock(all[column]);
  }
}

void TextTable::WidenColumn(std::size_t column, int width) { fWidened[column] = width; }

ColumnNeed TextTable::NeedOf(const Measured& measured) {
  const TextCell& cell = measured.cell;
  const int natural = std::max(measured.widest, 1) + cell.indent;
  if (cell.isNumber) {
    const int width = std::max(measured.blockWidth, 1) + cell.indent;
    const int least = std::min(width, kLongestKeptNumber);
    return {least, least, width, true};
  }
  ColumnNeed need;
  need.least = std::min(natural, std::max(measured.longestWord, 1) + cell.indent);
  need.natural = cell.rowSpan > 1 ? std::min(natural, std::max(need.least, kSpanningLabel)) : natural;
  need.comfortable = std::max(need.least, std::min(need.natural, kComfortableText));
  return need;
}

std::vector<ColumnNeed> TextTable::Needs(const TextFrame& frame) const {
  std::vector<ColumnNeed> needs(fColumns);
  for (std::size_t column = 0; column < fColumns; ++column) needs[column].numeric = fNumeric[column];
  for (const Row& row : fRows) {
    for (const Measured& measured : row.cells) {
      if (measured.cell.columnSpan == 1) needs[measured.cell.column].Include(NeedOf(measured));
    }
  }
  for (std::size_t column = 0; column < fColumns; ++column) {
    needs[column].natural = std::max(needs[column].natural, fWidened[column]);
  }
  // What a spanning cell lacks goes to the last of its columns that is none of numbers, which are best kept together.
  const int gap = ColumnGap(frame);
  for (const Row& row : fRows) {
    for (const Measured& measured : row.cells) {
      const TextCell& cell = measured.cell;
      if (cell.columnSpan == 1) continue;
      ColumnNeed lacking = NeedOf(measured);
      const int gaps = gap * static_cast<int>(cell.columnSpan - 1);
      lacking.least -= gaps;
      lacking.comfortable -= gaps;
      lacking.natural -= gaps;
      std::size_t widened = cell.column + cell.columnSpan - 1;
      for (std::size_t column = cell.column; column < cell.column + cell.columnSpan; ++column) {
        lacking.least -= needs[column].least;
        lacking.comfortable -= needs[column].comfortable;
        lacking.natural -= needs[column].natural;
      }
      while (widened > cell.column && fNumeric[widened]) --widened;
      ColumnNeed& need = needs[widened];
      need.least += std::max(lacking.least, 0);
      need.comfortable = std::max(need.least, need.comfortable + std::max(lacking.comfortable, 0));
      need.natural = std::max(need.comfortable, need.natural + std::max(lacking.natural, 0));
    }
  }
  return needs;
}

bool TextTable::Draw(std::string& page, int width, const TextFrame& frame, Comfort comfort) const {
  const auto widths = ShareWidth(Needs(frame), width - FrameWidth(frame, fColumns), comfort);
  if (!widths) return false;
  DrawWithWidths(page, *widths, frame);
  return true;
}

void TextTable::DrawSqueezed(std::string& page, int width, const TextFrame& frame) const {
  DrawWithWidths(page, SqueezeWidth(Needs(frame), width - FrameWidth(frame, fColumns)), frame);
}

void TextTable::DrawWithWidths(std::string& page, const std::vector<int>& widths, const TextFrame& frame) const {
  const int gap = ColumnGap(frame);
  std::vector<std::vector<LaidCell>> laid(fRows.size());
  // The cell that stands in a row and column; null where there is none.
  std::vector<std::vector<const LaidCell*>> cover(fRows.size(), std::vector<const LaidCell*>(fColumns, nullptr));
  std::vector<std::size_t> heights(fRows.size(), 1);
  for (std::size_t r = 0; r < fRows.size(); ++r) {
    laid[r].reserve(fRows[r].cells.size());
    for (const Measured& measured : fRows[r].cells) {
      const TextCell& cell = measured.cell;
      LaidCell placed;
      placed.width = CellWidth(cell, widths, gap);
      placed.right = fNumeric[cell.column] && cell.columnSpan == 1;
      placed.bold = cell.bold;
      placed.firstRow = r;
      placed.rowSpan = cell.rowSpan;
      placed.indent = std::clamp(cell.indent, 0, std::max(0, placed.width - 2));
      if (cell.isNumber && placed.width - placed.indent >= measured.blockWidth) {
        placed.indent = measured.shift + (placed.right ? placed.width - measured.blockWidth : placed.indent);
        placed.right = false;
      }
      placed.lines = WrapText(cell.text, placed.width - placed.indent);
      if (cell.rowSpan == 1) heights[r] = std::max(heights[r], placed.lines.size());
      laid[r].push_back(std::move(placed));
    }
  }
  for (std::size_t r = 0; r < fRows.size(); ++r) {
    for (std::size_t i = 0; i < laid[r].size(); ++i) {
      const LaidCell& placed = laid[r][i];
      const TextCell& cell = fRows[r].cells[i].cell;
      std::size_t height = 0;
      for (std::size_t row = r; row < r + cell.rowSpan; ++row) {
        height += heights[row];
        for (std::size_t c = cell.column; c < cell.column + cell.columnSpan; ++c) cover[row][c] = &placed;
      }
      if (height < placed.lines.size()) heights[r + cell.rowSpan - 1] += placed.lines.size() - height;
    }
  }

  std::vector<std::size_t> tops(fRows.size(), 0);  // the line of the table's cells that a row begins at
  for (std::size_t r = 1; r < fRows.size(); ++r) tops[r] = tops[r - 1] + heights[r - 1];

  const auto barsOf = [&](std::size_t row) {
    std::vector<bool> bars(fColumns + 1, true);
    for (std::size_t c = 1; c < fColumns; ++c) {
      bars[c] = cover[row][c] == nullptr || cover[row][c] != cover[row][c - 1];
    }
    return bars;
  };
  const std::vector<bool> noBars(fColumns + 1, false);
  std::vector<bool> above = noBars;
  for (std::size_t r = 0; r < fRows.size(); ++r) {
    const std::vector<bool> bars = barsOf(r);
    if (r == 0 || fRows[r].ruleAbove) AppendRule(page, frame, widths, above, bars);
    for (std::size_t line = 0; line < heights[r]; ++line) {
      AppendBar(page, frame, Edge::Left);
      for (std::size_t c = 0; c < fColumns;) {
        const LaidCell* placed = cover[r][c];
        std::size_t next = c + 1;
        while (next < fColumns && !bars[next]) ++next;
        if (placed == nullptr) {
          page.append(static_cast<std::size_t>(widths[c]), ' ');
        } else {
          const std::size_t index = tops[r] - tops[placed->firstRow] + line;
          const std::string_view text = index < placed->lines.size() ? placed->lines[index] : std::string_view();
          AppendText(page, frame, text, placed->width, placed->indent, placed->right, placed->bold);
        }
        AppendBar(page, frame, next < fColumns ? Edge::Between : Edge::Right);
        c = next;
      }
      page += '\n';
    }
    above = bars;
  }
  AppendRule(page, frame, widths, above, noBars);
}

}  // namespace runtime::output
