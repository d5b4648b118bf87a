#include "runtime/parser/sourcetext.h"

#include <deque>

#include <fmt/format.h>

#include "runtime/parser/characters.h"
#include "runtime/parser/visibletext.h"

namespace runtime::parser {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kCut = "...";
constexpr int kColumnsBefore = 60;  // of a long line, terminal columns shown before and behind the place
constexpr int kColumnsBehind = 40;
constexpr std::size_t kCharactersBefore = 240;  // bounds a run of characters without width

}  // namespace

SourceText::SourceText(std::string text) : fText(std::move(text)) {
  if (fText.starts_with(kByteOrderMark)) fStart = kByteOrderMark.size();
  const std::string_view all = this->text();
  fLineStarts.push_back(0);
  for (std::size_t offset = all.find_first_of("\r\n"); offset != std::string_view::npos;
       offset = all.find_first_of("\r\n", offset)) {
    offset += LineEndLength(all, offset);
    fLineStarts.push_back(offset);
  }
}

std::string_view SourceText::text() const { return std::string_view(fText).substr(fStart); }

std::string_view SourceText::line(int number) const {
  if (number < 1 || number > lineCount()) return {};
  const std::size_t start = fLineStarts[static_cast<std::size_t>(number) - 1];
  const std::string_view rest = text().substr(start);
  return rest.substr(0, rest.find_first_of("\r\n"));
}

std::string SourceText::Excerpt(TextPlace place) const {
  const std::string_view shownLine = line(place.line);

  std::deque<VisibleCharacter> before;
  int columnsBefore = 0;
  bool cutBefore = false;
  std::size_t offset = 0;
  for (int column = 1; column < place.column && offset < shownLine.size(); ++column) {
    before.push_back(ShowCharacter(shownLine, offset));
    columnsBefore += before.back().width;
    while (columnsBefore > kColumnsBefore || before.size() > kCharactersBefore) {
      columnsBefore -= before.front().width;
      before.pop_front();
      cutBefore = true;
    }
  }

  std::string excerpt = "  ";
  if (cutBefore) {
    excerpt += kCut;
    columnsBefore += static_cast<int>(kCut.size());
  }
  for (const VisibleCharacter& character : before) excerpt += character.text;

  int columnsBehind = 0;
  std::size_t charactersBehind = 0;
  while (offset < shownLine.size() && columnsBehind < kColumnsBehind && charactersBehind < kCharactersBefore) {
    const VisibleCharacter character = ShowCharacter(shownLine, offset);
    excerpt += character.text;
    columnsBehind += character.width;
    ++charactersBehind;
  }
  if (offset < shownLine.size()) excerpt += kCut;

  excerpt += "\n  ";
  excerpt.append(static_cast<std::size_t>(columnsBefore), ' ');
  excerpt += '^';
  return excerpt;
}

std::string ShowPlace(TextPlace place) { return fmt::format("(line {}, column {})", place.line, place.column); }

}  // namespace runtime::parser
