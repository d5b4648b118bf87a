#include "runtime/parser/commandtext.h"

#include <utility>

#include <fmt/format.h>

#include "runtime/parser/characters.h"
#include "runtime/parser/numberform.h"
#include "runtime/parser/visibletext.h"

namespace runtime::parser {

ReadCommand::ReadCommand(std::shared_ptr<const SourceText> source, std::vector<TokenInfoObj> tokens, Extent extent,
                         std::string error)
    : fSource(std::move(source)), fTokens(std::move(tokens)), fExtent(extent), fError(std::move(error)) {}

std::string ReadCommand::name() const {
  const TokenInfoObj& first = fTokens.front();
  const bool isWord = first.kind() == TokenInfoObj::Kind::Word || first.kind() == TokenInfoObj::Kind::Number;
  return isWord ? first.getString() : std::string();
}

std::string ReadCommand::upperName() const { return UpperCase(name()); }

std::string_view ReadCommand::text() const {
  return fSource->text().substr(fExtent.begin, fExtent.end - fExtent.begin);
}

TextPlace ReadCommand::begin() const { return {fTokens.front().line(), fTokens.front().column()}; }

namespace {

/// One walk through the text.
class CommandScanner {
 public:
  explicit CommandScanner(std::string text)
      : fSource(std::make_shared<const SourceText>(std::move(text))), fText(fSource->text()) {}

  std::vector<ReadCommand> Scan() {
    while (fOffset < fText.size()) {
      if (!SkipSeparator()) ReadToken();
    }
    EndCommand();
    return std::move(fCommands);
  }

 private:
  using Kind = TokenInfoObj::Kind;

  TextPlace Place() const { return {fLine, fColumn}; }

  /// Past a character of one byte.
  void Step() {
    ++fColumn;
    ++fOffset;
  }

  bool SkipSeparator() {
    if (const std::size_t lineEnd = LineEndLength(fText, fOffset); lineEnd > 0) {
      fOffset += lineEnd;
      ++fLine;
      fColumn = 1;
      return true;
    }
    std::size_t next = fOffset;
    const std::int32_t character = NextCharacter(fText, next);
    if (character != ',' && !IsBlank(character)) return false;
    fOffset = next;
    ++fColumn;
    return true;
  }

  /// A period at `offset` ends the command when nothing but blanks stands between it and the line end.
  bool IsEndPeriod(std::size_t offset) const {
    if (fText[offset] != '.') return false;
    ++offset;
    while (offset < fText.size()) {
      if (LineEndLength(fText, offset) > 0) return true;
      if (!IsBlank(NextCharacter(fText, offset))) return false;
    }
    return true;
  }

  void ReadToken() {
    if (IsEndPeriod(fOffset)) {
      Step();
      fExtent.end = fOffset;
      EndCommand();
      return;
    }
    if (fTokens.empty()) fExtent.begin = fOffset;
    const char first = fText[fOffset];
    if (IsQuote(first)) {
      ReadQuoted();
    } else if (IsSpecial(first)) {
      const TextPlace place = Place();
      Step();
      fTokens.emplace_back(std::string(1, first), Kind::Special, place.line, place.column);
    } else {
      ReadWord();
    }
    fExtent.end = fOffset;
    fExtent.endPlace = Place();
  }

  void ReadWord() {
    const TextPlace place = Place();
    const std::size_t start = fOffset;
    while (fOffset < fText.size() && LineEndLength(fText, fOffset) == 0) {
      std::size_t next = fOffset;
      const std::int32_t character = NextCharacter(fText, next);
      if (character == ',' || IsQuote(character) || IsSpecial(character) || IsBlank(character)) break;
      if (character == '.' && IsEndPeriod(fOffset)) break;
      if (character == kIllFormed || IsControl(character)) NoteBadCharacter(character, next);
      fOffset = next;
      ++fColumn;
    }
    std::string word(fText.substr(start, fOffset - start));
    const Kind kind = IsNumberForm(word) ? Kind::Number : Kind::Word;
    fTokens.emplace_back(std::move(word), kind, place.line, place.column);
  }

  void ReadQuoted() {
    const TextPlace place = Place();
    const char quote = fText[fOffset];
    Step();
    std::string text;
    while (fOffset < fText.size() && LineEndLength(fText, fOffset) == 0) {
      if (fText[fOffset] == quote) {
        Step();
        if (fOffset >= fText.size() || fText[fOffset] != quote) {
          fTokens.emplace_back(std::move(text), Kind::Quoted, place.line, place.column);
          return;
        }
      } else if (IsEndPeriod(fOffset)) {
        // Nothing follows that could close the text: the period still ends the command, and the next ones stay whole.
        break;
      }
      std::size_t next = fOffset;
      const std::int32_t character = NextCharacter(fText, next);
      // A quoted text may be the name of anything, also with odd characters, but nothing has a NUL in its name.
      if (character == kIllFormed || character == 0) NoteBadCharacter(character, next);
      text.append(fText, fOffset, next - fOffset);
      fOffset = next;
      ++fColumn;
    }
    if (IsFirstError()) {
      NoteError(place,
                fmt::format("The quoted text that opens here is not closed before the end of the line {}. Expected a "
                            "closing {}; a {} inside the text is written twice.",
                            ShowPlace(place), quote, quote));
    }
    fTokens.emplace_back(std::move(text), Kind::Quoted, place.line, place.column);
  }

  /// Counts an error; true for the command's first, which alone is told in full.
  bool IsFirstError() { return ++fErrorCount == 1; }

  void NoteError(TextPlace place, std::string message) {
    fErrorPlace = place;
    fError = std::move(message);
  }

  /// The character stands at the present place and ends before byte `next`.
  void NoteBadCharacter(std::int32_t character, std::size_t next) {
    if (!IsFirstError()) return;
    const std::string place = ShowPlace(Place());
    if (character == kIllFormed) {
      NoteError(Place(),
                fmt::format("Bytes that are not UTF-8: found {} {}. Expected text in UTF-8: save the commands in "
                            "that encoding.",
                            ShowText(fText.substr(fOffset, next - fOffset)), place));
      return;
    }
    NoteError(Place(), fmt::format("Control character: found U+{:04X} {}. Expected text: remove the character.",
                                   static_cast<unsigned>(character), place));
  }

  void EndCommand() {
    if (!fTokens.empty()) {
      if (fErrorCount > 1) {
        fError += fmt::format(" {} more such place{} in this command.", fErrorCount - 1, fErrorCount > 2 ? "s" : "");
      }
      if (fErrorCount > 0) fError += "\n" + fSource->Excerpt(fErrorPlace);
      fCommands.emplace_back(fSource, std::move(fTokens), fExtent, std::move(fError));
    }
    fTokens = {};
    fExtent = {};
    fError = {};
    fErrorCount = 0;
  }

  std::shared_ptr<const SourceText> fSource;
  std::string_view fText;
  std::size_t fOffset = 0;
  int fLine = 1;
  int fColumn = 1;

  std::vector<TokenInfoObj> fTokens;  // of the command being read
  ReadCommand::Extent fExtent;
  std::string fError;  // the first one
  TextPlace fErrorPlace;
  std::size_t fErrorCount = 0;

  std::vector<ReadCommand> fCommands;
};

}  // namespace

std::vector<ReadCommand> ReadCommands(std::string text) { return CommandScanner(std::move(text)).Scan(); }

}  // namespace runtime::parser
