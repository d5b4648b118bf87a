// Exact percentiles of weighted values, selected, not sorted.
#pragma once

#include <utility>
#include <vector>

#include "runtime/aggregation/counting/selection.h"
#include "runtime/aggregation/exact/weighttotal.h"

namespace runtime::aggregation {

/// The percentiles at the cut points (in percent). With x the sorted distinct values, w their summed weights, c the
/// cumulative weights, W the sum of all weights and t = (W + 1) p / 100, the weighted average at t is
///   x_1 when t < c_1;  the last x when t >= W;  otherwise, with c_i <= t < c_{i+1} and d = t - c_i,
///   x_{i+1} when d >= 1, else (1 - f) x_i + f x_{i+1} with f = d when w_{i+1} >= 1 and f = d / w_{i+1} otherwise.
/// With whole weights it is the average of the two order statistics around (n + 1) p (definition 6 of Hyndman and Fan,
/// "Sample Quantiles in Statistical Packages", The American Statistician 50 (1996), 361-365). Comparisons are exact,
/// the result is rounded once. System-missing when there is no value. `total` is W.
/// Throws machine::SpillError.
std::vector<double> Percentiles(const WeightedValues& values, const WeightTotal& total,
                                const std::vector<double>& cutPoints);

}  // namespace runtime::aggregation
