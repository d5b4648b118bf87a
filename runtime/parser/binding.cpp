#include "runtime/parser/binding.h"

#include <utility>

namespace runtime::parser {

namespace {
thread_local CommandBinding* currentBinding = nullptr;
}

CommandBinding* CurrentCommand() { return currentBinding; }

CommandBinding* BindCommand(CommandBinding* binding) { return std::exchange(currentBinding, binding); }

}  // namespace runtime::parser
