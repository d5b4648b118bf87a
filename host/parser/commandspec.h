// What a command said, after the parser library has accepted it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/common/api.h"
#include "host/parser/token.h"

class CommandDescriptor;
class ParamDescriptor;
class ParserMessage;

/// A keyword that the user wrote, with what it carries.
class HOST_API ParamObj {
 public:
  ParamObj();
  ~ParamObj();
  ParamObj(const ParamObj&);
  ParamObj(ParamObj&&) noexcept;
  ParamObj& operator=(const ParamObj&);
  ParamObj& operator=(ParamObj&&) noexcept;

  /// The keyword's name as declared; for the result of getStringAndQual the chosen qualifier or value, as declared
  /// (a free string value as typed).
  const std::string& getParamName() const { return fName; }
  /// False, leaving `value` alone, when the value is no integer that fits 32 bits ("abc", "2.5", "5.0", "99999999999").
  bool getIntegerValue(int& value) const;
  /// Fills `chosen` with the qualifier or string value; false when the keyword carries none. The two pointers may be
  /// null and are not used.
  bool getStringAndQual(ParamObj& chosen, const ParamDescriptor* descriptor, const ParserMessage* message) const;
  /// The string that a keyword or qualifier carries; false, leaving `text` alone, when it carries none.
  bool getStringGeneric(std::string& text) const;
  /// A copy of the parameter's tokens, from its keyword to the end of its value (of the exported parameter: the
  /// subcommand's raw tokens); false, leaving `tokens` alone, for a ParamObj that was not read from a command.
  bool getTokenList(std::vector<TokenInfoObj>& tokens) const;

 private:
  friend class CommandReader;  // the parser library's own builder

  std::string fName;
  std::vector<TokenInfoObj> fTokens;
  bool fWritten = false;  // read from a command text
  bool fHasValue = false;
  std::string fValue;                       // the value's text, when it is a plain value
  std::shared_ptr<const ParamObj> fChosen;  // the qualifier or declared value, when there is one
};

/// A subcommand that the user wrote. Pointers that it gives stay valid while the CommandSpec lives.
class HOST_API SubComObj {
 public:
  SubComObj();
  ~SubComObj();
  SubComObj(const SubComObj&) = delete;
  SubComObj& operator=(const SubComObj&) = delete;

  /// The keyword with that name (as declared, case-blind), null when it was not written.
  ParamObj* getParamObj(const std::string& name) const;
  /// The exported raw parameter; null for a subcommand that exports none.
  ParamObj* exportParamObj() const;
  std::size_t getTokenListSize() const;
  /// The i-th raw token, from 0; null past the end.
  TokenInfoObj* getTokenObj(std::size_t i) const;

 private:
  friend class CommandReader;
  friend class CommandSpec;

  std::string fName;
  mutable std::vector<TokenInfoObj> fTokens;
  std::vector<std::unique_ptr<ParamObj>> fParams;
  std::unique_ptr<ParamObj> fExported;
};

class HOST_API CommandSpec {
 public:
  CommandSpec();
  ~CommandSpec();
  CommandSpec(const CommandSpec&) = delete;
  CommandSpec& operator=(const CommandSpec&) = delete;

  /// The subcommand with that name, null when it was not written. The empty name is the list behind the command name,
  /// null when the list holds no token.
  SubComObj* getSubComObj(const std::string& name) const;

 private:
  friend class CommandReader;

  std::vector<std::unique_ptr<SubComObj>> fSubcommands;
};

/// Reads a token sequence by a declared grammar into a CommandSpec. Keeps references to the three.
class HOST_API UniversalParser {
 public:
  UniversalParser(const MAVO_TokenSequence& tokens, CommandSpec& spec, const CommandDescriptor& descriptor);
  ~UniversalParser();
  UniversalParser(const UniversalParser&) = delete;
  UniversalParser& operator=(const UniversalParser&) = delete;

  /// 0 on success; anything else when an error was reported (with line, column, caret and what was expected).
  int getCommandSpecifications();

 private:
  const MAVO_TokenSequence& fTokens;
  CommandSpec& fSpec;
  const CommandDescriptor& fDescriptor;
};
