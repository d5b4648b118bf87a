#include "runtime/output/render/markdowntext.h"

#include <algorithm>

#include <unicode/uchar.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/terminaltext.h"

namespace runtime::output {
namespace {

// Parts what a reader would take for a link, a mention or an emoji. Shows nothing; a backslash would not do, since such
// things are looked for once the backslashes are gone.
constexpr std::string_view kParting = "<!-- -->";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetterOrDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsWhiteSpace(char32_t c) { return u_isUWhiteSpace(static_cast<UChar32>(c)) != 0; }

bool IsLetterW(char c) { return c == 'w' || c == 'W'; }

class MarkdownText {
 public:
  MarkdownText(std::string& markdown, std::string_view text) : fMarkdown(markdown), fText(text) {}

  void Append() {
    if (fText.empty()) {
      fMarkdown += kParting;
      return;
    }
    fDollars = std::count(fText.begin(), fText.end(), '$');
    fBodyEnd = EndWithoutWhiteSpace();
    bool inBody = false;
    for (std::size_t at = 0; at < fText.size();) {
      const std::size_t begin = at;
      bool valid = true;
      const char32_t character = NextCharacter(fText, at, valid);
      const bool isLineEnd = character == '\n' || (character == '\r' && at < fText.size() && fText[at] == '\n');
      if (character == '\r' && isLineEnd) continue;  // the LF behind it stands for both
      if (isLineEnd) {
        fMarkdown += "<br>";
        inBody = true;
      } else if (character == '\t') {
        AppendEntity(character);
      } else if (IsHidden(character)) {
        fMarkdown += '\\';  // for the backslash of the escape
        AppendVisibleEscape(fMarkdown, character);
        inBody = true;
      } else if (IsWhiteSpace(character)) {
        if (inBody && begin < fBodyEnd) {
          fMarkdown.append(fText, begin, at - begin);
        } else {
          AppendEntity(character);
        }
      } else {
        if (!valid) {
          fMarkdown += "\xEF\xBF\xBD";
        } else if (character < 0x80) {
          AppendAscii(begin);
        } else {
          fMarkdown.append(fText, begin, at - begin);
        }
        inBody = true;
      }
    }
  }

 private:
  // Readers strip white space at the ends, some of them also that beyond ASCII.
  std::size_t EndWithoutWhiteSpace() const {
    std::size_t end = 0;
    for (std::size_t at = 0; at < fText.size();) {
      bool valid = true;
      const char32_t character = NextCharacter(fText, at, valid);
      if (!IsWhiteSpace(character) || character == '\n') end = at;
    }
    return end;
  }

  void AppendEntity(char32_t character) {
    fMarkdown += "&#";
    fMarkdown += std::to_string(static_cast<std::uint32_t>(character));
    fMarkdown += ';';
  }

  // The byte behind `at`; NUL at the end.
  char Next(std::size_t at) const { return at + 1 < fText.size() ? fText[at + 1] : '\0'; }
  char Before(std::size_t at) const { return at > 0 ? fText[at - 1] : '\0'; }

  void AppendAscii(std::size_t at) {
    const char c = fText[at];
    const char next = Next(at);
    switch (c) {
      case '\\':
      case '`':
      case '*':
      case '~':
      case '[':
      case ']':
      case '|':
        fMarkdown += '\\';
        fMarkdown += c;
        return;
      case '_':  // within a word it is never emphasis
        if (!IsLetterOrDigit(Before(at)) || !IsLetterOrDigit(next)) fMarkdown += '\\';
        fMarkdown += c;
        return;
      case '<':
        fMarkdown += "&lt;";
        return;
      case '>':
        fMarkdown += "&gt;";
        return;
      case '&':
        fMarkdown += BeginsEntity(at) ? "&amp;" : "&";
        return;
      case '#':  // a heading's end; an issue's number
        fMarkdown += "\\#";
        if (IsDigit(next)) fMarkdown += kParting;
        return;
      case '@':  // a mention; an address
        fMarkdown += c;
        if (next > ' ') fMarkdown += kParting;
        return;
      case ':':
        fMarkdown += c;
        if (fText.substr(at, 3) == "://" || BeginsEmoji(at)) fMarkdown += kParting;
        return;
      case '$':  // two of them enclose mathematics
        fMarkdown += fDollars > 1 ? "<span>$</span>" : "$";
        return;
      case '.':
        if (EndsWww(at)) fMarkdown += kParting;
        fMarkdown += c;
        return;
      default:
        fMarkdown += c;
    }
  }

  // `&name;`, `&#number;`.
  bool BeginsEntity(std::size_t ampersand) const {
    std::size_t end = ampersand + 1;
    while (end < fText.size() && (IsLetterOrDigit(fText[end]) || fText[end] == '#')) ++end;
    return end < fText.size() && fText[end] == ';';
  }

  // `:name:`. A time of day is none.
  bool BeginsEmoji(std::size_t colon) const {
    std::size_t end = colon + 1;
    bool onlyDigits = true;
    while (end < fText.size() && (IsLetterOrDigit(fText[end]) || std::string_view("_+-").find(fText[end]) != kNone)) {
      onlyDigits = onlyDigits && IsDigit(fText[end]);
      ++end;
    }
    const std::size_t length = end - colon - 1;
    return end < fText.size() && fText[end] == ':' && length > (onlyDigits ? 2U : 0U);
  }

  bool EndsWww(std::size_t period) const {
    return period >= 3 && IsLetterW(fText[period - 1]) && IsLetterW(fText[period - 2]) && IsLetterW(fText[period - 3]);
  }

  static constexpr std::size_t kNone = std::string_view::npos;

  std::string& fMarkdown;
  std::string_view fText;
  std::ptrdiff_t fDollars = 0;
  std::size_t fBodyEnd = 0;  // behind the last character that is no white space
};

}  // namespace

void AppendMarkdownText(std::string& markdown, std::string_view text) { MarkdownText(markdown, text).Append(); }

}  // namespace runtime::output
