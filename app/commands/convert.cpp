#include "app/commands/convert.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "app/exitstatus.h"
#include "app/options.h"
#include "app/reportsink.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/writing/writeddi.h"
#include "runtime/data/dictionary/writing/writetableschema.h"
#include "runtime/data/open.h"

namespace app {
namespace {

using runtime::data::TableDescriptor;
using runtime::data::WrittenFacts;

enum class Standard { TableSchema, DataPackage, Ddi };

struct StandardWord {
  const char* word;
  const char* name;
  Standard standard;
};

constexpr StandardWord kStandards[] = {{"table-schema", "a Table Schema", Standard::TableSchema},
                                       {"data-package", "a Data Package", Standard::DataPackage},
                                       {"ddi", "DDI-Codebook 2.5", Standard::Ddi}};

constexpr const char* kFooter =
    "The standard of OUT is that of --to, or goes by its name: NAME.xml is DDI-Codebook, datapackage.json (or\n"
    "NAME.datapackage.json) a Data Package, any other .json a Table Schema. - is standard output.\n"
    "\n"
    "Examples:\n"
    "  codebook convert survey.schema.json survey.ddi.xml\n"
    "  codebook convert study.xml datapackage.json --resource F2\n"
    "\n"
    "Exit status: 0 done, 2 wrong use of the command line, 3 the dictionary (or the data) could not be read, 4 OUT "
    "could\n"
    "not be written.";

struct ConvertOptions {
  std::string in;
  std::string out;
  Standard to = Standard::TableSchema;
  std::optional<std::string> data;
  std::optional<std::string> resource;
  std::optional<std::string> schemas;
  bool quiet = false;
};

bool EndsWith(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

Standard ChooseStandard(const std::string& asked, const std::string& out) {
  std::string words;
  for (const StandardWord& known : kStandards) {
    if (asked == known.word) return known.standard;
    words += (words.empty() ? "" : ", ") + std::string(known.word);
  }
  if (!asked.empty())
    throw UsageError(fmt::format("There is no standard \"{}\". Say --to with one of: {}.", asked, words));
  const std::string name = std::filesystem::path(out).filename().string();
  if (EndsWith(name, ".xml")) return Standard::Ddi;
  if (name == "datapackage.json" || EndsWith(name, ".datapackage.json")) return Standard::DataPackage;
  if (EndsWith(name, ".json")) return Standard::TableSchema;
  throw UsageError(fmt::format("\"{}\" does not say which standard to write. Say --to with one of: {}.", out, words));
}

ConvertOptions ReadConvertOptions(int argc, const char* const* argv) {
  ConvertOptions options;
  std::string to;
  std::string data;
  std::string resource;
  std::string schemas;
  CLI::App cli(
      "Reads a dictionary (Table Schema, Data Package, DDI-Codebook, REDCap) and writes it in another standard.\n"
      "What that standard has no word for stands in extension properties or notes, so that nothing is lost.",
      "codebook convert");
  cli.footer(kFooter);
  cli.add_option("IN", options.in, "the dictionary to read")->type_name("")->required();
  cli.add_option("OUT", options.out, "the file to write; it appears only when it is whole")->type_name("")->required();
  cli.add_option("--to", to, "table-schema, data-package or ddi")->type_name("STANDARD");
  cli.add_option("--data", data, "also look at these data: types, formats and levels that IN leaves open are then said")
      ->type_name("FILE");
  cli.add_option("--resource", resource, "the resource or file, where IN describes several")->type_name("NAME");
  cli.add_option("--schemas", schemas, "a folder with copies of schemas that IN names by address")->type_name("FOLDER");
  cli.add_flag("-q,--quiet", options.quiet, "do not say what the standard had no word for");
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook convert --help for what it takes.");
  }
  const auto given = [](const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
  };
  options.to = ChooseStandard(to, options.out);
  options.data = given(data);
  options.resource = given(resource);
  options.schemas = given(schemas);
  std::error_code error;
  for (const std::string& input : {options.in, data})
    if (!input.empty() && std::filesystem::equivalent(input, options.out, error) && !error)
      throw UsageError(fmt::format("The output would overwrite \"{}\", which is read. Name another file.", input));
  return options;
}

void SayNotes(const std::vector<runtime::data::Note>& notes, const Saying& say) {
  for (const runtime::data::Note& note : notes) say((note.isError ? "error: " : "warning: ") + note.text);
}

TableDescriptor ReadInput(const ConvertOptions& options, const Saying& say) {
  std::vector<runtime::data::Note> notes;
  if (!options.data) {
    // No data: nothing is looked for beside the dictionary.
    TableDescriptor table = runtime::data::ReadDictionary({options.in, options.resource, "-", options.schemas}, notes);
    SayNotes(notes, say);
    return table;
  }
  runtime::data::OpenOptions open;
  open.path = *options.data;
  open.dictionary = options.in;
  open.resource = options.resource;
  open.schemas = options.schemas;
  open.describe = true;
  const runtime::data::OpenedDataset opened = runtime::data::OpenDataset(open);
  SayNotes(opened.notes, say);
  return *opened.description;
}

/// The data as a package beside which they lie would name them.
std::string DataName(const ConvertOptions& options) {
  if (options.data && *options.data != "-") return std::filesystem::path(*options.data).filename().string();
  std::string name = std::filesystem::path(options.in).filename().string();
  for (const std::string_view ending : {".schema.json", ".datapackage.json", ".ddi.xml", ".json", ".xml", ".csv"})
    if (name.size() > ending.size() && EndsWith(name, ending)) {
      name.resize(name.size() - ending.size());
      break;
    }
  while (!name.empty() && name.front() == '.') name.erase(0, 1);
  return (name.empty() ? "data" : name) + ".csv";
}

std::string Listed(const std::map<std::string, std::size_t>& names) {
  constexpr std::size_t kMost = 12;
  std::string list;
  std::size_t count = 0;
  for (const auto& [name, places] : names) {
    if (++count > kMost) return fmt::format("{} and {} more", list, names.size() - kMost);
    list += fmt::format("{}{} ({})", list.empty() ? "" : ", ", name, places);
  }
  return list;
}

void SayFacts(const WrittenFacts& facts, const ConvertOptions& options, const Saying& say) {
  if (!facts.leftOut.empty())
    say(fmt::format("warning: {}: a Table Schema by itself has no place for {}; write a datapackage.json to keep it",
                    options.out, Listed(facts.leftOut)));
  if (options.quiet || facts.extensions.empty()) return;
  say(fmt::format("{}: the standard has no word for some of what is said, which stands in {} (in so many places): {}",
                  options.out,
                  options.to == Standard::Ddi ? "notes of the type \"codebook\"" : "the property \"codebook\"",
                  Listed(facts.extensions)));
}

}  // namespace

int RunConvert(int argc, const char* const* argv, const Saying& say) {
  const ConvertOptions options = ReadConvertOptions(argc, argv);
  const TableDescriptor table = ReadInput(options, say);
  WrittenFacts facts;
  WriteReportTo(options.out == "-" ? std::nullopt : std::optional(options.out), [&](std::ostream& out) {
    switch (options.to) {
      case Standard::TableSchema:
        facts = runtime::data::WriteTableSchema(table, out);
        break;
      case Standard::DataPackage:
        facts = runtime::data::WriteDataPackage(table, DataName(options), out);
        break;
      case Standard::Ddi:
        facts = runtime::data::WriteDdi(table, nullptr, out);
        break;
    }
  });
  SayFacts(facts, options, say);
  return kDone;
}

}  // namespace app
