// Groups as a database would count them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/source/sql/rawgroups.h"

namespace runtime::data {

using Counts = std::vector<std::pair<std::optional<std::string>, std::int64_t>>;

/// Groups without weights; none: NULL.
inline RawGroups GroupsOf(const Counts& counts) {
  RawGroups groups;
  for (const auto& [text, cases] : counts)
    groups.AddCases(groups.Enter(text ? std::optional<std::string_view>(*text) : std::nullopt), cases);
  return groups;
}

}  // namespace runtime::data
