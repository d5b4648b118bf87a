// Statistics of the reported items.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/aggregation/table.h"
#include "host/output/proceduredatasource.h"

#include "codebook/cbkcategory.h"

namespace codebook {

/// One aggregation table an item, all filled in one pass over the cases. Lists have one entry an item, same index as
/// the items. Order of use: SetUp, PassCases, then the reading operations. One thread.
class VariableStatistics {
 public:
  /// The entries are not owned and must live until the pass is over; the two lists are referred to, not copied.
  VariableStatistics(const std::vector<std::unique_ptr<ItemEntry>>& items,
                     const std::vector<AggregationStatistic>& categoryStatistics,
                     const std::vector<std::int32_t>& scaleStatCodes);
  virtual ~VariableStatistics();
  VariableStatistics(const VariableStatistics&) = delete;
  VariableStatistics& operator=(const VariableStatistics&) = delete;

  /// Builds one request an item; 1 always. The iterator is not owned. An item whose value labels outnumber
  /// `maxCategories` keeps its table but shows no statistics.
  int SetUp(MAVO_InputCaseIterator& iterator, int maxCategories);
  /// Appends one statistic a code, three for the percentile code.
  void BuildScaleStatistics(std::vector<AggregationStatistic>& out, int varIndex) const;

  /// Passes the cases once; a categorical item with more than maxCategories distinct values drops out on the way, and
  /// the pass ends behind the first case that no item took. Returns the number of cases up to there, 0 when there are
  /// none. REQUIRES: SetUp with the same maxCategories, on a ProcDSIterator.
  int PassCases(int maxCategories);

  /// Per category of a categorical item (the total left out): counts, percents, numeric values, texts, set codes.
  /// Clears the lists first. `*missing` is the weight of the missing cases, the result that of all cases. `percents` is
  /// only as long as `counts` when percents were requested; `values` stays empty for a dichotomy set, `setCodes` for a
  /// variable.
  double ReadCategoryResults(int i, std::vector<double>& counts, std::vector<double>& percents,
                             std::vector<double>& values, std::vector<std::string>& valueTexts,
                             std::vector<std::int32_t>& setCodes, double* missing) const;
  /// A scale item's values in request order; empty for a categorical item.
  void ReadScaleResults(int i, std::vector<double>& results) const;
  /// Weighted number of cases, told by the first item that shows statistics and has any; -1 when none has.
  double CaseCount();

  /// One flag an item: its statistics are shown.
  const std::vector<bool>& shownFlags() const { return fHasStatistics; }
  std::size_t itemCount() const { return fItems.size(); }

 private:
  std::unique_ptr<AggregationVariable> MakeDimension(const ItemEntry& entry) const;
  void SetUpItem(std::size_t i, int maxCategories);
  double CaseCountOfItem(std::size_t i) const;

  double fCachedCaseCount = -1.0;  // weighted; negative until an item has told it
  std::vector<const ItemEntry*> fItems;
  std::vector<std::unique_ptr<ParsedCategory>> fParsedCategories;  // stays empty: the dimensions own theirs
  std::vector<std::unique_ptr<AggregationTable>> fTables;
  MAVO_InputCaseIterator* fCaseIterator = nullptr;
  std::vector<AggregationVariable*> fItemVariables;  // null for a scale item; owned by the tables' cubes
  const std::vector<AggregationStatistic>& fCategoryStatistics;
  const std::vector<std::int32_t>& fScaleStatCodes;
  std::vector<std::unique_ptr<CubeAggregator>> fCubeAggregators;  // filled after the pass
  std::vector<bool> fHasStatistics;
};

}  // namespace codebook
