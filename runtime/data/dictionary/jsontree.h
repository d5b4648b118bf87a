// Building the tree of a JSON text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// What was met while the tree was built.
struct JsonTree {
  Json root;
  std::string problem;  // empty when the text is JSON
  std::size_t problemAt = 0;
  std::size_t repeatedKeys = 0;
  std::string firstRepeatedKey;  // its JSON pointer
};

/// Of members of one name in one object the last one holds. The time does not depend on how many members an object has.
/// REQUIRES: no deeper than kDeepestJson.
JsonTree BuildJsonTree(std::string_view text);

/// A key as a step of a JSON pointer.
std::string PointerStep(std::string_view key);

}  // namespace runtime::data
