// From what was counted of the tables to the sketches of a procedure.
#pragma once

#include <vector>

#include "runtime/aggregation/sketch/itemsketch.h"
#include "runtime/data/records.h"
#include "runtime/output/model/report.h"

namespace runtime::common {

/// The sketches of a procedure's items, each item once, in the order of their names (by bytes). `counted` are in the
/// order in which the tables' results were asked for. Of several tables over one variable the one that was counted as
/// scale is taken. A set's sketch belongs to a table of the procedure by the set's label and members: the first of them
/// that is still without one. What belongs to no item of the dictionary is left out.
std::vector<output::Sketch> SketchesOf(const std::vector<aggregation::ItemSketch>& counted,
                                       const data::Dictionary& dictionary, const output::Procedure& procedure);

}  // namespace runtime::common
