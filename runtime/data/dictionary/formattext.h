// Print formats as users write them.
#pragma once

#include <string>
#include <string_view>

#include "host/data/format.h"

namespace runtime::data {

/// A format that was read, or what is wrong with the text.
struct FormatReading {
  MAVO_Format format;
  std::string problem;  // empty when the text is a format
};

/// Reads a format such as F8.2, A20 or SDATE10: the name of a type without regard to case, a width and, where the type
/// has them, decimals.
FormatReading ReadFormatText(std::string_view text);

/// F8.2 for a format; an unknown type reads "format 13" with its width.
std::string WriteFormatText(const MAVO_Format& format);

/// Of strings: A and AHEX.
bool IsStringFormat(int type);
/// Of dates, times and spans of time.
bool IsTemporalFormat(int type);

}  // namespace runtime::data
