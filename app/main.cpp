// The codebook program: reads the command line, opens the data, runs the commands through the module, writes the
// report.
#include <clocale>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <utility>

#include <malloc.h>

#include "host/common/check.h"

#include "app/commands/command.h"
#include "app/ddireport.h"
#include "app/exitstatus.h"
#include "app/interrupt.h"
#include "app/memorysize.h"
#include "app/moduleloader.h"
#include "app/options.h"
#include "app/pager.h"
#include "app/progressbar.h"
#include "app/reportsink.h"
#include "app/terminal.h"
#include "app/timings.h"
#include "app/typelisting.h"
#include "runtime/common/session.h"
#include "runtime/data/dictionary/writing/writeddi.h"
#include "runtime/data/open.h"
#include "runtime/machine/spillfile.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/render/renderer.h"
#include "runtime/output/render/terminaltext.h"

namespace {

using runtime::output::Report;
using runtime::output::Severity;
using runtime::output::Source;

bool localeIsUtf8 = true;

/// To standard error, in one write, with nothing from the data raw.
void Say(const std::string& text) {
  const std::string line =
      "codebook: " + runtime::output::EscapeForTerminal(text, localeIsUtf8, runtime::output::LineEnds::Keep) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SayMessages(const Report& report) {
  for (const runtime::output::Message& message : report.messages)
    Say((message.severity == Severity::Error ? "error: " : "warning: ") + message.text);
}

void AddNotes(const std::vector<runtime::data::Note>& notes, Report& report) {
  for (const runtime::data::Note& note : notes)
    report.messages.push_back({note.isError ? Severity::Error : Severity::Warning, Source::Data, note.text});
}

/// Tells both who watches and who measures at which stage the run is.
class Stages {
 public:
  Stages(app::ProgressBar& bar, app::Timings& timings) : fBar(bar), fTimings(timings) {}

  void Begin(app::Stage stage, const char* inWords) {
    fTimings.Begin(stage);
    fBar.BeginStage(inWords);
  }

 private:
  app::ProgressBar& fBar;
  app::Timings& fTimings;
};

void SayTimings(app::TimingForm form, app::Timings& timings) {
  if (form == app::TimingForm::None) return;
  timings.End();
  if (form == app::TimingForm::Json)
    Say("timings: " + timings.Json(app::PeakMemory()));
  else
    Say("where the time went\n" + timings.Table(app::PeakMemory()));
}

void WriteReport(const app::Options& options, const app::WriteReport& write) {
  const bool readOnTerminal = !options.outputFile && options.format == "text" && app::StandardOutputIsTerminal();
  if (const std::string pager = readOnTerminal && options.pager ? app::WantedPager() : ""; !pager.empty()) {
    if (app::ShowThroughPager(pager, write)) return;
    Say("warning: The pager \"" + pager + "\" cannot be started; the report follows without it.");
  }
  app::WriteReportTo(options.outputFile, write);
}

/// Instead of a report: what is known of the columns' types.
void WriteTypes(const app::Options& options, const runtime::data::OpenedDataset& opened) {
  app::WriteReportTo(options.outputFile, [&](std::ostream& out) {
    out << (options.typeListing == app::TypeListing::Json ? app::TypesAsJson(opened.types)
                                                          : app::TypesAsText(opened.types, localeIsUtf8));
  });
  for (const runtime::data::Note& note : opened.notes) Say((note.isError ? "error: " : "warning: ") + note.text);
}

/// Of the variables that the commands name; of all when there is no command.
runtime::data::DdiStatistics DdiStatisticsOf(const app::Options& options, const runtime::data::OpenedDataset& opened,
                                             const Report& report, const app::Module& module,
                                             runtime::common::SessionOptions sessionOptions) {
  sessionOptions.catalog = nullptr;
  sessionOptions.sketches = true;
  const auto run = [&](const std::shared_ptr<const runtime::data::Dataset>& dataset, const std::string& command) {
    runtime::common::Session session(dataset, {{"CODEBOOK", module.Procedure("CODEBOOK")}}, sessionOptions);
    session.Run(command);
    return std::make_unique<Report>(std::move(session.report()));
  };
  const runtime::data::Dictionary& dictionary = opened.dataset->dictionary();
  std::set<std::string> variables = app::VariablesWithTables(report, dictionary);
  if (!options.commandText && !options.commandFile)
    for (const auto& variable : dictionary.variables) variables.insert(variable->name);
  return app::GatherDdiStatistics(opened.dataset, variables, run);
}

int Run(int argc, char** argv) {
  if (const app::Command* command = app::FindCommand(argc, argv)) return command->run(argc - 1, argv + 1, Say);
  app::Options options = app::ReadOptions(argc, argv);
  if (options.quiet) app::InterruptQuietly();
  if (!options.outputFile && app::StandardOutputIsTerminal()) app::CheckThatTerminalsShow(options.format);
  const std::string commands = app::CommandText(options);
  const std::shared_ptr<const runtime::output::Catalog> catalog = runtime::output::Catalog::Of(options.language);
  runtime::output::RenderOptions rendering = app::DescribeTerminal(options.width, options.outputFile.has_value());
  rendering.catalog = catalog.get();

  app::Timings timings;
  app::ProgressBar bar(!options.quiet, localeIsUtf8);
  Stages stages(bar, timings);

  stages.Begin(app::Stage::Read, "reading");
  const app::Module module(app::BesideProgram("codebook.so"));
  options.data.pool = std::make_shared<runtime::machine::ThreadPool>(options.threads);
  options.data.onProgress = bar.Listener();
  const bool toDdi = options.format == app::kDdiFormat;
  options.data.describe = toDdi;
  if (options.showQueries)
    options.data.onQuery = [](const std::string& source, const std::string& query) {
      Say("query: " + source + ": " + query);
    };
  const runtime::data::OpenedDataset opened = runtime::data::OpenDataset(options.data);
  if (options.typeListing != app::TypeListing::None) {
    bar.End();
    WriteTypes(options, opened);
    SayTimings(options.timing, timings);
    return app::kDone;
  }
  // What reading needed is scattered over the heap; the counting had better not come on top of it.
  malloc_trim(0);

  stages.Begin(app::Stage::Pass, "counting");
  runtime::common::SessionOptions sessionOptions;
  sessionOptions.pool = options.data.pool;
  sessionOptions.catalog = catalog;
  sessionOptions.percentileMemory =
      options.percentileMemory > 0 ? options.percentileMemory : app::MemoryForPercentiles(opened.columnBytes);
  sessionOptions.sketches = !toDdi && runtime::output::FindReportFormat(options.format)->wantsSketches;
  sessionOptions.onProgress = bar.Listener();
  sessionOptions.onPassBegins = [&stages] { stages.Begin(app::Stage::Pass, "counting"); };
  sessionOptions.onResultsBegin = [&stages] { stages.Begin(app::Stage::Percentiles, "percentiles"); };
  sessionOptions.onTablesBegin = [&stages] { stages.Begin(app::Stage::Tables, "making tables"); };
  runtime::common::Session session(opened.dataset, {{"CODEBOOK", module.Procedure("CODEBOOK")}}, sessionOptions);
  AddNotes(opened.notes, session.report());
  const bool allDone = session.Run(commands);
  const runtime::data::DdiStatistics statistics =
      toDdi ? DdiStatisticsOf(options, opened, session.report(), module, sessionOptions)
            : runtime::data::DdiStatistics();

  stages.Begin(app::Stage::Write, "writing");
  const auto renderer = toDdi ? nullptr : runtime::output::FindReportFormat(options.format)->newRenderer(rendering);
  // The report may go to the same terminal, through whatever stands between.
  bar.End();
  try {
    WriteReport(options, [&](std::ostream& out) {
      if (toDdi)
        runtime::data::WriteDdi(*opened.description, &statistics, out);
      else
        renderer->Render(session.report(), out);
    });
  } catch (...) {
    SayMessages(session.report());
    throw;
  }
  SayMessages(session.report());
  if (session.report().procedures.empty() && allDone && !options.quiet)
    Say("the text holds no command; nothing was run");
  SayTimings(options.timing, timings);
  return allDone ? app::kDone : app::kCommandStopped;
}

}  // namespace

int main(int argc, char** argv) {
  // One heap for all threads, which allocate little while they work: with one each, as much again lies idle.
  mallopt(M_ARENA_MAX, 1);
  app::SecureStandardStreams();
  app::ReportClosedPipes();
  app::ReportLimitedFiles();
  app::HandleInterrupts();
  std::setlocale(LC_CTYPE, "");
  localeIsUtf8 = app::DescribeTerminal(std::nullopt, false).utf8;
  try {
    return Run(argc, argv);
  } catch (const app::TextWanted& wanted) {
    try {
      app::WriteReportTo(std::nullopt, [&wanted](std::ostream& out) { out << wanted.text; });
      return app::kDone;
    } catch (const app::OutputError& error) {
      Say(error.what());
      return app::kNoOutput;
    }
  } catch (const app::UsageError& error) {
    Say(error.what());
    return app::kWrongUse;
  } catch (const runtime::data::DataError& error) {
    Say(std::string("error: ") + error.what());
    return app::kNoData;
  } catch (const app::OutputError& error) {
    Say(std::string("error: ") + error.what());
    return app::kNoOutput;
  } catch (const runtime::machine::SpillError& error) {
    Say(std::string("error: ") + error.what());
    return app::kNoOutput;
  } catch (const runtime::output::RenderError& error) {
    Say(std::string("error: ") + error.what());
    return app::kNoOutput;
  } catch (const InternalCheckFailure& failure) {
    Say("internal check failed: " + failure.condition() + " (" + failure.source() + ")\nNo report was written.");
    return app::kInternal;
  } catch (const app::ModuleError& error) {
    Say(error.what());
    return app::kInternal;
  } catch (const std::bad_alloc&) {
    Say("error: There is not enough memory for this dataset and command. No report was written.");
    return app::kInternal;
  } catch (const std::exception& error) {
    Say(std::string("internal error: ") + error.what() + "\nNo report was written.");
    return app::kInternal;
  }
}
