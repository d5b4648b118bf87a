// Counting the categories of one dimension.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/aggregation/dimension.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/counting/chunk.h"
#include "runtime/aggregation/counting/weightsums.h"

namespace runtime::aggregation {

/// A category with the weight of its cases.
struct CountedCategory {
  double value = 0.0;
  int code = 0;
  std::string text;
  WeightTotal weight;
  bool hasCell = true;
};

/// All that is counted over one dimension; the categories in their order, without the total.
struct DimensionCounts {
  std::vector<CountedCategory> categories;
  WeightTotal missing;
  WeightTotal total;
};

/// A row of the chunk at which a value appears that was not met before.
struct FirstAppearance {
  std::size_t row;
  std::uint32_t slot;
};

/// Counts a dimension's values a stretch of rows at a time, and looks ahead for values not met before. A slot is a
/// value or a member; those that are no values of the dimension are never told of.
class DimensionCounter {
 public:
  virtual ~DimensionCounter();
  DimensionCounter(const DimensionCounter&) = delete;
  DimensionCounter& operator=(const DimensionCounter&) = delete;

  /// Adds the rows first, first + 1, ... of the chunk.
  virtual void CountRows(const Chunk& chunk, std::size_t first, std::size_t count) = 0;
  /// Appends the first appearances, among these rows of positive weight, of values not marked; marks them. In rising
  /// order of rows. Counts nothing. May look at more rows of the chunk than it was asked to: gives the row up to which
  /// it has. What it learns of the rows may be used by CountRows.
  virtual std::size_t FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                                    std::vector<FirstAppearance>& found) = 0;
  /// Takes a mark back: the row was not taken.
  void Unmark(std::uint32_t slot) {
    fMarks[slot] = kNotMet;
    ++fNotMet;
  }
  /// Marks the values counted so far; gives their number.
  int MarkCountedValues();
  /// Slots so far.
  std::size_t slots() const { return fMarks.size(); }
  /// REQUIRES: after this nothing but the destructor is called.
  virtual DimensionCounts Finish() = 0;

 protected:
  enum Marks : std::uint8_t { kNotMet = 0, kMet = 1, kNoValue = 2 };

  DimensionCounter() = default;
  /// Makes room for slots below `slots`; new ones are not met.
  void ResizeSlots(std::size_t slots);
  void MarkNoValue(std::uint32_t slot) { Mark(slot, kNoValue); }
  void MarkMet(std::uint32_t slot) { Mark(slot, kMet); }
  /// Whether there are slots whose value was not met: without any, no row needs looking at.
  bool hasNotMet() const { return fNotMet > 0; }
  /// One block: appends what FindNewValues asks for, given the rows' slots.
  void FindInBlock(const std::uint32_t* slots, std::size_t count, const ChunkWeights& weights, std::size_t first,
                   std::vector<FirstAppearance>& found);

  /// Of a set: adds the rows to the slot of all cases, and those of response 0 and not 1 to that of no response.
  void AddCases(std::uint8_t* responded, std::size_t count, const ChunkWeights& weights, std::size_t first);

  // Slots of a set; those of its categories follow.
  static constexpr std::uint32_t kNoResponseSlot = 0;  // the cases without a response
  static constexpr std::uint32_t kAllCasesSlot = 1;
  static constexpr std::uint32_t kFirstOfSetSlot = 2;

  WeightSums fSums;
  std::vector<std::uint8_t> fMarks;  // by slot

 private:
  void Mark(std::uint32_t slot, Marks mark) {
    if (fMarks[slot] == kNotMet) --fNotMet;
    fMarks[slot] = mark;
  }

  std::size_t fNotMet = 0;
};

/// The counter that a dimension asks for. Keeps no pointer to `dimension`, copies the counted value, and copies the
/// handles to the variables that it needs. Throws std::out_of_range when a variable is no dictionary index.
std::unique_ptr<DimensionCounter> MakeDimensionCounter(const AggregationVariable& dimension,
                                                       const MAVO_DataSource& source);

/// The shortest text that reads back the same number.
std::string ShortestText(double number);

}  // namespace runtime::aggregation
