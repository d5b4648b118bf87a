#include "runtime/aggregation/counting/scalecounter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "runtime/aggregation/counting/cellsums.h"
#include "runtime/aggregation/counting/percentiles.h"
#include "runtime/aggregation/sketch/histogram.h"

namespace runtime::aggregation {

using namespace TableEncryptionCodes;

namespace {

constexpr double kSystemMissingValue = std::numeric_limits<double>::quiet_NaN();
// With more values than these in the hash table, looking each one up costs more than keeping it.
constexpr std::size_t kMostHashedValues = 1024;
// The first rows show how many values there are.
constexpr std::size_t kFirstRows = 128;
constexpr std::size_t kSummedAtOnce = 4096;
// A block with room for fewer is taken as full.
constexpr std::size_t kFewestAtOnce = 64;

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
      std::copy_n(static_cast<const double*>(column.cells) + first, count, values);
      break;
    case ColumnStorage::StringCode:
      std::fill_n(values, count, kSystemMissingValue);
      break;
  }
}

/// User-missing values become system-missing ones, which count the same here. Rule by rule over all values, which the
/// compiler can do several at a time.
void MakeMissing(const MissingRule& rule, double* values, std::size_t count) {
  for (const double missing : rule.values)
    for (std::size_t i = 0; i < count; ++i) values[i] = values[i] == missing ? kSystemMissingValue : values[i];
  for (const MissingRule::Range& range : rule.ranges)
    for (std::size_t i = 0; i < count; ++i)
      values[i] = ((values[i] >= range.low) & (values[i] <= range.high)) != 0 ? kSystemMissingValue : values[i];
}

int VariableOf(const std::vector<AggregationStatistic>& statistics, const MAVO_DataSource& source) {
  const int variable = statistics.empty() ? -1 : statistics.front().GetVariable();
  return variable < static_cast<int>(source.ColumnCount()) ? variable : -1;
}

}  // namespace

ScaleCounter::ScaleCounter(std::vector<AggregationStatistic> statistics, const MAVO_DataSource& source,
                           std::shared_ptr<ValueMemory> memory, bool sketches)
    : fStatistics(std::move(statistics)),
      fIndex(VariableOf(fStatistics, source)),
      fMissing(fIndex < 0 ? MissingRule() : source.GetVariable(fIndex).GetMissingRule()),
      fIsString(fIndex >= 0 && source.GetVariable(fIndex).GetType() > 0),
      fSketches(sketches && hasNumbers()),
      fWantsMoments(fSketches || Asks(kMean) || Asks(kStdDev)),
      fWantsPercentiles(fSketches || Asks(kPercentile)),
      fSlots(fIsString),
      fCountsValues(fIsString || fWantsMoments || fWantsPercentiles),
      fValues(std::move(memory)) {
  fSums.Resize(fSlots.size());
}

bool ScaleCounter::Asks(StatisticCodes code) const {
  return std::any_of(fStatistics.begin(), fStatistics.end(),
                     [code](const AggregationStatistic& statistic) { return statistic.GetSummaryStatistic() == code; });
}

void ScaleCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  if (fIndex < 0) {
    fSums.AddRows(kSystemMissingSlot, count, chunk.weights, first);
    return;
  }
  const ColumnView column = chunk.Column(fIndex);
  fMomentsAreGiven = chunk.moments() != nullptr;
  // Whole numbers of 16 bits are always few enough to be counted.
  const bool isShort = column.storage == ColumnStorage::Int8 || column.storage == ColumnStorage::Int16;
  const bool wantsValues = fWantsMoments || fWantsPercentiles;
  CellSums sums;
  if (isShort && wantsValues && SumByCell(column, chunk.weights, first, count, fSlots, sums)) {
    if (fSlots.size() > fSums.slots()) fSums.Resize(fSlots.size());
    fSums.Add(sums, chunk.weights);
    return;
  }
  const auto work = [&](std::size_t row, std::size_t rows) {
    if (fCountsValues || (isShort && wantsValues))
      CountSlots(column, chunk.weights, row, rows);
    else
      TakeValues(column, chunk.weights, row, rows);
  };
  std::size_t done = 0;
  if (fCountsValues && fCountedRows < kFirstRows) {
    done = std::min(count, kFirstRows);
    work(first, done);
  }
  ForEachBlock(first + done, count - done, kBlockRows, work);
}

