// Counting the members of a multiple dichotomy set.
#pragma once

#include <string>
#include <vector>

#include "host/aggregation/dimension.h"

#include "runtime/aggregation/counting/dimensioncounter.h"

namespace runtime::aggregation {

/// One category a member, in set order: the cases in which the member has the counted value, user-missing or not. A
/// member named twice is one member. Missing: the cases in which no member has it.
class DichotomySetCounter : public DimensionCounter {
 public:
  DichotomySetCounter(const AggregationMDSet& dimension, const MAVO_DataSource& source);

  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count) override;
  std::size_t FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                            std::vector<FirstAppearance>& found) override;
  DimensionCounts Finish() override;

 private:
  struct Member {
    int variable;
    std::string name;
    const StringTable* strings = nullptr;
    std::vector<std::uint8_t> isCountedCode;  // by string code; kUnknownCode until asked for
  };

  /// hits[i] = 1 when the member has the counted value in row first + i, else 0.
  void FindHits(Member& member, const ColumnView& column, std::size_t first, std::size_t count,
                std::uint8_t* hits) const;

  std::vector<Member> fMembers;
  bool fCountsText = false;
  double fCountedNumber = 0.0;
  std::string fCountedText;  // without trailing blanks
};

}  // namespace runtime::aggregation
