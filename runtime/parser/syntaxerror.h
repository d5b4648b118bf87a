// A syntax error and the message that tells it.
#pragma once

#include <string>
#include <vector>

#include "host/parser/token.h"

#include "runtime/parser/sourcetext.h"

namespace runtime::parser {

class ReadCommand;

/// The parts of the message, in the order in which they are told. Sentences come without their final period, and what
/// they quote from the command is ready to be shown (ShowText).
struct SyntaxError {
  TextPlace place;
  std::string problem;     // what was found, and where in the grammar
  std::string suggestion;  // the keyword that was probably meant; may be empty
  std::string expected;    // what could stand there instead
  std::string advice;      // how to write it; may be empty
};

/// `Unknown keyword "LABLE" in subcommand VARINFO (line 1, column 19). Did you mean LABEL? Expected …. …` and, when
/// there is a command, its line with a caret.
std::string SyntaxErrorMessage(const SyntaxError& error, const ReadCommand* command);

/// `"LABLE"`, `the quoted text "LABEL"`, or `the end of the command` for null.
std::string ShowFound(const TokenInfoObj* token);

/// "A", "A or B", "A, B or C"; the empty string for none.
std::string ListAlternatives(const std::vector<std::string>& words);

}  // namespace runtime::parser
