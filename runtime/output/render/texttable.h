// A table drawn with characters: cells that span columns and rows, rules, alignment of numbers.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/output/render/columnwidths.h"

namespace runtime::output {

/// One cell. Its text is harmless for the terminal (terminaltext.h) and may have line ends.
struct TextCell {
  std::size_t column = 0;      // where it begins
  std::size_t columnSpan = 1;  // columns that it takes
  std::size_t rowSpan = 1;     // rows that it takes; the rows below have no cell there
  std::string text;
  int indent = 0;  // blanks before every line
  bool bold = false;
  bool isNumber = false;  // of one line
  int behindPoint = 0;    // of a number: characters from its decimal sign on, 0 when it has none
};

struct TextRow {
  std::vector<TextCell> cells;  // from left to right; columns without a cell are blank
  bool ruleAbove = false;       // a rule between this row and the one before. REQUIRES: no cell spans it
  bool isHeader = false;        // of column labels: they stand at the right where the column is one of numbers
};

/// What the lines are made of.
struct TextFrame {
  bool utf8 = true;
  bool color = false;
  bool bars = true;  // vertical lines; else columns stand two blanks apart
};

/// Numbers line up at their decimal signs: over the whole column, at its right edge, where it holds nothing but
/// numbers; else among the rows between two rules, at the left edge.
class TextTable {
 public:
  TextTable(std::size_t columns, const std::vector<TextRow>& rows);

  /// A width that the column has where there is room for it.
  void WidenColumn(std::size_t column, int width);

  /// Appends the table to `page`, at most `width` columns wide, all lines equally wide, each ended by LF. Where it
  /// would have to break words, or (`Comfortable`) wrap more than is pleasant, it draws nothing and gives false.
  bool Draw(std::string& page, int width, const TextFrame& frame, Comfort comfort) const;
  /// Draws it in any case: words are broken, and where the columns are too many the table is wider than asked for.
  void DrawSqueezed(std::string& page, int width, const TextFrame& frame) const;

 private:
  struct Measured {
    TextCell cell;
    int widest = 0;       // of its lines
    int longestWord = 0;  // no more than is worth keeping whole
    int shift = 0;        // of a number: blanks before it, so that it lines up with the others of its block
    int blockWidth = 0;   // of a number: width of its block
  };
  struct Row {
    std::vector<Measured> cells;
    bool ruleAbove = false;
    bool isHeader = false;
  };

  void AlignNumbers();
  void AlignBlock(const std::vector<Measured*>& numbers);
  std::vector<ColumnNeed> Needs(const TextFrame& frame) const;
  static ColumnNeed NeedOf(const Measured& measured);
  void DrawWithWidths(std::string& page, const std::vector<int>& widths, const TextFrame& frame) const;

  std::size_t fColumns;
  std::vector<Row> fRows;
  std::vector<bool> fNumeric;  // columns that hold nothing but numbers
  std::vector<int> fWidened;
};

}  // namespace runtime::output
