#include "runtime/data/dictionary/measurewords.h"

namespace runtime::data {

std::optional<MAVO_Variable_Enumerations::MeasurementLevel> MeasurementLevelOf(std::string_view word) {
  if (word == "nominal") return MAVO_Variable_Enumerations::kLevelNominal;
  if (word == "ordinal") return MAVO_Variable_Enumerations::kLevelOrdinal;
  if (word == "scale") return MAVO_Variable_Enumerations::kLevelScale;
  if (word == "unknown") return MAVO_Variable_Enumerations::kLevelUnknown;
  return std::nullopt;
}

std::optional<MAVO_Variable_Enumerations::Role> RoleOf(std::string_view word) {
  if (word == "input") return MAVO_Variable_Enumerations::kRoleInput;
  if (word == "target") return MAVO_Variable_Enumerations::kRoleTarget;
  if (word == "both") return MAVO_Variable_Enumerations::kRoleBoth;
  if (word == "none") return MAVO_Variable_Enumerations::kRoleNone;
  if (word == "partition") return MAVO_Variable_Enumerations::kRolePartition;
  if (word == "split") return MAVO_Variable_Enumerations::kRoleSplit;
  return std::nullopt;
}

}  // namespace runtime::data
