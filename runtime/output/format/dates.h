// Dates as texts. Values are seconds since 1970-01-01T00:00:00; one beyond 10^15 seconds is shown as a number of
// seconds. Years have four digits or more. A format too narrow for that shows the last two digits of the years 1950 to
// 2049, which they name without doubt, and any other year in full. REQUIRES everywhere: a finite value.
#pragma once

#include <string>

#include "host/data/format.h"

namespace runtime::output {

/// The day of the value (a time of day is cut off):
///   DATE 31-DEC-1999  ADATE 12/31/1999  EDATE 31.12.1999  SDATE 1999/12/31  JDATE 1999365
///   QYR 4 Q 1999      MOYR DEC 1999     WKYR 53 WK 1999 (week 1 begins on 1 January)
/// Four digits of the year from width 11 (DATE), 10 (ADATE, EDATE, SDATE, WKYR), 8 (QYR, MOYR), 7 (JDATE), and with
/// width 0.
std::string DateText(double value, FormatType type, int width);

/// DATETIME 31-DEC-1999 23:59:59.99, YMDHMS 1999-12-31 23:59:59.99, rounded to the decimals. Without seconds (cut, not
/// rounded) when the width is too narrow for them (below 20 and 19) and there are no decimals.
std::string DateTimeText(double value, FormatType type, int width, int decimals);

/// The name of a day of the week, 1 Sunday to 7 Saturday, or its first three letters where the name is wider than the
/// format. A value of a day or more is a date, whose week day is shown; any other is shown as a number.
std::string WeekDayText(double value, int width);
/// The same for a month, 1 January to 12 December.
std::string MonthText(double value, int width);

}  // namespace runtime::output