void ScaleCounter::CountSlots(const ColumnView& column, const ChunkWeights& weights, std::size_t row,
                              std::size_t rows) {
  std::array<std::uint32_t, kBlockRows> slots;
  fSlots.Assign(column, row, rows, slots.data());
  if (fSlots.size() > fSums.slots()) fSums.Resize(fSlots.size());
  fSums.Add(slots.data(), rows, weights, row);
  fCountedRows += rows;
  if (fIsString || !fCountsValues) return;
  const std::size_t hashed = fSlots.numbers().hashedValues();
  const bool mostlyNew = fCountedRows >= kFirstRows && 2 * hashed > fCountedRows;
  if (mostlyNew || hashed > kMostHashedValues) fCountsValues = false;
}

void ScaleCounter::TakeValues(const ColumnView& column, const ChunkWeights& weights, std::size_t row,
                              std::size_t rows) {
  std::array<double, kBlockRows> buffer;
  const double* values = buffer.data();
  if (column.storage == ColumnStorage::Float64 && fMissing.empty()) {
    values = static_cast<const double*>(column.cells) + row;
  } else {
    ReadNumbers(column, row, rows, buffer.data());
    MakeMissing(fMissing, buffer.data(), rows);
  }

  if (!fWantsMoments && !fWantsPercentiles) {
    std::array<std::uint32_t, kBlockRows> slots;
    for (std::size_t i = 0; i < rows; ++i) slots[i] = std::isnan(values[i]) ? kSystemMissingSlot : kOtherValidSlot;
    fSums.Add(slots.data(), rows, weights, row);
    return;
  }

  for (std::size_t done = 0; done < rows;) done += TakeIntoBlock(values + done, rows - done, weights, row + done);
}

std::size_t ScaleCounter::TakeIntoBlock(const double* values, std::size_t count, const ChunkWeights& weights,
                                        std::size_t row) {
  const bool weighted = weights.exact != nullptr;
  KeptValues::Place place = fValues.next(weighted);
  if (place.room < std::min(count, kFewestAtOnce)) {
    SumPending();
    fValues.OpenNext(fWantsPercentiles, weighted);
    fSummed = 0;
    place = fValues.next(weighted);
  }
  count = std::min(count, place.room);
  // Each value is written and the end moves or not, without a branch to mispredict. Adding zero makes -0.0 the same
  // value as 0.0.
  std::size_t valid = 0;
  if (!weighted) {
    for (std::size_t i = 0; i < count; ++i) {
      place.values[valid] = values[i] + 0.0;
      valid += values[i] == values[i] ? 1 : 0;
    }
    if (place.weights != nullptr) std::fill_n(place.weights, valid, 1.0);
    fSums.AddUnits(kOtherValidSlot, valid);
    fSums.AddUnits(kSystemMissingSlot, count - valid);
  } else {
    std::array<double, kBlockRows> otherWeights;
    std::size_t others = 0;
    const double* const itsWeights = weights.exact + row;
    for (std::size_t i = 0; i < count; ++i) {
      const double weight = itsWeights[i];
      const bool counts = (values[i] == values[i]) & (weight > 0.0);
      place.values[valid] = values[i] + 0.0;
      place.weights[valid] = weight;
      otherWeights[others] = weight;
      valid += counts ? 1 : 0;
      others += counts ? 0 : 1;
    }
    fSums.AddRowsBut(kOtherValidSlot, count, kSystemMissingSlot, otherWeights.data(), others, weights, row);
  }
  if (weights.form == ChunkWeights::Form::Narrow)
    fPendingShift = std::max(fPendingShift, weights.shift);
  else if (weighted)
    fPendingIsNarrow = false;
  fValues.Written(valid, weights.above);
  if (fValues.open().count - fSummed >= kSummedAtOnce) SumPending();
  return count;
}

void ScaleCounter::SumPending() {
  const KeptValues::Block open = fValues.open();
  const std::size_t count = open.count - fSummed;
  const double* values = open.values + fSummed;
  const double* itsWeights = open.weights == nullptr ? nullptr : open.weights + fSummed;
  const bool isNarrow = std::exchange(fPendingIsNarrow, true);
  const int shift = std::exchange(fPendingShift, 0);
  fSummed = open.count;
  if (!fWantsMoments || fMomentsAreGiven || count == 0) return;
  if (itsWeights == nullptr)
    fMoments.AddUnits(values, count);
  else if (isNarrow)
    fMoments.AddNarrow(values, itsWeights, shift, count);
  else
    fMoments.AddWeighted(values, itsWeights, count);
}

