// The format and the measurement level that a variable has when its field names none.
#pragma once

#include "host/data/format.h"
#include "host/data/variable.h"

#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// `width` is that of a string variable. Integers and years F as wide as needed; numbers F with the decimals seen, at
/// most 16; strings A; booleans F1; dates SDATE10; dates with time YMDHMS19; times TIME8; months MOYR8; durations DTIME
/// as wide as needed.
MAVO_Format DefaultFormat(const ColumnFacts& facts, int width);

/// Strings and booleans nominal; dates and times scale; numbers and years nominal when all values are whole and at most
/// 24 different ones, else scale.
MAVO_Variable_Enumerations::MeasurementLevel DefaultLevel(const ColumnFacts& facts);

}  // namespace runtime::data
