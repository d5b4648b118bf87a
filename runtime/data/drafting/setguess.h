// Columns that look like one "select all that apply" question.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/data/drafting/columnevidence.h"

namespace runtime::data {

struct SetGuess {
  std::string stem;                  // what the headers have in common: "Q19", "Which films have you seen?"
  std::string question;              // the same with its punctuation
  std::vector<std::size_t> columns;  // neighbours, in their order
  std::vector<std::string> options;  // of each: what its header or its cells say of the option; may be empty
  SetCells cells = SetCells::None;
  bool sameOption = false;  // the text of all members is the same
  std::string option;       // that text
};

/// At least two neighbouring columns whose cells look the same way, with headers that begin alike: "Question [Option]",
/// "Question - Option", "Question: Option", "Q1.a", "Q1/a", "q___1", "Q1_1", "Q1a"; or a header and empty ones behind
/// it. At least one of them must show both answers.
std::vector<SetGuess> GuessSets(const std::vector<std::string>& headers, const std::vector<ColumnEvidence>& evidence);

}  // namespace runtime::data
