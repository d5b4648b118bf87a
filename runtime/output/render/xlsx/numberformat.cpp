#include "runtime/output/render/xlsx/numberformat.h"

#include <algorithm>
#include <cstddef>

#include "runtime/output/format/kinds.h"

namespace runtime::output {
namespace {

constexpr int kMostDecimals = 30;  // that a workbook shows
constexpr int kMostZeros = 30;

std::string Zeros(int count) { return std::string(static_cast<std::size_t>(std::max(count, 0)), '0'); }

}  // namespace

std::string WorkbookNumberFormat(const BpFormatSpec& format) {
  const int decimals = std::clamp(format.decimals, 0, kMostDecimals);
  const std::string behindPoint = decimals == 0 ? "" : "." + Zeros(decimals);
  switch (format.type) {
    case kFormatF:
    case kFormatP:
    case kFormatPK:
    case kFormatIB:
    case kFormatPIB:
    case kFormatZ:
      return "0" + behindPoint;
    case kFormatComma:
    case kFormatDot:  // which sign stands between thousands is the reader's settings' matter
    case kFormatCCA:
    case kFormatCCB:
    case kFormatCCC:
    case kFormatCCD:
    case kFormatCCE:
      return "#,##0" + behindPoint;
    case kFormatDollar:
      return "\"$\"#,##0" + behindPoint;
    case kFormatPct:
      return "0" + behindPoint + "\"%\"";
    case kFormatE:
      return "0" + behindPoint + "E+00";
    case kFormatN: {
      const int digits = format.width - (decimals == 0 ? 0 : decimals + 1);
      return Zeros(std::clamp(digits, 1, kMostZeros)) + behindPoint + ";-0" + behindPoint;  // negative ones without
    }
    default:
      break;
  }
  const bool isWord = format.type == kFormatWkDay || format.type == kFormatMonth;
  const bool isHex = format.type == kFormatPIBHex || format.type == kFormatRBHex;
  if (isWord || isHex || IsDateOrTime(format.type)) return "";
  return "General";
}

}  // namespace runtime::output
