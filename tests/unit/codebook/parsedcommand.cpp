#include "tests/unit/codebook/parsedcommand.h"

#include <utility>

#include "codebook/parser/cbkparser.h"
#include "tests/unit/codebook/insession.h"

namespace codebook::test {

ParsedCommand::ParsedCommand(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& text) {
  const runtime::output::Report report = runInSession(std::move(dataset), text, [this] {
    ProcedureDataSource dataSource;
    ParserMessage parserMessage;
    CodebookRequest request(&dataSource, &parserMessage);
    fAccepted = request.parse();
    fSettings = *request.settings();
  });
  fMessages = messageLines(report);
}

std::vector<std::string> ParsedCommand::itemNames() const {
  std::vector<std::string> names;
  for (const ListedItem& item : fSettings.items()) names.push_back(item.name);
  return names;
}

std::vector<int> ParsedCommand::itemIndices() const {
  std::vector<int> indices;
  for (const ListedItem& item : fSettings.items()) indices.push_back(item.index);
  return indices;
}

std::vector<int> ParsedCommand::kinds() const {
  CodebookSettings settings = fSettings;
  return settings.itemKinds();
}

}  // namespace codebook::test
