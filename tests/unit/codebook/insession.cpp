#include "tests/unit/codebook/insession.h"

#include <utility>

#include "runtime/common/session.h"

namespace codebook::test {

namespace {

// A procedure is a plain function, so what it is to do stands here while it runs.
thread_local const std::function<void()>* presentProcedure = nullptr;

void callPresentProcedure() { (*presentProcedure)(); }

}  // namespace

runtime::output::Report runInSession(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& text,
                                     const std::function<void()>& procedure) {
  presentProcedure = &procedure;
  runtime::common::Session session(std::move(dataset), {{"CODEBOOK", &callPresentProcedure}});
  session.Run(text);
  return std::move(session.report());
}

std::vector<std::string> messageLines(const runtime::output::Report& report) {
  std::vector<std::string> lines;
  for (const runtime::output::Message& message : report.messages) {
    const std::string severity = message.severity == runtime::output::Severity::Error ? "error: " : "warning: ";
    lines.push_back((message.source == runtime::output::Source::Host ? "host " : "") + severity + message.text);
  }
  return lines;
}

}  // namespace codebook::test
