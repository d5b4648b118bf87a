#include "runtime/output/model/formatspec.h"

#include "runtime/output/format/kinds.h"

namespace runtime::output {
namespace {

// Days in four digits, a blank and hh:mm:ss; a format with a fraction needs its point and decimals as well.
constexpr int kDurationWidth = 13;

BpFormatSpec PrintFormat(const MAVO_Variable* variable) {
  BpFormatSpec format;
  if (variable != nullptr && variable->GetType() == 0) {
    variable->GetFormatEx(format.type, format.width, format.decimals);
  }
  return format;
}

BpFormatSpec WithMoreDecimals(const BpFormatSpec& print, int more) {
  return {KeepsTypeInStatistics(print.type) ? print.type : kFormatF, 0, print.decimals + more};
}

}  // namespace

BpFormatSpec MeanFormat(const MAVO_Variable* variable) {
  const BpFormatSpec print = PrintFormat(variable);
  return IsDateOrTime(print.type) ? print : WithMoreDecimals(print, 2);
}

BpFormatSpec StdDevFormat(const MAVO_Variable* variable) {
  const BpFormatSpec print = PrintFormat(variable);
  if (!IsDateOrTime(print.type)) return WithMoreDecimals(print, 3);
  return {kFormatDTime, print.decimals > 0 ? kDurationWidth + 1 + print.decimals : kDurationWidth, print.decimals};
}

}  // namespace runtime::output
