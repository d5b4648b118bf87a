// What a descriptor kept of a DDI-Codebook, put back where it was.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/writing/xmlelement.h"

namespace runtime::data {

/// The element at a path below `root`; its containers are put in where they are not there. Always a new one, but for
/// one that may be replaced.
XmlElement& PlaceElement(XmlElement& root, std::string_view path);

/// Puts back the extras named "ddi:...", in the form of ddiwords.h; those that do not fit are passed over. `root` is
/// the `var` of a field or the `codeBook` of a table, with everything else in it already.
void PlaceDdiExtras(const std::vector<ExtraProperty>& extras, XmlElement& root);

}  // namespace runtime::data
