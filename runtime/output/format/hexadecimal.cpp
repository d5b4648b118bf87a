#include "runtime/output/format/hexadecimal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "runtime/output/format/numbers.h"

namespace runtime::output {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr double kTwoTo64 = 18446744073709551616.0;

// At least `width` digits (16 at most), zeros first.
std::string Digits(std::uint64_t number, int width) {
  std::string text;
  for (; number != 0; number >>= 4) text += kDigits[number & 15U];
  const auto wanted = static_cast<std::size_t>(std::clamp(width, 1, 16));
  if (text.size() < wanted) text.append(wanted - text.size(), '0');
  std::reverse(text.begin(), text.end());
  return text;
}

}  // namespace

std::string HexadecimalNumber(double value, int width, int decimals) {
  if (value < 0.0 || value >= kTwoTo64 || value != std::floor(value)) return FixedNumber(value, decimals);
  return Digits(static_cast<std::uint64_t>(value), width);
}

std::string HexadecimalDouble(double value) { return Digits(std::bit_cast<std::uint64_t>(value), 16); }

std::string HexadecimalBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text;
}

}  // namespace runtime::output
