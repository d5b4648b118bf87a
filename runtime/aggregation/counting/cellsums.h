// Sums of weights by cell, for columns whose cells are few whole numbers or codes of few texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/chunkweights.h"
#include "runtime/aggregation/counting/valueslots.h"
#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// The weights of a stretch of rows, summed by slot. Each slot stands once, with `cases` cases or, where the chunk has
/// weights, with the weight scaled x 2^-shift of the chunk.
struct CellSums {
  std::vector<std::uint32_t> slots;
  std::vector<std::uint64_t> cases;  // in chunks without weights, else empty
  std::vector<UInt128> scaled;       // in others, else empty

  bool IsPositive(std::size_t i) const { return scaled.empty() ? cases[i] != 0 : scaled[i] != 0; }
};

/// Sums the rows first, first + 1, ... of the chunk: a histogram by direct index, then a slot for each cell met. False,
/// with nothing done, where the cells or the weights are not made for that.
bool SumByCell(const ColumnView& column, const ChunkWeights& weights, std::size_t first, std::size_t count,
               ValueSlots& slots, CellSums& sums);

}  // namespace runtime::aggregation
