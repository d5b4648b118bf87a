// Why the type of an inferred column is not a narrower one, and cells that look as if they stood in its way.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/typing/columntyper.h"
#include "runtime/data/typing/typedecision.h"

namespace runtime::data {

/// The steps that led from the narrowest type to the one of an inferred column, in the order of the rows. REQUIRES: all
/// its cells were read. Throws SpillError.
std::vector<TypeStep> StepsToType(const TypedColumn& column, const ColumnPlan& plan);

/// Whether a text is one of those by which programs often mean that a value is missing: NA, N/A, null, ".", "-" ...
bool OftenMeansMissing(std::string_view cell);

/// Tells of columns that are texts only because of such words, in one note, and in another of those whose cells read as
/// one narrower type but for a few (one in a hundred at most). `source` is the file; `isLookedAt` says
/// of a column's place whether it is, empty: all are. Throws SpillError.
void NoteStrayCells(const std::string& source, const std::vector<TypedColumn>& columns,
                    const std::vector<ColumnPlan>& plans, std::vector<Note>& notes,
                    const std::function<bool(std::size_t column)>& isLookedAt = {});

}  // namespace runtime::data
