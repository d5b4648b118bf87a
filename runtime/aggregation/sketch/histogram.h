// Histograms from counted and kept values.
#pragma once

#include <vector>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/selection.h"
#include "runtime/aggregation/exact/weighttotal.h"
#include "runtime/aggregation/sketch/binedges.h"
#include "runtime/aggregation/sketch/itemsketch.h"

namespace runtime::aggregation {

/// The histogram of the values, in one walk over the kept ones. Where all values are whole and span at most 40 numbers,
/// each number has a class of its own, otherwise the classes are those of BinEdges. One value that is not such a whole
/// number makes one class, from the value to itself. The weights are exact and rounded once. `total` is the sum of all
/// weights, `quartiles` are the values' three. Empty when there is no value. Throws machine::SpillError.
std::vector<HistogramBin> Histogram(const WeightedValues& values, const WeightTotal& total,
                                    const std::vector<double>& quartiles);

/// The histogram of values that their source counts: the same classes. `areWhole`: all values are.
std::vector<HistogramBin> HistogramOf(const CaseGroups& groups, const BinBasis& basis, bool areWhole);

}  // namespace runtime::aggregation
