#include "runtime/aggregation/counting/variablecounter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "runtime/aggregation/counting/celltexts.h"

namespace runtime::aggregation {

namespace {

// From here on a histogram over all 256 byte values pays.
constexpr std::size_t kRowsForHistogram = 512;

}  // namespace

VariableCounter::VariableCounter(int index, const MAVO_Variable& variable,
                                 const std::vector<std::unique_ptr<ParsedCategory>>& categories)
    : fIndex(index), fVariable(variable), fSlots(variable.GetType() > 0), fHasList(!categories.empty()) {
  for (const std::unique_ptr<ParsedCategory>& category : categories)
    fListed.push_back(fSlots.isString() ? fSlots.texts().Enter(TextOf(category->value(), fVariable.GetType()))
                                        : fSlots.numbers().SlotOf(category->value()->number));
  if (fHasList) fSlots.Close(fVariable.GetMissingRule());
  ResizeSlots(fSlots.size());
  for (std::uint32_t slot = 0; slot < kFirstValueSlot; ++slot) MarkNoValue(slot);
}

void VariableCounter::AssignSlots(const ColumnView& column, std::size_t first, std::size_t count,
                                  std::uint32_t* slots) {
  fSlots.Assign(column, first, count, slots);
  ResizeSlots(fSlots.size());
}

void VariableCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  const ColumnView column = chunk.Column(fIndex);
  if (column.storage == ColumnStorage::Int8 && chunk.weights.form == ChunkWeights::Form::Units &&
      count >= kRowsForHistogram) {
    CountBytes(column, first, count);
    return;
  }
  std::array<std::uint32_t, kBlockRows> slots;
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    AssignSlots(column, row, rows, slots.data());
    fSums.Add(slots.data(), rows, chunk.weights, row);
  });
}

void VariableCounter::CountBytes(const ColumnView& column, std::size_t first, std::size_t count) {
  // Four histograms in turn: an addition need not wait for the one before it to the same place.
  std::array<std::array<std::uint64_t, 256>, 4> histograms{};
  const std::uint8_t* bytes = static_cast<const std::uint8_t*>(column.cells) + first;
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4)
    for (std::size_t lane = 0; lane < 4; ++lane) ++histograms[lane][bytes[i + lane]];
  for (; i < count; ++i) ++histograms[0][bytes[i]];

  std::array<std::uint8_t, 256> met;
  std::array<std::uint64_t, 256> cases;
  std::size_t values = 0;
  for (std::size_t byte = 0; byte < 256; ++byte) {
    const std::uint64_t sum = histograms[0][byte] + histograms[1][byte] + histograms[2][byte] + histograms[3][byte];
    met[values] = static_cast<std::uint8_t>(byte);
    cases[values] = sum;
    values += sum != 0 ? 1 : 0;
  }
  std::array<std::uint32_t, 256> slots;
  AssignSlots({ColumnStorage::Int8, met.data(), nullptr}, 0, values, slots.data());
  for (std::size_t value = 0; value < values; ++value) fSums.AddUnits(slots[value], cases[value]);
}

void VariableCounter::FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                                    std::vector<FirstAppearance>& found) {
  const ColumnView column = chunk.Column(fIndex);
  std::array<std::uint32_t, kBlockRows> slots;
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    AssignSlots(column, row, rows, slots.data());
    FindInBlock(slots.data(), rows, chunk.weights, row, found);
  });
}

std::vector<std::uint32_t> VariableCounter::SlotsInOrder() const {
  if (fHasList) return fListed;
  std::vector<std::uint32_t> slots;
  for (std::uint32_t slot = kFirstValueSlot; slot < fMarks.size(); ++slot)
    if (!fSums.IsZero(slot)) slots.push_back(slot);
  if (fSlots.isString())
    std::sort(slots.begin(), slots.end(),
              [this](std::uint32_t a, std::uint32_t b) { return fSlots.texts().text(a) < fSlots.texts().text(b); });
  else
    std::sort(slots.begin(), slots.end(), [this](std::uint32_t a, std::uint32_t b) {
      return fSlots.numbers().value(a) < fSlots.numbers().value(b);
    });
  return slots;
}

DimensionCounts VariableCounter::Finish() {
  DimensionCounts counts;
  for (const std::uint32_t slot : SlotsInOrder()) {
    CountedCategory& category = counts.categories.emplace_back();
    category.code = static_cast<int>(counts.categories.size()) - 1;
    // A listed system-missing value is a category that no case has.
    const bool isValue = slot >= kFirstValueSlot;
    if (fSlots.isString()) {
      category.text = fSlots.texts().text(slot);
    } else {
      category.value = fSlots.numbers().value(slot);
      category.text = ShortestText(category.value);
    }
    if (isValue) category.weight = fSums.Total(slot);
    category.hasCell = isValue && !category.weight.IsZero();
  }

  const MissingRule& rule = fVariable.GetMissingRule();
  for (std::uint32_t slot = 0; slot < fMarks.size(); ++slot) {
    if (fSums.IsZero(slot)) continue;
    const WeightTotal weight = fSums.Total(slot);
    counts.total += weight;
    const bool isMissing = slot >= kFirstValueSlot ? fSlots.IsUserMissing(slot, rule) : slot != kOtherValidSlot;
    if (isMissing) counts.missing += weight;
  }
  return counts;
}

}  // namespace runtime::aggregation
