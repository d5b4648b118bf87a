#include "runtime/data/typing/shortnumber.h"

#include <limits>

namespace runtime::data {

CodeTable::CodeTable() {
  const auto enter = [this](char first, char second, int code) {
    fCodes[static_cast<std::size_t>(first | second << 8)] = static_cast<std::int8_t>(code);
  };
  fCodes.fill(kNoCode);
  enter(' ', ' ', kBlank);
  for (char digit = '0'; digit <= '9'; ++digit) {
    const int value = digit - '0';
    enter(digit, ' ', value);
    enter(' ', digit, value);
    enter('-', digit, -value);
    for (char tens = '1'; tens <= '9'; ++tens) enter(tens, digit, 10 * (tens - '0') + value);
  }
}

const CodeTable& CodeTable::Get() {
  static const CodeTable table;
  return table;
}

bool DivideInExtendedPrecision(std::uint64_t mantissa, int decimals, double& quotient) {
  constexpr long double kPowersOfTen[] = {1e0L,  1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,  1e9L,
                                          1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L, 1e18L, 1e19L,
                                          1e20L, 1e21L, 1e22L, 1e23L, 1e24L, 1e25L, 1e26L, 1e27L};
  if constexpr (std::numeric_limits<long double>::digits != 64) return false;
  const long double extended = static_cast<long double>(mantissa) / kPowersOfTen[decimals];
  std::uint64_t significand = 0;
  std::memcpy(&significand, &extended, sizeof significand);
  if ((significand & 0x7FF) == 0x400) return false;
  quotient = static_cast<double>(extended);
  return true;
}

}  // namespace runtime::data
