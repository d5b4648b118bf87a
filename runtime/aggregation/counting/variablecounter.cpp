#include "runtime/aggregation/counting/variablecounter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "runtime/aggregation/counting/celltexts.h"

namespace runtime::aggregation {

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

bool VariableCounter::SumRows(const ColumnView& column, const ChunkWeights& weights, std::size_t first,
                              std::size_t count, CellSums& sums) {
  if (!SumByCell(column, weights, first, count, fSlots, sums)) return false;
  ResizeSlots(fSlots.size());
  return true;
}

void VariableCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  const bool isKnown = fChunkBegin == chunk.cursor->chunkBegin && fFirst <= first && first + count <= fEnd;
  if (isKnown && fHasSums && fFirst == first && first + count == fEnd) {
    fSums.Add(fSumsOfRows, chunk.weights);
    return;
  }
  if (isKnown && !fHasSums) {
    fSums.Add(fSlotsOfRows.data() + (first - fFirst), count, chunk.weights, first);
    return;
  }
  const ColumnView column = chunk.Column(fIndex);
  CellSums sums;
  if (SumRows(column, chunk.weights, first, count, sums)) {
    fSums.Add(sums, chunk.weights);
    return;
  }
  std::array<std::uint32_t, kBlockRows> slots;
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    AssignSlots(column, row, rows, slots.data());
    fSums.Add(slots.data(), rows, chunk.weights, row);
  });
}

std::size_t VariableCounter::FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                                           std::vector<FirstAppearance>& found) {
  const ColumnView column = chunk.Column(fIndex);
  if (fChunkBegin != chunk.cursor->chunkBegin) {
    fChunkBegin = chunk.cursor->chunkBegin;
    fFirst = first;
    fSlotsOfRows.clear();
    // The rest of the chunk costs little, and is what will be counted when all of it is taken.
    const std::size_t rest = chunk.rows() - first;
    fHasSums = SumRows(column, chunk.weights, first, rest, fSumsOfRows);
    fEnd = fHasSums ? first + rest : first;
    if (fHasSums) {
      FindInSums(chunk, column, first, found);
      return fEnd;
    }
  }
  // Another run of rows of the same chunk: not all of it is taken.
  if (fHasSums || first != fEnd) {
    fHasSums = false;
    fFirst = first;
    fSlotsOfRows.clear();
  }
  fEnd = first + count;
  fSlotsOfRows.resize(fEnd - fFirst);
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    std::uint32_t* slots = fSlotsOfRows.data() + (row - fFirst);
    AssignSlots(column, row, rows, slots);
    FindInBlock(slots, rows, chunk.weights, row, found);
  });
  return fEnd;
}

/// The rows in which the values first appear of which the sums say that they are new.
void VariableCounter::FindInSums(const Chunk& chunk, const ColumnView& column, std::size_t first,
                                 std::vector<FirstAppearance>& found) {
  std::size_t wanted = found.size();
  for (std::size_t i = 0; i < fSumsOfRows.slots.size(); ++i)
    wanted += fMarks[fSumsOfRows.slots[i]] == kNotMet && fSumsOfRows.IsPositive(i) ? std::size_t{1} : std::size_t{0};
  std::array<std::uint32_t, kBlockRows> slots;
  ForEachBlock(first, fEnd - first, kBlockRows, [&](std::size_t row, std::size_t rows) {
    if (found.size() == wanted) return;
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
