#include "app/commands/diff.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/comparison/comparisonreport.h"
#include "app/exitstatus.h"
#include "app/memorysize.h"
#include "app/moduleloader.h"
#include "app/options.h"
#include "app/pager.h"
#include "app/reportsink.h"
#include "app/terminal.h"
#include "runtime/common/distributions.h"
#include "runtime/common/session.h"
#include "runtime/data/comparing/comparedtable.h"
#include "runtime/data/comparing/comparetables.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/redcap/readredcap.h"
#include "runtime/data/open.h"

namespace app {
namespace {

using runtime::data::ComparedTable;
using runtime::data::TableDescriptor;

constexpr int kDiffer = 1;  // as diff and cmp have it

constexpr const char* kFooter =
    "OLD and NEW are data files with their dictionaries, as codebook DATA takes them, or dictionaries alone\n"
    "(Table Schema, DDI-Codebook, REDCap): then dictionaries only are compared.\n"
    "\n"
    "Examples:\n"
    "  codebook diff wave1.csv wave2.csv\n"
    "  codebook diff wave1.csv wave2.csv -o changes.html\n"
    "  codebook diff survey.csv survey.csv --new-dictionary edited.schema.json --format json\n"
    "  codebook diff old.ddi.xml new.ddi.xml\n"
    "\n"
    "Exit status: 0 no differences, 1 differences, 2 wrong use of the command line, 3 data or dictionary could not be\n"
    "read, 4 output could not be written.";

enum class Format { Text, Json, Html };

struct FormatWord {
  std::string_view word;
  std::string_view ending;
  Format format;
};

constexpr std::array<FormatWord, 3> kFormats = {
    {{"text", ".txt", Format::Text}, {"json", ".json", Format::Json}, {"html", ".html", Format::Html}}};

struct Side {
  std::string path;
  std::optional<std::string> dictionary;
  std::optional<std::string> resource;
};

struct DiffOptions {
  Side before;
  Side after;
  std::optional<std::string> schemas;
  std::optional<std::string> output;
  std::optional<int> width;
  Format format = Format::Text;
  runtime::data::Thresholds thresholds;
  bool dictionaryOnly = false;
  bool unweighted = false;
  bool pager = true;
  int threads = 0;
};

Format ChooseFormat(const std::string& asked, const std::optional<std::string>& output) {
  for (const FormatWord& format : kFormats)
    if (asked.empty() ? output && output->ends_with(format.ending) : asked == format.word) return format.format;
  if (!asked.empty()) throw UsageError(fmt::format("There is no format \"{}\". Formats: text, json, html.", asked));
  if (output)
    throw UsageError(fmt::format(
        "The ending of \"{}\" names no format (.txt, .json, .html do). Say which with -F: text, json, html.", *output));
  return Format::Text;
}

void CheckFiles(const DiffOptions& options) {
  if (options.before.path == "-" && options.after.path == "-")
    throw UsageError("OLD and NEW cannot both come from standard input.");
  if (!options.output) return;
  for (const Side* side : {&options.before, &options.after})
    for (const std::optional<std::string>& input : {std::optional(side->path), side->dictionary}) {
      std::error_code error;
      if (input && std::filesystem::equivalent(*input, *options.output, error) && !error)
        throw UsageError(
            fmt::format("The output would overwrite \"{}\", which is read. Name another file with -o.", *input));
    }
}

DiffOptions ReadDiffOptions(int argc, const char* const* argv) {
  DiffOptions options;
  std::string format;
  std::optional<std::string> resource;
  CLI::App cli("Tells what differs between two waves of a dataset: their dictionaries and their distributions.",
               "codebook diff");
  cli.footer(kFooter);
  cli.add_option("OLD", options.before.path, "the earlier data or dictionary")->type_name("")->required();
  cli.add_option("NEW", options.after.path, "the later data or dictionary")->type_name("")->required();
  cli.add_option("--old-dictionary", options.before.dictionary, "the dictionary of OLD (else looked for beside it)")
      ->type_name("FILE");
  cli.add_option("--new-dictionary", options.after.dictionary, "the dictionary of NEW (else looked for beside it)")
      ->type_name("FILE");
  cli.add_option("--resource", resource, "the resource or file, where the dictionaries of both have several")
      ->type_name("NAME");
  cli.add_option("--old-resource", options.before.resource, "the resource or file, for OLD alone")->type_name("NAME");
  cli.add_option("--new-resource", options.after.resource, "the resource or file, for NEW alone")->type_name("NAME");
  cli.add_option("--schemas", options.schemas, "a folder with copies of schemas that dictionaries name by address")
      ->type_name("DIR");
  cli.add_flag("--dictionary-only", options.dictionaryOnly, "compare the dictionaries, count nothing");
  cli.add_flag("--unweighted", options.unweighted, "count every case as 1, whatever the dictionaries say");
  cli.add_option("--threshold", options.thresholds.value,
                 "percentage points that a value's share of the valid cases must have moved (5)")
      ->type_name("POINTS")
      ->check(CLI::Range(0.0, 100.0));
  cli.add_option("--missing-threshold", options.thresholds.missing,
                 "percentage points that the share of missing values must have moved (1)")
      ->type_name("POINTS")
      ->check(CLI::Range(0.0, 100.0));
  cli.add_option("--mean-threshold", options.thresholds.mean, "standard deviations that a mean must have moved (0.2)")
      ->type_name("NUMBER")
      ->check(CLI::Range(0.0, 1000.0));
  cli.add_option("-F,--format", format, "text, json or html (else by the ending of -o, else text)")->type_name("NAME");
  cli.add_option("-o,--output", options.output, "write to this file, which appears only when it is whole")
      ->type_name("FILE");
  cli.add_option("--width", options.width, "width of text in columns (else the terminal's, else 80)")
      ->check(CLI::Range(20, 10000));
  cli.add_option("--threads", options.threads, "threads to use at most (else as many as the machine gives)")
      ->check(CLI::Range(1, 1024));
  bool noPager = false;
  cli.add_flag("--no-pager", noPager, "write text to the terminal directly, not through a pager");
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook diff --help for what it takes.");
  }
  for (Side* side : {&options.before, &options.after})
    if (!side->resource) side->resource = resource;
  options.pager = !noPager;
  options.format = ChooseFormat(format, options.output);
  CheckFiles(options);
  return options;
}

/// A dictionary without data: nothing but XML and JSON is looked into before the data are read.
bool IsDictionaryAlone(const Side& side, bool dictionaryOnly) {
  if (side.dictionary || side.path == "-") return false;
  if (side.path.ends_with(".xml")) return true;
  if (runtime::data::NamesDataPackage(side.path))
    return dictionaryOnly ||
           !runtime::data::JsonPlace(runtime::data::ReadJsonFile(side.path), side.path).Find("resources");
  return side.path.ends_with(".csv") && runtime::data::IsRedcapDictionary(side.path);
}

/// One of the two, read.
struct OpenSide {
  std::shared_ptr<const runtime::data::Dataset> dataset;  // null: a dictionary alone
  std::int64_t columnBytes = 0;
  ComparedTable table;
};

class Differ {
 public:
  Differ(const DiffOptions& options, const Saying& say)
      : fOptions(options), fSay(say), fPool(std::make_shared<runtime::machine::ThreadPool>(options.threads)) {}

