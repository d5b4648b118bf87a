#include "runtime/output/render/csv.h"

#include <cmath>
#include <string>
#include <vector>

#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/model/methodnotes.h"
#include "runtime/output/render/csvtext.h"

namespace runtime::output {
namespace {

constexpr std::size_t kFlushedAt = 1 << 16;  // bytes
constexpr const char* kBetweenGroups = " > ";

constexpr const char* kHeader =
    "kind,procedure,table_number,table,title,variable,row_number,section,row,value,label,count,percent,text,number,"
    "column\n";

/// Where a cell stands in the line of its row.
enum class Place { Main, Count, Percent, Own };

/// The cells that share a line; null where there is none.
struct LineCells {
  const CellContent* main = nullptr;
  const CellContent* count = nullptr;
  const CellContent* percent = nullptr;
};

std::string PathOf(const GridLine& line) {
  std::string path;
  for (const Item* group : line.groups) {
    if (!path.empty()) path += kBetweenGroups;
    path += group->label->text;
  }
  return path;
}

class CsvWriter {
 public:
  CsvWriter(const RenderOptions& options, std::ostream& out)
      : fCatalog(options.catalog),
        fCount(Translate(options.catalog, "Count")),
        fPercent(Translate(options.catalog, "Percent")),
        fValue(Translate(options.catalog, "Value")),
        fOut(out) {}

  void Write(const Report& report) {
    fCsv += kHeader;
    std::size_t tableNumber = 0;
    for (const auto& procedure : report.procedures)
      for (const auto& table : procedure->tables) Write(*procedure, *table, ++tableNumber);
    if (report.facts)
      for (const MethodNote& note : report.facts->notes) Write(note);
    for (const Message& message : report.messages) Write(message);
    Flush();
  }

 private:
  void Write(const Procedure& procedure, const Table& table, std::size_t number) {
    // The same for all lines of the table.
    std::string identity;
    Text(identity, procedure.title);
    identity += std::to_string(number) + ',';
    Text(identity, *table.subtype);
    Text(identity, *table.title);
    if (IsOfVariable(*table.title)) {
      Text(identity, *table.title);
    } else {
      identity += ',';
    }

    const Grid grid(table);
    if (grid.rows().empty()) {
      fCsv += "table,";
      fCsv += identity;
      fCsv += ",,,,,,,,,\n";
      return;
    }
    const std::vector<Place> places = PlacesOf(grid);
    std::size_t row = 0;
    for (const GridLine& line : grid.rows()) WriteRow(grid, places, identity, line, ++row);
  }

  void WriteRow(const Grid& grid, const std::vector<Place>& places, const std::string& identity, const GridLine& line,
                std::size_t number) {
    LineCells shared;
    std::vector<const Cell*> own;
    for (const Cell& cell : line.category->cells) {
      const CellContent** place = PlaceIn(shared, places[grid.ColumnOf(cell)], *cell.content);
      if (place == nullptr || *place != nullptr) {
        own.push_back(&cell);
      } else {
        *place = cell.content.get();
      }
    }
    if (own.empty() || own.size() < line.category->cells.size()) {
      BeginRow(identity, line, number);
      WriteCells(*line.category->label, shared);
      fCsv += '\n';
    }
    for (const Cell* cell : own) {
      const std::size_t column = grid.ColumnOf(*cell);
      BeginRow(identity, line, number);
      WriteCells(*line.category->label, {cell->content.get(), nullptr, nullptr});
      if (places[column] != Place::Main) AppendCsvText(fCsv, ColumnPath(grid.columns()[column]));
      fCsv += '\n';
    }
    if (fCsv.size() >= kFlushedAt) Flush();
  }

  void BeginRow(const std::string& identity, const GridLine& line, std::size_t number) {
    const CellContent& label = *line.category->label;
    switch (label.kind) {
      case CellContent::Kind::DataValue:
        fCsv += "value,";
        break;
      case CellContent::Kind::Variable:
        fCsv += "member,";
        break;
      default:
        fCsv += "row,";
    }
    fCsv += identity;
    fCsv += std::to_string(number) + ',';
    if (line.groups.empty()) {
      fCsv += ',';
    } else {
      Text(fCsv, PathOf(line));
    }
    Text(fCsv, label);
    if (label.kind == CellContent::Kind::DataValue) {
      if (label.origin->isString) {
        AppendCsvText(fCsv, label.origin->stringValue);
      } else {
        AppendCsvNumber(fCsv, label.number);
      }
    }
    fCsv += ',';
  }

