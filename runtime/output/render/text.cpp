#include "runtime/output/render/text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/format/kinds.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/model/methodnotes.h"
#include "runtime/output/render/terminaltext.h"
#include "runtime/output/render/texttable.h"
#include "runtime/output/render/textwrap.h"

namespace runtime::output {
namespace {

constexpr int kNarrowestPage = 20;
constexpr int kPointsPerColumn = 7;
constexpr int kNoteIndent = 2;
constexpr std::size_t kFlushedAt = 1 << 16;  // bytes

enum class Groups { Beside, Above };

// Characters from the decimal sign on.
int BehindPoint(const CellContent& content) {
  const std::string& text = content.text;
  if (text == "." || !(IsFixedPoint(content.format.type) || content.format.type == kFormatE)) return 0;
  const std::size_t point = text.rfind(DecimalSign(content.format.type));
  if (point != std::string::npos && content.format.decimals > 0) return static_cast<int>(text.size() - point);
  return text.back() == '%' ? 1 : 0;
}

class TextWriter {
 public:
  TextWriter(const RenderOptions& options, std::ostream& out) : fOptions(options), fOut(out) {
    fOptions.width = std::max(fOptions.width, kNarrowestPage);
  }

  void Write(const Report& report) {
    const bool severalProcedures = report.procedures.size() > 1;
    for (const auto& procedure : report.procedures) {
      if (severalProcedures) WriteHeading(Translate(fOptions.catalog, procedure->title));
      for (const auto& table : procedure->tables) {
        Write(*table);
        if (fPage.size() >= kFlushedAt) Flush();
        if (!fOut) return;  // whoever reads has seen enough
      }
    }
    if (report.facts) Write(report.facts->notes);
    Flush();
  }

 private:
  void BeginBlock() {
    if (fBegun) fPage += '\n';
    fBegun = true;
  }

  void WriteHeading(std::string_view title) {
    BeginBlock();
    const std::string shown = Harmless(std::string(title));
    WriteBold(shown);
    const int width = std::clamp(WidestLine(shown), 1, fOptions.width);
    for (int i = 0; i < width; ++i) fPage += fOptions.utf8 ? "═" : "=";
    fPage += '\n';
  }

  void WriteBold(const std::string& text) {
    for (const std::string_view line : WrapText(text, fOptions.width)) {
      if (fOptions.color) fPage += "\x1b[1m";
      fPage += line;
      if (fOptions.color) fPage += "\x1b[0m";
      fPage += '\n';
    }
  }

  // A name stands once above the texts that follow each other under it.
  void Write(const std::vector<MethodNote>& notes) {
    if (notes.empty()) return;
    WriteHeading(Translate(fOptions.catalog, "Method"));
    const std::string* before = nullptr;
    for (const MethodNote& note : notes) {
      if (before == nullptr || *before != note.name) WriteBold(Harmless(NoteName(note, fOptions.catalog)));
      before = &note.name;
      const std::string text = Harmless(NoteText(note, fOptions.catalog));
      for (const std::string_view line : WrapText(text, fOptions.width - kNoteIndent)) {
        fPage.append(kNoteIndent, ' ');
        fPage += line;
        fPage += '\n';
      }
    }
  }

  void Write(const Table& table) {
    BeginBlock();
    WriteBold(Harmless(table.title->text));
    const Grid grid(table);
    if (grid.rows().empty()) {
      fPage += Harmless(std::string(Translate(fOptions.catalog, "(no rows)"))) + '\n';
      return;
    }
    const TextTable beside = Build(table, grid, Groups::Beside);
    TextFrame frame{fOptions.utf8, fOptions.color, true};
    if (beside.Draw(fPage, fOptions.width, frame, Comfort::Comfortable)) return;
    const TextTable above = Build(table, grid, Groups::Above);
    if (above.Draw(fPage, fOptions.width, frame, Comfort::Comfortable)) return;
    if (above.Draw(fPage, fOptions.width, frame, Comfort::Least)) return;
    frame.bars = false;
    if (above.Draw(fPage, fOptions.width, frame, Comfort::Least)) return;
    above.DrawSqueezed(fPage, fOptions.width, frame);
  }

  TextTable Build(const Table& table, const Grid& grid, Groups groups) const {
    const std::vector<std::size_t> shown = grid.ShownColumns();
    const std::size_t stubs = groups == Groups::Beside ? grid.rowDepth() + 1 : 1;
    const std::size_t columns = stubs + shown.size();
    std::vector<TextRow> rows;
    rows.reserve(grid.rows().size() + 1);
    AddHeader(grid, shown, stubs, rows);
    const GridLine* before = nullptr;
    for (const GridLine& line : grid.rows()) {
      const std::size_t shared = SharedGroups(before, line);
      const bool sameBlock = before != nullptr && (shared > 0 || (before->groups.empty() && line.groups.empty()));
      const std::size_t first = rows.size();
      if (groups == Groups::Beside) {
        AddRowBeside(grid, line, shared, stubs, shown, rows);
      } else {
        AddRowsBelow(grid, line, shared, columns, shown, rows);
      }
      if (before != nullptr && !sameBlock) rows[first].ruleAbove = true;
      before = &line;
    }
    if (rows.front().isHeader) rows[1].ruleAbove = true;

    SpreadLastCells(columns, rows);
    TextTable drawn(columns, rows);
    if (table.minDataColumnWidth) {
      for (std::size_t c = stubs; c < columns; ++c) {
        drawn.WidenColumn(c, std::clamp(*table.minDataColumnWidth / kPointsPerColumn, 0, fOptions.width));
      }
    }
    return drawn;
  }