  ComparisonReport Compare() {
    const OpenSide before = Open(fOptions.before);
    const OpenSide after = Open(fOptions.after);
    ComparisonReport report;
    report.before = Describe(fOptions.before, before);
    report.after = Describe(fOptions.after, after);
    report.thresholds = fOptions.thresholds;
    report.comparison = CompareTables(before.table, after.table);
    if (before.dataset == nullptr || after.dataset == nullptr || fOptions.dictionaryOnly) return report;
    report.distributionsCompared = true;
    const auto [countedBefore, countedAfter] = CountedOfBoth(report.comparison, *before.dataset, *after.dataset);
    report.before.distributions = CountValues(before, countedBefore, fOptions.before.path);
    report.after.distributions = CountValues(after, countedAfter, fOptions.after.path);
    CompareDistributions(report.before.distributions, report.after.distributions, fOptions.thresholds,
                         report.comparison);
    return report;
  }

 private:
  using Counted = std::vector<runtime::common::CountedVariable>;

  OpenSide Open(const Side& side) {
    OpenSide open;
    if (IsDictionaryAlone(side, fOptions.dictionaryOnly)) {
      std::vector<runtime::data::Note> notes;
      open.table =
          TableToCompare(runtime::data::ReadDictionary({side.path, side.resource, "-", fOptions.schemas}, notes));
      SayNotes(notes);
      return open;
    }
    runtime::data::OpenOptions options;
    options.path = side.path;
    options.dictionary = side.dictionary;
    options.resource = side.resource;
    options.schemas = fOptions.schemas;
    options.pool = fPool;
    if (fOptions.unweighted) options.weight = "";
    const runtime::data::OpenedDataset opened = runtime::data::OpenDataset(options);
    SayNotes(opened.notes);
    open.dataset = opened.dataset;
    open.columnBytes = opened.columnBytes;
    const std::optional<TableDescriptor> source = SourceOf(side);
    open.table = TableToCompare(opened.dataset->dictionary(), source ? &*source : nullptr);
    return open;
  }

