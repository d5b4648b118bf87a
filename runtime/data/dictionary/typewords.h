// The words for the types of fields.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A word as a type of Table Schema.
struct TypeWord {
  FieldType type = FieldType::String;
  bool isStandard = false;             // a type of Table Schema, written as there
  std::optional<std::string_view> of;  // the standard type that another word means; absent: nothing is known of it
};

/// Without regard to case. Types of Table Schema that are not numeric (object, array, list, geopoint, geojson, any) are
/// strings. Other words that are met stand for one of its types: float, int64, bool, text, timestamp, gyear ...
TypeWord TypeOfWord(const std::string& word);

/// The standard word; empty for a type that is inferred.
std::string_view WordOfType(FieldType type);

}  // namespace runtime::data
