// Tokens of the command that is being run.
#pragma once

#include <string>
#include <vector>

#include "host/common/api.h"

/// One raw token: a word, a number, a quoted text (without its quotes) or one of [ ] ( ) = / by itself.
class HOST_API TokenInfoObj {
 public:
  enum class Kind { Word, Number, Quoted, Special };

  TokenInfoObj();
  /// `line` and `column` count from 1 in the text that the user gave; columns count characters, not bytes.
  TokenInfoObj(std::string text, Kind kind, int line, int column);
  ~TokenInfoObj();
  TokenInfoObj(const TokenInfoObj&);
  TokenInfoObj(TokenInfoObj&&) noexcept;
  TokenInfoObj& operator=(const TokenInfoObj&);
  TokenInfoObj& operator=(TokenInfoObj&&) noexcept;

  /// The token as typed (a quoted one without its quotes), UTF-8.
  const std::string& getString() const { return fText; }
  /// The same in upper case (simple case mapping over UTF-8).
  const std::string& getUpperString() const { return fUpper; }

  Kind kind() const { return fKind; }
  int line() const { return fLine; }
  int column() const { return fColumn; }

 private:
  std::string fText;
  std::string fUpper;
  Kind fKind = Kind::Word;
  int fLine = 0;
  int fColumn = 0;
};

/// The tokens of the command that is being run, command name included. `fromCurrentCommand` is true: the sequence binds
/// to the command text of the calling thread's session (empty when there is none). False gives an empty sequence.
class HOST_API MAVO_TokenSequence {
 public:
  explicit MAVO_TokenSequence(bool fromCurrentCommand);
  ~MAVO_TokenSequence();
  MAVO_TokenSequence(const MAVO_TokenSequence&) = delete;
  MAVO_TokenSequence& operator=(const MAVO_TokenSequence&) = delete;

  const std::vector<TokenInfoObj>& tokens() const { return fTokens; }

 private:
  std::vector<TokenInfoObj> fTokens;
};
