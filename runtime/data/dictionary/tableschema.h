// Table Schema, versions 1 and 2, with the custom property `codebook`.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/fieldreading.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Reads a schema into `table`: its fields, its missing values and how fields and columns meet, and of its `codebook`
/// property weight, sets, documents and attributes. Title and description are left to the caller; all else is kept in
/// the extras. Throws DataError.
void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, const SchemaContext& context);
/// The same for a schema that stands in no package; deviations from the standard are told in `notes`, once a kind.
void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, std::vector<Note>& notes);

/// Reads `weight` and `multipleResponseSets` of a `codebook` property. What `table` has already stays.
void ReadWeightAndSets(const JsonPlace& codebook, TableDescriptor& table);

/// Reads attributes behind those that are there: an object, each value a text or a list of texts; or, for names that
/// stand several times, a list of objects with `name` and `value`.
void ReadAttributes(const JsonPlace& place, DatasourceAttributes& attributes);

/// A text cut at its line ends (LF, CRLF, CR); a line end at its end begins no further line.
std::vector<std::string> SplitLines(const std::string& text);

/// Reads `documents` of a `codebook` property: a list of texts, or of lists of lines.
std::vector<std::vector<std::string>> ReadDocuments(const JsonPlace& list);

/// Adds a note for every member of a `codebook` property that is not one of `known`, and keeps it as "codebook.NAME".
void NoteUnknownMembers(const JsonPlace& codebook, const std::vector<std::string>& known, std::vector<Note>& notes,
                        std::vector<ExtraProperty>& extras);

}  // namespace runtime::data
