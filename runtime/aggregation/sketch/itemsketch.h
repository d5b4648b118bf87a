// What was counted of one item, in a few numbers: for pictures and lists beside the tables.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace runtime::aggregation {

/// A class of values: [from, to), the last one of a histogram closed; from and to are the same where there is but one
/// value. `weight` is the sum of the weights.
struct HistogramBin {
  double from = 0.0;
  double to = 0.0;
  double weight = 0.0;
};

/// All weights are sums of case weights, exact and rounded once, so that they depend on neither threads nor chunks.
struct ItemSketch {
  int variable = -1;         // dictionary index of the one variable counted; negative: a set
  std::string name;          // of a set, as the table was asked for; of a variable empty
  std::vector<int> members;  // of a set: dictionary indices, in set order; of a variable none
  double total = 0.0;        // weight of all cases
  double missing = 0.0;      // weight of the cases with a missing value; of a set, of those without a response
  // Of a numeric variable counted as scale that has valid values; elsewhere NaN and empty.
  double mean = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> quartiles;   // at 25, 50 and 75 percent
  std::vector<HistogramBin> bins;  // ascending, without gaps; see histogram.h
};

}  // namespace runtime::aggregation
