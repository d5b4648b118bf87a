#include "runtime/data/csv/preparedtext.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <fmt/format.h>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/open.h"

namespace runtime::data {

namespace {

bool IsUnusual(const std::optional<std::string>& sign) { return sign && sign->size() > 1; }

/// What the signs of a text are; an empty one is not in use.
struct Signs {
  std::string delimiter;
  std::string quote;
  std::string escape;
  std::string terminator;  // empty: LF, CR and CRLF
  std::string comment;
  std::string null;
  bool doubleQuote = true;
  bool skipInitialSpace = false;
};

Signs SignsOf(std::string_view text, const TextDialect& said, const std::string& source) {
  Signs signs;
  signs.escape = said.escapeChar.value_or("");
  // The standard has either a quote or an escape character, and quotes where nothing is said.
  signs.quote = said.quoteChar.value_or(signs.escape.empty() ? "\"" : "");
  signs.doubleQuote = said.doubleQuote.value_or(true);
  if (signs.escape == signs.quote) {
    signs.doubleQuote = signs.doubleQuote || !signs.quote.empty();
    signs.escape.clear();
  }
  signs.terminator = said.lineTerminator.value_or("");
  signs.comment = said.commentChar.value_or("");
  signs.null = said.nullSequence.value_or("");
  signs.skipInitialSpace = said.skipInitialSpace.value_or(false);
  if (said.delimiter) {
    signs.delimiter = *said.delimiter;
  } else {
    TextDialect plain = said;
    if (IsUnusual(said.quoteChar)) plain.quoteChar.reset();
    signs.delimiter = std::string(1, FindDialect(text, plain, source).delimiter);
  }
  if (signs.delimiter == signs.quote || signs.delimiter == signs.escape || signs.delimiter == signs.terminator)
    throw DataError(fmt::format(
        "{}: its dialect has the same sign for the delimiter and for quotes, escapes or line ends", source));
  return signs;
}

class TextWriter {
 public:
  TextWriter(std::string& text, const std::string& comment) : fText(text), fComment(comment) {}

  void Cell(std::string_view cell) {
    if (fCells++ > 0) fText.push_back(',');
    const bool isLikeComment = fCells == 1 && !fComment.empty() && cell.substr(0, fComment.size()) == fComment;
    if (!isLikeComment && cell.find_first_of(",\"\r\n") == std::string_view::npos) {
      fText += cell;
      return;
    }
    fText.push_back('"');
    for (const char byte : cell) {
      if (byte == '"') fText.push_back('"');
      fText.push_back(byte);
    }
    fText.push_back('"');
  }
  void EndRecord() {
    fText.push_back('\n');
    fCells = 0;
  }
  void Comment(std::string_view line) {
    for (const char byte : line) fText.push_back(byte == '\n' || byte == '\r' ? ' ' : byte);
    fText.push_back('\n');
  }

 private:
  std::string& fText;
  const std::string& fComment;
  std::size_t fCells = 0;
};

class TextReader {
 public:
  TextReader(std::string_view text, const Signs& signs, const std::string& source)
      : fText(text), fSigns(signs), fSource(source) {}

  void Read(TextWriter& writer) {
    while (fAt < fText.size()) {
      if (Stands(fSigns.comment)) {
        const std::size_t begin = fAt;
        while (fAt < fText.size() && LineEnd() == 0) ++fAt;
        writer.Comment(fText.substr(begin, fAt - begin));
        PassLineEnd();
        continue;
      }
      ReadRecord(writer);
    }
  }

 private:
  void ReadRecord(TextWriter& writer) {
    for (std::size_t cell = 1;; ++cell) {
      while (fSigns.skipInitialSpace && fAt < fText.size() && fText[fAt] == ' ' && fSigns.delimiter != " ") ++fAt;
      fCell.clear();
      const std::size_t begin = fAt;
      const bool isQuoted = Stands(fSigns.quote);
      if (isQuoted) TakeQuoted(cell);
      TakePlain(isQuoted);
      const bool isNull = !isQuoted && !fSigns.null.empty() && fText.substr(begin, fAt - begin) == fSigns.null;
      writer.Cell(isNull ? std::string_view() : fCell);
      if (fAt < fText.size() && Stands(fSigns.delimiter)) {
        fAt += fSigns.delimiter.size();
        continue;
      }
      PassLineEnd();
      writer.EndRecord();
      return;
    }
  }

