// What is told about column headers that could not be taken as they are.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// A warning for the columns without a header and one for those whose header stands before them already (names are one
/// without regard to case), each naming the first few with the names that they got. `names` is parallel to `headers`;
/// `where` is the data file.
void TellChangedHeaders(const std::vector<std::string>& headers, const std::vector<std::string>& names,
                        const std::string& where, std::vector<Note>& notes);

}  // namespace runtime::data
