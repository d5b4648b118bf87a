// The cells of a database as numbers.
#pragma once

#include <string_view>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// The type that a column has without a dictionary. Whole numbers that no double holds are the reader's to find: such a
/// column is a String.
FieldType FieldTypeOf(SqlType type);

/// The largest whole number up to which doubles hold every one.
inline constexpr double kLargestWhole = 9007199254740992.0;

/// The number that a cell of a type other than Text and FixedText stands for: booleans 0 and 1, dates and moments in
/// seconds since 1970-01-01T00:00:00, times in seconds. NaN for one that is no value: infinities, NaN, dates that are
/// no days.
double NumberOfCell(SqlType type, std::string_view text);

/// Whether `number`, which a cell was read to, is no value although the cell is one to the database: a date, time or
/// moment outside of the calendar.
bool IsUnreadable(SqlType type, std::string_view text, double number);

/// How many digits a decimal fraction is written with behind its point; at most 16.
int WrittenDecimals(std::string_view text);

}  // namespace runtime::data
