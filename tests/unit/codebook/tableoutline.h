// A table with everything that was said of it: marks of texts, flags, positions, kinds of content.
#pragma once

#include <string>
#include <vector>

#include "runtime/output/model/report.h"

namespace codebook::test {

/// "title data:age", "subtype data:Variable Information", "flag false", "width 200" (when set), then each dimension,
/// "rows fixed:Attributes 1 true false", and its items, two blanks a level: "  group fixed:N", "    fixed:Valid |
/// fixed:Value = number:3". What is shown is marked: fixed: and data: texts, number:, value: (a data value), name: and
/// label: (a variable).
std::vector<std::string> outline(const runtime::output::Table& table);

}  // namespace codebook::test
