// Setting up the requests to the aggregation library.
#include "codebook/cbkstatistics.h"

#include "codebook/parser/cbksettings.h"

namespace codebook {

VariableStatistics::VariableStatistics(const std::vector<std::unique_ptr<ItemEntry>>& items,
                                       const std::vector<AggregationStatistic>& categoryStatistics,
                                       const std::vector<std::int32_t>& scaleStatCodes)
    : fCategoryStatistics(categoryStatistics), fScaleStatCodes(scaleStatCodes) {
  fItems.reserve(items.size());
  for (const std::unique_ptr<ItemEntry>& item : items) fItems.push_back(item.get());
}

VariableStatistics::~VariableStatistics() {
  // An aggregator refers to its table's engine, so it goes first.
  for (std::size_t i = 0; i < fTables.size(); ++i) {
    if (i < fCubeAggregators.size()) fCubeAggregators[i].reset();
    fTables[i].reset();
  }
}

int VariableStatistics::SetUp(MAVO_InputCaseIterator& iterator, int maxCategories) {
  fCaseIterator = &iterator;
  const std::size_t count = fItems.size();
  fTables.resize(count);
  fItemVariables.resize(count, nullptr);
  fHasStatistics.resize(count, false);
  for (std::size_t i = 0; i < count; ++i) SetUpItem(i, maxCategories);
  return 1;
}

void VariableStatistics::SetUpItem(std::size_t i, int maxCategories) {
  fTables[i] = std::make_unique<AggregationTable>(*fCaseIterator, false, true, -1);
  AggregationCube* cube = fTables[i]->CreateCube();
  const CategoryDescriptor* descriptor = fItems[i]->descriptor();
  if (descriptor == nullptr) return;

  const bool isScale = fItems[i]->treatment() == kScaleItem;
  AggregationVariable* dimension = nullptr;
  if (!isScale) {
    std::unique_ptr<AggregationVariable> made = MakeDimension(*fItems[i]);
    made->SetIsTotalNo(false);
    made->SetSecondaryFlag(false);
    dimension = made.release();
    cube->AddCategoricalVariable(dimension, TableEncryptionCodes::kFirstDimension);
    fItemVariables[i] = dimension;
  }
  cube->CreateCubeAggregator();

  if (isScale) {
    std::vector<AggregationStatistic> statistics;
    BuildScaleStatistics(statistics, descriptor->index);
    cube->AddScaleStatistics(statistics);
    fHasStatistics[i] = true;
  } else if (fCategoryStatistics.empty()) {
    fHasStatistics[i] = false;
  } else {
    const std::vector<AggregationStatistic> inTotal = {AggregationStatistic(TableEncryptionCodes::kMissing),
                                                       AggregationStatistic(TableEncryptionCodes::kTotal)};
    cube->AddCategoryAndTotalStatistics(fCategoryStatistics, dimension, inTotal);
    fHasStatistics[i] = descriptor->categoryCount <= maxCategories;
  }
}

std::unique_ptr<AggregationVariable> VariableStatistics::MakeDimension(const ItemEntry& entry) const {
  const CategoryDescriptor& descriptor = *entry.descriptor();
  const std::string name = displayName(entry);
  if (descriptor.kind == kCategorySetItem) return std::make_unique<AggregationMCSet>(descriptor.memberIndices, name);
  if (descriptor.kind == kDichotomySetItem)
    return std::make_unique<AggregationMDSet>(descriptor.memberIndices, name, descriptor.countedValue.data(),
                                              descriptor.countedValueWidth, false);

  auto dimension = std::make_unique<AggregationVariable>(descriptor.index, name);
  if (!entry.valueLabelsAsCategories()) return dimension;
  MAVO_ValueLabelMap labels(descriptor.variable->GetValueLabels());
  if (labels.Size() == 0) return dimension;
  std::vector<ParsedCategory*> categories;
  categories.reserve(labels.Size());
  labels.Reset();
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (labels.GetNextPair(value, label) != 0) categories.push_back(new ParsedCategory(*value, 0));
  dimension->SetCategoryList(categories);
  return dimension;
}

void VariableStatistics::BuildScaleStatistics(std::vector<AggregationStatistic>& out, int varIndex) const {
  for (const std::int32_t code : fScaleStatCodes) {
    if (code != TableEncryptionCodes::kPercentile) {
      out.emplace_back(varIndex, static_cast<TableEncryptionCodes::StatisticCodes>(code));
      continue;
    }
    for (const double cutPoint : {25.0, 50.0, 75.0}) {
      out.emplace_back(varIndex, TableEncryptionCodes::kPercentile);
      out.back().SetPTileCutPoint(cutPoint);
    }
  }
}

}  // namespace codebook