  /// The dictionary file by itself, which tells what the file says and what follows from the data. Nothing where it can
  /// be read only once.
  std::optional<TableDescriptor> SourceOf(const Side& side) const {
    std::vector<runtime::data::Note> told;  // when the data were opened
    try {
      if (side.path != "-" && runtime::data::NamesDataPackage(side.path))
        return runtime::data::ReadDictionary({side.path, side.resource, std::nullopt, fOptions.schemas}, told);
      std::optional<std::string> dictionary = side.dictionary;
      if (!dictionary && side.path != "-") dictionary = runtime::data::FindDictionary(side.path);
      if (!dictionary) return std::nullopt;
      return runtime::data::ReadDictionary({*dictionary, side.resource, side.path, fOptions.schemas}, told);
    } catch (const runtime::data::DataError&) {
      return std::nullopt;
    }
  }

  void SayNotes(const std::vector<runtime::data::Note>& notes) const {
    for (const runtime::data::Note& note : notes) fSay((note.isError ? "error: " : "warning: ") + note.text);
  }

  static Wave Describe(const Side& side, const OpenSide& open) {
    Wave wave;
    wave.file = side.path == "-" ? side.path : std::filesystem::path(side.path).filename().string();
    wave.label = open.table.label;
    wave.weight = open.table.weight;
    wave.variables = open.table.variables.size();
    if (open.dataset && open.dataset->caseCount() >= 0) wave.cases = open.dataset->caseCount();
    return wave;
  }

  static bool IsCategorical(const runtime::data::VariableRecord& variable) {
    return variable.width > 0 || variable.level == MAVO_Variable_Enumerations::kLevelNominal ||
           variable.level == MAVO_Variable_Enumerations::kLevelOrdinal;
  }

  /// Both are counted alike: a number that either dictionary calls categorical is so in both.
  static std::pair<Counted, Counted> CountedOfBoth(const runtime::data::Comparison& comparison,
                                                   const runtime::data::Dataset& before,
                                                   const runtime::data::Dataset& after) {
    std::pair<Counted, Counted> counted;
    const auto recordOf = [](const runtime::data::Dataset& dataset, const std::string& name) {
      const runtime::data::Dictionary& dictionary = dataset.dictionary();
      return dictionary.variables[static_cast<std::size_t>(dictionary.FindVariable(name))];
    };
    for (const runtime::data::VariableComparison& variable : comparison.variables) {
      if (variable.isAdded() || variable.isRemoved()) continue;
      const auto was = recordOf(before, variable.before);
      const auto is = recordOf(after, variable.after);
      const bool categorical = IsCategorical(*was) || IsCategorical(*is);
      counted.first.push_back({was->name, !categorical});
      counted.second.push_back({is->name, !categorical});
    }
    return counted;
  }

  runtime::data::Distributions CountValues(const OpenSide& side, const Counted& counted, const std::string& path) {
    if (counted.empty() || side.dataset->caseCount() == 0) return {};
    if (!fModule) fModule.emplace(BesideProgram("codebook.so"));
    runtime::common::SessionOptions options;
    options.pool = fPool;
    options.percentileMemory = MemoryForPercentiles(side.columnBytes);
    runtime::common::Session session(side.dataset, {{"CODEBOOK", fModule->Procedure("CODEBOOK")}}, options);
    if (!session.Run(runtime::common::CountingCommand(counted)))
      for (const runtime::output::Message& message : session.report().messages)
        fSay(fmt::format("warning: {}: distributions are not compared: {}", path, message.text));
    return runtime::common::DistributionsOf(session.report());
  }

  const DiffOptions& fOptions;
  const Saying& fSay;
  const std::shared_ptr<runtime::machine::ThreadPool> fPool;
  std::optional<Module> fModule;
};

void WriteComparison(const ComparisonReport& report, const DiffOptions& options, std::ostream& out) {
  switch (options.format) {
    case Format::Text:
      WriteComparisonText(report, DescribeTerminal(options.width, options.output.has_value()), out);
      return;
    case Format::Json:
      WriteComparisonJson(report, out);
      return;
    case Format::Html:
      WriteComparisonHtml(report, out);
      return;
  }
}

}  // namespace

int RunDiff(int argc, const char* const* argv, const Saying& say) {
  const DiffOptions options = ReadDiffOptions(argc, argv);
  const ComparisonReport report = Differ(options, say).Compare();
  const WriteReport write = [&](std::ostream& out) { WriteComparison(report, options, out); };
  const bool readOnTerminal = !options.output && options.format == Format::Text && StandardOutputIsTerminal();
  const std::string pager = readOnTerminal && options.pager ? WantedPager() : "";
  const bool shown = !pager.empty() && ShowThroughPager(pager, write);
  if (!pager.empty() && !shown)
    say("warning: The pager \"" + pager + "\" cannot be started; the differences follow without it.");
  if (!shown) WriteReportTo(options.output, write);
  return report.comparison.differs() ? kDiffer : kDone;
}

}  // namespace app
