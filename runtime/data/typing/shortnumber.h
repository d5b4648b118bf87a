// Numbers of a few characters, which nearly all cells are, read a word at a time instead of a character at a time.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace runtime::data {

static_assert(std::endian::native == std::endian::little, "the first character is taken for the lowest byte of a word");

inline constexpr std::uint64_t kEachByte = 0x0101010101010101U;

/// The bytes as digits; those of a word whose bytes are the digits 0 to 9, the first one in the lowest byte.
inline bool AreDigits(std::uint64_t word) { return (((word + 0x76 * kEachByte) | word) & (0x80 * kEachByte)) == 0; }

/// Eight digits to a number: neighbours are joined to pairs, pairs to fours, fours to the whole.
inline std::uint64_t JoinDigits(std::uint64_t word) {
  word = (word * 10 + (word >> 8)) & 0x00FF00FF00FF00FFU;
  word = (word * 100 + (word >> 16)) & 0x0000FFFF0000FFFFU;
  return (word * 10000 + (word >> 32)) & 0xFFFFFFFFU;
}

inline std::uint64_t ReadWordAt(const char* at) {
  std::uint64_t word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

/// Reads an optional minus sign and digits, with a zero at their front only when it is the only one. False for any
/// other text, which may still be a number. REQUIRES: 1 <= size <= 8, and 9 bytes can be read.
inline bool ReadShortInteger(const char* at, std::uint32_t size, std::int32_t& value) {
  const std::uint32_t negative = *at == '-' ? 1 : 0;
  const std::uint32_t digits = size - negative;
  if (digits == 0) return false;
  const std::uint64_t word = (ReadWordAt(at + negative) ^ ('0' * kEachByte)) << (64 - 8 * digits);
  if (!AreDigits(word) || (digits > 1 && at[negative] == '0')) return false;
  const auto number = static_cast<std::int32_t>(JoinDigits(word));
  value = negative != 0 ? -number : number;
  return true;
}

/// Whole numbers of at most two characters, which the codes of surveys are, by these characters; blanks around a number
/// do not matter.
class CodeTable {
 public:
  static constexpr std::int8_t kNoCode = INT8_MAX;  // another text
  static constexpr std::int8_t kBlank = INT8_MIN;   // no character but blanks

  static const CodeTable& Get();

  /// REQUIRES: size <= 2; two bytes can be read.
  std::int8_t Read(const char* at, std::uint32_t size) const {
    constexpr std::uint16_t kOfText[] = {0, 0x00FF, 0xFFFF};
    constexpr std::uint16_t kBlanks[] = {0x2020, 0x2000, 0};
    std::uint16_t characters;
    std::memcpy(&characters, at, sizeof characters);
    return fCodes[(characters & kOfText[size]) | kBlanks[size]];
  }

 private:
  CodeTable();

  std::array<std::int8_t, 65536> fCodes;
};

/// Up to 16 digits, the whole text. REQUIRES: 1 <= size <= 16, and 16 bytes can be read.
inline bool ReadDigits(const char* at, std::uint32_t size, std::uint64_t& number) {
  constexpr std::uint64_t kPowersOfTen[] = {1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000};
  const std::uint64_t first = ReadWordAt(at) ^ ('0' * kEachByte);
  if (size <= 8) {
    const std::uint64_t digits = first << (64 - 8 * size);
    number = JoinDigits(digits);
    return AreDigits(digits);
  }
  const std::uint64_t second = (ReadWordAt(at + 8) ^ ('0' * kEachByte)) << (128 - 8 * size);
  number = JoinDigits(first) * kPowersOfTen[size - 8] + JoinDigits(second);
  return AreDigits(first) && AreDigits(second);
}

/// mantissa / 10^decimals where one division in extended precision settles the rounding: its result has 11 more bits
/// than a double and is at most half a unit of the last of them away from the true quotient, so that both round to the
/// same double unless the result lies right between two. False when it does, and where there is no such precision.
/// REQUIRES: mantissa > 0, 0 <= decimals <= 27.
bool DivideInExtendedPrecision(std::uint64_t mantissa, int decimals, double& quotient);

struct ShortNumber {
  double value = 0.0;
  int decimals = 0;  // digits behind the decimal point
};

inline constexpr std::uint32_t kMostOfShortNumber = 24;  // characters

/// Reads an optional minus sign, up to 7 digits with a decimal point and up to 16 digits behind it, or up to 16 digits
/// without one; a zero stands at the front only when it is the only digit there. The value is correctly rounded. False
/// for any other text, which may still be a number. REQUIRES: 1 <= size <= kMostOfShortNumber, and 32 bytes can be
/// read.
inline bool ReadShortNumber(const char* at, std::uint32_t size, ShortNumber& number) {
  constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;
  constexpr double kPowersOfTen[] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                     1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
  constexpr std::uint64_t kWholePowersOfTen[] = {1,
                                                 10,
                                                 100,
                                                 1'000,
                                                 10'000,
                                                 100'000,
                                                 1'000'000,
                                                 10'000'000,
                                                 100'000'000,
                                                 1'000'000'000,
                                                 10'000'000'000,
                                                 100'000'000'000,
                                                 1'000'000'000'000,
                                                 10'000'000'000'000,
                                                 100'000'000'000'000,
                                                 1'000'000'000'000'000,
                                                 10'000'000'000'000'000};
  constexpr std::uint32_t kMostDigits = 19;  // of any 64 bits
  const std::uint32_t negative = *at == '-' ? 1 : 0;
  const char* const first = at + negative;
  const std::uint32_t length = size - negative;
  const std::uint64_t other = ReadWordAt(first) ^ ('.' * kEachByte);
  // The lowest byte that is zero, a point, is marked rightly.
  const std::uint64_t points = (other - kEachByte) & ~other & (0x80 * kEachByte);
  const std::uint32_t point = static_cast<std::uint32_t>(std::countr_zero(points)) / 8;

  std::uint64_t mantissa = 0;
  std::uint32_t whole = length;
  number.decimals = 0;
  if (point < length && point < 8) {
    const std::uint32_t behind = length - point - 1;
    if (point == 0 || behind - 1 >= 16 || point + behind > kMostDigits) return false;
    std::uint64_t fraction = 0;
    if (!ReadDigits(first, point, mantissa) || !ReadDigits(first + point + 1, behind, fraction)) return false;
    mantissa = mantissa * kWholePowersOfTen[behind] + fraction;
    number.decimals = static_cast<int>(behind);
    whole = point;
  } else if (length - 1 >= 16 || !ReadDigits(first, length, mantissa)) {
    return false;
  }
  if (whole > 1 && *first == '0') return false;
  double magnitude = 0.0;
  // Both are doubles exactly, so that the division alone rounds.
  if (mantissa <= kExactIntegers)
    magnitude = static_cast<double>(mantissa) / kPowersOfTen[number.decimals];
  else if (number.decimals == 0 || !DivideInExtendedPrecision(mantissa, number.decimals, magnitude))
    return false;
  number.value = negative != 0 ? -magnitude : magnitude;
  return true;
}

}  // namespace runtime::data
