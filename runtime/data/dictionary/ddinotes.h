// What DDI-Codebook has no word for, as notes of a type of our own.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// The notes of a table, a resource, a package or a field. Each is `<notes type="codebook"
/// subject="NAME">JSON</notes>`, `level` being absent for those of a table or field, "resource" or "package" for the
/// others; a table's stand below `stdyDscr`, a field's below its `var`.
inline constexpr const char* kManyProperties = "*";  // the subject of that one

struct DdiNoteList {
  /// By subject: a property of the field, schema, resource or package as Table Schema and Data Package write it, null
  /// where there is none. One of the property `codebook` is called "codebook.NAME", an element of DDI "ddi:PATH". Those
  /// whose names an attribute of XML cannot hold stand together in one note, as the members of an object.
  Json properties = Json::object();
};

/// They rule over what the elements say.
struct DdiNotes {
  DdiNoteList table;
  DdiNoteList resource;
  DdiNoteList package;
  std::vector<DdiNoteList> fields;  // parallel to those of the descriptor
  /// Extras named "ddi:..." that come from elements which were made up for the document, such as the IDs of its
  /// variables: the subjects "generated" and "generatedInVariables", each a list of names, both below `stdyDscr`. A
  /// note that gives such an element rules.
  std::vector<std::string> generated;
  std::vector<std::string> generatedInFields;

  bool empty() const;
};

/// Makes of what the elements say what was written. Throws DataError for a note that is no such property.
void ApplyDdiNotes(const DdiNotes& notes, TableDescriptor& table);

/// The notes with which ApplyDdiNotes makes `wanted` of `said`: the properties that differ. REQUIRES: as many fields.
DdiNotes FindDdiNotes(const TableDescriptor& said, const TableDescriptor& wanted);

}  // namespace runtime::data
