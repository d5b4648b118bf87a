// Waves written in the test.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "runtime/data/comparing/comparedtable.h"
#include "runtime/data/comparing/comparison.h"

namespace runtime::data::test {

/// A numeric variable of which everything is said.
inline ComparedVariable Numeric(std::string name, std::string label = {}) {
  ComparedVariable variable;
  variable.name = std::move(name);
  if (!label.empty()) variable.label = std::move(label);
  variable.type = ComparedType::Numeric;
  variable.format = "F8.2";
  variable.level = "nominal";
  variable.role = "input";
  return variable;
}

inline ComparedTable Wave(std::vector<ComparedVariable> variables) {
  ComparedTable table;
  table.variables = std::move(variables);
  return table;
}

/// "code about: before -> after", with nothing for what is absent.
inline std::string InWords(const Change& change) {
  std::string words(ChangeCode(change.kind));
  if (NamesWhatItIsAbout(change.kind)) words += " " + change.about;
  words += ": " + change.before.value_or("nothing") + " -> " + change.after.value_or("nothing");
  return words;
}

inline std::vector<std::string> InWords(const std::vector<Change>& changes) {
  std::vector<std::string> words;
  for (const Change& change : changes) words.push_back(InWords(change));
  return words;
}

}  // namespace runtime::data::test
