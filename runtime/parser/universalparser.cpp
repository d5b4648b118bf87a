#include "host/parser/commandspec.h"

#include "runtime/parser/binding.h"
#include "runtime/parser/commandreader.h"
#include "runtime/parser/commandtext.h"
#include "runtime/parser/syntaxerror.h"

using runtime::parser::ReadCommand;
using runtime::parser::TextPlace;

namespace {

constexpr int kAccepted = 0;
constexpr int kRefused = 1;

void Report(const std::string& message) {
  const runtime::parser::CommandBinding* binding = runtime::parser::CurrentCommand();
  if (binding != nullptr && binding->sink != nullptr) binding->sink->Report(/*isError=*/true, message);
}

TextPlace EndOf(const std::vector<TokenInfoObj>& tokens, const ReadCommand* command) {
  if (command != nullptr) return command->end();
  if (tokens.empty()) return {};
  return {tokens.back().line(), tokens.back().column()};
}

}  // namespace

UniversalParser::UniversalParser(const MAVO_TokenSequence& tokens, CommandSpec& spec,
                                 const CommandDescriptor& descriptor)
    : fTokens(tokens), fSpec(spec), fDescriptor(descriptor) {}
UniversalParser::~UniversalParser() = default;

int UniversalParser::getCommandSpecifications() {
  const runtime::parser::CommandBinding* binding = runtime::parser::CurrentCommand();
  const ReadCommand* command = binding != nullptr ? binding->command : nullptr;
  if (command != nullptr && !command->error().empty()) {
    Report(command->error());
    return kRefused;
  }
  CommandReader reader(fTokens.tokens(), fDescriptor, EndOf(fTokens.tokens(), command));
  if (reader.Read(fSpec)) return kAccepted;
  for (const runtime::parser::SyntaxError& error : reader.errors()) {
    Report(runtime::parser::SyntaxErrorMessage(error, command));
  }
  return kRefused;
}
