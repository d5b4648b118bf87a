#include "host/output/pivottable.h"

#include <stdexcept>
#include <utility>

#include "runtime/output/model/report.h"

using runtime::output::Dimension;
using runtime::output::Item;
using runtime::output::Table;

namespace {

// Items are owned one by one, so that a handle to an item stays valid while its siblings are added.
Item* AppendItem(Item& group, const BpCellText& label, bool isGroup) {
  auto item = std::make_unique<Item>();
  item->isGroup = isGroup;
  item->label = label.content();
  group.items.push_back(std::move(item));
  return group.items.back().get();
}

bool StandsInColumns(const Table& table, int dimension) {
  return table.dimensions[static_cast<std::size_t>(dimension)]->inColumns;
}

}  // namespace

BpCategory::BpCategory(Table* table, int dimension, Item* item) : fTable(table), fDimension(dimension), fItem(item) {}
BpCategory::~BpCategory() = default;
BpCategory::BpCategory(const BpCategory&) = default;
BpCategory& BpCategory::operator=(const BpCategory&) = default;

void BpCategory::Cell(const BpCellText& text) {
  if (!StandsInColumns(*fTable, fDimension)) {
    fItem->cells.push_back({nullptr, text.content()});
    return;
  }
  if (fTable->lastRow == nullptr) throw std::logic_error("A cell was set on a column before the table had a row.");
  fTable->lastRow->cells.push_back({fItem, text.content()});
}

BpGroup::BpGroup(Table* table, int dimension, Item* item) : fTable(table), fDimensionIndex(dimension), fItem(item) {}
BpGroup::~BpGroup() = default;
BpGroup::BpGroup(const BpGroup&) = default;
BpGroup& BpGroup::operator=(const BpGroup&) = default;

BpGroup BpGroup::Group(const BpString& label, bool flag, Sort) {
  Item* group = AppendItem(*fItem, label, true);
  group->flag = flag;
  return {fTable, fDimensionIndex, group};
}

BpCategory BpGroup::Category(const BpCellText& label) {
  Item* category = AppendItem(*fItem, label, false);
  if (!StandsInColumns(*fTable, fDimensionIndex)) fTable->lastRow = category;
  return {fTable, fDimensionIndex, category};
}

BpDimension::BpDimension(Table* table, int dimension, Item* root) : BpGroup(table, dimension, root) {}
BpDimension::~BpDimension() = default;
BpDimension::BpDimension(const BpDimension&) = default;
BpDimension& BpDimension::operator=(const BpDimension&) = default;

void BpDimension::Position(Place place, int position, bool first, bool second) {
  Dimension& dimension = *fTable->dimensions[static_cast<std::size_t>(fDimensionIndex)];
  dimension.inColumns = place == kColumns;
  dimension.position = position;
  dimension.positionFlags[0] = first;
  dimension.positionFlags[1] = second;
}

BpPivotTable::BpPivotTable(std::shared_ptr<Table> table) : fTable(std::move(table)) {}
BpPivotTable::~BpPivotTable() = default;
BpPivotTable::BpPivotTable(const BpPivotTable&) = default;
BpPivotTable& BpPivotTable::operator=(const BpPivotTable&) = default;

void BpPivotTable::MinDataColumnWidth(int points) { fTable->minDataColumnWidth = points; }

BpDimension BpPivotTable::Dimension(const BpString& label, Sort) {
  auto dimension = std::make_unique<runtime::output::Dimension>();
  dimension->label = label.content();
  dimension->root.isGroup = true;
  fTable->dimensions.push_back(std::move(dimension));
  return {fTable.get(), static_cast<int>(fTable->dimensions.size()) - 1, &fTable->dimensions.back()->root};
}
