// The one pass over the cases.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "codebook/cbkstatistics.h"

namespace codebook {

namespace {

/// What the loop asks of an item for every case, side by side in memory.
struct PassItem {
  AggregationTable* table;
  const TableDimension* dimension;  // null for a scale item and an item without descriptor
  bool counted;                     // the item's bit of hasStatistics
  std::size_t index;                // of the item
};

/// One of the first cases: until more than maxCategories of them were seen no dimension can have met more values, and
/// nothing is asked. Whether any item still wants cases.
bool TakeEarlyCase(std::vector<PassItem>& items, int caseIndex, int maxCategories) {
  bool wanted = false;
  for (PassItem& item : items) {
    if (item.dimension == nullptr) {
      item.table->AddNewCase();
      wanted = true;
      continue;
    }
    if (!item.counted) continue;
    if (caseIndex <= maxCategories) {
      item.table->AddNewCase();
      wanted = true;
    }
    const int seen = wanted ? caseIndex + 1 : caseIndex;
    if (seen <= maxCategories) continue;
    // Asked before this case is added: a value first met on the very last case is kept.
    if (item.dimension->GetNumberOfValues() > maxCategories) {
      item.counted = false;
      continue;
    }
    wanted = true;
    if (caseIndex != maxCategories) item.table->AddNewCase();
  }
  return wanted;
}

/// Any later case. Whether a dimension has met more than maxCategories values and its item drops out.
bool TakeLaterCase(std::vector<PassItem>& items, int maxCategories) {
  bool dropped = false;
  for (PassItem& item : items) {
    if (item.dimension != nullptr && item.dimension->GetNumberOfValues() > maxCategories) {
      item.counted = false;
      dropped = true;
      continue;
    }
    item.table->AddNewCase();
  }
  return dropped;
}

}  // namespace

int VariableStatistics::PassCases(int maxCategories) {
  auto& iterator = static_cast<ProcDSIterator&>(*fCaseIterator);
  if (iterator.NextCase() == 0) return 0;

  std::vector<PassItem> items;
  items.reserve(fTables.size());
  for (std::size_t i = 0; i < fTables.size(); ++i) {
    AggregationTable* table = fTables[i].get();
    const bool isCategorical = fItemVariables[i] != nullptr;
    items.push_back(
        {table, isCategorical ? table->GetTableMetaData()->GetDimension(0) : nullptr, fHasStatistics[i], i});
  }
  const auto removeDropped = [&] {
    for (const PassItem& item : items)
      if (!item.counted && item.dimension != nullptr) fHasStatistics[item.index] = false;
    items.erase(std::remove_if(items.begin(), items.end(),
                               [](const PassItem& item) { return !item.counted && item.dimension != nullptr; }),
                items.end());
  };

  int caseIndex = 0;
  bool wanted = true;
  while (wanted) {
    if (!iterator.SplitGroupEnd()) {
      if (caseIndex <= maxCategories) {
        wanted = TakeEarlyCase(items, caseIndex, maxCategories);
        if (caseIndex == maxCategories) removeDropped();
      } else {
        if (TakeLaterCase(items, maxCategories)) removeDropped();
        wanted = !items.empty();
      }
      ++caseIndex;
    }
    if (iterator.NextCase() == 0) break;
  }

  removeDropped();
  if (caseIndex == 0) return 0;
  for (const std::unique_ptr<AggregationTable>& table : fTables)
    fCubeAggregators.emplace_back(table->GetCubeAggregators().front());
  return caseIndex;
}

}  // namespace codebook
