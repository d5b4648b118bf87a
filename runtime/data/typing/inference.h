// The type of a column that no dictionary describes.
#pragma once

#include <string_view>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

/// The narrowest type that a text reads as beyond doubt:
///  - boolean: true, True, TRUE, false, False, FALSE
///  - integer: digits, a minus sign before them or none, no zero at their front, and a double exactly
///  - number: a decimal point with digits behind it, or an exponent; the whole part as above
///  - date YYYY-MM-DD; datetime: a date, T or a blank, hh:mm or hh:mm:ss with decimals or not, Z or nothing;
///    time hh:mm:ss with decimals or not
///  - string otherwise ("007", "+1", "NaN", 9007199254740993).
/// REQUIRES: no blanks around the text.
FieldType InferredTypeOf(std::string_view text);

/// Reads a text by the same rules as a value of the type; integers read as numbers too. REQUIRES: one of the numeric
/// types named above.
bool ReadAsInferred(FieldType type, std::string_view text, NumberReading& reading);

}  // namespace runtime::data
