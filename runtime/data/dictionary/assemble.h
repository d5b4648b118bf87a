// From a dictionary file and what is known of the columns to the dictionary of the dataset.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"
#include "runtime/data/records.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// The field of each column, null for a column without one. They meet by name, exactly as written; of columns with the
/// same header the first one takes the field; without a header row they meet by position. Fields and columns that stay
/// alone are told in `notes`; with `strict` they are an error (DataError). The fields are those of `descriptor`.
std::vector<const FieldDescriptor*> MatchFields(const TableDescriptor& descriptor,
                                                const std::vector<std::string>& headers, bool strict,
                                                std::vector<Note>& notes);

/// A column of the data with its field; null: the descriptor has none for it, or there is no descriptor.
struct DescribedColumn {
  const ColumnFacts* facts = nullptr;
  const FieldDescriptor* field = nullptr;
  std::string comment = {};  // that the source keeps on the column: its label, where the field gives none
};

/// `descriptor` is null when there is no dictionary file; `dataPath` is absent when the data come from no file.
/// Variables stand in the order of the columns; their names are indexed. Throws DataError.
Dictionary AssembleDictionary(const TableDescriptor* descriptor, const std::vector<DescribedColumn>& columns,
                              const std::optional<std::string>& dataPath, std::vector<Note>& notes);

/// Makes the variable of that name the weight; an empty name switches weighting off. Throws DataError for an unknown or
/// a string variable.
void OverrideWeight(Dictionary& dictionary, const std::string& name);

}  // namespace runtime::data
