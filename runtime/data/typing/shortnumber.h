// Numbers of a few characters, which nearly all cells are, read a word at a time instead of a character at a time.
#pragma once

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

struct ShortNumber {
  double value = 0.0;
  int decimals = 0;  // digits behind the decimal point
};

/// Reads an optional minus sign, digits (a zero at their front only when it is the only one), and, where there is a
/// decimal point, further digits behind it. The value is correctly rounded. False for any other text, which may still
/// be a number. REQUIRES: 1 <= size <= 16, and 17 bytes can be read.
inline bool ReadShortNumber(const char* at, std::uint32_t size, ShortNumber& number) {
  __extension__ using Word = unsigned __int128;
  constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;
  const std::uint32_t negative = *at == '-' ? 1 : 0;
  const char* const first = at + negative;
  std::uint32_t digits = size - negative;
  if (digits == 0) return false;
  const std::uint64_t low = ReadWordAt(first) ^ ('0' * kEachByte);
  const std::uint64_t high = ReadWordAt(first + 8) ^ ('0' * kEachByte);
  Word word = (Word{high} << 64) | low;

  // A byte of a point is zero here; the lowest zero byte is marked rightly.
  const auto points = [](std::uint64_t half) {
    const std::uint64_t other = half ^ (('.' ^ '0') * kEachByte);
    return (other - kEachByte) & ~other & (0x80 * kEachByte);
  };
  std::uint32_t point = static_cast<std::uint32_t>(std::countr_zero(points(low))) / 8;
  if (point == 8) point += static_cast<std::uint32_t>(std::countr_zero(points(high))) / 8;
  number.decimals = 0;
  if (point < digits) {
    if (point == 0 || point + 1 == digits) return false;
    --digits;
    number.decimals = static_cast<int>(digits - point);
    const Word beforePoint = (Word{1} << (8 * point)) - 1;
    word = (word & beforePoint) | ((word >> 8) & ~beforePoint);
    if (point > 1 && *first == '0') return false;
  } else if (digits > 1 && *first == '0') {
    return false;
  }
  word <<= 128 - 8 * digits;
  const auto leading = static_cast<std::uint64_t>(word);
  const auto trailing = static_cast<std::uint64_t>(word >> 64);
  if (!AreDigits(leading) || !AreDigits(trailing)) return false;
  const std::uint64_t mantissa = JoinDigits(leading) * 100'000'000 + JoinDigits(trailing);
  if (mantissa > kExactIntegers) return false;
  // Both are doubles exactly, so that the division alone rounds.
  const double magnitude = static_cast<double>(mantissa) / kPowersOfTen[number.decimals];
  number.value = negative != 0 ? -magnitude : magnitude;
  return true;
}

}  // namespace runtime::data
