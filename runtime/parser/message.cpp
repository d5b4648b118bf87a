#include "host/parser/message.h"

#include <array>
#include <cstddef>

#include "runtime/parser/binding.h"

namespace {

using Arguments = std::array<const char*, 5>;

/// One pass: what an argument holds is never read as a placeholder.
std::string FillPlaceholders(const char* text, const Arguments& arguments) {
  std::string filled;
  if (text == nullptr) return filled;
  for (const char* at = text; *at != '\0'; ++at) {
    if (at[0] != '^' || at[1] < '1' || at[1] > '5') {
      filled += *at;
      continue;
    }
    ++at;
    const char* argument = arguments[static_cast<std::size_t>(*at - '1')];
    if (argument != nullptr) filled += argument;
  }
  return filled;
}

void Report(bool isError, const char* text, const Arguments& arguments) {
  const runtime::parser::CommandBinding* binding = runtime::parser::CurrentCommand();
  if (binding == nullptr || binding->sink == nullptr) return;
  binding->sink->Report(isError, FillPlaceholders(text, arguments));
}

}  // namespace

ParserMessage::ParserMessage() = default;
ParserMessage::~ParserMessage() = default;

void ParserMessage::GenericError(const char* text, const char* p1, const char* p2, const char* p3, const char* p4,
                                 const char* p5) {
  Report(true, text, {p1, p2, p3, p4, p5});
}

void ParserMessage::GenericWarning(const char* text, const char* p1, const char* p2, const char* p3, const char* p4,
                                   const char* p5) {
  Report(false, text, {p1, p2, p3, p4, p5});
}

void ParserMessage::ParamExclAnyOther(const char* keyword, const char* subcommand) {
  Report(true, "Keyword ^1 of subcommand ^2 cannot be combined with any other keyword.",
         {keyword, subcommand, nullptr, nullptr, nullptr});
}

void ParserMessage::KeywordImproperVarList(const char* keyword, const char* /*p2*/, const char* /*p3*/) {
  Report(true, "Keyword ^1 is misplaced in the variable list.", {keyword, nullptr, nullptr, nullptr, nullptr});
}
