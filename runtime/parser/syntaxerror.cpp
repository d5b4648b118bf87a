#include "runtime/parser/syntaxerror.h"

#include <cstddef>

#include <fmt/format.h>

#include "runtime/parser/commandtext.h"
#include "runtime/parser/visibletext.h"

namespace runtime::parser {

std::string SyntaxErrorMessage(const SyntaxError& error, const ReadCommand* command) {
  std::string message = fmt::format("{} {}.", error.problem, ShowPlace(error.place));
  if (!error.suggestion.empty()) message += fmt::format(" Did you mean {}?", error.suggestion);
  message += fmt::format(" Expected {}.", error.expected);
  if (!error.advice.empty()) message += fmt::format(" {}.", error.advice);
  if (command != nullptr) message += "\n" + command->Excerpt(error.place);
  return message;
}

std::string ShowFound(const TokenInfoObj* token) {
  if (token == nullptr) return "the end of the command";
  const bool quoted = token->kind() == TokenInfoObj::Kind::Quoted;
  return fmt::format("{}\"{}\"", quoted ? "the quoted text " : "", ShowText(token->getString()));
}

std::string ListAlternatives(const std::vector<std::string>& words) {
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? " or " : ", ";
    list += words[i];
  }
  return list;
}

}  // namespace runtime::parser
