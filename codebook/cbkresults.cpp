// Reading the statistics back.
#include "codebook/cbkstatistics.h"

namespace codebook {

namespace {

constexpr int kWholeCell = -1;

}  // namespace

double VariableStatistics::ReadCategoryResults(int i, std::vector<double>& counts, std::vector<double>& percents,
                                               std::vector<double>& values, std::vector<std::string>& valueTexts,
                                               std::vector<std::int32_t>& setCodes, double* missing) const {
  values.clear();
  valueTexts.clear();
  counts.clear();
  percents.clear();
  setCodes.clear();
  *missing = 0.0;
  double total = 0.0;
  const auto item = static_cast<std::size_t>(i);
  if (fItemVariables[item] == nullptr) return total;

  TableDimension* dimension = fItemVariables[item]->GetTableDimension();
  const bool isCategorySet = dynamic_cast<const TableMCSet*>(dimension) != nullptr;
  const bool isDichotomySet = dynamic_cast<const TableMDSet*>(dimension) != nullptr;
  const std::vector<AggregationCategory*> categories = dimension->GetCategoryPointers();
  for (std::size_t k = 0; k < categories.size(); ++k) {
    const AggregationCategory& category = *categories[k];
    const bool isTotal = k + 1 == categories.size();
    if (!isTotal) {
      if (isCategorySet || isDichotomySet) setCodes.push_back(category.GetCode());
      if (!isDichotomySet) values.push_back(category.GetValue());
      valueTexts.push_back(category.GetText());
    }
    const StatValues* cell = fCubeAggregators[item]->GetStatValues({&category}, kWholeCell);
    if (cell == nullptr) {
      if (!isTotal) {
        counts.push_back(0.0);
        percents.push_back(0.0);
      }
      continue;
    }
    const CellStatistics statistics = cell->GetCellStatistics();
    for (int j = 0; j < cell->NumOfValues(); ++j) {
      const double value = cell->GetStatValue(j).GetValue1();
      switch (statistics.GetStatistics()[static_cast<std::size_t>(j)].GetSummaryStatistic()) {
        case TableEncryptionCodes::kCount:
          counts.push_back(value);
          break;
        case TableEncryptionCodes::kPercent:
          percents.push_back(value);
          break;
        case TableEncryptionCodes::kMissing:
          *missing = value;
          break;
        case TableEncryptionCodes::kTotal:
          if (isTotal) total = value;
          break;
        default:
          break;
      }
    }
  }
  return total;
}

void VariableStatistics::ReadScaleResults(int i, std::vector<double>& results) const {
  results.clear();
  const auto item = static_cast<std::size_t>(i);
  if (fItemVariables[item] != nullptr) return;
  const StatValues* cell = fCubeAggregators[item]->GetStatValues({}, kWholeCell);
  if (cell == nullptr) return;
  for (int j = 0; j < cell->NumOfValues(); ++j) results.push_back(cell->GetStatValue(j).GetValue1());
}

double VariableStatistics::CaseCount() {
  for (std::size_t i = 0; i < fCubeAggregators.size() && fCachedCaseCount < 0.0; ++i) {
    if (!fHasStatistics[i]) continue;
    const double count = CaseCountOfItem(i);
    if (count > 0.0) fCachedCaseCount = count;
  }
  return fCachedCaseCount;
}

/// 0 when the item's cell has no values.
double VariableStatistics::CaseCountOfItem(std::size_t i) const {
  const bool isScale = fItemVariables[i] == nullptr;
  std::vector<const AggregationCategory*> cellOf;
  if (!isScale) {
    const std::vector<AggregationCategory*> categories = fItemVariables[i]->GetTableDimension()->GetCategoryPointers();
    if (categories.empty()) return 0.0;
    cellOf.push_back(categories.back());
  }
  const StatValues* cell = fCubeAggregators[i]->GetStatValues(cellOf, kWholeCell);
  if (cell == nullptr) return 0.0;
  const CellStatistics statistics = cell->GetCellStatistics();
  double count = 0.0;
  for (int j = 0; j < cell->NumOfValues(); ++j) {
    const int code = statistics.GetStatistics()[static_cast<std::size_t>(j)].GetSummaryStatistic();
    if (isScale) {
      if (code == TableEncryptionCodes::kValid || code == TableEncryptionCodes::kMissing)
        count += cell->GetStatValue(j).GetValue1();
    } else if (code == TableEncryptionCodes::kTotal) {
      return cell->GetStatValue(j).GetValue1();
    }
  }
  return count;
}

}  // namespace codebook
