// Frequencies and summary statistics of a dataset's variables, as plain numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace runtime::data {

/// How often a value was met.
struct ValueFrequency {
  std::string value;  // as a dictionary names it: the shortest digits of a number; a text without trailing blanks
  bool isMissing = false;
  std::optional<double> count;          // of cases
  std::optional<double> weightedCount;  // sum of weights
};

/// Absent: not computed, or there is none.
struct SummaryStatistics {
  std::optional<double> valid;    // cases (or their weights) with a value that is not missing
  std::optional<double> invalid;  // those with a system- or user-missing value
  std::optional<double> mean;
  std::optional<double> median;
  std::optional<double> deviation;  // standard deviation
  std::optional<double> minimum;
  std::optional<double> maximum;
};

struct VariableStatistics {
  std::vector<ValueFrequency> frequencies;  // in the order of the values
  SummaryStatistics plain;
  SummaryStatistics weighted;
};

struct DdiStatistics {
  std::optional<std::int64_t> cases;
  /// Parallel to the fields of the descriptor; empty entries for variables of which nothing was computed.
  std::vector<VariableStatistics> variables;
};

}  // namespace runtime::data
