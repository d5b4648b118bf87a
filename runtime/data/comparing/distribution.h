// How the values of one variable of one wave are distributed, and what moved between two waves.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/comparing/comparison.h"

namespace runtime::data {

struct ValueWeight {
  std::string value;  // as the dictionary names it: the shortest digits of a number; a text without trailing blanks
  std::string shown;  // its label, else the value in its variable's format
  double weight = 0.0;
};

/// A statistic and how its format shows it.
struct Figure {
  double number = 0.0;
  std::string shown;
};

/// All weights are sums of case weights.
struct Distribution {
  double valid = 0.0;
  double missing = 0.0;             // system- and user-missing
  std::vector<ValueWeight> values;  // valid ones, ascending; of a scale variable none
  bool isScale = false;
  std::optional<Figure> mean;  // of a scale variable with valid values, as the others
  std::optional<Figure> deviation;
  std::vector<Figure> quartiles;  // the three

  double total() const { return valid + missing; }
  /// In percent of all cases. REQUIRES: there are some.
  double missingShare() const { return 100.0 * missing / total(); }
};

/// By variable name; a variable whose distribution is not known has no entry.
using Distributions = std::map<std::string, Distribution>;

/// What is a difference, at least.
struct Thresholds {
  double missing = 1.0;  // percentage points that the share of missing values moved
  double value = 5.0;    // percentage points that a value's share of the valid ones moved
  double mean = 0.2;     // standard deviations that a mean moved
};

/// Appends what moved to the variables that both waves have. A share counts only where the wave has cases (for values:
/// valid ones). Values whose code moved are compared with their new code. The unit of means is
/// sqrt((s1^2 + s2^2) / 2), so that neither wave is preferred (Cohen, "Statistical power analysis for the behavioral
/// sciences", 2nd ed. 1988, eq. 2.3.2; 0.2 is his small effect); without any spread in both, every other mean is a
/// difference. Shares that differ by rounding alone are none.
void CompareDistributions(const Distributions& before, const Distributions& after, const Thresholds& thresholds,
                          Comparison& comparison);

}  // namespace runtime::data
