// Runs a piece of a test as if it were the procedure of the command CODEBOOK: dataset, command text and report are
// bound as a session binds them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/output/model/report.h"

namespace codebook::test {

/// Calls `procedure` once for the command of `text`, on this thread, and gives what was reported. Exceptions pass on.
runtime::output::Report runInSession(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& text,
                                     const std::function<void()>& procedure);

/// "error: text", "warning: text", "host warning: text", in order.
std::vector<std::string> messageLines(const runtime::output::Report& report);

}  // namespace codebook::test
