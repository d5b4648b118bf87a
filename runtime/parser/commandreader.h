// Reads the tokens of one command by the declared grammar.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/parser/commandspec.h"
#include "host/parser/grammar.h"

#include "runtime/parser/syntaxerror.h"

/// One reading. After an error in a subcommand the reading goes on with the next one, so that every faulty subcommand
/// is told at once, up to ten.
class CommandReader {
 public:
  /// Keeps references to the tokens and the grammar. `end` is the place right behind the last token.
  CommandReader(const std::vector<TokenInfoObj>& tokens, const CommandDescriptor& grammar,
                runtime::parser::TextPlace end);

  /// True when the command follows the grammar; `spec` is then filled, otherwise it stays as it was and errors() says
  /// why. Called once.
  bool Read(CommandSpec& spec);

  /// In the order of the text.
  const std::vector<runtime::parser::SyntaxError>& errors() const { return fErrors; }

 private:
  const TokenInfoObj* Peek() const { return fNext < fTokens.size() ? &fTokens[fNext] : nullptr; }
  bool AtSpecial(const char* special) const;
  bool AtValueSign() const { return AtSpecial("=") || AtSpecial("("); }
  /// The place of the next token, or of the command's end.
  runtime::parser::TextPlace Place() const;
  void SkipToSubcommand();

  bool ReadCommandName();
  bool ReadList();
  bool ReadSubcommand();
  bool ReadBody(const SubComDescriptor& grammar);
  bool ReadParam(const SubComDescriptor& grammar, SubComObj& subcommand);
  bool ReadCarriedValue(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read);
  bool ReadValue(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read);
  bool ReadStringValue(const ParamDescriptor& param, ParamObj& read);
  bool ReadQualifier(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read);

  /// What may stand in the subcommand, besides the keywords with a value that it has already.
  std::string ExpectedInside(const SubComDescriptor& grammar) const;
  /// Where the keyword stands first, when it takes a value and was written; null otherwise.
  const TokenInfoObj* FirstWithValue(const ParamDescriptor& param) const;

  // Each notes an error at the next token and gives false.
  bool Fail(std::string problem, std::string expected, std::string suggestion = {}, std::string advice = {});
  bool FailNoKeyword(const SubComDescriptor& grammar);
  bool FailNoSubcommand();
  bool FailSubcommandTwice(const SubComDescriptor& grammar, const TokenInfoObj& first);
  bool FailKeywordTwice(const SubComDescriptor& grammar, const ParamDescriptor& param, const TokenInfoObj& first);
  bool FailNoValue(const ParamDescriptor& param);
  bool FailUnknownValue(const ParamDescriptor& param, const std::vector<std::string>& allowed);

  const std::vector<TokenInfoObj>& fTokens;
  const CommandDescriptor& fGrammar;
  runtime::parser::TextPlace fEnd;
  std::size_t fNext = 0;  // the token to be read next

  std::vector<const TokenInfoObj*> fFirstNames;  // of each declared subcommand: where it was named first; null: not yet
  std::vector<std::pair<const ParamDescriptor*, const TokenInfoObj*>> fWrittenWithValue;  // so far, in all subcommands
  std::vector<std::unique_ptr<SubComObj>> fSubcommands;
  std::vector<runtime::parser::SyntaxError> fErrors;
};
