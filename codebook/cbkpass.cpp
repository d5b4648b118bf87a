// The one pass over the cases.
#include "codebook/cbkstatistics.h"

namespace codebook {

namespace {

/// What the loop asks of an item for every case, side by side in memory.
struct PassItem {
  AggregationTable* table;
  const TableDimension* dimension;  // null for a scale item and an item without descriptor
  bool counted;                     // the item's bit of hasStatistics
};

}  // namespace

int VariableStatistics::PassCases(int maxCategories) {
  auto& iterator = static_cast<ProcDSIterator&>(*fCaseIterator);
  if (iterator.NextCase() == 0) return 0;

  std::vector<PassItem> items;
  items.reserve(fTables.size());
  for (std::size_t i = 0; i < fTables.size(); ++i) {
    AggregationTable* table = fTables[i].get();
    const bool isCategorical = fItemVariables[i] != nullptr;
    items.push_back({table, isCategorical ? table->GetTableMetaData()->GetDimension(0) : nullptr, fHasStatistics[i]});
  }

  int caseIndex = 0;
  bool wanted = true;
  while (wanted) {
    if (!iterator.SplitGroupEnd()) {
      wanted = false;
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
        // A dimension cannot have met more values than cases, so nothing is asked until enough of them were seen.
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
      ++caseIndex;
    }
    if (iterator.NextCase() == 0) break;
  }

  for (std::size_t i = 0; i < items.size(); ++i) fHasStatistics[i] = items[i].counted;
  if (caseIndex == 0) return 0;
  for (const std::unique_ptr<AggregationTable>& table : fTables)
    fCubeAggregators.emplace_back(table->GetCubeAggregators().front());
  return caseIndex;
}

}  // namespace codebook
