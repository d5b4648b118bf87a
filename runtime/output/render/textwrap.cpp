#include "runtime/output/render/textwrap.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/textwidth.h"

namespace runtime::output {
namespace {

// Making an iterator reads rules, so a thread keeps its own for good.
class TextBreaks {
 public:
  explicit TextBreaks(icu::BreakIterator* (*make)(const icu::Locale&, UErrorCode&)) {
    UErrorCode status = U_ZERO_ERROR;
    fIterator.reset(make(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) throw std::runtime_error("The rules for breaking texts cannot be loaded.");
  }

  /// The byte positions of the boundaries in the text, without the one at its beginning.
  std::vector<std::size_t> Boundaries(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    UText units = UTEXT_INITIALIZER;
    utext_openUTF8(&units, text.data(), static_cast<int64_t>(text.size()), &status);
    fIterator->setText(&units, status);
    std::vector<std::size_t> boundaries;
    if (U_SUCCESS(status)) {
      fIterator->first();
      for (int32_t at = fIterator->next(); at != icu::BreakIterator::DONE; at = fIterator->next()) {
        boundaries.push_back(static_cast<std::size_t>(at));
      }
    }
    utext_close(&units);
    if (boundaries.empty() || boundaries.back() != text.size()) boundaries.push_back(text.size());
    return boundaries;
  }

 private:
  std::unique_ptr<icu::BreakIterator> fIterator;
};

std::vector<std::size_t> CharacterBoundaries(std::string_view text) {
  thread_local TextBreaks breaks(icu::BreakIterator::createCharacterInstance);
  return breaks.Boundaries(text);
}

bool IsPathSeparator(char c) { return c == '/' || c == '\\'; }

// Where a line of plain ASCII may be broken: behind blanks; in a path behind its separators, in any other word behind a
// hyphen within it.
std::vector<std::size_t> PlainOpportunities(std::string_view line) {
  std::vector<std::size_t> opportunities;
  for (std::size_t begin = 0; begin < line.size();) {
    const std::size_t blank = std::min(line.find(' ', begin), line.size());
    const std::string_view word = line.substr(begin, blank - begin);
    const bool isPath = std::any_of(word.begin(), word.end(), IsPathSeparator);
    for (std::size_t i = 1; i + 1 < word.size(); ++i) {
      const bool behindSeparator = IsPathSeparator(word[i]) && !IsPathSeparator(word[i + 1]);
      const bool behindHyphen = !isPath && word[i] == '-' && word[i - 1] != '-' && word[i + 1] != '-';
      if (behindSeparator || behindHyphen) opportunities.push_back(begin + i + 1);
    }
    begin = std::min(line.find_first_not_of(' ', blank), line.size());
    opportunities.push_back(begin);
  }
  return opportunities;
}

std::vector<std::size_t> Opportunities(std::string_view line) {
  if (IsPlainAscii(line)) return PlainOpportunities(line);
  thread_local TextBreaks breaks(icu::BreakIterator::createLineInstance);
  return breaks.Boundaries(line);
}

std::string_view WithoutTrailingBlanks(std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

// Cuts a word into pieces of at most `width` columns; gives the last one, which has room behind it.
std::string_view BreakWord(std::string_view word, int width, std::vector<std::string_view>& lines) {
  std::size_t begin = 0;
  std::size_t end = 0;
  int columns = 0;
  for (const std::size_t boundary : CharacterBoundaries(word)) {
    const int characterColumns = DisplayWidth(word.substr(end, boundary - end));
    if (end > begin && columns + characterColumns > width) {
      lines.push_back(word.substr(begin, end - begin));
      begin = end;
      columns = 0;
    }
    columns += characterColumns;
    end = boundary;
  }
  return word.substr(begin);
}

void WrapLine(std::string_view line, int width, std::vector<std::string_view>& lines) {
  if (DisplayWidth(line) <= width) {
    lines.push_back(line);
    return;
  }
  const std::size_t linesBefore = lines.size();
  const auto push = [&](std::string_view text) {
    const std::string_view kept = WithoutTrailingBlanks(text);
    if (!kept.empty()) lines.push_back(kept);
  };
  std::size_t lineBegin = 0;
  std::size_t segmentBegin = 0;
  int columns = 0;  // of the line so far, with its trailing blanks
  for (const std::size_t segmentEnd : Opportunities(line)) {
    const std::string_view segment = line.substr(segmentBegin, segmentEnd - segmentBegin);
    const std::string_view word = WithoutTrailingBlanks(segment);
    const int wordColumns = DisplayWidth(word);
    if (columns + wordColumns > width) {
      push(line.substr(lineBegin, segmentBegin - lineBegin));
      lineBegin = segmentBegin;
    }
    if (wordColumns > width) lineBegin = segmentBegin + (word.size() - BreakWord(word, width, lines).size());
    columns = DisplayWidth(line.substr(lineBegin, segmentEnd - lineBegin));
    segmentBegin = segmentEnd;
  }
  push(line.substr(lineBegin));
  if (lines.size() == linesBefore) lines.push_back(line.substr(0, 0));
}

// Calls for every line of the text.
template <typename Visit>
void ForEachLine(std::string_view text, Visit visit) {
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  for (std::size_t begin = 0;;) {
    const std::size_t end = text.find('\n', begin);
    visit(text.substr(begin, end == std::string_view::npos ? end : end - begin));
    if (end == std::string_view::npos) return;
    begin = end + 1;
  }
}

}  // namespace

std::vector<std::string_view> WrapText(std::string_view text, int width) {
  std::vector<std::string_view> lines;
  ForEachLine(text, [&](std::string_view line) { WrapLine(line, width, lines); });
  return lines;
}

int WidestLine(std::string_view text) {
  int widest = 0;
  ForEachLine(text, [&](std::string_view line) { widest = std::max(widest, DisplayWidth(line)); });
  return widest;
}

int LongestWord(std::string_view text) {
  int longest = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
    longest = std::max(longest, DisplayWidth(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return longest;
}

}  // namespace runtime::output
