#include "runtime/output/render/markdown.h"

#include <string>
#include <vector>

#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/model/methodnotes.h"
#include "runtime/output/render/markdowntext.h"

namespace runtime::output {
namespace {

constexpr std::size_t kFlushedAt = 1 << 16;  // bytes

class MarkdownWriter {
 public:
  MarkdownWriter(const RenderOptions& options, std::ostream& out) : fCatalog(options.catalog), fOut(out) {}

  void Write(const Report& report) {
    for (const auto& procedure : report.procedures) {
      WriteHeading("# ", Translate(fCatalog, procedure->title));
      for (const auto& table : procedure->tables) {
        Write(*table);
        if (fPage.size() >= kFlushedAt) Flush();
      }
    }
    if (report.facts) WriteNotes(report.facts->notes);
    WriteMessages(report.messages);
    Flush();
  }

 private:
  void WriteHeading(std::string_view mark, std::string_view text) {
    if (fBegun) fPage += '\n';
    fBegun = true;
    fPage += mark;
    AppendMarkdownText(fPage, text);
    fPage += '\n';
  }

  void Write(const Table& table) {
    WriteHeading("## ", table.title->text);
    fPage += '\n';
    const Grid grid(table);
    if (grid.rows().empty()) {
      AppendMarkdownText(fPage, Translate(fCatalog, "(no rows)"));
      fPage += '\n';
      return;
    }
    const std::vector<std::size_t> shown = grid.ShownColumns();
    WriteHeader(table, grid, shown);
    const GridLine* before = nullptr;
    for (const GridLine& line : grid.rows()) {
      WriteRow(grid, shown, before, line);
      if (fPage.size() >= kFlushedAt) Flush();
      before = &line;
    }
  }

  void WriteHeader(const Table& table, const Grid& grid, const std::vector<std::size_t>& shown) {
    fPage += '|';
    for (std::size_t depth = 0; depth <= grid.rowDepth(); ++depth) {
      BeginCell();
      if (depth == 0) AppendMarkdownText(fPage, RowsLabel(table));
      EndCell();
    }
    for (const std::size_t column : shown) {
      BeginCell();
      const GridLine& line = grid.columns()[column];
      for (const Item* group : line.groups) {
        AppendMarkdownText(fPage, group->label->text);
        fPage += "<br>";
      }
      if (line.category != nullptr) AppendMarkdownText(fPage, line.category->label->text);
      EndCell();
    }
    fPage += "\n|";
    for (std::size_t depth = 0; depth <= grid.rowDepth(); ++depth) fPage += ":---|";
    for (const std::size_t column : shown) fPage += HoldsNumbers(grid, column) ? "---:|" : ":---|";
    fPage += '\n';
  }

  // Groups whose first row this is stand in the columns before its label.
  void WriteRow(const Grid& grid, const std::vector<std::size_t>& shown, const GridLine* before, const GridLine& line) {
    const std::size_t shared = SharedGroups(before, line);
    const std::size_t depth = line.groups.size();
    fPage += '|';
    for (std::size_t stub = 0; stub <= grid.rowDepth(); ++stub) {
      BeginCell();
      if (stub >= shared && stub < depth) {
        fPage += "**";
        AppendMarkdownText(fPage, line.groups[stub]->label->text);
        fPage += "**";
      } else if (stub == depth) {
        AppendMarkdownText(fPage, line.category->label->text);
      }
      EndCell();
    }
    for (const std::size_t column : shown) {
      BeginCell();
      WriteCells(grid, line, column);
      EndCell();
    }
    fPage += '\n';
  }

  // Several cells at one place stand one below another, with a line between them.
  void WriteCells(const Grid& grid, const GridLine& line, std::size_t column) {
    const char* between = "";
    for (const Cell& cell : line.category->cells) {
      if (grid.ColumnOf(cell) != column) continue;
      fPage += between;
      AppendMarkdownText(fPage, cell.content->text);
      between = "<hr>";
    }
  }

  void BeginCell() { fPage += ' '; }
  void EndCell() { fPage += fPage.back() == ' ' ? "|" : " |"; }

  static std::string_view RowsLabel(const Table& table) {
    for (const auto& dimension : table.dimensions)
      if (!dimension->inColumns) return dimension->label->text;
    return {};
  }

  static bool HoldsNumbers(const Grid& grid, std::size_t column) {
    bool filled = false;
    for (const GridLine& line : grid.rows()) {
      for (const Cell& cell : line.category->cells) {
        if (grid.ColumnOf(cell) != column) continue;
        if (!IsNumeric(*cell.content)) return false;
        filled = true;
      }
    }
    return filled;
  }

  void WriteNotes(const std::vector<MethodNote>& notes) {
    if (notes.empty()) return;
    WriteHeading("# ", Translate(fCatalog, "Method"));
    fPage += '\n';
    for (const MethodNote& note : notes) WritePoint(NoteName(note, fCatalog), NoteText(note, fCatalog));
  }

  void WriteMessages(const std::vector<Message>& messages) {
    if (messages.empty()) return;
    WriteHeading("# ", Translate(fCatalog, "Messages"));
    fPage += '\n';
    for (const Message& message : messages) {
      const bool isError = message.severity == Severity::Error;
      WritePoint(isError ? Translate(fCatalog, "Error") : Translate(fCatalog, "Warning"), message.text);
      if (fPage.size() >= kFlushedAt) Flush();
    }
  }

  void WritePoint(std::string_view name, std::string_view text) {
    fPage += "- **";
    AppendMarkdownText(fPage, name);
    fPage += "**: ";
    AppendMarkdownText(fPage, text);
    fPage += '\n';
  }

  void Flush() {
    fOut.write(fPage.data(), static_cast<std::streamsize>(fPage.size()));
    fPage.clear();
  }

  const Catalog* fCatalog;
  std::ostream& fOut;
  std::string fPage;
  bool fBegun = false;
};

class MarkdownRenderer : public Renderer {
 public:
  explicit MarkdownRenderer(const RenderOptions& options) : fOptions(options) {}
  void Render(const Report& report, std::ostream& out) const override { MarkdownWriter(fOptions, out).Write(report); }

 private:
  RenderOptions fOptions;
};

}  // namespace

std::unique_ptr<Renderer> NewMarkdownRenderer(const RenderOptions& options) {
  return std::make_unique<MarkdownRenderer>(options);
}

}  // namespace runtime::output
