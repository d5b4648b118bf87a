#include "runtime/aggregation/counting/weightsums.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

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

void WeightSums::AddHits(std::uint32_t slot, const std::uint8_t* hits, std::size_t count, const ChunkWeights& weights,
                         std::size_t row) {
  std::uint32_t cases = 0;
  for (std::size_t i = 0; i < count; ++i) cases += hits[i];
  if (weights.form == ChunkWeights::Form::Units) fUnits[slot] += cases;
  if (cases == 0 || weights.form == ChunkWeights::Form::Units) return;

  PrepareFor(weights);
  switch (weights.form) {
    case ChunkWeights::Form::Units:
      break;
    case ChunkWeights::Form::Narrow: {
      // Half by half, so that several are added at once and no carry passes between them.
      std::uint64_t low = 0;
      std::uint64_t high = 0;
      for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t units = weights.narrow[row + i] & (std::uint64_t{0} - hits[i]);
        low += units & UINT32_MAX;
        high += units >> 32;
      }
      fScaled[slot] += (UInt128{high} << 32) + low;
      break;
    }
    case ChunkWeights::Form::Broad:
      for (std::size_t i = 0; i < count; ++i) fScaled[slot] += weights.broad[row + i] * hits[i];
      break;
    case ChunkWeights::Form::Wide:
      for (std::size_t i = 0; i < count; ++i)
        if (hits[i] != 0) fWide[slot].Add(weights.exact[row + i]);
      break;
  }
}

void WeightSums::Add(const CellSums& sums, const ChunkWeights& form) {
  for (std::size_t i = 0; i < sums.cases.size(); ++i) fUnits[sums.slots[i]] += sums.cases[i];
  if (sums.scaled.empty()) return;
  PrepareFor(form);
  for (std::size_t i = 0; i < sums.scaled.size(); ++i) fScaled[sums.slots[i]] += sums.scaled[i];
}

void WeightSums::AddAll(std::uint32_t slot, const double* exact, std::size_t count, const ChunkWeights& form) {
  if (count == 0) return;
  PrepareFor(form);
  if (form.form == ChunkWeights::Form::Wide) {
    for (std::size_t i = 0; i < count; ++i) fWide[slot].Add(exact[i]);
    return;
  }
  UInt128 sum = 0;
  if (form.form == ChunkWeights::Form::Narrow) {
    // A power of two: the product is exact, and whole.
    const double scale = std::ldexp(1.0, form.shift);
    for (std::size_t i = 0; i < count; ++i)
      sum += static_cast<std::uint64_t>(static_cast<std::int64_t>(exact[i] * scale));
  } else {
    for (std::size_t i = 0; i < count; ++i) sum += InUnitsOf<UInt128>(exact[i], form.shift);
  }
  fScaled[slot] += sum;
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
