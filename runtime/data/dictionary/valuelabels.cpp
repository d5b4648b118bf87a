#include "runtime/data/dictionary/valuelabels.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/fieldvalue.h"

namespace runtime::data {
namespace {

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// Labels by value; a value keeps its first label.
class LabelCollector {
 public:
  LabelCollector(const FieldDialect& dialect, int width) : fDialect(dialect), fWidth(width) {}

  /// False when the entry has a label and a value that the variable cannot have.
  bool Add(const LabelledValue& entry) {
    if (!entry.label) return true;
    if (fWidth > 0) {
      std::string text(WithoutTrailingBlanks(entry.value));
      if (text.size() > static_cast<std::size_t>(fWidth)) return false;
      text.resize(static_cast<std::size_t>(fWidth), ' ');
      fOfTexts.emplace(std::move(text), *entry.label);
      return true;
    }
    const std::optional<double> number = FieldValueOf(entry, fDialect);
    if (!number) return false;
    AddNumber(*number, *entry.label);
    return true;
  }

  void AddNumber(double number, const std::string& label) { fOfNumbers.emplace(number, label); }

  std::shared_ptr<const ValueLabelList> Finish() const {
    if (fOfNumbers.empty() && fOfTexts.empty()) return nullptr;
    auto list = std::make_shared<ValueLabelList>();
    list->width = fWidth;
    list->entries.reserve(fOfNumbers.size() + fOfTexts.size());
    for (const auto& [number, label] : fOfNumbers) {
      list->entries.emplace_back();
      list->entries.back().number.number = number;
      list->entries.back().label = label;
    }
    for (const auto& [text, label] : fOfTexts) {
      list->entries.emplace_back();
      list->entries.back().text = text;
      list->entries.back().label = label;
    }
    return list;
  }

 private:
  const FieldDialect& fDialect;
  int fWidth;
  std::map<double, std::string> fOfNumbers;
  std::map<std::string, std::string> fOfTexts;  // padded, so that their order is that of the values
};

}  // namespace

std::size_t LongestLabelledText(const FieldDescriptor& field) {
  std::size_t longest = 0;
  for (const auto* entries : {&field.categories, &field.valueLabels, &field.missingValues})
    for (const LabelledValue& entry : *entries)
      if (entry.label) longest = std::max(longest, WithoutTrailingBlanks(entry.value).size());
  return longest;
}

std::shared_ptr<const ValueLabelList> MakeValueLabels(const FieldDescriptor* field, FieldType type, int width,
                                                      const std::string& origin, std::vector<Note>& notes) {
  static const FieldDialect kPlain;
  LabelCollector labels(field ? field->dialect : kPlain, width);
  if (field) {
    for (const auto* entries : {&field->categories, &field->valueLabels})
      for (const LabelledValue& entry : *entries)
        if (!labels.Add(entry))
          notes.push_back(
              {false, fmt::format("{}: field \"{}\": the label \"{}\" is not used, for its value \"{}\" is no "
                                  "value of a numeric variable",
                                  origin, field->name, *entry.label, entry.value)});
    for (const LabelledValue& entry : field->missingValues) labels.Add(entry);
  }
  if (type == FieldType::Boolean && width == 0) {
    labels.AddNumber(0, "false");
    labels.AddNumber(1, "true");
  }
  return labels.Finish();
}

MissingRule MakeMissingRule(const std::vector<LabelledValue>& entries,
                            const std::vector<MissingRangeDescriptor>& ranges, const FieldDialect& dialect,
                            bool isString) {
  MissingRule rule;
  for (const LabelledValue& entry : entries) {
    if (isString) {
      std::string text(WithoutTrailingBlanks(entry.value));
      if (std::find(rule.texts.begin(), rule.texts.end(), text) == rule.texts.end())
        rule.texts.push_back(std::move(text));
      continue;
    }
    const std::optional<double> number = FieldValueOf(entry, dialect);
    if (number && std::find(rule.values.begin(), rule.values.end(), *number) == rule.values.end())
      rule.values.push_back(*number);
  }
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const MissingRangeDescriptor& range : ranges)
    rule.ranges.push_back({range.min.value_or(-kInfinity), range.max.value_or(kInfinity)});
  return rule;
}

}  // namespace runtime::data
