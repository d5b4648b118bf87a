#include "app/options.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <system_error>

#include <fmt/format.h>

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
    "Exit status: 0 done, 1 a command stopped with an error, 2 wrong use of the command line, 3 data or dictionary\n"
    "could not be read, 4 output could not be written, 70 an internal check failed, 130 interrupted.";

std::string FormatNames() {
  std::string names;
  for (const runtime::output::ReportFormat& format : runtime::output::ReportFormats())
    names += (names.empty() ? "" : ", ") + std::string(format.name);
  return names;
}

/// -F, or what the output file's ending says, or text.
std::string ChooseFormat(const std::string& asked, const std::optional<std::string>& outputFile) {
  if (!asked.empty()) {
    if (runtime::output::FindReportFormat(asked) == nullptr)
      throw UsageError(fmt::format("There is no format \"{}\". Formats: {}.", asked, FormatNames()));
    return asked;
  }
  if (!outputFile) return std::string(runtime::output::ReportFormats().front().name);
  const runtime::output::ReportFormat* format = runtime::output::ReportFormatOfFile(*outputFile);
  if (format == nullptr)
    throw UsageError(
        fmt::format("The ending of \"{}\" names no format. Say which with -F: {}.", *outputFile, FormatNames()));
  return std::string(format->name);
}

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

void Check(const Options& options) {
  if (options.commandText && options.commandFile)
    throw UsageError("Give the command with -c or with -f, not with both.");
  if (options.data.path == "-" && options.commandFile == "-")
    throw UsageError("Data and command cannot both come from standard input. Give the command with -c or in a file.");
  if (!options.outputFile) return;
  for (const std::optional<std::string>& input :
       {std::optional(options.data.path), options.data.dictionary, options.commandFile})
    if (input && *input != "-" && SameFile(*options.outputFile, *input))
      throw UsageError(
          fmt::format("The output would overwrite \"{}\", which is read. Name another file with -o.", *input));
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
  int width = 0;

  CLI::App cli(kDescription, "codebook");
  cli.footer(kFooter);
  cli.set_version_flag("--version", "codebook " CODEBOOK_VERSION);
  cli.add_option("DATA", options.data.path,
                 "a file (CSV, TSV, Parquet, JSON lines), a datapackage.json, or - for standard input");
  cli.add_option("-d,--dictionary", dictionary,
                 "the dictionary: datapackage.json or a Table Schema (else looked for beside the data)");
  cli.add_option("--resource", resource, "the resource of a datapackage.json that holds several");
  const CLI::Option* commandOption = cli.add_option("-c,--command", commandText, "the command's text");
  const CLI::Option* fileOption = cli.add_option("-f,--file", commandFile, "a file of commands, - for standard input");
  cli.add_option("-F,--format", format,
                 "the report's format: " + FormatNames() + " (else by the ending of -o, else text)");
  cli.add_option("-o,--output", outputFile, "write the report to this file, which appears only when it is whole");
  const CLI::Option* weightOption =
      cli.add_option("--weight", weight, "weight by this variable; '' switches weighting off")->expected(0, 1);
  cli.add_flag("--strict", options.data.strict, "what does not fit the dictionary is an error");
  cli.add_option("--threads", options.threads, "threads to use at most (else as many as the machine has)")
      ->check(CLI::Range(1, 1024));
  const CLI::Option* widthOption =
      cli.add_option("--width", width, "width of text tables in columns (else the terminal's, else 80)")
          ->check(CLI::Range(20, 10000));
  cli.add_flag("--timings", options.timings, "print a line of timings to standard error");
  cli.add_option("--chunk-rows", options.data.chunkRows, "cases counted at a time; changes no result")
      ->check(CLI::Range(1, 1 << 30))
      ->group("For tests");

  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForVersion& version) {
    throw TextWanted{std::string(version.what()) + "\n"};
  } catch (const CLI::CallForHelp&) {
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook --help for what it takes.");
  }

  // Not left to the library, which would tell of a missing DATA before an option that it does not know.
  if (options.data.path.empty())
    throw UsageError("Name the data: codebook DATA. Run codebook --help for what it takes.");

  const auto given = [](const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
  };
  options.data.dictionary = given(dictionary);
  options.data.resource = given(resource);
  options.outputFile = given(outputFile);
  if (commandOption->count() > 0) options.commandText = commandText;
  if (fileOption->count() > 0) options.commandFile = commandFile;
  if (weightOption->count() > 0) options.data.weight = weight;
  if (widthOption->count() > 0) options.width = width;
  options.format = ChooseFormat(format, options.outputFile);
  Check(options);
  return options;
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
