// Names of tables as users write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

struct NamePart {
  std::string name;  // without its quotes
  bool isQuoted = false;
};

/// Cuts a name such as `survey`, `wave1.survey` or `"Wave 1"."a ""b"""` at its periods; quotes are "…", `…` and […].
/// Nothing for a text that is no such name.
std::optional<std::vector<NamePart>> SplitTableName(std::string_view text);

}  // namespace runtime::data
