// The one pass over the cases.
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
};

/// The items that still take cases, in order.
struct PassItems {
  std::vector<PassItem> items;
  std::vector<std::size_t> numbers;  // among all items
  std::vector<std::size_t> dropped;  // places in `items` of those that drop out with this case

  void RemoveDropped(std::vector<bool>& hasStatistics) {
    for (const std::size_t place : dropped) {
      hasStatistics[numbers[place]] = false;
      items[place].table = nullptr;
    }
    std::size_t kept = 0;
    for (std::size_t place = 0; place < items.size(); ++place) {
      if (items[place].table == nullptr) continue;
      items[kept] = items[place];
      numbers[kept++] = numbers[place];
    }
    items.resize(kept);
    numbers.resize(kept);
    dropped.clear();
  }
};

/// One of the first cases: until more than maxCategories of them were seen no dimension can have met more values, and
/// nothing is asked. Whether any item still wants cases.
bool TakeEarlyCase(PassItems& pass, int caseIndex, int maxCategories) {
  bool wanted = false;
  for (std::size_t place = 0; place < pass.items.size(); ++place) {
    const PassItem& item = pass.items[place];
    if (item.dimension == nullptr) {
      item.table->AddNewCase();
      wanted = true;
      continue;
    }
    if (caseIndex <= maxCategories) {
      item.table->AddNewCase();
      wanted = true;
    }
    const int seen = wanted ? caseIndex + 1 : caseIndex;
    if (seen <= maxCategories) continue;
    // Asked before this case is added: a value first met on the very last case is kept.
    if (item.dimension->GetNumberOfValues() > maxCategories) {
      pass.dropped.push_back(place);
      continue;
    }
    wanted = true;
    if (caseIndex != maxCategories) item.table->AddNewCase();
  }
  return wanted;
}

/// Any later case.
void TakeLaterCase(PassItems& pass, int maxCategories) {
  for (const PassItem& item : pass.items) {
    if (item.dimension != nullptr && item.dimension->GetNumberOfValues() > maxCategories)
      pass.dropped.push_back(static_cast<std::size_t>(&item - pass.items.data()));
    else
      item.table->AddNewCase();
  }
}

}  // namespace

int VariableStatistics::PassCases(int maxCategories) {
  auto& iterator = static_cast<ProcDSIterator&>(*fCaseIterator);
  if (iterator.NextCase() == 0) return 0;

  PassItems pass;
  for (std::size_t i = 0; i < fTables.size(); ++i) {
    AggregationTable* table = fTables[i].get();
    const bool isCategorical = fItemVariables[i] != nullptr;
    if (isCategorical && !fHasStatistics[i]) continue;
    pass.items.push_back({table, isCategorical ? table->GetTableMetaData()->GetDimension(0) : nullptr});
    pass.numbers.push_back(i);
  }

  int caseIndex = 0;
  bool wanted = true;
  while (wanted) {
    if (!iterator.SplitGroupEnd()) {
      if (caseIndex <= maxCategories) {
        wanted = TakeEarlyCase(pass, caseIndex, maxCategories);
      } else {
        TakeLaterCase(pass, maxCategories);
        wanted = pass.dropped.size() < pass.items.size();
      }
      if (!pass.dropped.empty()) pass.RemoveDropped(fHasStatistics);
      ++caseIndex;
    }
    if (iterator.NextCase() == 0) break;
  }

  if (caseIndex == 0) return 0;
  for (const std::unique_ptr<AggregationTable>& table : fTables)
    fCubeAggregators.emplace_back(table->GetCubeAggregators().front());
  return caseIndex;
}

}  // namespace codebook
