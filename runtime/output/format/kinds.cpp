#include "runtime/output/format/kinds.h"

namespace runtime::output {

const char* FormatTypeName(FormatType type) {
  switch (type) {
    case kFormatNone:
      return nullptr;
    case kFormatA:
      return "A";
    case kFormatAHex:
      return "AHEX";
    case kFormatComma:
      return "COMMA";
    case kFormatDollar:
      return "DOLLAR";
    case kFormatF:
      return "F";
    case kFormatIB:
      return "IB";
    case kFormatPIBHex:
      return "PIBHEX";
    case kFormatP:
      return "P";
    case kFormatPIB:
      return "PIB";
    case kFormatPK:
      return "PK";
    case kFormatRB:
      return "RB";
    case kFormatRBHex:
      return "RBHEX";
    case kFormatZ:
      return "Z";
    case kFormatN:
      return "N";
    case kFormatE:
      return "E";
    case kFormatDate:
      return "DATE";
    case kFormatTime:
      return "TIME";
    case kFormatDateTime:
      return "DATETIME";
    case kFormatADate:
      return "ADATE";
    case kFormatJDate:
      return "JDATE";
    case kFormatDTime:
      return "DTIME";
    case kFormatWkDay:
      return "WKDAY";
    case kFormatMonth:
      return "MONTH";
    case kFormatMoYr:
      return "MOYR";
    case kFormatQYr:
      return "QYR";
    case kFormatWkYr:
      return "WKYR";
    case kFormatPct:
      return "PCT";
    case kFormatDot:
      return "DOT";
    case kFormatCCA:
      return "CCA";
    case kFormatCCB:
      return "CCB";
    case kFormatCCC:
      return "CCC";
    case kFormatCCD:
      return "CCD";
    case kFormatCCE:
      return "CCE";
    case kFormatEDate:
      return "EDATE";
    case kFormatSDate:
      return "SDATE";
    case kFormatG:
      return "G";
    case kFormatMTime:
      return "MTIME";
    case kFormatYMDHMS:
      return "YMDHMS";
  }
  return nullptr;
}

std::string FormatSpecText(const BpFormatSpec& format) {
  const char* name = FormatTypeName(format.type);
  std::string text = name == nullptr ? "badFormat" : name;
  if (format.width != 0) text += std::to_string(format.width);
  if (format.width == 0 || format.decimals != 0) text += '.' + std::to_string(format.decimals);
  return text;
}

bool IsDateOrTime(FormatType type) {
  switch (type) {
    case kFormatDate:
    case kFormatADate:
    case kFormatEDate:
    case kFormatSDate:
    case kFormatJDate:
    case kFormatQYr:
    case kFormatMoYr:
    case kFormatWkYr:
    case kFormatDateTime:
    case kFormatYMDHMS:
    case kFormatTime:
    case kFormatDTime:
    case kFormatMTime:
      return true;
    default:
      return false;
  }
}

bool KeepsTypeInStatistics(FormatType type) {
  switch (type) {
    case kFormatComma:
    case kFormatDot:
    case kFormatDollar:
    case kFormatPct:
    case kFormatCCA:
    case kFormatCCB:
    case kFormatCCC:
    case kFormatCCD:
    case kFormatCCE:
      return true;
    default:
      return false;
  }
}

char DecimalSign(FormatType type) { return type == kFormatDot ? ',' : '.'; }

bool IsFixedPoint(FormatType type) {
  switch (type) {
    case kFormatF:
    case kFormatN:
    case kFormatZ:
    case kFormatP:
    case kFormatPK:
    case kFormatIB:
    case kFormatPIB:
      return true;
    default:
      return KeepsTypeInStatistics(type);
  }
}

}  // namespace runtime::output
