// How the columns of the data are to be read, and what came of it.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Makes a dictionary file fit for what is asked for: a weight that is asked for stands instead of its own; the cells
/// that its dialect, or JSON, has no value for are missing.
const TableDescriptor* Prepared(TableDescriptor& descriptor, const OpenOptions& options);

/// Of columns with these fields, null for one without; `descriptor` is null when there is no dictionary file.
std::vector<ColumnPlan> PlanFor(const TableDescriptor* descriptor, const std::vector<const FieldDescriptor*>& fields);

/// Columns whose type nothing says are texts.
void InferNothing(std::vector<ColumnPlan>& plans);

/// Columns of JSON texts stay texts, unless a field says otherwise.
void KeepTextColumns(const InlineTable& data, const std::vector<std::string>& headers, std::vector<ColumnPlan>& plans);

/// Where the type of each column comes from; the steps are taken out of the table.
std::vector<TypeDecision> TypeDecisions(TypedTable& table, const std::vector<const FieldDescriptor*>& fields,
                                        bool sourceHasTypes);

}  // namespace runtime::data