  void AddHeader(const Grid& grid, const std::vector<std::size_t>& shown, std::size_t stubs,
                 std::vector<TextRow>& rows) const {
    TextRow header;
    header.isHeader = true;
    TextCell corner;
    corner.columnSpan = stubs;
    header.cells.push_back(corner);
    bool labelled = false;
    for (std::size_t i = 0; i < shown.size(); ++i) {
      const GridLine& column = grid.columns()[shown[i]];
      TextCell cell;
      cell.column = stubs + i;
      cell.bold = true;
      for (const Item* group : column.groups) cell.text += Harmless(group->label->text) + '\n';
      if (column.category != nullptr) {
        cell.text += Harmless(column.category->label->text);
        labelled = true;
      }
      header.cells.push_back(std::move(cell));
    }
    if (labelled) rows.push_back(std::move(header));
  }

  // Groups whose first row this is stand in the columns before its label, down to their last row.
  void AddRowBeside(const Grid& grid, const GridLine& line, std::size_t shared, std::size_t stubs,
                    const std::vector<std::size_t>& shown, std::vector<TextRow>& rows) const {
    TextRow row;
    for (std::size_t depth = shared; depth < line.groups.size(); ++depth) {
      TextCell label;
      label.column = depth;
      label.bold = true;
      label.rowSpan = RowsOf(*line.groups[depth]);
      label.text = Harmless(line.groups[depth]->label->text);
      row.cells.push_back(std::move(label));
    }
    TextCell label = CellOf(*line.category->label);
    label.column = line.groups.size();
    label.columnSpan = stubs - line.groups.size();
    if (label.columnSpan > 1) label.isNumber = false;
    row.cells.push_back(std::move(label));
    AddDataCells(grid, line, shown, stubs, row);
    rows.push_back(std::move(row));
  }

  // Groups whose first row this is stand above it, each in a row of its own.
  void AddRowsBelow(const Grid& grid, const GridLine& line, std::size_t shared, std::size_t columns,
                    const std::vector<std::size_t>& shown, std::vector<TextRow>& rows) const {
    for (std::size_t depth = shared; depth < line.groups.size(); ++depth) {
      TextRow row;
      TextCell label;
      label.columnSpan = columns;
      label.bold = true;
      label.indent = 2 * static_cast<int>(depth);
      label.text = Harmless(line.groups[depth]->label->text);
      row.cells.push_back(std::move(label));
      rows.push_back(std::move(row));
    }
    TextRow row;
    TextCell label = CellOf(*line.category->label);
    label.indent = 2 * static_cast<int>(line.groups.size());
    row.cells.push_back(std::move(label));
    AddDataCells(grid, line, shown, 1, row);
    rows.push_back(std::move(row));
  }

  // Several cells at one place stand one below another.
  void AddDataCells(const Grid& grid, const GridLine& line, const std::vector<std::size_t>& shown, std::size_t stubs,
                    TextRow& row) const {
    for (std::size_t i = 0; i < shown.size(); ++i) {
      TextCell joined;
      joined.column = stubs + i;
      bool filled = false;
      for (const Cell& cell : line.category->cells) {
        if (grid.ColumnOf(cell) != shown[i]) continue;
        TextCell next = CellOf(*cell.content);
        if (!filled) {
          next.column = joined.column;
          joined = std::move(next);
          filled = true;
          continue;
        }
        // Texts of several lines are set apart by a blank one.
        const bool severalLines =
            joined.text.find('\n') != std::string::npos || next.text.find('\n') != std::string::npos;
        if (joined.text.empty() || joined.text.back() != '\n') joined.text += '\n';
        if (severalLines) joined.text += '\n';
        joined.text += next.text;
        joined.isNumber = false;
      }
      if (filled) row.cells.push_back(std::move(joined));
    }
  }

  // Where all rows between two rules leave the last columns blank, the cells before them take that room: a row of one
  // text need not be as narrow as the values of a list with counts.
  static void SpreadLastCells(std::size_t columns, std::vector<TextRow>& rows) {
    for (std::size_t begin = 0; begin < rows.size();) {
      std::size_t end = begin + 1;
      while (end < rows.size() && !rows[end].ruleAbove) ++end;
      std::size_t last = 0;
      for (std::size_t r = begin; r < end; ++r) last = std::max(last, rows[r].cells.back().column);
      for (std::size_t r = begin; r < end; ++r) {
        TextCell& cell = rows[r].cells.back();
        if (cell.column == last && cell.columnSpan == 1) cell.columnSpan = columns - last;
      }
      begin = end;
    }
  }

  TextCell CellOf(const CellContent& content) const {
    TextCell cell;
    cell.text = Harmless(content.text);
    cell.isNumber = IsNumeric(content);
    if (cell.isNumber) cell.behindPoint = BehindPoint(content);
    return cell;
  }

  static std::size_t RowsOf(const Item& group) {
    std::size_t rows = 0;
    for (const auto& item : group.items) rows += item->isGroup ? RowsOf(*item) : 1;
    return rows;
  }

  std::string Harmless(const std::string& text) const { return EscapeForTerminal(text, fOptions.utf8, LineEnds::Keep); }

  void Flush() {
    fOut.write(fPage.data(), static_cast<std::streamsize>(fPage.size()));
    fPage.clear();
  }

  RenderOptions fOptions;
  std::ostream& fOut;
  std::string fPage;
  bool fBegun = false;
};

class TextRenderer : public Renderer {
 public:
  explicit TextRenderer(const RenderOptions& options) : fOptions(options) {}
  void Render(const Report& report, std::ostream& out) const override { TextWriter(fOptions, out).Write(report); }

 private:
  RenderOptions fOptions;
};

}  // namespace

std::unique_ptr<Renderer> NewTextRenderer(const RenderOptions& options) {
  return std::make_unique<TextRenderer>(options);
}

}  // namespace runtime::output
