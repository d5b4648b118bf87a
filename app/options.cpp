#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "app/ddireport.h"
#include "app/memorysize.h"
#include "runtime/machine/threadpool.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/render/renderer.h"

namespace app {

namespace {

constexpr const char* kDefaultCommand = "CODEBOOK /FILEINFO NAME LOCATION LABEL DOCUMENTS WEIGHT CASECOUNT ATTRIBUTES.";

constexpr const char* kDescription =
    "Describes a dataset: its file, its variables, its value labels and missing codes, with exact\n"
    "(weighted) counts, percents, means, standard deviations and quartiles.";

constexpr const char* kFooter =
    "Without -c and -f the command is\n"
    "  CODEBOOK /FILEINFO NAME LOCATION LABEL DOCUMENTS WEIGHT CASECOUNT ATTRIBUTES.\n"
    "\n"
    "Examples:\n"
    "  codebook survey.csv\n"
    "  codebook survey.csv -c 'CODEBOOK age sex $media /STATISTICS COUNT PERCENT MEAN.'\n"
    "  codebook datapackage.json --resource persons -F json -o persons.json\n"
    "  zcat survey.csv.gz | codebook - -d survey.schema.json --weight wgt\n"
    "\n"
    "Commands that stand in the place of DATA (a data file of such a name is ./NAME):\n"
    "  codebook check DATA      lists what does not fit between data and dictionary; codebook check --help\n"
    "  codebook convert IN OUT  writes a dictionary in another standard; codebook convert --help\n"
    "  codebook diff OLD NEW    tells what differs between two waves; codebook diff --help\n"
    "  codebook draft DATA      writes a Table Schema to start from; codebook draft --help\n"
    "  codebook schema          prints the JSON Schema of -F json and -F jsonl\n"
    "\n"
    "Exit status: 0 done, 1 a command stopped with an error, 2 wrong use of the command line, 3 data or dictionary\n"
    "could not be read, 4 output or a temporary file could not be written, 70 an internal check failed, 130 "
    "interrupted.";

constexpr const char* kEnglish = "en";

/// The endings that name a format, for who has written another one.
std::string FormatEndings() {
  std::string endings;
  for (const runtime::output::ReportFormat& format : runtime::output::ReportFormats())
    endings += std::string(format.ending) + ", ";
  return endings + ".xml";
}

std::string FormatNames() {
  std::string names;
  for (const runtime::output::ReportFormat& format : runtime::output::ReportFormats())
    names += std::string(format.name) + ", ";
  return names + kDdiFormat;
}

/// -F, or what the output file's ending says, or text.
std::string ChooseFormat(const std::string& asked, const std::optional<std::string>& outputFile) {
  if (!asked.empty()) {
    if (asked != kDdiFormat && runtime::output::FindReportFormat(asked) == nullptr)
      throw UsageError(fmt::format("There is no format \"{}\". Formats: {}.", asked, FormatNames()));
    return asked;
  }
  if (!outputFile) return std::string(runtime::output::ReportFormats().front().name);
  if (std::filesystem::path(*outputFile).extension() == ".xml") return kDdiFormat;
  const runtime::output::ReportFormat* format = runtime::output::ReportFormatOfFile(*outputFile);
  if (format == nullptr)
    throw UsageError(fmt::format("The ending of \"{}\" names no format ({} do). Say which with -F: {}.", *outputFile,
                                 FormatEndings(), FormatNames()));
  return std::string(format->name);
}

/// English first, which is the texts' own language.
std::string LanguageCodes() {
  std::string codes = kEnglish;
  for (const std::string& language : runtime::output::Catalog::Languages()) codes += ", " + language;
  return codes;
}

void CheckLanguage(const std::string& language) {
  const std::vector<std::string>& known = runtime::output::Catalog::Languages();
  if (language == kEnglish || std::find(known.begin(), known.end(), language) != known.end()) return;
  throw UsageError(fmt::format("There is no language \"{}\". Languages: {}.", language, LanguageCodes()));
}

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

void Check(const Options& options) {
  if (options.commandText && options.commandFile)
    throw UsageError("Give the command with -c or with -f, not with both.");
  if (options.data.table && options.data.query)
    throw UsageError("Name the data with --table or with --query, not with both.");
  if (options.data.path == "-" && options.commandFile == "-")
    throw UsageError("Data and command cannot both come from standard input. Give the command with -c or in a file.");
  if (!options.outputFile) return;
  std::vector<std::optional<std::string>> inputs = {options.data.path, options.data.dictionary, options.commandFile};
  inputs.insert(inputs.end(), options.data.furtherPaths.begin(), options.data.furtherPaths.end());
  for (const std::optional<std::string>& input : inputs)
    if (input && *input != "-" && SameFile(*options.outputFile, *input))
      throw UsageError(
          fmt::format("The output would overwrite \"{}\", which is read. Name another file with -o.", *input));
}

/// The option library takes a --weight without a name for one with an empty name, which means something else.
void CheckThatWeightIsNamed(int argc, const char* const* argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--") return;
    if (std::string_view(argv[i]) != "--weight") continue;
    const std::string_view next = i + 1 < argc ? argv[i + 1] : "-?";
    if (next.size() > 1 && next.front() == '-')
      throw UsageError("--weight names no variable. Say --weight NAME, or --weight '' to switch weighting off.");
  }
}

/// The memory that the whole program is to keep within goes in these parts to the columns, to the values kept for
/// percentiles and to reading; the rest is for counts, tables and the program itself.
constexpr std::int64_t kColumnPercent = 40;
constexpr std::int64_t kPercentilePercent = 30;
constexpr std::int64_t kReadingPercent = 15;
constexpr std::int64_t kLeastMemory = 64'000'000;

/// Text that is read at a time, so that all threads together need no more than this: a thread holds the cells of its
/// text in several forms, three times its length as measured, and one text more is read ahead.
std::size_t SegmentBytes(std::int64_t memory, int threads) {
  constexpr std::int64_t kBytesOfTextByte = 3;
  constexpr std::int64_t kFewest = std::int64_t{256} * 1024;
  constexpr std::int64_t kEnough = std::int64_t{4} * 1024 * 1024;  // for which the reader needs no bound
  const std::int64_t texts = (threads > 0 ? threads : runtime::machine::MachineThreads()) + 1;
  const std::int64_t bytes = std::max(memory / (kBytesOfTextByte * texts), kFewest);
  return bytes < kEnough ? static_cast<std::size_t>(bytes) : 0;
}

void LimitMemory(const std::string& text, Options& options) {
  const std::optional<std::int64_t> limit = ReadMemorySize(text);
  if (!limit)
    throw UsageError(fmt::format(
        "--memory-limit: \"{}\" is no amount of memory. Say for example 256MB, 1GB, 512MiB, or a number of bytes.",
        text));
  if (*limit < kLeastMemory)
    throw UsageError(fmt::format("--memory-limit: {} is too little to work with; 64MB is the least.", text));
  options.data.columnMemory = *limit / 100 * kColumnPercent;
  options.percentileMemory = *limit / 100 * kPercentilePercent;
  options.data.segmentBytes = SegmentBytes(*limit / 100 * kReadingPercent, options.threads);
}

/// What the option library makes of a flag without a value.
constexpr const char* kFlagAlone = "true";

TimingForm ReadTimingForm(const std::string& text) {
  if (text.empty()) return TimingForm::None;
  if (text == kFlagAlone) return TimingForm::Table;
  if (text == "json") return TimingForm::Json;
  throw UsageError(fmt::format("--timing: there is no form \"{}\"; say --timing or --timing=json.", text));
}

TypeListing ReadTypeListing(const std::string& text) {
  if (text.empty()) return TypeListing::None;
  if (text == kFlagAlone) return TypeListing::Text;
  if (text == "json") return TypeListing::Json;
  throw UsageError(
      fmt::format("--explain-types: there is no form \"{}\"; say --explain-types or --explain-types=json.", text));
}

std::string ReadAll(std::istream& in) { return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()}; }

}  // namespace

