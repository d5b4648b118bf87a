// What the schema of DDI-Codebook 2.5 allows where.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "runtime/data/dictionary/writing/xmlelement.h"

namespace runtime::data {

/// Whether an element may stand right below another, as far as its name goes.
bool DdiAllowsChild(std::string_view parent, std::string_view child);

/// Makes a document valid: puts the elements in their order, and takes out what the schema does not allow: elements and
/// attributes that are unknown, too many or incomplete, values of the wrong kind, IDs that stand twice, references to
/// nothing. REQUIRES: everything else was put in as the schema wants it, so that the document itself stays.
void MakeValidDdi(XmlElement& codeBook);

/// Whether a text may be an ID.
bool IsXmlName(std::string_view text);

}  // namespace runtime::data
