// Counting the values of one categorical variable.
#pragma once

#include <memory>
#include <vector>

#include "host/aggregation/dimension.h"
#include "host/data/variable.h"

#include "runtime/aggregation/counting/dimensioncounter.h"
#include "runtime/aggregation/counting/valueslots.h"

namespace runtime::aggregation {

/// Without a list of categories: the values met, ordered by value. With one: the listed values in their order.
class VariableCounter : public DimensionCounter {
 public:
  VariableCounter(int index, const MAVO_Variable& variable,
                  const std::vector<std::unique_ptr<ParsedCategory>>& categories);

  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count) override;
  void FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                     std::vector<FirstAppearance>& found) override;
  DimensionCounts Finish() override;

 private:
  void AssignSlots(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots);
  void CountBytes(const ColumnView& column, std::size_t first, std::size_t count);
  std::vector<std::uint32_t> SlotsInOrder() const;

  int fIndex;
  MAVO_Variable fVariable;  // keeps the missing rule alive
  ValueSlots fSlots;
  std::vector<std::uint32_t> fListed;  // slots of the listed categories, in their order
  bool fHasList;
};

}  // namespace runtime::aggregation
