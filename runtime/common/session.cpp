#include "runtime/common/session.h"

#include <cmath>
#include <utility>
#include <vector>

#include "runtime/aggregation/binding.h"
#include "runtime/common/itemsketches.h"
#include "runtime/common/passprogress.h"
#include "runtime/common/reportfacts.h"
#include "runtime/common/statisticswatch.h"
#include "runtime/output/binding.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/model/methodnotes.h"
#include "runtime/parser/binding.h"
#include "runtime/parser/commandtext.h"
#include "runtime/parser/unknowncommand.h"

namespace runtime::common {

/// Puts messages into the report and knows whether the present command has stopped with an error: an error behind which
/// a procedure neither asked for cases nor opened a table ended it.
class Session::Messages : public parser::MessageSink {
 public:
  explicit Messages(output::Report& report) : fReport(report) {}

  void Report(bool isError, const std::string& text) override {
    Add(isError ? output::Severity::Error : output::Severity::Warning, output::Source::Command, text);
    if (isError) fStopped = true;
  }

  void Add(output::Severity severity, output::Source source, const std::string& text) {
    fReport.messages.push_back({severity, source, text});
  }

  void CommandGoesOn() { fStopped = false; }
  bool TakeStopped() { return std::exchange(fStopped, false); }

 private:
  output::Report& fReport;
  bool fStopped = false;
};

/// Binds the three libraries to the session on this thread, and gives them back what was bound before.
class Session::Binding {
 public:
  Binding(Session& session, Messages& messages)
      : fReport(session.fReport), fWatch([&messages](const std::string& text) {
          messages.Add(output::Severity::Warning, output::Source::Host, text);
        }) {
    fCommand.sink = &messages;
    fOutput.report = &session.fReport;
    fOutput.catalog = session.fOptions.catalog.get();
    fOutput.dataset = session.fDataset;
    fOutput.datasetUnusable = session.fDataset == nullptr;
    fOutput.onCursorOpened = [this, &session, &messages](CaseCursor* cursor) {
      messages.CommandGoesOn();
      fBeforeTables = true;
      if (session.fOptions.onPassBegins) session.fOptions.onPassBegins();
      if (cursor == nullptr || !session.fOptions.onProgress) return;
      fProgress.push_back(
          std::make_unique<PassProgress>(*cursor, session.fDataset->rowCount(), session.fOptions.onProgress));
    };
    fOutput.onTableOpened = [this, &session, &messages](const std::string& title) {
      messages.CommandGoesOn();
      fWatch.TableOpened(title);
      if (std::exchange(fBeforeTables, false) && session.fOptions.onTablesBegin) session.fOptions.onTablesBegin();
    };
    fAggregation.pool = session.fOptions.pool.get();
    fAggregation.percentileMemory = session.fOptions.percentileMemory;
    fAggregation.onResultsBegin = [this, &session] {
      fBeforeTables = true;
      if (session.fOptions.onResultsBegin) session.fOptions.onResultsBegin();
    };
    if (session.fOptions.sketches)
      fAggregation.onCounted = [this](aggregation::ItemSketch&& sketch) { fCounted.push_back(std::move(sketch)); };
    fAggregation.onCasesWeighed = [&session](double weight) {
      if (session.fReport.facts && std::isfinite(weight)) session.fReport.facts->weightedCases = weight;
    };
    fAggregation.onScaleStatisticRead = [this, &session](int variable) {
      fWatch.StatisticRead(session.fDataset->dictionary().variables[static_cast<std::size_t>(variable)]->name);
    };
    fPreviousCommand = parser::BindCommand(&fCommand);
    fPreviousOutput = output::BindOutput(&fOutput);
    fPreviousAggregation = aggregation::BindAggregation(&fAggregation);
  }

  ~Binding() {
    parser::BindCommand(fPreviousCommand);
    output::BindOutput(fPreviousOutput);
    aggregation::BindAggregation(fPreviousAggregation);
  }

  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;

  void Call(const parser::ReadCommand& command, ProcedureEntry entry) {
    fCommand.command = &command;
    fWatch.NoTable();
    fProgress.clear();
    fCounted.clear();
    const std::size_t proceduresBefore = fReport.procedures.size();
    entry();
    fCommand.command = nullptr;
    if (fCounted.empty() || fReport.procedures.size() == proceduresBefore) return;
    output::Procedure& procedure = *fReport.procedures.back();
    procedure.sketches = SketchesOf(fCounted, fOutput.dataset->dictionary(), procedure);
  }

 private:
  output::Report& fReport;
  StatisticsWatch fWatch;
  std::vector<aggregation::ItemSketch> fCounted;         // by the present command
  std::vector<std::unique_ptr<PassProgress>> fProgress;  // one a cursor that the present command asked for
  bool fBeforeTables = false;
  parser::CommandBinding fCommand;
  output::OutputBinding fOutput;
  aggregation::AggregationBinding fAggregation;
  parser::CommandBinding* fPreviousCommand = nullptr;
  output::OutputBinding* fPreviousOutput = nullptr;
  aggregation::AggregationBinding* fPreviousAggregation = nullptr;
};

Session::Session(std::shared_ptr<const data::Dataset> dataset, ProcedureTable procedures, SessionOptions options)
    : fDataset(std::move(dataset)), fProcedures(std::move(procedures)), fOptions(std::move(options)) {
  if (fDataset != nullptr) fReport.facts = FactsOf(*fDataset);
  if (fOptions.catalog != nullptr) fReport.language = fOptions.catalog->language();
}

Session::~Session() = default;

void Session::CompleteFacts() {
  if (!fReport.facts) return;
  fReport.facts->items = DescribedItems(fDataset->dictionary(), fReport);
  fReport.facts->notes = output::MethodNotes(fReport, fOptions.catalog.get());
}

bool Session::Run(const std::string& text) {
  std::vector<std::string> known;
  for (const auto& [name, entry] : fProcedures) known.push_back(name);

  Messages messages(fReport);
  Binding binding(*this, messages);
  bool allDone = true;
  for (const parser::ReadCommand& command : parser::ReadCommands(text)) {
    const auto procedure = fProcedures.find(command.upperName());
    if (procedure == fProcedures.end())
      messages.Report(true, parser::UnknownCommandMessage(command, known));
    else
      binding.Call(command, procedure->second);
    if (messages.TakeStopped()) allDone = false;
  }
  CompleteFacts();
  return allDone;
}

}  // namespace runtime::common
