#include "runtime/data/builder.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "runtime/data/store/numericpart.h"
#include "runtime/data/store/stringtable.h"

namespace runtime::data {

namespace {

constexpr std::size_t kRowsOfGroup = 16'384;

MAVO_Format MakeFormat(FormatType type, int width, int decimals) {
  return {static_cast<std::uint16_t>(width), static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(decimals)};
}

std::string WithoutTrailingBlanks(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

MAVO_VLImplPointer NumberLabels(const std::vector<std::pair<double, std::string>>& pairs) {
  auto list = std::make_shared<ValueLabelList>();
  for (const auto& [value, label] : pairs) {
    ValueLabelList::Entry entry;
    entry.number.number = value;
    entry.label = label;
    list->entries.push_back(std::move(entry));
  }
  auto& entries = list->entries;
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.number.number < b.number.number; });
  entries.erase(std::unique(entries.begin(), entries.end(),
                            [](const auto& a, const auto& b) { return a.number.number == b.number.number; }),
                entries.end());
  return MAVO_VLImplPointer(std::move(list));
}

MAVO_VLImplPointer TextLabels(const std::vector<std::pair<std::string, std::string>>& pairs, int width) {
  auto list = std::make_shared<ValueLabelList>();
  list->width = width;
  for (const auto& [value, label] : pairs) {
    ValueLabelList::Entry entry;
    entry.text = value;
    entry.text.resize(static_cast<std::size_t>(width), ' ');
    entry.label = label;
    list->entries.push_back(std::move(entry));
  }
  auto& entries = list->entries;
  std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.text < b.text; });
  entries.erase(
      std::unique(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.text == b.text; }),
      entries.end());
  return MAVO_VLImplPointer(std::move(list));
}

}  // namespace

VariableBuilder::VariableBuilder(std::string name, std::vector<double> cells)
    : fIsString(false), fNumbers(std::move(cells)) {
  fRecord.name = std::move(name);
  fRecord.level = MAVO_Variable_Enumerations::kLevelScale;
}

VariableBuilder::VariableBuilder(std::string name, std::vector<std::string> cells)
    : fIsString(true), fTexts(std::move(cells)) {
  fRecord.name = std::move(name);
  fRecord.level = MAVO_Variable_Enumerations::kLevelNominal;
  fRecord.width = 1;
  for (const std::string& text : fTexts) Width(static_cast<int>(WithoutTrailingBlanks(text).size()));
}

VariableBuilder& VariableBuilder::Label(std::string label) {
  fRecord.label = std::move(label);
  return *this;
}

VariableBuilder& VariableBuilder::ValueLabel(double value, std::string label) {
  fNumberLabels.emplace_back(value, std::move(label));
  return *this;
}

VariableBuilder& VariableBuilder::ValueLabel(std::string value, std::string label) {
  value = WithoutTrailingBlanks(std::move(value));
  Width(static_cast<int>(value.size()));
  fTextLabels.emplace_back(std::move(value), std::move(label));
  return *this;
}

VariableBuilder& VariableBuilder::Missing(double value) {
  fRecord.missing.values.push_back(value);
  return *this;
}

VariableBuilder& VariableBuilder::Missing(std::string value) {
  fRecord.missing.texts.push_back(WithoutTrailingBlanks(std::move(value)));
  return *this;
}

VariableBuilder& VariableBuilder::MissingRange(double low, double high) {
  fRecord.missing.ranges.push_back({low, high});
  return *this;
}

VariableBuilder& VariableBuilder::Level(MAVO_Variable::MeasurementLevel level) {
  fRecord.level = level;
  return *this;
}

VariableBuilder& VariableBuilder::Role(MAVO_Variable::Role role) {
  fRecord.role = role;
  return *this;
}

VariableBuilder& VariableBuilder::Format(FormatType type, int width, int decimals) {
  fRecord.print = MakeFormat(type, width, decimals);
  fHasFormat = true;
  return *this;
}

VariableBuilder& VariableBuilder::WriteFormat(FormatType type, int width, int decimals) {
  fRecord.write = MakeFormat(type, width, decimals);
  fHasWriteFormat = true;
  return *this;
}

VariableBuilder& VariableBuilder::Width(int width) {
  if (fIsString) fRecord.width = std::max(fRecord.width, width);
  return *this;
}

VariableBuilder& VariableBuilder::Attribute(std::string name, std::vector<std::string> values) {
  fRecord.attributes.Add(std::move(name), std::move(values));
  return *this;
}

VariableBuilder& DatasetBuilder::AddNumeric(std::string name, std::vector<double> cells) {
  return fVariables.emplace_back(std::move(name), std::move(cells));
}

VariableBuilder& DatasetBuilder::AddString(std::string name, std::vector<std::string> cells) {
  return fVariables.emplace_back(std::move(name), std::move(cells));
}

DatasetBuilder& DatasetBuilder::AddSet(VariableSet set) {
  fDictionary.sets.push_back(std::move(set));
  return *this;
}

