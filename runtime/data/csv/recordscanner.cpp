#include "runtime/data/csv/recordscanner.h"

#include <cstring>

namespace runtime::data {

RecordScanner::RecordScanner(std::string_view text, const CsvDialect& dialect)
    : fBegin(text.data()), fAt(text.data()), fEnd(text.data() + text.size()), fDialect(dialect) {
  for (const char c : {dialect.delimiter, '\n', '\r'}) fEndsCell[static_cast<unsigned char>(c)] = true;
}

bool RecordScanner::SkipComment() {
  const std::string_view rest(fAt, static_cast<std::size_t>(fEnd - fAt));
  if (fDialect.comment.empty() || rest.substr(0, fDialect.comment.size()) != fDialect.comment) return false;
  while (fAt != fEnd && *fAt != '\n' && *fAt != '\r') ++fAt;
  if (fAt == fEnd) return true;
  if (*fAt++ == '\r' && fAt != fEnd && *fAt == '\n') ++fAt;
  ++fNextLine;
  return true;
}

bool RecordScanner::Next(std::vector<std::string_view>& cells) {
  while (SkipComment()) {
  }
  if (fAt == fEnd || fUnclosedQuote) return false;
  fLine = fNextLine;
  fLineIsBlank = *fAt == '\n' || *fAt == '\r';
  const std::size_t firstCell = cells.size();
  while (true) {
    if (fDialect.skipInitialSpace)
      while (fAt != fEnd && *fAt == ' ' && fDialect.delimiter != ' ') ++fAt;
    if (fAt != fEnd && fDialect.quote != '\0' && *fAt == fDialect.quote) {
      const auto cell = TakeQuotedCell(cells.size() - firstCell + 1);
      if (!cell) {
        cells.resize(firstCell);
        return false;
      }
      cells.push_back(*cell);
    } else {
      cells.push_back(TakePlainCell());
    }
    if (fAt == fEnd) return true;
    const char c = *fAt++;
    if (c == fDialect.delimiter) continue;
    if (c == '\r' && fAt != fEnd && *fAt == '\n') ++fAt;
    ++fNextLine;
    return true;
  }
}

std::string_view RecordScanner::TakePlainCell() {
  const char* const first = fAt;
  const char* at = fAt;
  while (at != fEnd && !EndsCell(*at)) ++at;
  fAt = at;
  return {first, static_cast<std::size_t>(at - first)};
}

std::optional<std::string_view> RecordScanner::TakeQuotedCell(std::size_t cell) {
  const Place opened{fNextLine, cell};
  const char* const first = ++fAt;
  const char* at = first;
  bool hasDoubled = false;
  while (true) {
    at = at == fEnd ? nullptr
                    : static_cast<const char*>(std::memchr(at, fDialect.quote, static_cast<std::size_t>(fEnd - at)));
    if (at == nullptr) {
      fUnclosedQuote = opened;
      return std::nullopt;
    }
    if (!fDialect.doubleQuote || at + 1 == fEnd || at[1] != fDialect.quote) break;
    hasDoubled = true;
    at += 2;
  }
  std::string_view text(first, static_cast<std::size_t>(at - first));
  CountLines(text);
  fAt = at + 1;
  if (hasDoubled) text = WithSingleQuotes(text);
  if (fAt != fEnd && !EndsCell(*fAt)) text = TakeTextBehindQuote(text, cell);
  return text;
}

std::string_view RecordScanner::TakeTextBehindQuote(std::string_view quoted, std::size_t cell) {
  const std::string_view behind = TakePlainCell();
  if (behind.find_first_not_of(' ') == std::string_view::npos) return quoted;
  if (fTextBehindQuote++ == 0) fFirstTextBehindQuote = {fNextLine, cell};
  char* const joined = fArena.Allocate(quoted.size() + behind.size());
  if (!quoted.empty()) std::memcpy(joined, quoted.data(), quoted.size());
  std::memcpy(joined + quoted.size(), behind.data(), behind.size());
  return {joined, quoted.size() + behind.size()};
}

std::string_view RecordScanner::WithSingleQuotes(std::string_view text) {
  char* const single = fArena.Allocate(text.size());
  std::size_t length = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    single[length++] = text[i];
    if (text[i] == fDialect.quote) ++i;
  }
  fArena.GiveBack(text.size() - length);
  return {single, length};
}

void RecordScanner::CountLines(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\n' && text[i] != '\r') continue;
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    ++fNextLine;
  }
}

}  // namespace runtime::data
