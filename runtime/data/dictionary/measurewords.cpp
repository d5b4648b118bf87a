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

std::string_view MeasureWord(MAVO_Variable_Enumerations::MeasurementLevel level) {
  switch (level) {
    case MAVO_Variable_Enumerations::kLevelNominal:
      return "nominal";
    case MAVO_Variable_Enumerations::kLevelOrdinal:
      return "ordinal";
    case MAVO_Variable_Enumerations::kLevelScale:
      return "scale";
    case MAVO_Variable_Enumerations::kLevelUnknown:
      break;
  }
  return "unknown";
}

std::string_view RoleWord(MAVO_Variable_Enumerations::Role role) {
  switch (role) {
    case MAVO_Variable_Enumerations::kRoleTarget:
      return "target";
    case MAVO_Variable_Enumerations::kRoleBoth:
      return "both";
    case MAVO_Variable_Enumerations::kRoleNone:
      return "none";
    case MAVO_Variable_Enumerations::kRolePartition:
      return "partition";
    case MAVO_Variable_Enumerations::kRoleSplit:
      return "split";
    case MAVO_Variable_Enumerations::kRoleInput:
      break;
  }
  return "input";
}

}  // namespace runtime::data
