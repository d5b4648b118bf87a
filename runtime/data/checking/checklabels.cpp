// Value labels against values, and values that look like missing codes.
#include <algorithm>
#include <map>
#include <string>

#include <fmt/format.h>

#include "runtime/data/checking/missingguess.h"
#include "runtime/data/checking/namedvalues.h"
#include "runtime/data/checking/variablecheck.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

const std::vector<LabelledValue>& CategoriesOf(const VariableCheck& check) {
  static const std::vector<LabelledValue> kNone;
  return check.field != nullptr ? check.field->categories : kNone;
}

DistinctValue ValueOf(const OwnLabel& label) {
  DistinctValue value;
  value.number = label.number;
  value.text = label.text;
  value.firstRow = -1;
  return value;
}

/// Ends of a scale are often the only ones that have a label.
void CheckUnlabelledValues(VariableCheck& check) {
  if (check.variable.level == MAVO_Variable_Enumerations::kLevelScale) return;
  bool anyLabelled = false;
  std::vector<const DistinctValue*> unlabelled;
  for (const DistinctValue& value : check.values.values) {
    if (check.IsMissing(value)) continue;
    if (check.LabelOf(value) != nullptr)
      anyLabelled = true;
    else if (!(check.values.isString && value.text.empty()))
      unlabelled.push_back(&value);
  }
  // What is none of the categories is told as such.
  const NamedValues categories(CategoriesOf(check), check);
  if (check.field != nullptr && check.field->hasCategories)
    unlabelled.erase(std::remove_if(unlabelled.begin(), unlabelled.end(),
                                    [&](const DistinctValue* value) { return !categories.Hold(*value); }),
                     unlabelled.end());
  for (const OwnLabel& label : check.labels) anyLabelled = anyLabelled || !check.IsMissing(ValueOf(label));
  if (!anyLabelled) return;
  check.AddValues(CheckCode::ValueWithoutLabel, unlabelled, [&](const DistinctValue& value) {
    return fmt::format("{} has no label, and other values have one", check.Quoted(value));
  });
}

void CheckUnusedLabels(VariableCheck& check) {
  if (check.facts.type == FieldType::Boolean) return;  // both truth values have a label by themselves
  std::vector<DistinctValue> unused;
  for (const OwnLabel& label : check.labels)
    if (!check.Occurs(label)) unused.push_back(ValueOf(label));
  std::vector<const DistinctValue*> found;
  for (const DistinctValue& value : unused) found.push_back(&value);
  check.AddValues(CheckCode::LabelWithoutValue, found, [&](const DistinctValue& value) {
    return fmt::format("{} ({}) never occurs", check.Quoted(value), QuotedCell(*check.LabelOf(value)));
  });
}

void CheckRepeatedLabels(VariableCheck& check) {
  std::map<std::string, const OwnLabel*> firstOfLabel;
  for (const OwnLabel& label : check.labels) {
    const auto [first, isNew] = firstOfLabel.emplace(label.label, &label);
    if (isNew) continue;
    const DistinctValue value = ValueOf(label);
    Finding& finding = check.Add(CheckCode::RepeatedLabel,
                                 fmt::format("{} and {} have the same label, {}", check.Quoted(ValueOf(*first->second)),
                                             check.Quoted(value), QuotedCell(label.label)));
    finding.file = check.dictionaryFile;
    finding.value = check.ValueWords(value);
  }
}

void CheckMissingCodes(VariableCheck& check) {
  const NamedValues categories(CategoriesOf(check), check);
  const auto isDeclared = [&](const DistinctValue& value) {
    return check.LabelOf(value) != nullptr || categories.Hold(value);
  };
  if (check.values.isString) {
    std::vector<std::string_view> texts;
    for (const DistinctValue& value : check.values.values)
      if (!check.IsMissing(value)) texts.push_back(value.text);
    const std::vector<std::string_view> guesses = GuessMissingTexts(texts);
    std::vector<const DistinctValue*> found;
    for (const DistinctValue& value : check.values.values)
      if (!check.IsMissing(value) && !isDeclared(value) &&
          std::find(guesses.begin(), guesses.end(), value.text) != guesses.end())
        found.push_back(&value);
    check.AddValues(CheckCode::UndeclaredMissing, found, [&](const DistinctValue& value) {
      return fmt::format("{} looks like a code for a missing answer: it says so", check.Quoted(value));
    });
    return;
  }
  const FieldType type = check.facts.type;
  if (type != FieldType::Integer && type != FieldType::Number && type != FieldType::Year) return;
  std::vector<CountedNumber> numbers;
  for (const DistinctValue& value : check.values.values)
    if (!check.IsMissing(value)) numbers.push_back({value.number, value.count});
  const std::vector<NumberGuess> guesses = GuessMissingNumbers(numbers);
  std::vector<const DistinctValue*> found;
  for (const DistinctValue& value : check.values.values)
    for (const NumberGuess& guess : guesses)
      if (guess.number == value.number && !isDeclared(value)) found.push_back(&value);
  check.AddValues(CheckCode::UndeclaredMissing, found, [&](const DistinctValue& value) {
    const auto guess = std::find_if(guesses.begin(), guesses.end(),
                                    [&](const NumberGuess& each) { return each.number == value.number; });
    return fmt::format("{} looks like a code for a missing answer: {}", check.ValueWords(value), guess->why);
  });
}

}  // namespace

void CheckLabels(VariableCheck& check, bool isSetMember) {
  CheckUnlabelledValues(check);
  CheckUnusedLabels(check);
  // Of a dichotomy, -1 is the answer "no" more often than no answer.
  if (!isSetMember) CheckMissingCodes(check);
  CheckRepeatedLabels(check);
}

}  // namespace runtime::data
