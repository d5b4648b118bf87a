#include "runtime/output/render/xlsx/variablesheet.h"

#include <utility>

namespace runtime::output {
namespace {

const char* TypeWord(ItemFacts::Type type) {
  switch (type) {
    case ItemFacts::Type::Numeric:
    case ItemFacts::Type::Date:
      return "Numeric";
    case ItemFacts::Type::String:
      return "String";
    case ItemFacts::Type::CategorySet:
      return "Multiple Category Set";
    case ItemFacts::Type::DichotomySet:
      return "Multiple Dichotomy Set";
  }
  return "";
}

const char* LevelWord(ItemFacts::Level level) {
  switch (level) {
    case ItemFacts::Level::Unknown:
      return "Unknown";
    case ItemFacts::Level::Nominal:
      return "Nominal";
    case ItemFacts::Level::Ordinal:
      return "Ordinal";
    case ItemFacts::Level::Scale:
      return "Scale";
  }
  return "";
}

const char* RoleWord(ItemFacts::Role role) {
  switch (role) {
    case ItemFacts::Role::Input:
      return "Input";
    case ItemFacts::Role::Target:
      return "Target";
    case ItemFacts::Role::Both:
      return "Both";
    case ItemFacts::Role::None:
      return "None";
    case ItemFacts::Role::Partition:
      return "Partition";
    case ItemFacts::Role::Split:
      return "Split";
  }
  return "";
}

const char* const kCountFormat = "0";
const char* const kPercentFormat = "0.0\"%\"";

const Item* FirstGroup(const Table& table) {
  for (const auto& dimension : table.dimensions)
    if (!dimension->inColumns && !dimension->root.items.empty()) return dimension->root.items.front().get();
  return nullptr;
}

bool HasSketches(const Report& report) {
  for (const auto& procedure : report.procedures)
    if (!procedure->sketches.empty()) return true;
  return false;
}

}  // namespace

void VariableSheet::Columns::Add(std::string_view name) {
  if (places.emplace(name, names.size()).second) names.emplace_back(name);
}

std::vector<SheetCell> VariableSheet::Columns::Head() const {
  std::vector<SheetCell> head;
  for (const std::string& name : names) head.push_back(SheetCell::Text(name, CellLook::Face::Head));
  return head;
}

VariableSheet::VariableSheet(Workbook& workbook, const Report& report, const Catalog* catalog,
                             const SheetLimits& limits)
    : fReport(report),
      fCatalog(catalog),
      fColumns(CollectColumns()),
      fSheet(workbook, Translate(catalog, "Variables"), fColumns.Head(), 1, limits) {
  if (!report.facts) return;
  for (const ItemFacts& item : report.facts->items) fFacts.emplace(item.name, &item);
}

// Attributes first, then how many cases are valid, then the other statistics, whichever table shows them.
VariableSheet::Columns VariableSheet::CollectColumns() const {
  Columns first;
  Columns others;
  first.Add(Translate(fCatalog, "Variable"));
  if (fReport.facts) {
    first.Add(Translate(fCatalog, "Label"));
    first.Add(Translate(fCatalog, "Type"));
    first.Add(Translate(fCatalog, "Measurement"));
    first.Add(Translate(fCatalog, "Role"));
    first.Add(Translate(fCatalog, "Position"));
  }
  for (const TableOfReport& of : TablesOf(fReport)) {
    if (!DescribesItem(*of.table)) continue;
    const Grid grid(*of.table);
    const Item* const attributes = FirstGroup(*of.table);
    for (const GridLine& row : grid.rows()) {
      if (KindOfRow(grid, row) != RowKind::Property) continue;
      const bool isAttribute = row.groups.empty() || row.groups.front() == attributes;
      (isAttribute ? first : others).Add(row.category->label->text);
    }
  }
  if (HasSketches(fReport)) {
    first.Add(Translate(fCatalog, "Valid"));
    first.Add(Translate(fCatalog, "Missing"));
    first.Add(Translate(fCatalog, "Missing %"));
  }
  for (const std::string& name : others.names) first.Add(name);
  return first;
}

void VariableSheet::Put(std::vector<SheetCell>& row, std::string_view column, SheetCell cell) const {
  const auto place = fColumns.places.find(std::string(column));
  if (place != fColumns.places.end()) row[place->second] = std::move(cell);
}

void VariableSheet::PutFacts(std::vector<SheetCell>& row, const std::string& item) const {
  const auto found = fFacts.find(item);
  if (found == fFacts.end()) return;
  const ItemFacts& facts = *found->second;
  Put(row, Translate(fCatalog, "Label"), SheetCell::Text(facts.label));
  Put(row, Translate(fCatalog, "Type"), SheetCell::Text(Translate(fCatalog, TypeWord(facts.type))));
  Put(row, Translate(fCatalog, "Measurement"), SheetCell::Text(Translate(fCatalog, LevelWord(facts.level))));
  Put(row, Translate(fCatalog, "Role"), SheetCell::Text(Translate(fCatalog, RoleWord(facts.role))));
  if (facts.position > 0) Put(row, Translate(fCatalog, "Position"), SheetCell::Number(facts.position, kCountFormat));
}

void VariableSheet::PutCounts(std::vector<SheetCell>& row, const Sketch& sketch) const {
  Put(row, Translate(fCatalog, "Valid"), SheetCell::Number(sketch.total - sketch.missing, kCountFormat));
  Put(row, Translate(fCatalog, "Missing"), SheetCell::Number(sketch.missing, kCountFormat));
  if (sketch.total > 0.0)
    Put(row, Translate(fCatalog, "Missing %"),
        SheetCell::Number(sketch.missing / sketch.total * 100.0, kPercentFormat));
}

void VariableSheet::PutProperties(std::vector<SheetCell>& row, const Table& table) const {
  const Grid grid(table);
  for (const GridLine& line : grid.rows()) {
    if (KindOfRow(grid, line) != RowKind::Property) continue;
    if (const CellContent* content = FirstCell(grid, line, 0))
      Put(row, line.category->label->text, SheetCell::Of(*content));
  }
}

void VariableSheet::Write(const PlacesOfTables& places) {
  for (const auto& procedure : fReport.procedures) {
    std::unordered_map<std::string_view, const Sketch*> sketches;
    for (const Sketch& sketch : procedure->sketches) sketches.emplace(sketch.item, &sketch);
    for (const auto& table : procedure->tables) {
      if (!DescribesItem(*table)) continue;
      const std::string& name = table->title->text;
      std::vector<SheetCell> row(fColumns.names.size());
      row[0] = SheetCell::Text(name);
      row[0].link = places.at(table.get()).title.Link();
      PutFacts(row, name);
      if (const auto sketch = sketches.find(name); sketch != sketches.end()) PutCounts(row, *sketch->second);
      PutProperties(row, *table);
      fSheet.AddRow(row);
    }
  }
  fSheet.Finish();
}

}  // namespace runtime::output
