#include "runtime/aggregation/counting/scalecounter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace runtime::aggregation {

using namespace TableEncryptionCodes;

namespace {

constexpr double kSystemMissingValue = std::numeric_limits<double>::quiet_NaN();
// With more values than these in the hash table, looking each one up costs more than keeping it.
constexpr std::size_t kMostHashedValues = 1024;

template <class Cell>
void Widen(const void* cells, std::size_t first, std::size_t count, Cell systemMissing, double* values) {
  const Cell* from = static_cast<const Cell*>(cells) + first;
  for (std::size_t i = 0; i < count; ++i)
    values[i] = from[i] == systemMissing ? kSystemMissingValue : static_cast<double>(from[i]);
}

void ReadNumbers(const ColumnView& column, std::size_t first, std::size_t count, double* values) {
  switch (column.storage) {
    case ColumnStorage::Int8:
      Widen(column.cells, first, count, kInt8SystemMissing, values);
      break;
    case ColumnStorage::Int16:
      Widen(column.cells, first, count, kInt16SystemMissing, values);
      break;
    case ColumnStorage::Int32:
      Widen(column.cells, first, count, kInt32SystemMissing, values);
      break;
    case ColumnStorage::Float64:
      // Adding zero makes -0.0 the same value as 0.0.
      for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<const double*>(column.cells)[first + i] + 0.0;
      break;
    case ColumnStorage::StringCode:
      std::fill_n(values, count, kSystemMissingValue);
      break;
  }
}

int VariableOf(const std::vector<AggregationStatistic>& statistics, const MAVO_DataSource& source) {
  const int variable = statistics.empty() ? -1 : statistics.front().GetVariable();
  return variable < static_cast<int>(source.ColumnCount()) ? variable : -1;
}

}  // namespace

ScaleCounter::ScaleCounter(std::vector<AggregationStatistic> statistics, const MAVO_DataSource& source)
    : fStatistics(std::move(statistics)),
      fIndex(VariableOf(fStatistics, source)),
      fMissing(fIndex < 0 ? MissingRule() : source.GetVariable(fIndex).GetMissingRule()),
      fIsString(fIndex >= 0 && source.GetVariable(fIndex).GetType() > 0),
      fWantsMoments(Asks(kMean) || Asks(kStdDev)),
      fWantsPercentiles(Asks(kPercentile)),
      fSlots(fIsString),
      fCountsValues(fIsString || fWantsMoments || fWantsPercentiles) {
  fSums.Resize(fSlots.size());
}

bool ScaleCounter::Asks(StatisticCodes code) const {
  return std::any_of(fStatistics.begin(), fStatistics.end(),
                     [code](const AggregationStatistic& statistic) { return statistic.GetSummaryStatistic() == code; });
}

void ScaleCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  if (fIndex < 0) {
    const std::vector<std::uint32_t> slots(count, kSystemMissingSlot);
    fSums.Add(slots.data(), count, chunk.weights, first);
    return;
  }
  const ColumnView column = chunk.Column(fIndex);
  // Whole numbers of 16 bits are always few enough to be counted.
  const bool isShort = column.storage == ColumnStorage::Int8 || column.storage == ColumnStorage::Int16;
  const bool wantsValues = fWantsMoments || fWantsPercentiles;
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    if (fCountsValues || (isShort && wantsValues))
      CountSlots(column, chunk.weights, row, rows);
    else
      TakeValues(column, chunk.weights, row, rows);
  });
}

void ScaleCounter::CountSlots(const ColumnView& column, const ChunkWeights& weights, std::size_t row,
                              std::size_t rows) {
  std::array<std::uint32_t, kBlockRows> slots;
  fSlots.Assign(column, row, rows, slots.data());
  if (fSlots.size() > fSums.slots()) fSums.Resize(fSlots.size());
  fSums.Add(slots.data(), rows, weights, row);
  if (!fIsString && fSlots.numbers().hashedValues() > kMostHashedValues) fCountsValues = false;
}

