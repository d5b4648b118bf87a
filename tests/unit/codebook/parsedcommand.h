// One command, parsed into settings by the module over the real parser and dictionary.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "codebook/parser/cbksettings.h"
#include "runtime/data/dataset.h"

namespace codebook::test {

class ParsedCommand {
 public:
  ParsedCommand(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& text);

  bool accepted() const { return fAccepted; }
  const CodebookSettings& settings() const { return fSettings; }
  /// As messageLines gives them.
  const std::vector<std::string>& messages() const { return fMessages; }

  std::vector<std::string> itemNames() const;
  std::vector<int> itemIndices() const;
  /// The treatment list: an ItemKind a variable by dictionary position, then one a set.
  std::vector<int> kinds() const;

 private:
  bool fAccepted = false;
  CodebookSettings fSettings;
  std::vector<std::string> fMessages;
};

}  // namespace codebook::test
