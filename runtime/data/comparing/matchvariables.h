// Which variable of the new wave is which of the old one.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "runtime/data/comparing/comparedtable.h"
#include "runtime/data/comparing/comparison.h"

namespace runtime::data {

/// Of one variable of the new wave: the place of its counterpart.
struct VariableMatch {
  std::optional<std::size_t> before;  // place in the old wave; absent: none
  std::optional<RenameEvidence> renamed;
};

/// One entry a variable of the new wave; no old variable is given twice. They meet by name, then without regard to
/// case. Of those that stay alone, an old and a new one are proposed as renamed when they have the same label and,
/// besides, the same value labels or the same type, and nobody else has all that on either side.
std::vector<VariableMatch> MatchVariables(const ComparedTable& before, const ComparedTable& after);

}  // namespace runtime::data
