// The cursor's present chunk as the counters see it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/chunkweights.h"

namespace runtime::aggregation {

/// Rows of a chunk are named by their place in it: row 0 is the cursor's chunkBegin. They are cases or, where a source
/// has counted for the table, groups of cases.
struct Chunk {
  const CaseCursor* cursor;
  ChunkWeights weights;
  const CaseGroups* groups = nullptr;  // null: cases

  ColumnView Column(int variable) const {
    return groups == nullptr ? cursor->Column(variable) : groups->Column(variable);
  }
  std::size_t rows() const {
    return groups == nullptr ? static_cast<std::size_t>(cursor->chunkEnd - cursor->chunkBegin) : groups->rows();
  }
  /// The sums that hold instead of those over the rows; null: the rows' own.
  const MomentParts* moments() const { return groups == nullptr ? nullptr : groups->moments(); }
};

/// The chunks that a cursor comes to, each with its weights scaled once.
class ScaledChunk {
 public:
  /// `groups` null: the rows are cases. Neither is owned.
  explicit ScaledChunk(const CaseCursor& cursor, const CaseGroups* groups = nullptr) : fChunk{&cursor, {}, groups} {}

  /// REQUIRES: the cursor stands in a chunk.
  const Chunk& Present() {
    if (fScaledChunk != fChunk.cursor->chunkBegin) {
      const double* const weights = fChunk.groups == nullptr ? fChunk.cursor->Weights() : fChunk.groups->Weights();
      fChunk.weights = fScaler.Scale(weights, fChunk.rows());
      fScaledChunk = fChunk.cursor->chunkBegin;
    }
    return fChunk;
  }
  /// The same without its weights.
  const Chunk& unweighted() const { return fChunk; }
  /// Gives the memory of the scaled weights back, which are made again when they are asked for.
  void ReleaseWeights() {
    fScaler.Release();
    fScaledChunk = -1;
  }

 private:
  Chunk fChunk;
  WeightScaler fScaler;
  std::int64_t fScaledChunk = -1;  // chunkBegin of the chunk whose weights are scaled; negative: none
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