  /// Stands at the opening quote, and goes behind the closing one.
  void TakeQuoted(std::size_t cell) {
    const std::int64_t line = fLine;
    fAt += fSigns.quote.size();
    while (fAt < fText.size()) {
      if (TakeEscaped()) continue;
      if (!Stands(fSigns.quote)) {
        if (LineEnd() > 0) ++fLine;
        TakeCharacter(std::max<std::size_t>(1, LineEnd()));
        continue;
      }
      fAt += fSigns.quote.size();
      if (!fSigns.doubleQuote || !Stands(fSigns.quote)) return;
      TakeCharacter(fSigns.quote.size());
    }
    throw DataError(
        fmt::format("{}:{}: the quote that opens cell {} of this record is not closed before the end of the file",
                    fSource, line, cell));
  }

  /// Up to the end of the cell. Behind a closing quote blanks by themselves are nothing.
  void TakePlain(bool isBehindQuote) {
    const std::size_t quoted = fCell.size();
    while (fAt < fText.size() && !Stands(fSigns.delimiter) && LineEnd() == 0)
      if (!TakeEscaped()) TakeCharacter(1);
    if (isBehindQuote && fCell.find_first_not_of(' ', quoted) == std::string::npos) fCell.resize(quoted);
  }

  bool TakeEscaped() {
    if (!Stands(fSigns.escape)) return false;
    fAt += fSigns.escape.size();
    if (fAt < fText.size()) {
      if (LineEnd() > 0) ++fLine;
      TakeCharacter(std::max<std::size_t>(1, LineEnd()));
    }
    return true;
  }

  void TakeCharacter(std::size_t bytes) {
    fCell += fText.substr(fAt, bytes);
    fAt += bytes;
  }

  bool Stands(const std::string& sign) const { return !sign.empty() && fText.compare(fAt, sign.size(), sign) == 0; }

  /// Bytes of the line end that stands here, 0 for none.
  std::size_t LineEnd() const {
    if (!fSigns.terminator.empty()) return Stands(fSigns.terminator) ? fSigns.terminator.size() : 0;
    if (fText[fAt] == '\n') return 1;
    if (fText[fAt] != '\r') return 0;
    return fAt + 1 < fText.size() && fText[fAt + 1] == '\n' ? 2 : 1;
  }

  void PassLineEnd() {
    if (fAt == fText.size()) return;
    fAt += LineEnd();
    ++fLine;
  }

  std::string_view fText;
  const Signs& fSigns;
  const std::string& fSource;
  std::size_t fAt = 0;
  std::int64_t fLine = 1;
  std::string fCell;
};

/// A file whose lines end otherwise may still end with a usual line end.
std::string_view WithoutLastLineEnd(std::string_view text) {
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  return text;
}

}  // namespace

bool NeedsPreparing(const TextDialect& said) {
  return said.escapeChar || said.nullSequence || said.lineTerminator || IsUnusual(said.delimiter) ||
         IsUnusual(said.quoteChar);
}

PreparedText PrepareText(std::string_view text, const TextDialect& said, const std::string& source) {
  const Signs signs = SignsOf(text, said, source);
  if (!signs.terminator.empty()) text = WithoutLastLineEnd(text);
  PreparedText prepared;
  prepared.text.reserve(text.size());
  TextWriter writer(prepared.text, signs.comment);
  TextReader(text, signs, source).Read(writer);
  prepared.dialect = said;
  prepared.dialect.delimiter = ",";
  prepared.dialect.quoteChar = "\"";
  prepared.dialect.doubleQuote = true;
  prepared.dialect.skipInitialSpace = false;
  prepared.dialect.escapeChar.reset();
  prepared.dialect.nullSequence.reset();
  prepared.dialect.lineTerminator.reset();
  return prepared;
}

}  // namespace runtime::data