DatasetBuilder& DatasetBuilder::AddDichotomySet(std::string name, std::vector<std::string> variables,
                                                std::string countedValue, std::string label,
                                                bool labelledByCountedValues) {
  VariableSet set;
  set.SetName(std::move(name));
  set.SetLabel(std::move(label));
  set.SetType(VariableSet::kDichotomySet);
  set.SetVariableNames(std::move(variables));
  set.SetValue(std::move(countedValue));
  set.SetLabelledByCountedValues(labelledByCountedValues);
  return AddSet(std::move(set));
}

DatasetBuilder& DatasetBuilder::AddCategorySet(std::string name, std::vector<std::string> variables,
                                               std::string label) {
  VariableSet set;
  set.SetName(std::move(name));
  set.SetLabel(std::move(label));
  set.SetType(VariableSet::kCategorySet);
  set.SetVariableNames(std::move(variables));
  return AddSet(std::move(set));
}

DatasetBuilder& DatasetBuilder::Weight(std::string variable) {
  fWeight = std::move(variable);
  return *this;
}

DatasetBuilder& DatasetBuilder::FileSpec(std::string fileSpec) {
  fDictionary.fileSpec = std::move(fileSpec);
  return *this;
}

DatasetBuilder& DatasetBuilder::Label(std::string label) {
  fDictionary.label = std::move(label);
  return *this;
}

DatasetBuilder& DatasetBuilder::AddDocument(std::vector<std::string> lines) {
  fDictionary.documents.emplace_back(std::move(lines));
  return *this;
}

DatasetBuilder& DatasetBuilder::Attribute(std::string name, std::vector<std::string> values) {
  fDictionary.attributes.Add(std::move(name), std::move(values));
  return *this;
}

DatasetBuilder& DatasetBuilder::BlockRows(std::int64_t rows) {
  fBlockRows = rows;
  return *this;
}

std::shared_ptr<const Dataset> DatasetBuilder::Build(std::int64_t chunkRows) {
  const std::size_t rows = fVariables.empty() ? 0 : fVariables.front().cellCount();
  for (VariableBuilder& variable : fVariables) {
    VariableRecord& record = variable.fRecord;
    if (!variable.fHasFormat)
      record.print = variable.fIsString ? MakeFormat(kFormatA, record.width, 0) : MakeFormat(kFormatF, 8, 2);
    if (!variable.fHasWriteFormat) record.write = record.print;
    if (variable.fIsString && !variable.fTextLabels.empty())
      record.valueLabels = TextLabels(variable.fTextLabels, record.width);
    if (!variable.fIsString && !variable.fNumberLabels.empty())
      record.valueLabels = NumberLabels(variable.fNumberLabels);

    if (variable.cellCount() != rows) throw std::invalid_argument("columns of different length");
    fDictionary.variables.push_back(std::make_shared<const VariableRecord>(std::move(record)));
  }
  fDictionary.IndexNames();

  if (!fWeight.empty()) {
    fDictionary.weight = fDictionary.FindVariable(fWeight);
    if (fDictionary.weight < 0) throw std::invalid_argument("no variable to weight by: " + fWeight);
    if (fVariables[static_cast<std::size_t>(fDictionary.weight)].fIsString)
      throw std::invalid_argument("a string variable to weight by: " + fWeight);
  }
  return std::make_shared<ColumnarDataset>(std::move(fDictionary), StoreColumns(rows), static_cast<std::int64_t>(rows),
                                           chunkRows);
}

std::vector<StoredColumn> DatasetBuilder::StoreColumns(std::size_t rows) const {
  const auto groups = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  std::vector<StoredColumn> columns;
  std::vector<std::shared_ptr<ArenaStringTable>> tables;
  for (const VariableBuilder& variable : fVariables) {
    tables.push_back(variable.fIsString ? std::make_shared<ArenaStringTable>() : nullptr);
    columns.push_back({groups, columns.size(), tables.back()});
  }

  const std::size_t groupRows = fBlockRows > 0 ? static_cast<std::size_t>(fBlockRows) : kRowsOfGroup;
  std::vector<NumericPart> numbers(fVariables.size());
  for (std::size_t first = 0; first < rows; first += groupRows) {
    RowGroup group(std::min(groupRows, rows - first), fVariables.size());
    for (std::size_t i = 0; i < fVariables.size(); ++i) {
      const VariableBuilder& variable = fVariables[i];
      numbers[i].Clear();
      if (!variable.fIsString) numbers[i].AppendDoubles(variable.fNumbers.data() + first, group.rows());
      group.AddColumn(variable.fIsString ? ColumnStorage::StringCode : numbers[i].storage());
    }
    group.Allocate();
    for (std::size_t i = 0; i < fVariables.size(); ++i) {
      if (!fVariables[i].fIsString) {
        std::memcpy(group.Cells(i), numbers[i].cells(), numbers[i].bytes());
        continue;
      }
      auto* const codes = reinterpret_cast<std::uint32_t*>(group.Cells(i));
      for (std::size_t row = 0; row < group.rows(); ++row)
        codes[row] = tables[i]->Enter(fVariables[i].fTexts[first + row]);
    }
    groups->Append(std::move(group));
  }
  return columns;
}

}  // namespace runtime::data
