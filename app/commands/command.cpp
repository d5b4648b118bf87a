#include "app/commands/command.h"

#include <string_view>

#include "app/commands/check.h"
#include "app/commands/convert.h"
#include "app/commands/diff.h"
#include "app/commands/draft.h"
#include "app/commands/schema.h"

namespace app {

const std::vector<Command>& Commands() {
  static const std::vector<Command> commands = {
      {"check", "lists what does not fit between data and dictionary", RunCheck},
      {"convert", "writes a dictionary in another standard: Table Schema, Data Package, DDI-Codebook", RunConvert},
      {"diff", "tells what differs between two waves: dictionaries and distributions", RunDiff},
      {"draft", "writes a Table Schema to start from, guessed from the data", RunDraft},
      {"schema", "prints the JSON Schema of the reports of -F json and -F jsonl", RunSchema}};
  return commands;
}

const Command* FindCommand(int argc, const char* const* argv) {
  if (argc < 2) return nullptr;
  for (const Command& command : Commands())
    if (std::string_view(argv[1]) == command.name) return &command;
  return nullptr;
}

}  // namespace app
