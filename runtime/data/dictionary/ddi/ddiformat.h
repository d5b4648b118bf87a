// How a DDI-Codebook says that the values of a variable are written.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

struct DdiFormat {
  FieldType type = FieldType::Inferred;  // Number, String, Date, or Inferred when nothing certain is said
  std::string datePattern;               // of a Date
  std::optional<MAVO_Format> format;     // of a Number
};

/// `varFormat` may be null. Numbers are numbers, characters are texts. A date is one when the order of its parts is
/// said (yyyy-mm-dd, dd/mm/yyyy); otherwise the data decide, for the word alone does not tell how dates stand in a text
/// file. The format is that of `formatname`, else that of `dcml` and `location@width` together.
DdiFormat ReadDdiFormat(pugi::xml_node variable, pugi::xml_node varFormat);

}  // namespace runtime::data