  // From `label` to `number`.
  void WriteCells(const CellContent& rowLabel, const LineCells& cells) {
    const bool isLabel = rowLabel.kind == CellContent::Kind::DataValue || rowLabel.kind == CellContent::Kind::Variable;
    OptionalText(isLabel ? cells.main : nullptr);
    OptionalNumber(cells.count);
    OptionalNumber(cells.percent);
    OptionalText(isLabel ? nullptr : cells.main);
    OptionalNumber(cells.main);
  }

  void Write(const MethodNote& note) {
    fCsv += "note,,,,,,,,";
    Text(fCsv, NoteName(note, fCatalog));
    fCsv += ",,,,";
    Text(fCsv, NoteText(note, fCatalog));
    fCsv += ",\n";
  }

  void Write(const Message& message) {
    fCsv += "message,,,,,,,";
    fCsv += message.severity == Severity::Error ? "error," : "warning,";
    switch (message.source) {
      case Source::Command:
        fCsv += "command";
        break;
      case Source::Data:
        fCsv += "data";
        break;
      case Source::Host:
        fCsv += "host";
        break;
    }
    fCsv += ",,,,,";
    Text(fCsv, message.text);
    fCsv += ",\n";
    if (fCsv.size() >= kFlushedAt) Flush();
  }

  // Of each column of the grid. Columns are known by their words in the report's language.
  std::vector<Place> PlacesOf(const Grid& grid) const {
    std::vector<Place> places;
    for (const GridLine& line : grid.columns()) {
      if (line.category == nullptr) {
        places.push_back(Place::Main);
        continue;
      }
      const CellContent& label = *line.category->label;
      const bool known = label.kind == CellContent::Kind::Text && label.fixed && line.groups.empty();
      if (known && label.text == fValue) {
        places.push_back(Place::Main);
      } else if (known && label.text == fCount) {
        places.push_back(Place::Count);
      } else if (known && label.text == fPercent) {
        places.push_back(Place::Percent);
      } else {
        places.push_back(Place::Own);
      }
    }
    return places;
  }

  // Null for what needs a line of its own: a count that is no number would be lost in the column of counts.
  static const CellContent** PlaceIn(LineCells& cells, Place place, const CellContent& content) {
    if (place == Place::Main) return &cells.main;
    if (place == Place::Own || content.kind != CellContent::Kind::Number || !std::isfinite(content.number))
      return nullptr;
    return place == Place::Count ? &cells.count : &cells.percent;
  }

  static std::string ColumnPath(const GridLine& line) {
    std::string path = PathOf(line);
    if (!path.empty()) path += kBetweenGroups;
    return path + line.category->label->text;
  }

  static bool IsOfVariable(const CellContent& title) { return title.kind != CellContent::Kind::Text || !title.fixed; }

  // Fields with their comma.

  static void Text(std::string& csv, const CellContent& content) {
    if (IsNumeric(content)) {
      AppendCsvPlain(csv, content.text);
    } else {
      AppendCsvText(csv, content.text);
    }
    csv += ',';
  }

  static void Text(std::string& csv, std::string_view text) {
    AppendCsvText(csv, text);
    csv += ',';
  }

  void OptionalText(const CellContent* content) {
    if (content != nullptr) return Text(fCsv, *content);
    fCsv += ',';
  }

  void OptionalNumber(const CellContent* content) {
    if (content != nullptr && IsNumeric(*content)) AppendCsvNumber(fCsv, content->number);
    fCsv += ',';
  }

  void Flush() {
    fOut.write(fCsv.data(), static_cast<std::streamsize>(fCsv.size()));
    fCsv.clear();
  }

  const Catalog* fCatalog;
  std::string_view fCount;
  std::string_view fPercent;
  std::string_view fValue;
  std::ostream& fOut;
  std::string fCsv;
};

class CsvRenderer : public Renderer {
 public:
  explicit CsvRenderer(const RenderOptions& options) : fOptions(options) {}
  void Render(const Report& report, std::ostream& out) const override { CsvWriter(fOptions, out).Write(report); }

 private:
  RenderOptions fOptions;
};

}  // namespace

std::unique_ptr<Renderer> NewCsvRenderer(const RenderOptions& options) {
  return std::make_unique<CsvRenderer>(options);
}

}  // namespace runtime::output
