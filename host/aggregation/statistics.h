// Statistics as they are asked for and as they are read back.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/common/api.h"
#include "host/data/obs.h"

namespace TableEncryptionCodes {
enum StatisticCodes : int {
  kCount = 1,      // sum of the weights of the cases in a category
  kPercent = 130,  // 100 x Count / Total
  kMean = 179,
  kMissing = 198,     // sum of the weights of the cases with a missing value
  kStdDev = 203,      // frequency weights, divisor W - 1
  kTotal = 213,       // sum of the weights of all cases
  kValid = 222,       // sum of the weights of the cases with a valid value
  kPercentile = 468,  // with a cut point
};
enum DimensionPosition : int { kFirstDimension = 0 };
}  // namespace TableEncryptionCodes

/// One statistic: of a cell, or of a variable over all cases.
class HOST_API AggregationStatistic {
 public:
  explicit AggregationStatistic(TableEncryptionCodes::StatisticCodes code);
  /// `variable` is a dictionary index.
  AggregationStatistic(int variable, TableEncryptionCodes::StatisticCodes code);

  /// The percentile to compute, above 0 and below 100.
  void SetPTileCutPoint(double percent) { fCutPoint = percent; }

  TableEncryptionCodes::StatisticCodes GetSummaryStatistic() const { return fCode; }
  int GetVariable() const { return fVariable; }  // -1 when the statistic has no variable
  double GetPTileCutPoint() const { return fCutPoint; }

 private:
  TableEncryptionCodes::StatisticCodes fCode;
  int fVariable = -1;
  double fCutPoint = 0.0;
};

/// The number of one value. System-missing is NaN.
class HOST_API AggregationResult {
 public:
  explicit AggregationResult(double value) : fValue(value) {}
  double GetValue1() const { return fValue; }

 private:
  double fValue;
};

/// The statistics of a cell, parallel to its values.
class HOST_API CellStatistics {
 public:
  explicit CellStatistics(std::vector<AggregationStatistic> statistics);
  ~CellStatistics();
  CellStatistics(const CellStatistics&);
  CellStatistics(CellStatistics&&) noexcept;
  CellStatistics& operator=(const CellStatistics&);
  CellStatistics& operator=(CellStatistics&&) noexcept;

  const std::vector<AggregationStatistic>& GetStatistics() const { return fStatistics; }

 private:
  std::vector<AggregationStatistic> fStatistics;
};

/// The values of one cell. Owned by the cube aggregator that gave it.
class HOST_API StatValues {
 public:
  /// The two lists are parallel.
  StatValues(std::vector<double> values, std::vector<AggregationStatistic> statistics);
  ~StatValues();
  StatValues(const StatValues&) = delete;
  StatValues& operator=(const StatValues&) = delete;

  int NumOfValues() const { return static_cast<int>(fValues.size()); }
  AggregationResult GetStatValue(int j) const;
  /// A copy, the caller's own.
  CellStatistics GetCellStatistics() const;

 private:
  std::vector<double> fValues;
  std::vector<AggregationStatistic> fStatistics;
};

/// One category of a dimension.
class HOST_API AggregationCategory {
 public:
  AggregationCategory(double value, int code, std::string text, bool isTotal)
      : fValue(value), fCode(code), fText(std::move(text)), fIsTotal(isTotal) {}
  ~AggregationCategory();
  AggregationCategory(const AggregationCategory&);
  AggregationCategory(AggregationCategory&&) noexcept;
  AggregationCategory& operator=(const AggregationCategory&);
  AggregationCategory& operator=(AggregationCategory&&) noexcept;

  /// The numeric value; of a string value and of a dichotomy set's member 0.
  double GetValue() const { return fValue; }
  /// Of a set's category: dictionary index of the member variable that it belongs to. Otherwise its number, from 0.
  int GetCode() const { return fCode; }
  /// Of a string value its text without trailing blanks; of a numeric value the shortest text that reads back the same;
  /// of a dichotomy set's category the member's name.
  const std::string& GetText() const { return fText; }
  bool IsTotal() const { return fIsTotal; }

 private:
  double fValue;
  int fCode;
  std::string fText;
  bool fIsTotal;
};
