// Counting the categories of a multiple category set.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/data/datasource.h"
#include "host/data/variable.h"

#include "runtime/aggregation/counting/dimensioncounter.h"
#include "runtime/aggregation/counting/valueslots.h"

namespace runtime::aggregation {

/// The categories are the values that the members' value labels name and those met, each member's user-missing values
/// excepted for that member; a case counts once for a category, however many members hold it. Missing: the cases in
/// which no member holds a category. Numbers come before texts where a set has both.
class CategorySetCounter : public DimensionCounter {
 public:
  CategorySetCounter(const std::vector<int>& members, const MAVO_DataSource& source);

  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count) override;
  std::size_t FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                            std::vector<FirstAppearance>& found) override;
  DimensionCounts Finish() override;

 private:
  struct Member {
    int index;
    MAVO_Variable variable;
    ValueSlots slots;
    std::vector<std::uint32_t> category;  // by the member's own slot: the set's slot
    std::vector<std::uint8_t> isHeld;     // by the member's own slot; set while a block is counted
  };
  struct Category {
    bool isText;
    double number;
    std::string text;
    bool isLabelled;
    std::size_t firstMember;  // place in the set of the first member that labels it or holds it in a counted case
  };

  std::uint32_t CategoryOfNumber(double number);
  std::uint32_t CategoryOfText(const std::string& text);
  std::uint32_t NewCategory(Category category);
  Category& CategoryAt(std::uint32_t slot);
  void AddLabelledValues(std::size_t member);
  /// Enters the values that a member has shown since it was last asked.
  void EnterValues(Member& member);
  /// Fills fBlock: the set's slots of rows first, first + 1, ..., member after member.
  void AssignSlots(const std::vector<ColumnView>& columns, std::size_t first, std::size_t count);
  bool HasNewValues(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first);
  void CountByMember(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first, std::size_t count);
  void CountByCase(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first, std::size_t count);
  std::vector<ColumnView> Columns(const Chunk& chunk) const;
  std::size_t BlockRows() const;

  std::vector<Member> fMembers;
  std::vector<Category> fCategories;  // slot less kFirstOfSetSlot
  std::unordered_map<double, std::uint32_t> fCategoryOfNumber;
  std::unordered_map<std::string, std::uint32_t> fCategoryOfText;
  std::vector<std::uint32_t> fBlock;
  std::vector<std::uint64_t> fCountedFor;  // by slot: the visit in which it was counted last
  std::uint64_t fVisit = 0;                // one a counted row
  std::vector<std::uint8_t> fHits;         // by slot and row of a block: 1 where a member holds the category, else 0
  std::vector<std::uint32_t> fHitSlots;    // those with a 1
  std::int64_t fSearchedChunk = -1;        // chunkBegin of the chunk that was searched last; negative: none
};

}  // namespace runtime::aggregation
