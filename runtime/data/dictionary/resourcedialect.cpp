#include "runtime/data/dictionary/resourcedialect.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "runtime/data/dictionary/extras.h"

namespace runtime::data {
namespace {

constexpr double kMostRows = 2147483647;

/// Of two spellings the first that is there.
std::optional<JsonPlace> FindEither(const JsonPlace& dialect, const char* key, const char* other,
                                    Deviations& deviations) {
  auto place = FindUnwrapped(dialect, key, deviations);
  return place ? place : FindUnwrapped(dialect, other, deviations);
}

std::optional<bool> FlagOf(const std::optional<JsonPlace>& place) {
  if (!place) return std::nullopt;
  return place->Flag();
}

std::optional<std::string> FilledTextOf(const std::optional<JsonPlace>& place) {
  if (!place || place->Text().empty()) return std::nullopt;
  return place->Text();
}

bool HasLineEnd(const std::string& text) { return text.find_first_of(std::string("\r\n\0", 3)) != std::string::npos; }

void CheckSign(const JsonPlace& place, bool mayBeEmpty, std::size_t mostCharacters) {
  const std::string& text = place.Text();
  const auto characters = static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
  if (text.empty() ? !mayBeEmpty : characters > mostCharacters || HasLineEnd(text))
    place.Fail(fmt::format("\"{}\" cannot be used; this must be {}, and no line end", text,
                           mostCharacters == 1 ? "one character" : "one character or more"));
}

/// Row numbers from 1, sorted.
std::vector<std::int64_t> RowsOf(const JsonPlace& list, Deviations& deviations) {
  std::vector<std::int64_t> rows;
  for (const JsonPlace& entry : EntriesOf(list, deviations)) {
    const double row = entry.Number();
    if (!(row >= 1 && row <= kMostRows) || row != std::floor(row))
      entry.Fail("a row is given by its number, a whole number from 1");
    rows.push_back(static_cast<std::int64_t>(row));
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

void ReadLineTerminator(const JsonPlace& dialect, TextDialect& text, Deviations& deviations, std::vector<Note>& notes) {
  const auto terminator = FindEither(dialect, "lineTerminator", "lineterminator", deviations);
  if (!terminator) return;
  const std::string& ending = terminator->Text();
  if (ending.empty() || ending == "\n" || ending == "\r" || ending == "\r\n") return;
  if (ending == text.delimiter.value_or(",")) {
    notes.push_back({false, terminator->Where() + ": it is the delimiter too, and is not used; lines end as usual"});
    return;
  }
  text.lineTerminator = ending;
}

void ReadRowsOfHeader(const JsonPlace& dialect, TextDialect& text, Deviations& deviations) {
  text.header = FindFlag(dialect, "header", deviations);
  if (const auto rows = dialect.Find("headerRows")) {
    text.headerRows = RowsOf(*rows, deviations);
    if (text.headerRows.empty()) text.header = false;
    if (text.headerRows == std::vector<std::int64_t>{1}) text.headerRows.clear();
  }
  text.headerJoin = FindText(dialect, "headerJoin", deviations);
  if (const auto rows = dialect.Find("commentRows")) text.commentRows = RowsOf(*rows, deviations);
}

void NoteForOtherFiles(const JsonPlace& dialect, std::vector<Note>& notes) {
  for (const char* name : {"sheetNumber", "sheetName", "table"})
    if (const auto property = dialect.Find(name))
      notes.push_back(
          {false, fmt::format("{}: this is for {}, and is not used", property->Where(),
                              std::string(name) == "table" ? "databases" : "spreadsheets, which are not read")});
}

}  // namespace

void ReadTableDialect(const JsonPlace& dialect, TextDialect& text, JsonDialect& json, Deviations& deviations,
                      std::vector<Note>& notes) {
  constexpr std::size_t kAnyNumber = 1024;
  if (const auto delimiter = FindUnwrapped(dialect, "delimiter", deviations)) {
    CheckSign(*delimiter, false, kAnyNumber);
    text.delimiter = delimiter->Text();
  }
  if (const auto quote = FindEither(dialect, "quoteChar", "quotechar", deviations)) {
    CheckSign(*quote, true, 1);
    text.quoteChar = quote->Text();
  }
  if (const auto escape = FindEither(dialect, "escapeChar", "escapechar", deviations)) {
    CheckSign(*escape, true, 1);
    text.escapeChar = FilledTextOf(escape);
  }
  if (const auto comment = FindEither(dialect, "commentChar", "commentchar", deviations)) {
    CheckSign(*comment, true, kAnyNumber);
    text.commentChar = FilledTextOf(comment);
  }
  text.doubleQuote = FlagOf(FindEither(dialect, "doubleQuote", "doublequote", deviations));
  text.skipInitialSpace = FlagOf(FindEither(dialect, "skipInitialSpace", "skipinitialspace", deviations));
  text.caseSensitiveHeader = FlagOf(FindEither(dialect, "caseSensitiveHeader", "casesensitiveheader", deviations));
  text.nullSequence = FilledTextOf(FindEither(dialect, "nullSequence", "nullsequence", deviations));
  ReadLineTerminator(dialect, text, deviations, notes);
  ReadRowsOfHeader(dialect, text, deviations);

  json.property = FindText(dialect, "property", deviations);
  json.itemType = FindText(dialect, "itemType", deviations);
  if (const auto keys = dialect.Find("itemKeys")) json.keys = TextsOf(*keys, deviations);
  json.header = text.header.value_or(true);
  NoteForOtherFiles(dialect, notes);
  KeepExtras(dialect,
             {"$schema",
              "delimiter",
              "quoteChar",
              "quotechar",
              "escapeChar",
              "escapechar",
              "commentChar",
              "commentchar",
              "doubleQuote",
              "doublequote",
              "skipInitialSpace",
              "skipinitialspace",
              "caseSensitiveHeader",
              "casesensitiveheader",
              "nullSequence",
              "nullsequence",
              "lineTerminator",
              "lineterminator",
              "header",
              "headerRows",
              "headerJoin",
              "commentRows"},
             text.extras);
}

}  // namespace runtime::data
