#include "runtime/output/format/valueformat.h"

#include <cmath>

#include "runtime/output/format/dates.h"
#include "runtime/output/format/hexadecimal.h"
#include "runtime/output/format/numbers.h"
#include "runtime/output/format/times.h"

namespace runtime::output {

std::string FormatNumber(double value, const BpFormatSpec& format) {
  if (!std::isfinite(value)) return ".";
  switch (format.type) {
    case kFormatF:
    case kFormatP:
    case kFormatPK:
    case kFormatIB:
    case kFormatPIB:
    case kFormatZ:
      return FixedNumber(value, format.decimals);
    case kFormatComma:
    case kFormatCCA:
    case kFormatCCB:
    case kFormatCCC:
    case kFormatCCD:
    case kFormatCCE:
      return GroupedNumber(value, format.decimals, ',', '.');
    case kFormatDot:
      return GroupedNumber(value, format.decimals, '.', ',');
    case kFormatDollar:
      return DollarNumber(value, format.decimals);
    case kFormatPct:
      return FixedNumber(value, format.decimals) + '%';
    case kFormatN:
      return ZeroPaddedNumber(value, format.width, format.decimals);
    case kFormatE:
      return ScientificNumber(value, format.decimals);
    case kFormatPIBHex:
      return HexadecimalNumber(value, format.width, format.decimals);
    case kFormatRBHex:
      return HexadecimalDouble(value);
    case kFormatTime:
      return TimeText(value, format.width, format.decimals);
    case kFormatDTime:
      return DayTimeText(value, format.width, format.decimals);
    case kFormatMTime:
      return MinuteTimeText(value, format.decimals);
    case kFormatDate:
    case kFormatADate:
    case kFormatEDate:
    case kFormatSDate:
    case kFormatJDate:
    case kFormatQYr:
    case kFormatMoYr:
    case kFormatWkYr:
      return DateText(value, format.type, format.width);
    case kFormatDateTime:
    case kFormatYMDHMS:
      return DateTimeText(value, format.type, format.width, format.decimals);
    case kFormatWkDay:
      return WeekDayText(value, format.width);
    case kFormatMonth:
      return MonthText(value, format.width);
    case kFormatRB:
    case kFormatG:
    case kFormatA:
    case kFormatAHex:
    case kFormatNone:
      break;
  }
  return ShortestNumber(value);
}

std::string FormatText(std::string_view value, FormatType type) {
  return type == kFormatAHex ? HexadecimalBytes(value) : std::string(value);
}

}  // namespace runtime::output
