#include "runtime/data/source/sql/querytext.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// In what engines differ.
struct Manner {
  bool backslashEscapes = false;  // in quotes: '\'' is one text
  bool bracketsQuote = false;     // [a'b] is a name
  bool commentsNest = false;      // /* /* */ */ is one comment
  bool hashComments = false;      // # begins a comment
};

/// What a text is, read in one manner.
struct Walk {
  std::string unended;  // what does not end; then the rest means nothing
  bool isPaired = true;
  bool hasSecond = false;
  std::size_t end = 0;  // of the statement, before a semicolon
  std::string firstWord;
};

bool IsBlank(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r' || byte == '\f' || byte == '\v';
}

bool IsOfWord(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') || byte == '_' ||
         byte == '$' || (static_cast<unsigned char>(byte) & 0x80U) != 0;
}

class Walker {
 public:
  Walker(std::string_view text, const Manner& manner) : fText(text), fManner(manner) {}

  Walk Go() {
    Walk walk;
    walk.end = fText.size();
    bool hasEnded = false;
    int depth = 0;
    while (fPlace < fText.size()) {
      const char byte = fText[fPlace];
      if (IsBlank(byte)) {
        ++fPlace;
        continue;
      }
      const std::size_t begin = fPlace;
      if (SkipComment()) {
        if (fPlace != kNone) continue;
        walk.unended = fmt::format("the comment at character {} does not end", begin + 1);
        return walk;
      }
      if (byte == ';') {
        if (!hasEnded) walk.end = fPlace;
        hasEnded = true;
        ++fPlace;
        continue;
      }
      if (hasEnded) walk.hasSecond = true;
      if (SkipQuoted()) {
        if (fPlace != kNone) continue;
        walk.unended = fmt::format("the quote at character {} does not end", begin + 1);
        return walk;
      }
      if (byte == '(') ++depth;
      if (byte == ')' && --depth < 0) walk.isPaired = false;
      SkipWord();
      if (walk.firstWord.empty() && byte != '(' && byte != ')') walk.firstWord = fText.substr(begin, fPlace - begin);
    }
    walk.isPaired = walk.isPaired && depth == 0;
    return walk;
  }

 private:
  bool StandsHere(std::string_view what) const { return fText.substr(fPlace, what.size()) == what; }

  /// A word, or one character.
  void SkipWord() {
    const std::size_t begin = fPlace;
    while (fPlace < fText.size() && IsOfWord(fText[fPlace])) ++fPlace;
    if (fPlace == begin) ++fPlace;
  }

  /// False when none begins here. One that does not end leaves fPlace at kNone; so do the next.
  bool SkipComment() {
    if (StandsHere("--") || (fManner.hashComments && StandsHere("#"))) {
      const std::size_t end = fText.find('\n', fPlace);
      fPlace = end == kNone ? fText.size() : end + 1;
      return true;
    }
    if (!StandsHere("/*")) return false;
    int depth = 0;
    do {
      if (StandsHere("/*") && (depth == 0 || fManner.commentsNest)) {
        ++depth;
        fPlace += 2;
      } else if (StandsHere("*/")) {
        --depth;
        fPlace += 2;
      } else {
        ++fPlace;
      }
    } while (depth > 0 && fPlace < fText.size());
    if (depth > 0) fPlace = kNone;
    return true;
  }

  bool SkipQuoted() {
    const char byte = fText[fPlace];
    const bool isEscapeText = (byte == 'e' || byte == 'E') && fPlace + 1 < fText.size() && fText[fPlace + 1] == '\'';
    if (isEscapeText) ++fPlace;
    if (byte == '\'' || byte == '"' || isEscapeText) {
      SkipTo(fText[fPlace], fManner.backslashEscapes || isEscapeText);
      return true;
    }
    if (byte == '`' || (byte == '[' && fManner.bracketsQuote)) {
      SkipTo(byte == '`' ? '`' : ']', false);
      return true;
    }
    return byte == '$' && SkipDollars();
  }

  /// From a quote behind the next one that closes it; where it stands twice it is a part of the text.
  void SkipTo(char closing, bool hasEscapes) {
    for (std::size_t i = fPlace + 1; i < fText.size(); ++i) {
      if (hasEscapes && fText[i] == '\\') {
        ++i;
      } else if (fText[i] == closing) {
        if (i + 1 >= fText.size() || fText[i + 1] != closing) {
          fPlace = i + 1;
          return;
        }
        ++i;
      }
    }
    fPlace = kNone;
  }

  /// $$...$$ or $tag$...$tag$. A tag does not begin with a digit: $1 is a parameter.
  bool SkipDollars() {
    const std::size_t end = fText.find('$', fPlace + 1);
    if (end == kNone) return false;
    const std::string_view tag = fText.substr(fPlace, end + 1 - fPlace);
    if (!std::all_of(tag.begin() + 1, tag.end() - 1, IsOfWord) || (tag[1] >= '0' && tag[1] <= '9')) return false;
    const std::size_t closing = fText.find(tag, end + 1);
    fPlace = closing == kNone ? kNone : closing + tag.size();
    return true;
  }

  std::string_view fText;
  Manner fManner;
  std::size_t fPlace = 0;
};

/// PostgreSQL's manner, the standard's but for its nested comments, goes first.
std::array<Manner, 16> Manners() {
  std::array<Manner, 16> manners;
  for (std::size_t i = 0; i < manners.size(); ++i)
    manners[i] = {(i & 1U) != 0, (i & 2U) != 0, (i & 4U) == 0, (i & 8U) != 0};
  return manners;
}

bool IsReading(const std::string& word) {
  const std::string lower = LowerAscii(word);
  return lower == "select" || lower == "with" || lower == "values" || lower == "table";
}

[[noreturn]] void Fail(const std::string& source, std::string_view problem) {
  throw DataError(fmt::format("{}: --query: {}", source, problem));
}

}  // namespace

std::string CheckQuery(std::string_view text, const std::string& source) {
  if (text.find('\0') != kNone || FirstInvalidUtf8(text) != kNone) Fail(source, "the query is no text in UTF-8");
  std::optional<Walk> good;
  Walk first;
  bool isFirst = true;
  for (const Manner& manner : Manners()) {
    const Walk walk = Walker(text, manner).Go();
    if (isFirst) first = walk;
    isFirst = false;
    // To an engine with this manner it is no query at all.
    if (!walk.unended.empty()) continue;
    if (walk.hasSecond) Fail(source, "there are several statements; give one, and no semicolon but at its end");
    if (!walk.isPaired) Fail(source, "the parentheses do not come in pairs");
    if (!good) good = walk;
  }
  if (!good) Fail(source, first.unended);
  if (good->firstWord.empty()) Fail(source, "the query is empty");
  if (!IsReading(good->firstWord))
    Fail(source,
         fmt::format("a query begins with SELECT, WITH, VALUES or TABLE, for nothing is changed; this one begins "
                     "with {}",
                     QuotedCell(good->firstWord)));
  return std::string(text.substr(0, good->end));
}

}  // namespace runtime::data
