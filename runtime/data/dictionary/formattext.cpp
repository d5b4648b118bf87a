#include "runtime/data/dictionary/formattext.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include <fmt/format.h>

namespace runtime::data {
namespace {

struct FormatWord {
  std::string_view name;
  FormatType type;
  bool hasDecimals;
};

constexpr FormatWord kFormatWords[] = {{"A", kFormatA, false},
                                       {"AHEX", kFormatAHex, false},
                                       {"COMMA", kFormatComma, true},
                                       {"DOLLAR", kFormatDollar, true},
                                       {"F", kFormatF, true},
                                       {"IB", kFormatIB, true},
                                       {"PIBHEX", kFormatPIBHex, false},
                                       {"P", kFormatP, true},
                                       {"PIB", kFormatPIB, true},
                                       {"PK", kFormatPK, true},
                                       {"RB", kFormatRB, true},
                                       {"RBHEX", kFormatRBHex, false},
                                       {"Z", kFormatZ, true},
                                       {"N", kFormatN, true},
                                       {"E", kFormatE, true},
                                       {"DATE", kFormatDate, false},
                                       {"TIME", kFormatTime, true},
                                       {"DATETIME", kFormatDateTime, true},
                                       {"ADATE", kFormatADate, false},
                                       {"JDATE", kFormatJDate, false},
                                       {"DTIME", kFormatDTime, true},
                                       {"WKDAY", kFormatWkDay, false},
                                       {"MONTH", kFormatMonth, false},
                                       {"MOYR", kFormatMoYr, false},
                                       {"QYR", kFormatQYr, false},
                                       {"WKYR", kFormatWkYr, false},
                                       {"PCT", kFormatPct, true},
                                       {"DOT", kFormatDot, true},
                                       {"CCA", kFormatCCA, true},
                                       {"CCB", kFormatCCB, true},
                                       {"CCC", kFormatCCC, true},
                                       {"CCD", kFormatCCD, true},
                                       {"CCE", kFormatCCE, true},
                                       {"EDATE", kFormatEDate, false},
                                       {"SDATE", kFormatSDate, false},
                                       {"G", kFormatG, true},
                                       {"MTIME", kFormatMTime, true},
                                       {"YMDHMS", kFormatYMDHMS, true}};

constexpr int kWidestNumber = 40;
constexpr int kWidestString = 32767;
constexpr int kMostDecimals = 16;

char UpperAscii(char letter) { return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter; }

/// Reads a whole number at the front of `text` and takes it off; negative when there is none or it is out of range.
int TakeNumber(std::string_view& text) {
  int number = -1;
  if (text.empty() || text.front() < '0' || text.front() > '9') return -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return -1;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

FormatReading Problem(std::string problem) { return {{}, std::move(problem)}; }

}  // namespace

FormatReading ReadFormatText(std::string_view text) {
  std::string name;
  std::size_t letters = 0;
  while (letters < text.size() && UpperAscii(text[letters]) >= 'A' && UpperAscii(text[letters]) <= 'Z')
    name += UpperAscii(text[letters++]);
  const auto* word = std::find_if(std::begin(kFormatWords), std::end(kFormatWords),
                                  [&](const FormatWord& known) { return known.name == name; });
  if (word == std::end(kFormatWords))
    return Problem(
        fmt::format("\"{}\" is no format; write a type, a width and decimals, such as F8.2, A20 or SDATE10", text));
  std::string_view rest = text.substr(letters);
  const int width = TakeNumber(rest);
  const int widest = IsStringFormat(word->type) ? kWidestString : kWidestNumber;
  if (width < 1 || width > widest)
    return Problem(fmt::format("the format \"{}\" needs a width from 1 to {} behind {}", text, widest, name));
  int decimals = 0;
  if (!rest.empty() && rest.front() == '.') {
    rest.remove_prefix(1);
    decimals = TakeNumber(rest);
    if (decimals < 0) return Problem(fmt::format("the format \"{}\" has no decimals behind its period", text));
  }
  if (!rest.empty()) return Problem(fmt::format("the format \"{}\" has something behind its end: \"{}\"", text, rest));
  if (decimals > 0 && !word->hasDecimals)
    return Problem(fmt::format("the format \"{}\" has decimals, and {} has none", text, name));
  if (decimals > kMostDecimals || (decimals > 0 && decimals >= width))
    return Problem(fmt::format("the format \"{}\" has too many decimals; at most {}, and fewer than its width", text,
                               kMostDecimals));
  if (word->type == kFormatAHex && width % 2 != 0)
    return Problem(fmt::format("the format \"{}\" needs an even width: two digits a byte", text));
  return {
      {static_cast<std::uint16_t>(width), static_cast<std::uint8_t>(word->type), static_cast<std::uint8_t>(decimals)},
      {}};
}

std::string WriteFormatText(const MAVO_Format& format) {
  const auto* word = std::find_if(std::begin(kFormatWords), std::end(kFormatWords),
                                  [&](const FormatWord& known) { return known.type == format.type; });
  const std::string name =
      word == std::end(kFormatWords) ? fmt::format("format {} ", format.type) : std::string(word->name);
  return format.decimals == 0 ? fmt::format("{}{}", name, format.width)
                              : fmt::format("{}{}.{}", name, format.width, format.decimals);
}

bool IsStringFormat(int type) { return type == kFormatA || type == kFormatAHex; }

bool IsTemporalFormat(int type) {
  return (type >= kFormatDate && type <= kFormatWkYr) || type == kFormatEDate || type == kFormatSDate ||
         type == kFormatMTime || type == kFormatYMDHMS;
}

}  // namespace runtime::data
