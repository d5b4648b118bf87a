#include "runtime/data/dictionary/fieldvalue.h"

#include <cmath>
#include <string_view>
#include <utility>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

FieldDialect DialectOf(const FieldDescriptor* field, FieldType type) {
  FieldDialect dialect = field ? field->dialect : FieldDialect();
  dialect.type = type;
  return dialect;
}

std::optional<double> Finite(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  return value == 0 ? 0.0 : value;  // no negative zero
}

std::optional<double> PlainNumber(std::string_view text) {
  NumberReading reading;
  if (!ReadNumberText(text, reading)) return std::nullopt;
  return Finite(reading.value);
}

bool HoldsPlainNumbers(FieldType type) {
  return type == FieldType::Integer || type == FieldType::Number || type == FieldType::Year;
}

std::optional<double> ReadWith(const ValueReader& reader, std::string_view text) {
  NumberReading reading;
  if (reader.problem().empty() && reader.Read(text, reading)) return Finite(reading.value);
  return PlainNumber(text);
}

}  // namespace

FieldValues::FieldValues(const FieldDescriptor* field, FieldType type) : fReader(DialectOf(field, type)) {}

std::optional<double> FieldValues::Of(const LabelledValue& entry) const {
  return entry.isNumber ? PlainNumber(entry.value) : ReadWith(fReader, entry.value);
}

std::optional<double> MissingCodeOf(const LabelledValue& entry, const FieldDialect& dialect) {
  if (entry.isNumber || !HoldsPlainNumbers(dialect.type)) return PlainNumber(entry.value);
  return ReadWith(ValueReader(dialect), entry.value);
}

}  // namespace runtime::data
