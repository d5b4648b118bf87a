// What the values of a column say about what it is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/checking/distinctvalues.h"
#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// How the cells of a member of a "select all that apply" question look.
enum class SetCells {
  None,
  OptionOrBlank,  // one text, or nothing
  OptionOrNot,    // one text, or "Not selected"
  OneOrBlank,     // 1, or nothing
  ZeroOne,        // 0 and 1, or nothing
  OneMinusOne     // 1 and -1, or nothing
};

struct ColumnEvidence {
  FieldType type = FieldType::String;  // as the column should be read
  bool wasText = false;                // it was read as text for the codes among its numbers or dates
  std::int64_t rows = 0;
  std::int64_t blanks = 0;                     // cells
  std::vector<double> numbers;                 // different ones, ascending, codes included; of a numeric type
  std::vector<std::int64_t> counts;            // parallel to `numbers`
  std::vector<std::string_view> texts;         // different ones, not empty, codes included; of a string type
  std::vector<std::string_view> missingTexts;  // guessed
  std::vector<std::pair<double, std::string>> missingNumbers;  // guessed, with the evidence

  SetCells setCells = SetCells::None;
  std::string option;     // the text of OptionOrBlank and OptionOrNot
  std::string notOption;  // of OptionOrNot: the words for not selected

  bool isWhole() const { return type == FieldType::Integer || type == FieldType::Year; }
};

/// `type` is the one that the column was inferred to have. The texts live as long as the dataset.
ColumnEvidence EvidenceOf(const DistinctValues& values, FieldType type);

}  // namespace runtime::data
