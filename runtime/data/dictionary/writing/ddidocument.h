// A descriptor as the elements of a DDI-Codebook.
#pragma once

#include <memory>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/writing/ddistatistics.h"
#include "runtime/data/dictionary/writing/xmlelement.h"

namespace runtime::data {

/// The elements that DDI-Codebook 2.5 has for what the descriptor says, in the schema's order, and nothing else: what
/// DDI has no word for is left out. `statistics` may be null.
///
/// `codeBook/docDscr` repeats the title. `stdyDscr` holds title and documents (an `abstract` each); `fileDscr` the
/// file's name and size; `dataDscr` a `varGrp` of type multipleResp for each set and a `var` for each field. The
/// attributes of ddiwords.h become their elements again; extras named "ddi:..." go where they were, unless the schema
/// does not allow it.
std::unique_ptr<XmlElement> BuildDdi(const TableDescriptor& table, const DdiStatistics* statistics);

/// Where notes of the table and of each field go: `stdyDscr`, and the `var` elements in the order of the fields.
XmlElement& StudyOf(XmlElement& codeBook);
std::vector<XmlElement*> VariablesOf(XmlElement& codeBook);

}  // namespace runtime::data
