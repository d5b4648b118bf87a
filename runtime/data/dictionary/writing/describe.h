// From an open dataset back to a dictionary file: everything that its dictionary says, said explicitly.
#pragma once

#include <vector>

#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/records.h"

namespace runtime::data {

/// The descriptor of a dataset. Read as the dictionary of the same data it gives the same dictionary.
///
/// `columns` are those that the dictionary was assembled from, one a variable, or empty for a dataset that was put
/// together in memory: variables are then described by their records alone. `source` is the descriptor that the fields
/// of `columns` belong to, or null. What `source` says and the dictionary has no word for (extras, how cells are
/// written, descriptions) is kept; fields of it without a column are left out.
TableDescriptor Describe(const Dictionary& dictionary, const std::vector<DescribedColumn>& columns,
                         const TableDescriptor* source);

}  // namespace runtime::data
