// Whole numbers of any length, and the doubles that they are sums of.
#pragma once

#include <string_view>
#include <vector>

#include <gmpxx.h>

namespace runtime::data {

/// The whole number that a text of digits says, with or without a sign and with or without zeros behind a point. Throws
/// std::invalid_argument for any other text.
mpz_class WholeOfText(std::string_view text);

/// value / 2^exponent. REQUIRES: that is whole; value is finite.
mpz_class MultipleOf(double value, int exponent);

/// Appends doubles of one sign whose exact sum is whole x 2^exponent, as few as possible, the largest first; none for
/// zero. REQUIRES: the result is within the range of doubles, no bit of it below 2^-1074.
void AppendDoubles(const mpz_class& whole, int exponent, std::vector<double>& doubles);

/// The double that is nearest to whole x 2^exponent, of two as near ones the even one. REQUIRES: as AppendDoubles.
double NearestDouble(const mpz_class& whole, int exponent);

/// The exponent of the lowest bit that is set in a double, such as -1 of 2.5. REQUIRES: finite, not 0.
int LowestBit(double value);
/// The exponent of the power of two above a double: |value| < 2^top. REQUIRES: finite.
int TopBit(double value);

}  // namespace runtime::data
