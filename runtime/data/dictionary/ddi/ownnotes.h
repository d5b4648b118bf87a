// The notes in which this program writes what DDI has no word for.
#pragma once

#include <pugixml.hpp>

#include "runtime/data/dictionary/ddi/repeatednotes.h"
#include "runtime/data/dictionary/ddi/xmldocument.h"
#include "runtime/data/dictionary/ddinotes.h"

namespace runtime::data {

/// The notes right below a `stdyDscr`: of table, resource and package, and which elements were made up. A note that is
/// no JSON is told in `oddities` and passed over.
void ReadNotesOfStudy(pugi::xml_node study, const XmlDocument& document, DdiNotes& notes, RepeatedNotes& oddities);

/// Those right below a `var`.
void ReadNotesOfVariable(pugi::xml_node variable, const XmlDocument& document, DdiNoteList& notes,
                         RepeatedNotes& oddities);

}  // namespace runtime::data
