// Parsing of one CODEBOOK command: the declared grammar, the walk over what the host's parser made of the text, and the
// resolution of the variable and set list.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/data/names.h"
#include "host/output/proceduredatasource.h"
#include "host/parser/commandspec.h"
#include "host/parser/grammar.h"
#include "host/parser/message.h"

#include "codebook/parser/cbksettings.h"

namespace codebook {

/// The one equality of keywords and names in parsing: same length in bytes, and equal without regard to case.
bool sameName(const std::string& a, const std::string& b);

/// 2 for a variable of a categorical measurement level, otherwise 1.
std::int32_t kindFromDictionary(const MAVO_Variable& variable);

/// Holds what parsing needs and fills; owns the settings. Lives as long as one command.
class CodebookRequest {
 public:
  /// Neither argument is owned. The settings' treatment list is seeded: scale a variable, nominal a set.
  CodebookRequest(ProcedureDataSource* dataSource, ParserMessage* parserMessage);
  ~CodebookRequest();
  CodebookRequest(const CodebookRequest&) = delete;
  CodebookRequest& operator=(const CodebookRequest&) = delete;

  /// Parses the current command's text into the settings; false when an error was reported.
  bool parse();
  /// Only asks the host's parser whether it accepts the text; interprets nothing.
  bool checkSyntax(CommandSpec& commandSpec);
  /// Owned by the request.
  CodebookSettings* settings() const { return fSettings.get(); }

  /// Reads an accepted command into the settings; true when the command may run.
  bool interpret(const CommandSpec& commandSpec);

 private:
  friend class ListResolution;

  void declareGrammar(CommandDescriptor& descriptor) const;
  bool interpretVarInfo(const CommandSpec& commandSpec);
  bool interpretFileInfo(const CommandSpec& commandSpec);
  bool interpretStatistics(const CommandSpec& commandSpec);
  bool interpretOptions(const CommandSpec& commandSpec);
  bool isListedAttribute(const std::string& name) const;
  void warnNoKeyword(const std::string& subcommand);

  ProcedureDataSource* fDataSource;
  std::unique_ptr<CodebookSettings> fSettings;
  ParserMessage* fParserMessage;
  std::vector<MavoVarName> fListedNames;  // the sets named one by one, for the duplicate check
  std::int32_t fSetCounter;               // index of the next set that enters the list
};

/// The walk over the list's tokens. Every operation reports its own error before it returns false.
class ListResolution {
 public:
  explicit ListResolution(CodebookRequest& request);

  /// Reads the list and stores it into the settings.
  bool resolveList(const SubComObj& list);
  /// Appends every variable and/or every set and stores the list: the absent list, and $ALL.
  void addWholeDictionary(bool withVariables, bool withSets);

 private:
  // A position is that of a token; an operation moves it to the last token that it read.
  bool addAllVariables(int& position);
  bool addVariable(int& position);
  bool addRange(int& position, bool bracketAfterFirst);
  bool addSet(const std::string& name);
  bool readSetKeyword(int& position);
  bool readMeasureKeyword(bool isNew, int& position, int variableIndex);
  int findVariable(const std::string& name);
  static bool bracketed(const std::vector<TokenInfoObj>& tokens, int start, int count, const std::string& open,
                        const std::string& close, std::vector<TokenInfoObj>& inside);

  bool readTokens();
  bool isListed(int variableIndex) const;
  void setKind(int variableIndex, std::int32_t kind);
  void append(const std::string& name, int index);
  void error(const char* text, const char* argument1 = nullptr, const char* argument2 = nullptr);
  void warning(const char* text);
  bool failMalformed();

  CodebookRequest& fRequest;
  const SubComObj* fList = nullptr;
  std::vector<TokenInfoObj> fTokens;  // the list's, once read
  bool fTokensRead = false;
  std::vector<ListedItem> fItems;       // the working list
  std::vector<bool> fVariableIsListed;  // by dictionary index
};

}  // namespace codebook
