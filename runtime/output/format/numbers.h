// Decimal numbers as texts. Rounding as in decimal.h; a digit always stands before the decimal sign. REQUIRES
// everywhere: a finite value.
#pragma once

#include <string>

namespace runtime::output {

std::string FixedNumber(double value, int decimals);
/// With a sign between thousands.
std::string GroupedNumber(double value, int decimals, char thousands, char decimalSign);
/// Grouped by commas, with a $ behind the minus sign: -$1,234.50.
std::string DollarNumber(double value, int decimals);
/// With zeros up to the width; a negative number without.
std::string ZeroPaddedNumber(double value, int width, int decimals);
/// 1.234E+03, at least two digits of exponent.
std::string ScientificNumber(double value, int decimals);
/// The shortest text that reads back as the same double: 0.1, 12, 1E+300.
std::string ShortestNumber(double value);

}  // namespace runtime::output
