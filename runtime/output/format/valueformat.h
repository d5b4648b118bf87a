// Data values as texts, in any format. Texts carry no padding: renderers align them.
#pragma once

#include <string>
#include <string_view>

#include "host/data/format.h"
#include "host/output/celltext.h"

namespace runtime::output {

/// A numeric value in a format. System-missing and infinite values show as a period. A value that does not fit the
/// format's width is shown with the digits it needs.
///
/// - F, P, PK, IB, PIB, Z: a plain decimal number; COMMA and the custom currencies CCA to CCE with commas between
///   thousands, DOT with periods there and a decimal comma, DOLLAR with a $, PCT with a %.
/// - N: with zeros before it up to the width (a negative number has none). E: 1.234E+03. RB, G, a string format and a
///   code that names no format: the shortest text that reads back as the same number.
/// - PIBHEX: a whole number that is not negative in hexadecimal, with zeros up to the width, any other number as in F.
///   RBHEX: the bytes of the double, the highest first.
/// - Dates and times: see dates.h and times.h.
std::string FormatNumber(double value, const BpFormatSpec& format);

/// A string value without its trailing blanks: as it stands, or with AHEX its bytes in hexadecimal.
std::string FormatText(std::string_view value, FormatType type);

}  // namespace runtime::output
