#include "runtime/output/binding.h"

#include <utility>

namespace runtime::output {

namespace {
thread_local OutputBinding* currentBinding = nullptr;
}

OutputBinding* CurrentOutput() { return currentBinding; }

OutputBinding* BindOutput(OutputBinding* binding) { return std::exchange(currentBinding, binding); }

}  // namespace runtime::output
