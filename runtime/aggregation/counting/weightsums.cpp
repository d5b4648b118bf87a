#include "runtime/aggregation/counting/weightsums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "runtime/aggregation/counting/chunk.h"
#include "runtime/aggregation/exact/binary64.h"

namespace runtime::aggregation {

void WeightSums::Resize(std::size_t slots) {
  fSlots = slots;
  fUnits.resize(slots);
  if (!fScaled.empty()) fScaled.resize(slots);
  if (!fWide.empty()) fWide.resize(slots);
}

void WeightSums::PrepareFor(const ChunkWeights& weights) {
  if (weights.form == ChunkWeights::Form::Wide) {
    if (fWide.size() < fSlots) fWide.resize(fSlots);
    return;
  }
  if (fScaled.size() < fSlots) fScaled.resize(fSlots);
  if (weights.shift == fShift) return;
  for (UInt128& sum : fScaled) sum <<= weights.shift - fShift;
  fShift = weights.shift;
}

void WeightSums::Add(const std::uint32_t* slots, std::size_t count, const ChunkWeights& weights, std::size_t row) {
  if (weights.form == ChunkWeights::Form::Units) {
    for (std::size_t i = 0; i < count; ++i) ++fUnits[slots[i]];
    return;
  }
  PrepareFor(weights);
  switch (weights.form) {
    case ChunkWeights::Form::Units:
      break;
    case ChunkWeights::Form::Narrow:
      for (std::size_t i = 0; i < count; ++i) fScaled[slots[i]] += weights.narrow[row + i];
      break;
    case ChunkWeights::Form::Broad:
      for (std::size_t i = 0; i < count; ++i) fScaled[slots[i]] += weights.broad[row + i];
      break;
    case ChunkWeights::Form::Wide:
      for (std::size_t i = 0; i < count; ++i) fWide[slots[i]].Add(weights.exact[row + i]);
      break;
  }
}

void WeightSums::AddHits(const std::uint32_t* slots, const std::uint8_t* const* hits, std::size_t slotCount,
                         std::size_t count, const ChunkWeights& weights, std::size_t row) {
  if (weights.form == ChunkWeights::Form::Units) {
    for (std::size_t s = 0; s < slotCount; ++s) {
      std::uint32_t cases = 0;
      for (std::size_t i = 0; i < count; ++i) cases += hits[s][i];
      fUnits[slots[s]] += cases;
    }
    return;
  }
  PrepareFor(weights);
  if (!weights.isScaled()) {
    for (std::size_t s = 0; s < slotCount; ++s)
      for (std::size_t i = 0; i < count; ++i)
        if (hits[s][i] != 0) fWide[slots[s]].Add(weights.exact[row + i]);
    return;
  }
  // A bit a slot: one histogram over these patterns holds the sums of all.
  std::array<std::array<UInt128, 2>, std::size_t{1} << kMostTogether> sums{};
  std::array<std::uint8_t, kBlockRows> patterns;
  for (std::size_t first = 0; first < count; first += kBlockRows) {
    const std::size_t rows = std::min(count - first, kBlockRows);
    std::fill_n(patterns.begin(), rows, std::uint8_t{0});
    for (std::size_t s = slotCount; s-- > 0;)
      for (std::size_t i = 0; i < rows; ++i)
        patterns[i] = static_cast<std::uint8_t>(patterns[i] + patterns[i] + hits[s][first + i]);
    const std::size_t begin = row + first;
    if (weights.form == ChunkWeights::Form::Narrow)
      for (std::size_t i = 0; i < rows; ++i) sums[patterns[i]][i % 2] += weights.narrow[begin + i];
    else
      for (std::size_t i = 0; i < rows; ++i) sums[patterns[i]][i % 2] += weights.broad[begin + i];
  }
  for (std::size_t pattern = 1; pattern < std::size_t{1} << slotCount; ++pattern) {
    const UInt128 sum = sums[pattern][0] + sums[pattern][1];
    if (sum == 0) continue;
    for (std::size_t s = 0; s < slotCount; ++s)
      if ((pattern >> s & 1) != 0) fScaled[slots[s]] += sum;
  }
}

void WeightSums::Add(const CellSums& sums, const ChunkWeights& form) {
  for (std::size_t i = 0; i < sums.cases.size(); ++i) fUnits[sums.slots[i]] += sums.cases[i];
  if (sums.scaled.empty()) return;
  PrepareFor(form);
  for (std::size_t i = 0; i < sums.scaled.size(); ++i) fScaled[sums.slots[i]] += sums.scaled[i];
}

void WeightSums::AddRows(std::uint32_t slot, std::size_t count, const ChunkWeights& weights, std::size_t row) {
  if (weights.form == ChunkWeights::Form::Units) {
    fUnits[slot] += count;
    return;
  }
  PrepareFor(weights);
  if (weights.isScaled())
    fScaled[slot] += weights.before[row + count] - weights.before[row];
  else
    for (std::size_t i = 0; i < count; ++i) fWide[slot].Add(weights.exact[row + i]);
}

void WeightSums::AddRowsBut(std::uint32_t slot, std::size_t count, std::uint32_t other, const double* others,
                            std::size_t otherCount, const ChunkWeights& weights, std::size_t row) {
  AddRows(slot, count, weights, row);
  if (weights.form == ChunkWeights::Form::Units) {
    fUnits[slot] -= otherCount;
    fUnits[other] += otherCount;
    return;
  }
  if (!weights.isScaled()) {
    for (std::size_t i = 0; i < otherCount; ++i) {
      fWide[slot].Add(-others[i]);
      fWide[other].Add(others[i]);
    }
    return;
  }
  UInt128 sum = 0;
  if (weights.form == ChunkWeights::Form::Narrow) {
    // A power of two: the product is exact, and whole.
    const double scale = std::ldexp(1.0, weights.shift);
    for (std::size_t i = 0; i < otherCount; ++i)
      sum += static_cast<std::uint64_t>(static_cast<std::int64_t>(others[i] * scale));
  } else {
    for (std::size_t i = 0; i < otherCount; ++i) sum += InUnitsOf<UInt128>(others[i], weights.shift);
  }
  fScaled[slot] -= sum;
  fScaled[other] += sum;
}

bool WeightSums::IsZero(std::size_t slot) const {
  if (fUnits[slot] != 0) return false;
  if (!fScaled.empty() && fScaled[slot] != 0) return false;
  if (fWide.empty()) return true;
  const auto& limbs = fWide[slot].limbs();
  return std::all_of(limbs.begin(), limbs.end(), [](std::uint64_t limb) { return limb == 0; });
}

WeightTotal WeightSums::Total(std::size_t slot) const {
  WeightTotal total;
  total.units = fUnits[slot];
  if (!fScaled.empty()) {
    total.scaled = fScaled[slot];
    total.shift = fShift;
  }
  if (!fWide.empty()) {
    auto wide = std::make_shared<const Dyadic>(fWide[slot]);
    if (wide->sign() != 0) total.wide = std::move(wide);
  }
  return total;
}

}  // namespace runtime::aggregation
