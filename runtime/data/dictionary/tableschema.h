// Table Schema, versions 1 and 2, with the custom property `codebook`.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Reads a schema into `table`: its fields and missing values, and of its `codebook` property
/// weight, sets, documents and attributes. Throws DataError.
void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, std::vector<Note>& notes);

/// Reads `weight` and `multipleResponseSets` of a `codebook` property. What `table` has already stays.
void ReadWeightAndSets(const JsonPlace& codebook, TableDescriptor& table);

/// Reads an object of attributes, each value a text or a list of texts, behind those that are there.
void ReadAttributes(const JsonPlace& object, DatasourceAttributes& attributes);

/// A text cut at its line ends (LF, CRLF, CR); a line end at its end begins no further line.
std::vector<std::string> SplitLines(const std::string& text);

/// Reads `documents` of a `codebook` property: a list of texts, or of lists of lines.
std::vector<std::vector<std::string>> ReadDocuments(const JsonPlace& list);

/// Adds a note for every member of a `codebook` property that is not one of `known`.
void NoteUnknownMembers(const JsonPlace& codebook, const std::vector<std::string>& known, std::vector<Note>& notes);

}  // namespace runtime::data
