// Sums of weights, one per slot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "runtime/aggregation/counting/cellsums.h"
#include "runtime/aggregation/counting/chunkweights.h"
#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/exact/weighttotal.h"

namespace runtime::aggregation {

/// A slot is the number of whatever is counted: a value, a category, the missing ones. All sums are exact.
class WeightSums {
 public:
  std::size_t slots() const { return fSlots; }
  /// New slots stand at zero.
  void Resize(std::size_t slots);

  /// Adds the weights of rows row, row + 1, ... of the chunk to the slots of the list. REQUIRES: all below slots().
  void Add(const std::uint32_t* slots, std::size_t count, const ChunkWeights& weights, std::size_t row);
  /// The same for one row.
  void AddRow(std::uint32_t slot, const ChunkWeights& weights, std::size_t row);
  /// Adds the weights of the rows row, row + 1, ... to `slot`, except for some of them, whose weights the list gives:
  /// these go to `other`.
  void AddRowsBut(std::uint32_t slot, std::size_t count, std::uint32_t other, const double* others,
                  std::size_t otherCount, const ChunkWeights& weights, std::size_t row);
  /// Adds to each slot of the list, kMostTogether at most, the weights of those of the rows row, row + 1, ... whose hit
  /// is 1 and not 0. As many slots at once as possible cost least.
  void AddHits(const std::uint32_t* slots, const std::uint8_t* const* hits, std::size_t slotCount, std::size_t count,
               const ChunkWeights& weights, std::size_t row);
  static constexpr std::size_t kMostTogether = 8;
  /// Adds the weights of all rows row, row + 1, ...
  void AddRows(std::uint32_t slot, std::size_t count, const ChunkWeights& weights, std::size_t row);
  /// Adds sums over rows of a chunk with weights of this form. REQUIRES: the slots are below slots().
  void Add(const CellSums& sums, const ChunkWeights& form);
  /// Adds `cases` cases of weight 1.
  void AddUnits(std::uint32_t slot, std::uint64_t cases) { fUnits[slot] += cases; }

  bool IsZero(std::size_t slot) const;
  WeightTotal Total(std::size_t slot) const;
  /// True while every case had the weight 1.
  bool onlyUnits() const { return fScaled.empty() && fWide.empty(); }

 private:
  void PrepareFor(const ChunkWeights& weights);

  std::size_t fSlots = 0;
  std::vector<std::uint64_t> fUnits;
  std::vector<UInt128> fScaled;  // empty until scaled weights come
  int fShift = 0;
  std::vector<WideWeightSum> fWide;  // empty until wide weights come
};

inline void WeightSums::AddRow(std::uint32_t slot, const ChunkWeights& weights, std::size_t row) {
  if (weights.form == ChunkWeights::Form::Units)
    ++fUnits[slot];
  else
    Add(&slot, 1, weights, row);
}

}  // namespace runtime::aggregation