/// The values that were counted, with the sums of their weights.
void ScaleCounter::AddCountedMoments(const std::vector<std::pair<double, WeightTotal>>& counted) {
  std::vector<double> values;
  std::vector<std::uint64_t> units;
  int shift = 0;
  for (const auto& [value, weight] : counted) {
    const UInt128 itsUnits = weight.InUnits();
    if (weight.wide != nullptr || itsUnits >> 63 != 0) {
      fMoments.AddCounted(value, weight);
      continue;
    }
    shift = weight.shift;  // the same of all sums of one object
    values.push_back(value);
    units.push_back(static_cast<std::uint64_t>(itsUnits));
  }
  fMoments.AddInUnits(values.data(), units.data(), shift, values.size());
}

/// Fills fFinished and the two totals.
void ScaleCounter::SumSlots() {
  auto& counted = fFinished.counted;
  fValid = fSums.Total(kOtherValidSlot);
  fMissingTotal = fSums.Total(kSystemMissingSlot);
  for (std::size_t slot = kFirstValueSlot; slot < fSums.slots(); ++slot) {
    if (fSums.IsZero(slot)) continue;
    const WeightTotal weight = fSums.Total(slot);
    if (fSlots.IsUserMissing(slot, fMissing)) {
      fMissingTotal += weight;
      continue;
    }
    fValid += weight;
    if (fIsString) continue;
    if (fWantsMoments || fWantsPercentiles) counted.emplace_back(fSlots.numbers().value(slot), weight);
  }
  std::sort(counted.begin(), counted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  fFinished.kept = &fValues;
}

WeightTotal ScaleCounter::total() const {
  WeightTotal total = fValid;
  total += fMissingTotal;
  return total;
}

ItemSketch ScaleCounter::Sketch(const CaseGroups* groups) const {
  ItemSketch sketch;
  sketch.variable = fIndex;
  sketch.total = NearestDouble(total());
  sketch.missing = NearestDouble(fMissingTotal);
  if (!hasNumbers() || fValid.IsZero()) return sketch;
  sketch.mean = fMoments.Mean(fValid);
  sketch.quartiles = fQuartiles;
  const MomentParts* const given = groups == nullptr ? nullptr : groups->moments();
  sketch.bins =
      given == nullptr
          ? Histogram(fFinished, fValid, fQuartiles)
          : HistogramOf(*groups, {given->lowest, given->highest, fQuartiles[0], fQuartiles[2], NearestDouble(fValid)},
                        given->areWhole);
  return sketch;
}

void ScaleCounter::FinishMoments(const MomentParts* given) {
  SumPending();
  if (!fWantsMoments) return;
  if (given == nullptr) return AddCountedMoments(fFinished.counted);
  fMoments = MomentSums();
  fMoments.AddParts({given->values, given->valueCount}, {given->squares, given->squareCount});
}

std::vector<double> ScaleCounter::Finish(const MomentParts* given) {
  SumSlots();
  FinishMoments(given);

  std::vector<double> cutPoints;
  for (const AggregationStatistic& statistic : fStatistics)
    if (statistic.GetSummaryStatistic() == kPercentile) cutPoints.push_back(statistic.GetPTileCutPoint());
  std::array<std::size_t, 3> places{};  // of the quartiles among the cut points
  for (std::size_t i = 0; fSketches && i < places.size(); ++i) {
    const double quartile = 25.0 * static_cast<double>(i + 1);
    places[i] = static_cast<std::size_t>(std::find(cutPoints.begin(), cutPoints.end(), quartile) - cutPoints.begin());
    if (places[i] == cutPoints.size()) cutPoints.push_back(quartile);
  }
  const std::vector<double> percentiles = hasNumbers() ? Percentiles(fFinished, fValid, cutPoints)
                                                       : std::vector<double>(cutPoints.size(), kSystemMissingValue);
  for (std::size_t i = 0; fSketches && i < places.size(); ++i) fQuartiles.push_back(percentiles[places[i]]);
  std::vector<double> results;
  std::size_t percentile = 0;
  for (const AggregationStatistic& statistic : fStatistics) {
    switch (statistic.GetSummaryStatistic()) {
      case kValid:
        results.push_back(NearestDouble(fValid));
        break;
      case kMissing:
        results.push_back(NearestDouble(fMissingTotal));
        break;
      case kMean:
        results.push_back(hasNumbers() ? fMoments.Mean(fValid) : kSystemMissingValue);
        break;
      case kStdDev:
        results.push_back(hasNumbers() ? fMoments.StandardDeviation(fValid) : kSystemMissingValue);
        break;
      case kPercentile:
        results.push_back(percentiles[percentile++]);
        break;
      case kCount:
      case kTotal:
        results.push_back(NearestDouble(total()));
        break;
      case kPercent:
        results.push_back(Percent(total(), total()));
        break;
    }
  }
  return results;
}

}  // namespace runtime::aggregation
