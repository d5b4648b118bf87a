#include "app/commands/draft.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <fmt/format.h>

#include "app/commands/datawords.h"
#include "app/exitstatus.h"
#include "app/options.h"
#include "app/reportsink.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/writing/writetableschema.h"
#include "runtime/data/drafting/draftdictionary.h"
#include "runtime/data/open.h"

namespace app {
namespace {

constexpr const char* kFooter =
    "Labels are left to you: grep TODO finds them. What was guessed stands in codebook.draft of the field or the "
    "file.\n"
    "\n"
    "Examples:\n"
    "  codebook draft survey.csv -o survey.schema.json\n"
    "  codebook draft survey.csv | grep -c TODO\n"
    "\n"
    "Exit status: 0 done, 2 wrong use of the command line, 3 the data could not be read, 4 FILE could not be written.";

struct DraftOptions {
  runtime::data::OpenOptions data;
  std::optional<std::string> out;
  bool quiet = false;
};

DraftOptions ReadDraftOptions(int argc, const char* const* argv) {
  DraftOptions options;
  std::string out;
  bool replace = false;
  DataWords data;
  CLI::App cli(
      "Writes a Table Schema to start from: types as they are inferred, labels left as to-dos, guesses marked.",
      "codebook draft");
  cli.footer(kFooter);
  data.AddTo(cli);
  cli.add_option("-o,--output", out, "write it to this file, which must be new")->type_name("FILE");
  cli.add_flag("--replace", replace, "FILE may be there already, and is written anew");
  cli.add_flag("-q,--quiet", options.quiet, "do not say what was guessed");
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    throw TextWanted{cli.help()};
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "\nRun codebook draft --help for what it takes.");
  }
  if (!out.empty() && out != "-") options.out = out;
  data.Give(options.data);
  CheckThatInputStays(options.out, options.data);
  std::error_code error;
  if (options.out && !replace && std::filesystem::is_regular_file(*options.out, error))
    throw UsageError(fmt::format(
        "\"{}\" is there already, and somebody's labels may stand in it. Name another file, or say --replace.",
        *options.out));
  options.data.dictionaryBeside = false;
  options.data.describe = true;
  options.data.forChecking = true;
  return options;
}

std::string Listed(const std::vector<std::string>& words) {
  constexpr std::size_t kMost = 12;
  std::string list;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i == kMost) return fmt::format("{} and {} more", list, words.size() - kMost);
    list += (i == 0 ? "" : ", ") + words[i];
  }
  return list;
}

std::string Several(std::size_t count, const char* word) {
  return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

void SaySummary(const runtime::data::Draft& draft, const Saying& say) {
  std::string text = fmt::format("{}; {} left to you (TODO)", Several(draft.table.fields.size(), "field"),
                                 Several(draft.toDos, "label"));
  if (draft.missingFields > 0)
    text += fmt::format("\n  guessed: missing codes of {} ({})", Several(draft.missingFields, "field"),
                        Listed(draft.missingCodes));
  if (draft.typedColumns > 0)
    text += fmt::format("\n  guessed: {} of texts hold numbers or dates beside missing codes",
                        Several(draft.typedColumns, "column"));
  if (!draft.sets.empty())
    text +=
        fmt::format("\n  guessed: {} ({})", Several(draft.sets.size(), "multiple response set"), Listed(draft.sets));
  if (!draft.weight.empty()) text += fmt::format("\n  guessed: the weight {}", draft.weight);
  say(text);
}

}  // namespace

int RunDraft(int argc, const char* const* argv, const Saying& say) {
  const DraftOptions options = ReadDraftOptions(argc, argv);
  if (options.data.path != "-" && runtime::data::NamesDataPackage(options.data.path))
    throw UsageError("A data package describes its data already. Name the data file to draft another dictionary.");
  const runtime::data::OpenedDataset opened = runtime::data::OpenDataset(options.data);
  for (const runtime::data::Note& note : opened.notes) say((note.isError ? "error: " : "warning: ") + note.text);
  const runtime::data::Draft draft = runtime::data::DraftDictionary(opened, options.data.pool.get());
  WriteReportTo(options.out, [&](std::ostream& out) { runtime::data::WriteTableSchema(draft.table, out); });
  if (!options.quiet) SaySummary(draft, say);
  return kDone;
}

}  // namespace app
