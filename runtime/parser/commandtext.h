// Splits the text that the user gave into commands, and each command into tokens.
//
// Tokens: words, numbers, quoted texts, and [ ] ( ) = / each by itself. Blanks, line ends and commas separate. A word
// is everything up to a blank, a comma, a quote or one of the single tokens; one that reads as a decimal number, with
// its sign, is a number. A quoted text stands between two quotes of the same kind, ' or ", on one line; the quote
// itself is written twice. A period at the end of a line or of the text, blanks behind it aside, ends the command;
// elsewhere it is part of a word.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/parser/token.h"

#include "runtime/parser/sourcetext.h"

namespace runtime::parser {

/// One command with at least one token.
class ReadCommand {
 public:
  /// Where the command stands: byte offsets in the source's text, and the place behind its last token.
  struct Extent {
    std::size_t begin = 0;
    std::size_t end = 0;
    TextPlace endPlace;
  };

  ReadCommand(std::shared_ptr<const SourceText> source, std::vector<TokenInfoObj> tokens, Extent extent,
              std::string error);

  /// The command name as typed; empty when the command does not begin with a word.
  std::string name() const;
  /// The same in upper case, to compare with the names of procedures.
  std::string upperName() const;
  /// The command name included.
  const std::vector<TokenInfoObj>& tokens() const { return fTokens; }
  /// The command as typed, from its first token to its period; valid while this command lives.
  std::string_view text() const;
  /// Where the first token begins.
  TextPlace begin() const;
  /// Right behind the last token.
  TextPlace end() const { return fExtent.endPlace; }

  /// The text could not be split as it stands (a quote that is not closed, bytes that are not UTF-8, a control
  /// character); empty when it could. A whole message, with place and caret. The parser reports it; following commands
  /// are not touched.
  const std::string& error() const { return fError; }

  /// The line of the place with a caret under it (see SourceText::Excerpt).
  std::string Excerpt(TextPlace place) const { return fSource->Excerpt(place); }

 private:
  std::shared_ptr<const SourceText> fSource;
  std::vector<TokenInfoObj> fTokens;  // never empty
  Extent fExtent;
  std::string fError;
};

/// The commands of the text, in order. Any bytes are accepted; periods without a command are skipped. Linear in the
/// text.
std::vector<ReadCommand> ReadCommands(std::string text);

}  // namespace runtime::parser
