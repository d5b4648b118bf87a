// Values in hexadecimal, with capital letters.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

/// A whole number from 0 to 2^64 - 1 with zeros up to the width; any other number with decimals.
std::string HexadecimalNumber(double value, int width, int decimals);
/// The 8 bytes of the double, the highest first: 1 gives 3FF0000000000000.
std::string HexadecimalDouble(double value);
std::string HexadecimalBytes(std::string_view bytes);

}  // namespace runtime::output
