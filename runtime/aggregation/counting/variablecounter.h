// Counting the values of one categorical variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/aggregation/dimension.h"
#include "host/data/variable.h"

#include "runtime/aggregation/counting/cellsums.h"
#include "runtime/aggregation/counting/dimensioncounter.h"
#include "runtime/aggregation/counting/valueslots.h"

namespace runtime::aggregation {

/// Without a list of categories: the values met, ordered by value. With one: the listed values in their order.
class VariableCounter : public DimensionCounter {
 public:
  VariableCounter(int index, const MAVO_Variable& variable,
                  const std::vector<std::unique_ptr<ParsedCategory>>& categories);

  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count) override;
  std::size_t FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                            std::vector<FirstAppearance>& found) override;
  DimensionCounts Finish() override;

 private:
  void AssignSlots(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots);
  bool SumRows(const ColumnView& column, const ChunkWeights& weights, std::size_t first, std::size_t count,
               CellSums& sums);
  void FindInSums(const Chunk& chunk, const ColumnView& column, std::size_t first, std::vector<FirstAppearance>& found);
  std::vector<std::uint32_t> SlotsInOrder() const;

  int fIndex;
  MAVO_Variable fVariable;  // keeps the missing rule alive
  ValueSlots fSlots;
  std::vector<std::uint32_t> fListed;  // slots of the listed categories, in their order
  bool fHasList;

  // What the search has learned of rows [fFirst, fEnd) of the chunk that begins at fChunkBegin (negative: nothing):
  // their sums, or, where there are none, their slots.
  std::int64_t fChunkBegin = -1;
  std::size_t fFirst = 0;
  std::size_t fEnd = 0;
  bool fHasSums = false;
  CellSums fSumsOfRows;
  std::vector<std::uint32_t> fSlotsOfRows;
};

}  // namespace runtime::aggregation