Options ReadOptions(int argc, const char* const* argv) {
  Options options;
  std::string format;
  std::string dictionary;
  std::string commandText;
  std::string commandFile;
  std::string outputFile;
  std::string weight;
  std::string resource;
  std::string schemas;
  std::string memoryLimit;
  std::string timing;
  std::string typeListing;
  bool noInference = false;
  int width = 0;

  CheckThatWeightIsNamed(argc, argv);

  CLI::App cli(kDescription, "codebook");
  cli.footer(kFooter);
  cli.set_version_flag("--version", "codebook " CODEBOOK_VERSION);
  std::vector<std::string> dataPaths;
  CLI::Option* const dataOption =
      cli.add_option("DATA", dataPaths,
                     "a file (CSV, TSV, Parquet, JSON lines, SQLite; text also as .gz or .zst), several of one table\n"
                     "or a pattern of them ('part-*.csv'), a datapackage.json, - for standard input, or a database\n"
                     "that counts where the data are: 'odbc:DSN=NAME', sqlite:FILE")
          ->type_name("");
  std::string table;
  cli.add_option("--table", table, "the table of a database, or of a SQLite file that holds several")
      ->type_name("NAME");
  std::string query;
  const CLI::Option* queryOption =
      cli.add_option("--query", query, "of a database, the query whose rows are described, instead of a table")
          ->type_name("SELECT");
  bool fetchRows = false;
  cli.add_flag("--fetch-rows", fetchRows, "fetch the rows of a database and count here, instead of letting it count");
  cli.add_flag("--show-queries", options.showQueries, "tell what is sent to a database on standard error");
  cli.add_option("-d,--dictionary", dictionary,
                 "the dictionary: datapackage.json or a Table Schema (else looked for beside the data)")
      ->type_name("FILE");
  cli.add_option("--resource", resource, "the resource of a datapackage.json that holds several")->type_name("NAME");
  cli.add_option("--schemas", schemas, "a folder with copies of schemas that a datapackage.json names by address")
      ->type_name("DIR");
  const CLI::Option* commandOption = cli.add_option("-c,--command", commandText, "the command's text");
  const CLI::Option* fileOption =
      cli.add_option("-f,--file", commandFile, "a file of commands, - for standard input")->type_name("FILE");
  cli.add_option("-F,--format", format,
                 "the report's format: " + FormatNames() + " (else by the ending of -o, else text)")
      ->type_name("NAME");
  cli.add_option("-o,--output", outputFile, "write the report to this file, which appears only when it is whole")
      ->type_name("FILE");
  const CLI::Option* weightOption =
      cli.add_option("--weight", weight, "weight by this variable; '' switches weighting off")
          ->type_name("NAME")
          ->expected(0, 1);
  cli.add_flag("--strict", options.data.strict, "what does not fit the dictionary is an error");
  cli.add_flag("--no-inference", noInference, "columns whose type the dictionary does not say are text");
  cli.add_flag("--explain-types", typeListing,
               "instead of a report, list each column's type and the cells that decided it;\n"
               "--explain-types=json: as JSON");
  cli.add_option("--threads", options.threads, "threads to use at most (else as many as the machine gives)")
      ->check(CLI::Range(1, 1024));
  const CLI::Option* widthOption =
      cli.add_option("--width", width, "width of text tables in columns (else the terminal's, else 80)")
          ->check(CLI::Range(20, 10000));
  cli.add_option("--lang", options.language,
                 "the language of the report's own words: " + LanguageCodes() + "; messages are English")
      ->type_name("CODE");
  bool noPager = false;
  cli.add_flag("--no-pager", noPager, "write a text report to the terminal directly, not through a pager");
  const CLI::Option* memoryOption =
      cli.add_option("--memory-limit", memoryLimit,
                     "memory to keep within, at least 64MB, such as 256MB, 1GB, 512MiB; beyond it columns and\n"
                     "values for percentiles go to temporary files in TMPDIR")
          ->type_name("SIZE");
  cli.add_flag("-q,--quiet", options.quiet, "no progress on the terminal; only warnings and errors are told");
  cli.add_flag("--timing", timing, "print where the time went to standard error; --timing=json: as JSON");
  cli.add_option("--chunk-rows", options.data.chunkRows, "cases counted at a time; changes no result")
      ->check(CLI::Range(1, 1 << 30))
      ->group("For tests");
  std::size_t segmentBytes = 0;
  cli.add_option("--segment-bytes", segmentBytes, "text read at a time; changes no result")->group("For tests");

  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForVersion& version) {
    throw TextWanted{std::string(version.what()) + "\n"};
  } catch (const CLI::CallForHelp&) {
    dataOption->required();  // for the help alone, see below
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook --help for what it takes.");
  }

  // Not left to the library, which would tell of a missing DATA before an option that it does not know.
  if (!dataPaths.empty()) options.data.path = dataPaths.front();
  if (options.data.path.empty())
    throw UsageError("Name the data: codebook DATA. Run codebook --help for what it takes.");

  const auto given = [](const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
  };
  options.data.furtherPaths.assign(dataPaths.begin() + 1, dataPaths.end());
  options.data.table = given(table);
  if (queryOption->count() > 0) options.data.query = query;
  options.data.dictionary = given(dictionary);
  options.data.resource = given(resource);
  options.data.schemas = given(schemas);
  options.outputFile = given(outputFile);
  if (commandOption->count() > 0) options.commandText = commandText;
  if (fileOption->count() > 0) options.commandFile = commandFile;
  if (weightOption->count() > 0) options.data.weight = weight;
  if (widthOption->count() > 0) options.width = width;
  if (memoryOption->count() > 0) LimitMemory(memoryLimit, options);
  CheckLanguage(options.language);
  options.pager = !noPager;
  options.timing = ReadTimingForm(timing);
  options.typeListing = ReadTypeListing(typeListing);
  options.data.inference = !noInference;
  options.data.explainTypes = options.typeListing != TypeListing::None;
  if (segmentBytes > 0) options.data.segmentBytes = segmentBytes;
  options.format = ChooseFormat(format, options.outputFile);
  // DDI wants each variable's counts weighted and not, of the same cases: those are fetched.
  options.data.countInDatabase = !fetchRows && options.format != kDdiFormat;
  Check(options);
  return options;
}

void CheckThatTerminalsShow(const std::string& format) {
  const runtime::output::ReportFormat* const written = runtime::output::FindReportFormat(format);
  if (written != nullptr && written->isBinary)
    throw UsageError(
        fmt::format("A terminal cannot show the format {}. Name a file for it: -o FILE{}.", format, written->ending));
}

std::string CommandText(const Options& options) {
  if (options.commandText) return *options.commandText;
  if (!options.commandFile) return kDefaultCommand;
  if (*options.commandFile == "-") return ReadAll(std::cin);
  std::error_code ignored;
  if (std::filesystem::is_directory(*options.commandFile, ignored))
    throw UsageError(fmt::format("\"{}\" is a directory, not a file of commands.", *options.commandFile));
  std::ifstream file(*options.commandFile, std::ios::binary);
  if (!file)
    throw UsageError(
        fmt::format("The file of commands \"{}\" cannot be opened: {}.", *options.commandFile, std::strerror(errno)));
  return ReadAll(file);
}

}  // namespace app
