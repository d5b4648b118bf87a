// The words for measurement levels and roles.
#pragma once

#include <optional>
#include <string_view>

#include "host/data/variable.h"

namespace runtime::data {

/// nominal, ordinal, scale, unknown; nothing for any other word.
std::optional<MAVO_Variable_Enumerations::MeasurementLevel> MeasurementLevelOf(std::string_view word);
/// input, target, both, none, partition, split; nothing for any other word.
std::optional<MAVO_Variable_Enumerations::Role> RoleOf(std::string_view word);

/// The word of a level or a role.
std::string_view MeasureWord(MAVO_Variable_Enumerations::MeasurementLevel level);
std::string_view RoleWord(MAVO_Variable_Enumerations::Role role);

inline constexpr std::string_view kMeasureWords = "nominal, ordinal, scale, unknown";
inline constexpr std::string_view kRoleWords = "input, target, both, none, partition, split";

}  // namespace runtime::data
