// The text that the user gave, by lines: what an error message quotes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::parser {

/// A place in the text; both count from 1, columns count characters (an ill-formed byte sequence as one).
struct TextPlace {
  int line = 1;
  int column = 1;

  bool operator==(const TextPlace&) const = default;
};

class SourceText {
 public:
  /// A byte order mark at the start is skipped.
  explicit SourceText(std::string text);

  /// Without the byte order mark.
  std::string_view text() const;
  int lineCount() const { return static_cast<int>(fLineStarts.size()); }
  /// The line without its line end; empty outside 1 … lineCount().
  std::string_view line(int number) const;

  /// Two lines, each led by two blanks: the text line with nothing in it that a terminal would act on, and a caret
  /// under the place. Of a long line the surroundings of the place are shown. No line end at the end.
  std::string Excerpt(TextPlace place) const;

 private:
  std::string fText;
  std::size_t fStart = 0;                // past the byte order mark
  std::vector<std::size_t> fLineStarts;  // offsets in text()
};

/// "(line 1, column 19)"
std::string ShowPlace(TextPlace place);

}  // namespace runtime::parser
