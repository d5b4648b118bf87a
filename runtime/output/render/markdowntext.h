// Texts as Markdown that shows just them.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

/// Appends Markdown for use within a line (a cell of a table, a heading, an item of a list) of which GitHub's reader
/// makes this text and nothing else: no emphasis, code, link, mention, picture, HTML or entity. Line ends become <br>,
/// blanks at both ends and tabs become entities, an empty text an empty comment. Other control characters, marks of the
/// writing direction and characters without a shape become visible escapes (\x1b), bytes that are no UTF-8 U+FFFD.
void AppendMarkdownText(std::string& markdown, std::string_view text);

}  // namespace runtime::output
