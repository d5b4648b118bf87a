// Where the classes of a histogram lie.
#pragma once

#include <vector>

namespace runtime::aggregation {

inline constexpr int kFewestBins = 5;
inline constexpr int kMostBins = 40;

/// What the classes depend on: of the valid values the extremes, the quartiles and the sum of the weights.
struct BinBasis {
  double lowest = 0.0;
  double highest = 0.0;
  double lowerQuartile = 0.0;
  double upperQuartile = 0.0;
  double weight = 0.0;
};

/// The edges of classes of equal width, ascending, from the last edge at or below the lowest value to the first one at
/// or above the highest. The width is 2 IQR W^(-1/3) (Freedman and Diaconis, "On the histogram as a density estimator",
/// Zeitschrift für Wahrscheinlichkeitstheorie 57 (1981), 453-476), and where the interquartile range is 0 the range
/// divided by ceil(log2 W) + 1 (Sturges, "The choice of a class interval", Journal of the American Statistical
/// Association 21 (1926), 65-66); rounded to 1, 2 or 5 times a power of ten (Heckbert, "Nice numbers for graph labels",
/// Graphics Gems, 1990) and then taken to the next such number, up or down, until there are at least kFewestBins and at
/// most kMostBins. Edges are multiples of the width, rounded once. Fewer classes only where no such width has multiples
/// that are told apart as doubles. REQUIRES: lowest < highest, both finite.
std::vector<double> BinEdges(const BinBasis& basis);

/// One class for each whole number from the lowest to the highest, with the number in its middle. Empty where the two
/// are not whole, or span more than kMostBins.
std::vector<double> WholeNumberEdges(double lowest, double highest);

}  // namespace runtime::aggregation
