// Correctly rounded decimal digits of a double.
#pragma once

#include <string>

namespace runtime::output {

/// A number as decimal digits. `negative` is false where all digits are 0.
struct DecimalDigits {
  bool negative = false;
  std::string whole;     // at least one digit, no leading zeros
  std::string fraction;  // as many digits as were asked for
};

/// Rounds the exact binary value to the nearest number with `decimals` decimals (0 to 1100; what is beyond counts as
/// the bound); what lies exactly halfway goes away from zero. So 2.5 gives 3 with no decimals, and 2.675, whose binary
/// value is a little less, gives 2.67 with two. REQUIRES: a finite value.
DecimalDigits RoundToDecimals(double value, int decimals);

/// A number as d.ddd × 10^exponent.
struct ScientificDigits {
  bool negative = false;
  std::string digits;  // the first stands before the decimal point
  int exponent = 0;
};

/// The same with `decimals` digits behind the first one. REQUIRES: a finite value.
ScientificDigits RoundToScientific(double value, int decimals);

}  // namespace runtime::output
