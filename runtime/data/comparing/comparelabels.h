// Value labels of one variable in two waves.
#pragma once

#include <vector>

#include "runtime/data/comparing/comparedtable.h"
#include "runtime/data/comparing/comparison.h"

namespace runtime::data {

/// Labels that were added, removed, changed, and codes that moved: a label that stands once in either wave, at another
/// value. What a moved label leaves or takes is no further change.
std::vector<Change> CompareLabels(const std::vector<ComparedLabel>& before, const std::vector<ComparedLabel>& after);

}  // namespace runtime::data
