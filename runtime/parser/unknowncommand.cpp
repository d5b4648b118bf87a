#include "runtime/parser/unknowncommand.h"

#include <fmt/format.h>

#include "runtime/parser/suggestion.h"
#include "runtime/parser/syntaxerror.h"
#include "runtime/parser/visibletext.h"

namespace runtime::parser {

std::string UnknownCommandMessage(const ReadCommand& command, const std::vector<std::string>& known) {
  const std::string name = command.name();
  SyntaxError error;
  error.place = command.begin();
  error.expected = ListAlternatives(known);
  if (!name.empty()) {
    error.problem = fmt::format("Unknown command \"{}\"", ShowText(name));
    error.suggestion = NearestKeyword(name, known);
    return SyntaxErrorMessage(error, &command);
  }
  // A command that begins with a quote which is not closed has that as its first fault.
  if (!command.error().empty()) return command.error();
  const TokenInfoObj& first = command.tokens().front();
  error.problem = fmt::format("A command begins with its name, found {}", ShowFound(&first));
  if (first.kind() == TokenInfoObj::Kind::Quoted) {
    error.suggestion = NearestKeyword(first.getString(), known);
    error.advice = "Command names are written without quotes";
  }
  return SyntaxErrorMessage(error, &command);
}

}  // namespace runtime::parser
