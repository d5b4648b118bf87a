// What the parser library is bound to on the calling thread. Set by the session for one command.
#pragma once

#include <string>

namespace runtime::parser {

class ReadCommand;  // commandtext.h

/// Receives the messages of the command that is being run.
class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void Report(bool isError, const std::string& text) = 0;
};

struct CommandBinding {
  const ReadCommand* command = nullptr;  // the command that is being run
  MessageSink* sink = nullptr;
};

/// The calling thread's binding; null when there is none.
CommandBinding* CurrentCommand();
/// Sets the calling thread's binding (null: none) and gives the previous one.
CommandBinding* BindCommand(CommandBinding* binding);

}  // namespace runtime::parser
