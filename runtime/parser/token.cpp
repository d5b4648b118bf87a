#include "host/parser/token.h"

#include <utility>

#include "runtime/parser/binding.h"
#include "runtime/parser/characters.h"
#include "runtime/parser/commandtext.h"

TokenInfoObj::TokenInfoObj() = default;
TokenInfoObj::TokenInfoObj(std::string text, Kind kind, int line, int column)
    : fText(std::move(text)), fUpper(runtime::parser::UpperCase(fText)), fKind(kind), fLine(line), fColumn(column) {}
TokenInfoObj::~TokenInfoObj() = default;
TokenInfoObj::TokenInfoObj(const TokenInfoObj&) = default;
TokenInfoObj::TokenInfoObj(TokenInfoObj&&) noexcept = default;
TokenInfoObj& TokenInfoObj::operator=(const TokenInfoObj&) = default;
TokenInfoObj& TokenInfoObj::operator=(TokenInfoObj&&) noexcept = default;

MAVO_TokenSequence::MAVO_TokenSequence(bool fromCurrentCommand) {
  if (!fromCurrentCommand) return;
  const runtime::parser::CommandBinding* binding = runtime::parser::CurrentCommand();
  if (binding == nullptr || binding->command == nullptr) return;
  fTokens = binding->command->tokens();
}
MAVO_TokenSequence::~MAVO_TokenSequence() = default;
