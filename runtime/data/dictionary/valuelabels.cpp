#include "runtime/data/dictionary/valuelabels.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/fieldvalue.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// Labels by value; a value keeps its first label.
class LabelCollector {
 public:
  explicit LabelCollector(int width) : fWidth(width) {}

  void AddNumber(double number, const std::string& label) { fOfNumbers.emplace(number, label); }

  /// REQUIRES: at most `width` bytes without trailing blanks.
  void AddText(std::string_view value, const std::string& label) {
    std::string text(WithoutTrailingBlanks(value));
    text.resize(static_cast<std::size_t>(fWidth), ' ');
    fOfTexts.emplace(std::move(text), label);
  }

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
  int fWidth;
  std::map<double, std::string> fOfNumbers;
  std::map<std::string, std::string> fOfTexts;  // padded, so that their order is that of the values
};

void AddTexts(const FieldDescriptor& field, LabelCollector& labels) {
  for (const auto* entries : {&field.categories, &field.valueLabels, &field.missingValues})
    for (const LabelledValue& entry : *entries)
      if (entry.label) labels.AddText(entry.value, *entry.label);
}

void AddNumbers(const FieldDescriptor& field, FieldType type, const std::string& origin, LabelCollector& labels,
                std::vector<Note>& notes) {
  const FieldValues values(&field, type);
  for (const auto* entries : {&field.categories, &field.valueLabels}) {
    for (const LabelledValue& entry : *entries) {
      if (!entry.label) continue;
      if (const std::optional<double> number = values.Of(entry))
        labels.AddNumber(*number, *entry.label);
      else
        notes.push_back(
            {false, fmt::format("{}: field {}: the label {} is not used, for its value {} is no value of a "
                                "numeric variable",
                                origin, QuotedCell(field.name), QuotedCell(*entry.label), QuotedCell(entry.value))});
    }
  }
  for (const LabelledValue& entry : field.missingValues) {
    const std::optional<double> code = entry.label ? MissingCodeOf(entry, field.dialect) : std::nullopt;
    if (code) labels.AddNumber(*code, *entry.label);
  }
}

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
  LabelCollector labels(width);
  if (field && width > 0) AddTexts(*field, labels);
  if (field && width == 0) AddNumbers(*field, type, origin, labels, notes);
  if (type == FieldType::Boolean) {
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
    const std::optional<double> number = MissingCodeOf(entry, dialect);
    if (number && std::find(rule.values.begin(), rule.values.end(), *number) == rule.values.end())
      rule.values.push_back(*number);
  }
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const MissingRangeDescriptor& range : ranges)
    rule.ranges.push_back({range.min.value_or(-kInfinity), range.max.value_or(kInfinity)});
  return rule;
}

}  // namespace runtime::data
