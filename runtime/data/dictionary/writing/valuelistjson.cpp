#include "runtime/data/dictionary/writing/valuelistjson.h"

#include <algorithm>
#include <string>

namespace runtime::data {
namespace {

/// `write` gives the JSON of a value.
template <typename Write>
Json ListJson(const std::vector<LabelledValue>& values, Write write) {
  const bool labelled =
      std::any_of(values.begin(), values.end(), [](const LabelledValue& value) { return value.label.has_value(); });
  Json list = Json::array();
  for (const LabelledValue& value : values) {
    if (!labelled) {
      list.push_back(write(value));
      continue;
    }
    Json entry = Json::object();
    entry["value"] = write(value);
    if (value.label) entry["label"] = *value.label;
    list.push_back(std::move(entry));
  }
  return list;
}

std::string DigitsOfField(std::string digits, const FieldDialect& dialect) {
  const std::size_t point = digits.find('.');
  if (point != std::string::npos && dialect.type == FieldType::Number) digits.replace(point, 1, dialect.decimalChar);
  return digits;
}

}  // namespace

Json ValueJson(const LabelledValue& value) {
  if (!value.isNumber) return value.value;
  Json number = Json::parse(value.value, nullptr, false);
  return number.is_number() ? number : Json(value.value);
}

Json ValueListJson(const std::vector<LabelledValue>& values) { return ListJson(values, ValueJson); }

Json MissingValuesJson(const std::vector<LabelledValue>& values, const FieldDialect& dialect) {
  return ListJson(values, [&dialect](const LabelledValue& value) {
    return Json(value.isNumber ? DigitsOfField(value.value, dialect) : value.value);
  });
}

}  // namespace runtime::data
