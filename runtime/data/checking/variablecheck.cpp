#include "runtime/data/checking/variablecheck.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/checking/checkdataset.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

std::string TimeWords(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::floor(seconds));
  return fmt::format("{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string DateWords(double seconds, bool withDay) {
  using namespace std::chrono;
  constexpr double kSecondsADay = 86400;
  const year_month_day date{sys_days{days{static_cast<int>(std::floor(seconds / kSecondsADay))}}};
  const std::string month = fmt::format("{:04}-{:02}", int{date.year()}, unsigned{date.month()});
  return withDay ? fmt::format("{}-{:02}", month, unsigned{date.day()}) : month;
}

std::vector<OwnLabel> LabelsOf(const VariableRecord& variable) {
  std::vector<OwnLabel> labels;
  MAVO_ValueLabelMap map(variable.valueLabels);
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (map.GetNextPair(value, label) != 0) {
    OwnLabel& entry = labels.emplace_back();
    entry.label = label;
    if (variable.width == 0) {
      entry.number = value->number;
      continue;
    }
    entry.text.assign(reinterpret_cast<const char*>(value), static_cast<std::size_t>(variable.width));
    entry.text.erase(entry.text.find_last_not_of(' ') + 1);
  }
  if (variable.width > 0)
    std::sort(labels.begin(), labels.end(), [](const OwnLabel& a, const OwnLabel& b) { return a.text < b.text; });
  return labels;
}

}  // namespace

std::string NumberOfType(double number, FieldType type) {
  constexpr double kSecondsADay = 86400;
  constexpr double kFarthest = 1e11;  // some three thousand years
  const bool isMoment = type == FieldType::Date || type == FieldType::DateTime || type == FieldType::YearMonth;
  if (isMoment && std::fabs(number) < kFarthest) {
    if (type != FieldType::DateTime) return DateWords(number, type == FieldType::Date);
    const double ofDay = number - std::floor(number / kSecondsADay) * kSecondsADay;
    return DateWords(number, true) + "T" + TimeWords(ofDay);
  }
  if (type == FieldType::Time && number >= 0 && number < kFarthest) return TimeWords(number);
  return NumberWords(number);
}

std::string Cells(std::int64_t count) { return count == 1 ? "1 cell" : fmt::format("{} cells", count); }

VariableCheck::VariableCheck(const VariableRecord& record, int index, const ReadingFacts& reading,
                             const DistinctValues& distinct, const std::string& data)
    : variable(record),
      facts(reading.columns[static_cast<std::size_t>(index)]),
      field(reading.FieldOf(static_cast<std::size_t>(index))),
      values(distinct),
      dataFile(data),
      dictionaryFile(reading.dictionary ? reading.dictionary->origin : data),
      labels(LabelsOf(record)),
      fIndex(index) {}

bool VariableCheck::IsMissing(const DistinctValue& value) const {
  if (!values.isString) return variable.missing.holds(value.number);
  const std::vector<std::string>& texts = variable.missing.texts;
  return std::find(texts.begin(), texts.end(), value.text) != texts.end();
}

const std::string* VariableCheck::LabelOf(const DistinctValue& value) const {
  const auto at = values.isString
                      ? std::lower_bound(labels.begin(), labels.end(), value.text,
                                         [](const OwnLabel& entry, std::string_view text) { return entry.text < text; })
                      : std::lower_bound(labels.begin(), labels.end(), value.number,
                                         [](const OwnLabel& entry, double number) { return entry.number < number; });
  if (at == labels.end()) return nullptr;
  return (values.isString ? at->text == value.text : at->number == value.number) ? &at->label : nullptr;
}

bool VariableCheck::Occurs(const OwnLabel& labelled) const {
  const std::vector<DistinctValue>& all = values.values;
  if (values.isString) {
    const auto at =
        std::lower_bound(all.begin(), all.end(), std::string_view(labelled.text),
                         [](const DistinctValue& value, std::string_view text) { return value.text < text; });
    return at != all.end() && at->text == labelled.text;
  }
  const auto at = std::lower_bound(all.begin(), all.end(), labelled.number,
                                   [](const DistinctValue& value, double number) { return value.number < number; });
  return at != all.end() && at->number == labelled.number;
}

std::string VariableCheck::ValueWords(const DistinctValue& value) const {
  return values.isString ? std::string(value.text) : NumberOfType(value.number, facts.type);
}

std::string VariableCheck::Quoted(const DistinctValue& value) const {
  return values.isString ? QuotedCell(value.text) : ValueWords(value);
}

std::int64_t VariableCheck::MissingCells(std::int64_t& firstRow) const {
  std::int64_t count = values.systemMissing;
  firstRow = values.firstSystemMissingRow;
  for (const DistinctValue& value : values.values) {
    if (!IsMissing(value)) continue;
    count += value.count;
    if (firstRow < 0 || value.firstRow < firstRow) firstRow = value.firstRow;
  }
  return count;
}

std::int64_t VariableCheck::ValidCells() const {
  std::int64_t first = -1;
  return values.rows - MissingCells(first);
}

Finding& VariableCheck::Add(CheckCode code, std::string what, std::int64_t row, std::int64_t count) {
  Finding& finding = findings.emplace_back();
  finding.code = code;
  finding.file = dataFile;
  finding.variable = field ? field->name : facts.header;
  if (finding.variable.empty()) finding.variable = variable.name;
  finding.column = fIndex + 1;
  finding.row = row + 1;
  finding.count = count;
  finding.what = std::move(what);
  return finding;
}

void VariableCheck::AddValues(CheckCode code, const std::vector<const DistinctValue*>& found,
                              const std::function<std::string(const DistinctValue&)>& what) {
  const std::size_t named = std::min(found.size(), kMostValuesNamed);
  for (std::size_t i = 0; i < named; ++i)
    Add(code, what(*found[i]), found[i]->firstRow, found[i]->count).value = ValueWords(*found[i]);
  if (named == found.size()) return;
  std::int64_t cells = 0;
  std::int64_t first = found[named]->firstRow;
  for (std::size_t i = named; i < found.size(); ++i) {
    cells += found[i]->count;
    first = std::min(first, found[i]->firstRow);
  }
  std::string rest = fmt::format("{} further values of this kind", found.size() - named);
  if (cells > 0) rest += ", in " + Cells(cells);
  Add(code, std::move(rest), first, cells);
}

}  // namespace runtime::data
