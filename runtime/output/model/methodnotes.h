// How the numbers of a report came about, in sentences.
#pragma once

#include <string>
#include <vector>

#include "runtime/output/model/report.h"

namespace runtime::output {

class Catalog;

/// The notes that fit the report: of weights and cases whenever it has a table, of statistics when a table shows them.
/// `catalog` is the one that the fixed texts of the report were translated with; null: English. The notes themselves
/// are in English. None without facts.
std::vector<MethodNote> MethodNotes(const Report& report, const Catalog* catalog);

/// Name and text of a note in the catalog's language (null: English), the arguments filled in. What the arguments say
/// comes from the data, so the text needs a renderer's escaping.
std::string NoteName(const MethodNote& note, const Catalog* catalog);
std::string NoteText(const MethodNote& note, const Catalog* catalog);

}  // namespace runtime::output
