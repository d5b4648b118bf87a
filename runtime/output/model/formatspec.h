// Formats of statistics, derived from a variable's print format.
#pragma once

#include "host/data/variable.h"
#include "host/output/celltext.h"

namespace runtime::output {

/// Of a mean or percentile: two decimals more than the variable has, of type F, or of the variable's own type where
/// that is COMMA, DOT, DOLLAR, PCT or a custom currency; of a date or time the variable's own format. The numbers of
/// week days and months (WKDAY, MONTH) count as numbers. A string variable and null (no variable) count as having no
/// decimals.
BpFormatSpec MeanFormat(const MAVO_Variable* variable);

/// Of a standard deviation: the same with three decimals more; of a date or time a duration in days, hours, minutes and
/// seconds with the variable's decimals.
BpFormatSpec StdDevFormat(const MAVO_Variable* variable);

}  // namespace runtime::output
