#include "runtime/data/dictionary/ddi/ddiformat.h"

#include "runtime/data/dictionary/ddi/xmldocument.h"
#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

constexpr int kWidestNumber = 40;
constexpr int kMostDecimals = 16;

/// yyyy, mm and dd once each, with one of . / - between them; empty for anything else.
std::string DatePattern(const std::string& name) {
  if (name.size() != 10) return {};
  std::string pattern;
  for (std::size_t at = 0; at < name.size();) {
    if (name.compare(at, 4, "yyyy") == 0) {
      pattern += "%Y";
      at += 4;
    } else if (name.compare(at, 2, "mm") == 0 || name.compare(at, 2, "dd") == 0) {
      pattern += name[at] == 'm' ? "%m" : "%d";
      at += 2;
    } else {
      return {};
    }
    if (at == name.size()) break;
    if (name[at] != '.' && name[at] != '/' && name[at] != '-') return {};
    pattern += name[at++];
  }
  for (const char* part : {"%Y", "%m", "%d"})
    if (pattern.find(part) == std::string::npos) return {};
  return pattern;
}

std::optional<int> WholeNumber(const std::string& text) {
  NumberReading reading;
  if (!ReadIntegerText(text, reading) || reading.value < 0 || reading.value > kWidestNumber) return std::nullopt;
  return static_cast<int>(reading.value);
}

std::optional<MAVO_Format> NumberFormat(const std::string& name, pugi::xml_node variable) {
  const FormatReading named = ReadFormatText(name);
  if (named.problem.empty() && !IsStringFormat(named.format.type) && !IsTemporalFormat(named.format.type))
    return named.format;
  const auto decimals = WholeNumber(AttributeOf(variable, "dcml"));
  const auto width = WholeNumber(AttributeOf(ElementOf(variable, "location"), "width"));
  if (!decimals || !width || *decimals > kMostDecimals || *width < *decimals + (*decimals > 0 ? 2 : 1))
    return std::nullopt;
  return MAVO_Format{static_cast<std::uint16_t>(*width), static_cast<std::uint8_t>(kFormatF),
                     static_cast<std::uint8_t>(*decimals)};
}

}  // namespace

DdiFormat ReadDdiFormat(pugi::xml_node variable, pugi::xml_node varFormat) {
  DdiFormat read;
  if (!varFormat) return read;
  std::string name = AttributeOf(varFormat, "formatname");
  if (name.empty()) name = LineOf(varFormat);
  const std::string type = LowerAscii(AttributeOf(varFormat, "type"));
  const std::string category = LowerAscii(AttributeOf(varFormat, "category"));
  read.datePattern = DatePattern(LowerAscii(name));
  if (!read.datePattern.empty()) {
    read.type = FieldType::Date;
    return read;
  }
  const FormatReading named = ReadFormatText(name);
  if (category == "date" || category == "time" || (named.problem.empty() && IsTemporalFormat(named.format.type)))
    return read;
  if (type == "character") read.type = FieldType::String;
  // The schema's default, and what documents without it mean.
  if (type == "numeric" || type.empty()) read.type = FieldType::Number;
  if (read.type == FieldType::Number) read.format = NumberFormat(name, variable);
  return read;
}

}  // namespace runtime::data
