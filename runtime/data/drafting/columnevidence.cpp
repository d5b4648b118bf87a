#include "runtime/data/drafting/columnevidence.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>

#include "runtime/data/checking/missingguess.h"
#include "runtime/data/foldedname.h"
#include "runtime/data/typing/inference.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

bool SaysNotSelected(std::string_view text) {
  static constexpr std::array<std::string_view, 9> kWords = {"not selected", "unselected", "not checked",
                                                             "unchecked",    "not chosen", "not mentioned",
                                                             "not ticked",   "not marked", "not quoted"};
  return std::find(kWords.begin(), kWords.end(), FoldName(Trimmed(text))) != kWords.end();
}

/// The type of all texts that are no code for a missing answer; nothing when they are of several or of none.
std::optional<FieldType> TypeBesideCodes(const std::vector<std::string_view>& texts) {
  std::optional<FieldType> type;
  bool anyCode = false;
  for (const std::string_view text : texts) {
    const FieldType own = InferredTypeOf(Trimmed(text));
    if (own == FieldType::String) {
      if (!IsMissingText(text)) return std::nullopt;
      anyCode = true;
      continue;
    }
    const bool bothNumbers = type && (own == FieldType::Integer || own == FieldType::Number) &&
                             (*type == FieldType::Integer || *type == FieldType::Number);
    if (!type || *type == own)
      type = own;
    else if (bothNumbers)
      type = FieldType::Number;
    else
      return std::nullopt;
  }
  return anyCode ? type : std::nullopt;
}

bool IsNumberType(FieldType type) {
  return type == FieldType::Integer || type == FieldType::Number || type == FieldType::Year;
}

/// Moves the texts that read as numbers to the numbers; what is left are codes.
void TakeNumbers(const DistinctValues& values, ColumnEvidence& evidence) {
  std::map<double, std::int64_t> counts;
  for (const DistinctValue& value : values.values) {
    if (value.text.empty()) continue;
    NumberReading reading;
    if (ReadAsInferred(evidence.type, Trimmed(value.text), reading))
      counts[reading.value] += value.count;
    else
      evidence.missingTexts.push_back(value.text);
  }
  for (const auto& [number, count] : counts) {
    evidence.numbers.push_back(number);
    evidence.counts.push_back(count);
  }
  evidence.texts.clear();
}

void TakeTexts(const DistinctValues& values, ColumnEvidence& evidence) {
  for (const DistinctValue& value : values.values) {
    if (value.text.empty())
      evidence.blanks += value.count;
    else
      evidence.texts.push_back(value.text);
  }
  const std::optional<FieldType> type = TypeBesideCodes(evidence.texts);
  if (!type) {
    evidence.missingTexts = GuessMissingTexts(evidence.texts);
    return;
  }
  evidence.type = *type;
  evidence.wasText = true;
  TakeNumbers(values, evidence);
}

void LookForOptionText(ColumnEvidence& evidence) {
  const std::vector<std::string_view>& texts = evidence.texts;
  if (texts.size() == 1 && evidence.blanks > 0 && evidence.missingTexts.empty()) {
    evidence.setCells = SetCells::OptionOrBlank;
    evidence.option = texts.front();
  }
  if (texts.size() != 2 || SaysNotSelected(texts[0]) == SaysNotSelected(texts[1])) return;
  evidence.setCells = SetCells::OptionOrNot;
  evidence.option = SaysNotSelected(texts[0]) ? texts[1] : texts[0];
  evidence.notOption = SaysNotSelected(texts[0]) ? texts[0] : texts[1];
}

void LookForOptionNumber(ColumnEvidence& evidence) {
  const std::vector<double>& numbers = evidence.numbers;
  const bool isBoolean = evidence.type == FieldType::Boolean;
  if ((!IsNumberType(evidence.type) && !isBoolean) || numbers.empty() || numbers.size() > 2) return;
  const auto holds = [&](double number) { return std::find(numbers.begin(), numbers.end(), number) != numbers.end(); };
  if (numbers.size() == 2 && holds(0) && holds(1)) evidence.setCells = SetCells::ZeroOne;
  if (numbers.size() == 2 && holds(-1) && holds(1)) evidence.setCells = SetCells::OneMinusOne;
  if (numbers.size() > 1) return;
  // Options that nobody or everybody chose; they go with their neighbours.
  if (holds(0)) evidence.setCells = SetCells::ZeroOne;
  if (holds(-1)) evidence.setCells = SetCells::OneMinusOne;
  if (holds(1)) evidence.setCells = SetCells::OneOrBlank;
}

void GuessNumbers(ColumnEvidence& evidence) {
  if (!IsNumberType(evidence.type)) return;
  std::vector<CountedNumber> numbers;
  for (std::size_t i = 0; i < evidence.numbers.size(); ++i)
    numbers.push_back({evidence.numbers[i], evidence.counts[i]});
  for (const NumberGuess& guess : GuessMissingNumbers(numbers))
    evidence.missingNumbers.emplace_back(guess.number, guess.why);
}

}  // namespace

ColumnEvidence EvidenceOf(const DistinctValues& values, FieldType type) {
  ColumnEvidence evidence;
  evidence.type = type;
  evidence.rows = values.rows;
  if (values.isString) {
    TakeTexts(values, evidence);
    if (!evidence.wasText) LookForOptionText(evidence);
  } else {
    evidence.blanks = values.systemMissing;
    for (const DistinctValue& value : values.values) {
      evidence.numbers.push_back(value.number);
      evidence.counts.push_back(value.count);
    }
  }
  LookForOptionNumber(evidence);
  GuessNumbers(evidence);
  return evidence;
}

}  // namespace runtime::data
