// -F ddi: the dictionary of the dataset with frequencies and statistics, as DDI-Codebook.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "runtime/data/dataset.h"
#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/writing/ddistatistics.h"
#include "runtime/output/model/report.h"

namespace app {

/// The name of the format.
inline constexpr const char* kDdiFormat = "ddi";

/// Runs a command over a dataset and gives what it reported, with the sketches of its items, in English.
using RunCommand = std::function<std::unique_ptr<runtime::output::Report>(
    const std::shared_ptr<const runtime::data::Dataset>& dataset, const std::string& command)>;

/// The variables that a report has tables of.
std::set<std::string> VariablesWithTables(const runtime::output::Report& report,
                                          const runtime::data::Dictionary& dictionary);

/// Frequencies and statistics of those variables: unweighted, and weighted where the dataset has a weight. Each is a
/// command run in the ordinary way, and its numbers are those of its tables, in full precision. Values of variables
/// with more than a thousand different ones are not counted one by one.
runtime::data::DdiStatistics GatherDdiStatistics(const std::shared_ptr<const runtime::data::Dataset>& dataset,
                                                 const std::set<std::string>& variables, const RunCommand& run);

}  // namespace app
