// What a report tells of its dataset beside the tables.
#pragma once

#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/output/model/report.h"

namespace runtime::common {

/// All but the weighted number of cases, the items and the notes.
output::ReportFacts FactsOf(const data::Dataset& dataset);

/// The variables and sets that the report has a table of, by the tables' titles. A set has the name by which the title
/// spells it; spelled in two ways, it stands twice.
std::vector<output::ItemFacts> DescribedItems(const data::Dictionary& dictionary, const output::Report& report);

}  // namespace runtime::common
