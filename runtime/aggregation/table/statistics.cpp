#include "host/aggregation/statistics.h"

#include <utility>

#include "runtime/aggregation/binding.h"

using namespace TableEncryptionCodes;

namespace {

/// Statistics that only mean something for one variable.
bool IsOfOneVariable(StatisticCodes code) { return code == kMean || code == kStdDev || code == kPercentile; }

}  // namespace

AggregationStatistic::AggregationStatistic(StatisticCodes code) : fCode(code) {}

AggregationStatistic::AggregationStatistic(int variable, StatisticCodes code) : fCode(code), fVariable(variable) {}

CellStatistics::CellStatistics(std::vector<AggregationStatistic> statistics) : fStatistics(std::move(statistics)) {}
CellStatistics::~CellStatistics() = default;
CellStatistics::CellStatistics(const CellStatistics&) = default;
CellStatistics::CellStatistics(CellStatistics&&) noexcept = default;
CellStatistics& CellStatistics::operator=(const CellStatistics&) = default;
CellStatistics& CellStatistics::operator=(CellStatistics&&) noexcept = default;

StatValues::StatValues(std::vector<double> values, std::vector<AggregationStatistic> statistics)
    : fValues(std::move(values)), fStatistics(std::move(statistics)) {}
StatValues::~StatValues() = default;

AggregationResult StatValues::GetStatValue(int j) const {
  const auto at = static_cast<std::size_t>(j);
  const AggregationStatistic& statistic = fStatistics[at];
  if (IsOfOneVariable(statistic.GetSummaryStatistic()) && statistic.GetVariable() >= 0) {
    const runtime::aggregation::AggregationBinding* binding = runtime::aggregation::CurrentAggregation();
    if (binding != nullptr && binding->onScaleStatisticRead) binding->onScaleStatisticRead(statistic.GetVariable());
  }
  return AggregationResult(fValues[at]);
}

CellStatistics StatValues::GetCellStatistics() const { return CellStatistics(fStatistics); }

AggregationCategory::~AggregationCategory() = default;
AggregationCategory::AggregationCategory(const AggregationCategory&) = default;
AggregationCategory::AggregationCategory(AggregationCategory&&) noexcept = default;
AggregationCategory& AggregationCategory::operator=(const AggregationCategory&) = default;
AggregationCategory& AggregationCategory::operator=(AggregationCategory&&) noexcept = default;
