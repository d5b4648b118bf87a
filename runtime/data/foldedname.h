// What names are made of, and the form in which they are compared.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime::data {

inline constexpr std::size_t kMostNameBytes = 64;

/// A text under full Unicode simple case folding; bytes that are no UTF-8 stay. Two names are the same when their
/// folded texts are.
std::string FoldName(std::string_view name);

/// ALL AND BY EQ GE GT LE LT NE NOT OR TO WITH, without regard to case.
bool IsReservedWord(std::string_view name);

/// Letters (general category L), @ and #.
bool MayBeginName(char32_t character);
/// Those, decimal digits (general category Nd) and . _ $.
bool MayContinueName(char32_t character);

}  // namespace runtime::data
