// Spans of time as texts. A span is rounded to the decimals of the format; a negative one has a minus sign before it.
// One that is beyond 10^15 seconds is shown as a number of seconds. REQUIRES everywhere: a finite value.
#pragma once

#include <string>

namespace runtime::output {

/// TIME: hh:mm:ss.ff, with as many hours as there are. Without seconds (cut, not rounded) when the width is 1 to 7 and
/// there are no decimals.
std::string TimeText(double seconds, int width, int decimals);
/// DTIME: d hh:mm:ss.ff. Without seconds when the width is 1 to 10 and there are no decimals.
std::string DayTimeText(double seconds, int width, int decimals);
/// MTIME: mm:ss.ff, with as many minutes as there are.
std::string MinuteTimeText(double seconds, int decimals);

}  // namespace runtime::output
