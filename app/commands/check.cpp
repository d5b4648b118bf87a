#include "app/commands/check.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include <fmt/format.h>

#include "app/commands/checkreport.h"
#include "app/commands/datawords.h"
#include "app/exitstatus.h"
#include "app/options.h"
#include "app/reportsink.h"
#include "app/terminal.h"
#include "runtime/data/checking/checkdataset.h"
#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/open.h"

namespace app {
namespace {

constexpr const char* kFooter =
    "Every kind of finding has a code that stays the same; docs/reference/check.md tells them all.\n"
    "\n"
    "Examples:\n"
    "  codebook check survey.csv\n"
    "  codebook check survey.csv -d study.xml --format json -o findings.json\n"
    "  codebook check survey.csv --ignore C303,C401\n"
    "\n"
    "Exit status: 0 clean, 1 errors or warnings were found (remarks do not count), 2 wrong use of the command line,\n"
    "3 data or dictionary could not be read, 4 the list could not be written.";

constexpr int kFindings = 1;  // as linters have it

struct CheckOptions {
  runtime::data::OpenOptions data;
  bool isJson = false;
  std::optional<std::string> out;
  std::set<runtime::data::CheckCode> ignored;
};

runtime::data::CheckCode CodeOf(const std::string& word) {
  for (const runtime::data::CodeFacts& facts : runtime::data::CheckCodes())
    if (word == facts.id || word == facts.name) return facts.code;
  throw UsageError(fmt::format("There is no code \"{}\". Name codes as the list shows them, such as C303.", word));
}

CheckOptions ReadCheckOptions(int argc, const char* const* argv) {
  CheckOptions options;
  std::string dictionary;
  std::string resource;
  std::string schemas;
  std::string out;
  std::string format = "text";
  std::vector<std::string> ignored;
  DataWords data;
  CLI::App cli("Lists what does not fit between data and dictionary, with places and what to do.", "codebook check");
  cli.footer(kFooter);
  data.AddTo(cli);
  cli.add_option("-d,--dictionary", dictionary, "the dictionary; otherwise it is looked for beside the data")
      ->type_name("FILE");
  cli.add_option("--resource", resource, "the resource or file, where the dictionary describes several")
      ->type_name("NAME");
  cli.add_option("--schemas", schemas, "a folder with copies of schemas that a package names by address")
      ->type_name("FOLDER");
  cli.add_option("--weight", options.data.weight, "weight by this variable, whatever the dictionary says")
      ->type_name("NAME");
  cli.add_option("--format", format, "text or json")->type_name("FORMAT");
  cli.add_option("-o,--output", out, "write the list to this file")->type_name("FILE");
  cli.add_option("--ignore", ignored, "leave these codes out")
      ->type_name("CODE,...")
      ->delimiter(',')
      ->allow_extra_args(false);
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook check --help for what it takes.");
  }
  if (format != "text" && format != "json")
    throw UsageError(fmt::format("There is no format \"{}\". Say --format text or --format json.", format));
  options.isJson = format == "json";
  const auto given = [](const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
  };
  data.Give(options.data);
  options.data.dictionary = given(dictionary);
  options.data.resource = given(resource);
  options.data.schemas = given(schemas);
  options.data.forChecking = true;
  options.out = given(out);
  CheckThatInputStays(options.out, options.data);
  for (const std::string& word : ignored) options.ignored.insert(CodeOf(word));
  return options;
}

}  // namespace

int RunCheck(int argc, const char* const* argv, const Saying&) {
  const CheckOptions options = ReadCheckOptions(argc, argv);
  const runtime::data::OpenedDataset opened = runtime::data::OpenDataset(options.data);
  CheckReport report;
  report.data = options.data.path;
  if (opened.reading->dictionary) report.dictionary = opened.reading->dictionary->origin;
  report.cases = opened.dataset->caseCount();
  report.variables = opened.dataset->dictionary().variables.size();
  report.findings = runtime::data::CheckDataset(opened, options.data.path, options.data.pool.get());
  report.findings.erase(
      std::remove_if(report.findings.begin(), report.findings.end(),
                     [&](const runtime::data::Finding& finding) { return options.ignored.count(finding.code) > 0; }),
      report.findings.end());
  WriteReportTo(options.out, [&](std::ostream& out) {
    if (options.isJson)
      WriteCheckJson(report, out);
    else
      WriteCheckText(report, DescribeTerminal(std::nullopt, options.out.has_value()).utf8, out);
  });
  return FindingsThatCount(report) > 0 ? kFindings : kDone;
}

}  // namespace app
