// What kinds of format there are.
#pragma once

#include <string>

#include "host/data/format.h"
#include "host/output/celltext.h"

namespace runtime::output {

/// The type's name, such as "COMMA"; null for a code that names no format.
const char* FormatTypeName(FormatType type);

/// The format as a short text: the name, the width when it is not 0, the decimals behind a period when the width is 0
/// or they are not 0. "F.2", "SDATE10", "DTIME13", "COMMA12.4". A code that names no format has the name "badFormat".
std::string FormatSpecText(const BpFormatSpec& format);

/// Values are seconds: since 1970-01-01T00:00:00 (DATE, ADATE, EDATE, SDATE, JDATE, QYR, MOYR, WKYR, DATETIME, YMDHMS)
/// or as a span of time (TIME, DTIME, MTIME).
bool IsDateOrTime(FormatType type);

/// COMMA, DOT, DOLLAR, PCT and the custom currencies, whose look a variable's statistics share.
bool KeepsTypeInStatistics(FormatType type);

/// The decimal sign of a number of this type.
char DecimalSign(FormatType type);

/// Decimal numbers with a fixed number of decimals, which line up at their decimal sign.
bool IsFixedPoint(FormatType type);

}  // namespace runtime::output
