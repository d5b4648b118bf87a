// What of a text a cell of a workbook can hold.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime::output {

/// Units of UTF-16 that a cell holds at most.
inline constexpr std::size_t kLongestCellText = 32767;

struct CellText {
  std::string text;
  std::size_t cutFrom = 0;  // characters of the whole text when it was cut, otherwise 0
};

/// The text as the file holds it: bytes that are no UTF-8 as U+FFFD; what XML cannot hold, and a carriage return, as
/// _x000D_, which readers of workbooks turn back; an underscore as _x005F_ where such an escape would begin otherwise.
/// A text too long is cut behind a character, and the mark stands at its end.
CellText FitIntoCell(std::string_view text, std::string_view cutMark);

}  // namespace runtime::output
