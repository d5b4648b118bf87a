// The cursor's present chunk as the counters see it.
#pragma once

#include <cstddef>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/chunkweights.h"

namespace runtime::aggregation {

/// Rows of a chunk are named by their place in it: row 0 is the cursor's chunkBegin.
struct Chunk {
  const CaseCursor* cursor;
  ChunkWeights weights;

  ColumnView Column(int variable) const { return cursor->Column(variable); }
  std::size_t rows() const { return static_cast<std::size_t>(cursor->chunkEnd - cursor->chunkBegin); }
};

/// Counters work through a chunk in blocks of this many rows, whose slots stay in the first-level cache.
inline constexpr std::size_t kBlockRows = 1024;

/// Calls work(first, count) for the blocks of `count` rows from `first` on.
template <class Work>
void ForEachBlock(std::size_t first, std::size_t count, std::size_t blockRows, Work work) {
  for (const std::size_t end = first + count; first < end;) {
    const std::size_t rows = end - first < blockRows ? end - first : blockRows;
    work(first, rows);
    first += rows;
  }
}

}  // namespace runtime::aggregation
