// Distributions of variables, counted as every report counts them.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/comparing/distribution.h"
#include "runtime/output/model/report.h"

namespace runtime::common {

struct CountedVariable {
  std::string name;
  bool asScale = false;  // else its values are counted one by one
};

/// A categorical variable with more different values than this is not counted.
inline constexpr int kMostCountedValues = 100'000;

/// The command whose report DistributionsOf reads. REQUIRES: there is a variable, and no string is a scale one.
std::string CountingCommand(const std::vector<CountedVariable>& variables);

/// The distributions in the tables of an English report. A variable that was not counted has none.
data::Distributions DistributionsOf(const output::Report& report);

}  // namespace runtime::common
