#include "runtime/data/dictionary/formats.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace runtime::data {
namespace {

constexpr int kMostDecimals = 16;
constexpr int kWidestNumber = 40;
constexpr int kWidestFormat = UINT16_MAX;

MAVO_Format Make(FormatType type, int width, int decimals = 0) {
  return {static_cast<std::uint16_t>(width), static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(decimals)};
}

MAVO_Format NumberFormat(const ColumnFacts& facts, int decimals) {
  const int fraction = decimals > 0 ? decimals + 1 : 0;
  return Make(kFormatF, std::min(facts.values.IntegerColumns() + fraction, kWidestNumber), decimals);
}

/// "D HH:MM:SS" with as many digits of days as the longest span needs.
MAVO_Format DurationFormat(const ColumnFacts& facts) {
  constexpr double kSecondsADay = 86400;
  int columns = 1;
  if (facts.values.hasValues()) {
    const bool negative = facts.values.minimum() < 0;
    double days = std::max(std::fabs(facts.values.minimum()), std::fabs(facts.values.maximum())) / kSecondsADay;
    for (; days >= 10; days /= 10) ++columns;
    if (negative) ++columns;
  }
  return Make(kFormatDTime, std::min(columns + 9, kWidestNumber));
}

}  // namespace

MAVO_Format DefaultFormat(const ColumnFacts& facts, int width) {
  switch (facts.type) {
    case FieldType::Inferred:
    case FieldType::String:
      return Make(kFormatA, std::min(width, kWidestFormat));
    case FieldType::Integer:
    case FieldType::Year:
      return NumberFormat(facts, 0);
    case FieldType::Number:
      return NumberFormat(facts, std::min(facts.decimals, kMostDecimals));
    case FieldType::Boolean:
      return Make(kFormatF, 1);
    case FieldType::Date:
      return Make(kFormatSDate, 10);
    case FieldType::DateTime:
      return Make(kFormatYMDHMS, 19);
    case FieldType::Time:
      return Make(kFormatTime, 8);
    case FieldType::YearMonth:
      return Make(kFormatMoYr, 8);
    case FieldType::Duration:
      return DurationFormat(facts);
  }
  return Make(kFormatF, 8, 2);
}

MAVO_Variable_Enumerations::MeasurementLevel DefaultLevel(const ColumnFacts& facts) {
  switch (facts.type) {
    case FieldType::Inferred:
    case FieldType::String:
    case FieldType::Boolean:
      return MAVO_Variable_Enumerations::kLevelNominal;
    case FieldType::Integer:
    case FieldType::Number:
    case FieldType::Year:
      return facts.values.fewIntegers() ? MAVO_Variable_Enumerations::kLevelNominal
                                        : MAVO_Variable_Enumerations::kLevelScale;
    case FieldType::Date:
    case FieldType::DateTime:
    case FieldType::Time:
    case FieldType::YearMonth:
    case FieldType::Duration:
      return MAVO_Variable_Enumerations::kLevelScale;
  }
  return MAVO_Variable_Enumerations::kLevelUnknown;
}

}  // namespace runtime::data