void ScaleCounter::TakeValues(const ColumnView& column, const ChunkWeights& weights, std::size_t row,
                              std::size_t rows) {
  std::array<double, kBlockRows> values;
  std::array<double, kBlockRows> itsWeights;
  std::array<std::uint32_t, kBlockRows> slots;
  ReadNumbers(column, row, rows, values.data());
  for (std::size_t i = 0; i < rows; ++i) slots[i] = std::isnan(values[i]) ? kSystemMissingSlot : kOtherValidSlot;
  if (!fMissing.empty())
    for (std::size_t i = 0; i < rows; ++i)
      if (fMissing.holds(values[i])) slots[i] = kOtherMissingSlot;
  fSums.Add(slots.data(), rows, weights, row);
  if (!fWantsMoments && !fWantsPercentiles) return;

  std::size_t valid = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    const bool counts = slots[i] == kOtherValidSlot && weights.IsPositive(row + i);
    values[valid] = values[i];
    itsWeights[valid] = weights.exact == nullptr ? 1.0 : weights.exact[row + i];
    valid += counts ? 1 : 0;
  }
  const bool isWeighted = weights.exact != nullptr;
  if (fWantsMoments && isWeighted) fMoments.AddWeighted(values.data(), itsWeights.data(), valid);
  if (fWantsMoments && !isWeighted) fMoments.AddUnits(values.data(), valid);
  if (fWantsPercentiles) KeepValues(values.data(), isWeighted ? itsWeights.data() : nullptr, valid);
}

void ScaleCounter::KeepValues(const double* values, const double* weights, std::size_t count) {
  const std::size_t before = fValues.values.size();
  fValues.values.insert(fValues.values.end(), values, values + count);
  if (weights != nullptr) {
    // Values of weight 1 from unweighted chunks get their weights only now.
    fValues.weights.resize(before, 1.0);
    fValues.weights.insert(fValues.weights.end(), weights, weights + count);
  } else if (!fValues.weights.empty()) {
    fValues.weights.resize(before + count, 1.0);
  }
}

std::vector<double> ScaleCounter::Finish() {
  WeightTotal valid = fSums.Total(kOtherValidSlot);
  WeightTotal missing = fSums.Total(kSystemMissingSlot);
  missing += fSums.Total(kOtherMissingSlot);
  for (std::size_t slot = kFirstValueSlot; slot < fSums.slots(); ++slot) {
    if (fSums.IsZero(slot)) continue;
    const WeightTotal weight = fSums.Total(slot);
    if (fSlots.IsUserMissing(slot, fMissing)) {
      missing += weight;
      continue;
    }
    valid += weight;
    if (fIsString) continue;
    const double value = fSlots.numbers().value(slot);
    if (fWantsMoments) fMoments.AddCounted(value, weight);
    if (fWantsPercentiles) fValues.counted.emplace_back(value, weight);
  }
  WeightTotal total = valid;
  total += missing;

  std::vector<double> cutPoints;
  for (const AggregationStatistic& statistic : fStatistics)
    if (statistic.GetSummaryStatistic() == kPercentile) cutPoints.push_back(statistic.GetPTileCutPoint());
  const bool hasNumbers = fIndex >= 0 && !fIsString;
  const std::vector<double> percentiles =
      hasNumbers ? Percentiles(fValues, valid, cutPoints) : std::vector<double>(cutPoints.size(), kSystemMissingValue);
  std::vector<double> results;
  std::size_t percentile = 0;
  for (const AggregationStatistic& statistic : fStatistics) {
    switch (statistic.GetSummaryStatistic()) {
      case kValid:
        results.push_back(NearestDouble(valid));
        break;
      case kMissing:
        results.push_back(NearestDouble(missing));
        break;
      case kMean:
        results.push_back(hasNumbers ? fMoments.Mean(valid) : kSystemMissingValue);
        break;
      case kStdDev:
        results.push_back(hasNumbers ? fMoments.StandardDeviation(valid) : kSystemMissingValue);
        break;
      case kPercentile:
        results.push_back(percentiles[percentile++]);
        break;
      case kCount:
      case kTotal:
        results.push_back(NearestDouble(total));
        break;
      case kPercent:
        results.push_back(Percent(total, total));
        break;
    }
  }
  return results;
}

}  // namespace runtime::aggregation
