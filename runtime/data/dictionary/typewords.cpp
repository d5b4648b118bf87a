#include "runtime/data/dictionary/typewords.h"

#include <unordered_map>

#include "runtime/data/lowerascii.h"

namespace runtime::data {
namespace {

using Words = std::unordered_map<std::string_view, std::string_view>;

const std::unordered_map<std::string_view, FieldType>& StandardTypes() {
  static const std::unordered_map<std::string_view, FieldType> types = {
      {"integer", FieldType::Integer}, {"number", FieldType::Number},       {"boolean", FieldType::Boolean},
      {"year", FieldType::Year},       {"date", FieldType::Date},           {"datetime", FieldType::DateTime},
      {"time", FieldType::Time},       {"yearmonth", FieldType::YearMonth}, {"duration", FieldType::Duration},
      {"string", FieldType::String},   {"object", FieldType::String},       {"array", FieldType::String},
      {"list", FieldType::String},     {"geopoint", FieldType::String},     {"geojson", FieldType::String},
      {"any", FieldType::String}};
  return types;
}

/// In lower case, and without separators.
const Words& OtherWords() {
  static const Words words = {
      {"int", "integer"},      {"int8", "integer"},       {"int16", "integer"},        {"int32", "integer"},
      {"int64", "integer"},    {"uint8", "integer"},      {"uint16", "integer"},       {"uint32", "integer"},
      {"uint64", "integer"},   {"long", "integer"},       {"short", "integer"},        {"bigint", "integer"},
      {"smallint", "integer"}, {"tinyint", "integer"},    {"float", "number"},         {"float32", "number"},
      {"float64", "number"},   {"double", "number"},      {"decimal", "number"},       {"numeric", "number"},
      {"real", "number"},      {"currency", "number"},    {"percent", "number"},       {"bool", "boolean"},
      {"logical", "boolean"},  {"str", "string"},         {"text", "string"},          {"char", "string"},
      {"character", "string"}, {"varchar", "string"},     {"factor", "string"},        {"categorical", "string"},
      {"category", "string"},  {"uri", "string"},         {"url", "string"},           {"email", "string"},
      {"uuid", "string"},      {"timestamp", "datetime"}, {"dateandtime", "datetime"}, {"datetime64", "datetime"},
      {"posixct", "datetime"}, {"gyear", "year"},         {"gyearmonth", "yearmonth"}, {"timedelta", "duration"},
      {"json", "object"},      {"dict", "object"},        {"geo", "geopoint"}};
  return words;
}

std::string Plain(const std::string& word) {
  std::string plain;
  for (const char byte : word) {
    if (byte == '-' || byte == '_' || byte == ' ') continue;
    plain.push_back(LowerAscii(byte));
  }
  return plain;
}

}  // namespace

TypeWord TypeOfWord(const std::string& word) {
  const auto standard = StandardTypes().find(word);
  if (standard != StandardTypes().end()) return {standard->second, true, standard->first};
  const std::string plain = Plain(word);
  const auto other = OtherWords().find(plain);
  const auto meant = StandardTypes().find(other == OtherWords().end() ? std::string_view(plain) : other->second);
  if (meant == StandardTypes().end()) return {};
  return {meant->second, false, meant->first};
}

std::string_view WordOfType(FieldType type) {
  switch (type) {
    case FieldType::Inferred:
      return "";
    case FieldType::String:
      return "string";
    case FieldType::Integer:
      return "integer";
    case FieldType::Number:
      return "number";
    case FieldType::Boolean:
      return "boolean";
    case FieldType::Year:
      return "year";
    case FieldType::Date:
      return "date";
    case FieldType::DateTime:
      return "datetime";
    case FieldType::Time:
      return "time";
    case FieldType::YearMonth:
      return "yearmonth";
    case FieldType::Duration:
      return "duration";
  }
  return "";
}

}  // namespace runtime::data
