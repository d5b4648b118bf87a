#include "runtime/data/checking/checksets.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <fmt/format.h>

#include "runtime/data/checking/setmembers.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

bool Occurs(const DistinctValues& values, const std::string& counted) {
  if (values.isString)
    return std::any_of(values.values.begin(), values.values.end(),
                       [&](const DistinctValue& value) { return value.text == counted; });
  NumberReading reading;
  if (!ReadNumberText(Trimmed(counted), reading)) return false;
  return std::any_of(values.values.begin(), values.values.end(),
                     [&](const DistinctValue& value) { return value.number == reading.value; });
}

Finding AboutSet(CheckCode code, const std::string& file, const std::string& set, std::string what) {
  Finding finding;
  finding.code = code;
  finding.file = file;
  finding.variable = set;
  finding.what = std::move(what);
  return finding;
}

void CheckCountedValue(const VariableSet& set, const Dictionary& dictionary, const std::string& file,
                       const ValuesOfVariable& valuesOf, std::vector<Finding>& findings) {
  const std::string counted = set.GetValue();
  const std::vector<std::string> members = set.GetVariableNames(kKeepCase);
  std::vector<std::string> without;
  for (const std::string& member : members)
    if (!Occurs(valuesOf(dictionary.FindVariable(member)), counted)) without.push_back(QuotedCell(member));
  if (without.empty()) return;
  constexpr std::size_t kMostNamed = 10;
  std::string list;
  for (std::size_t i = 0; i < std::min(without.size(), kMostNamed); ++i) list += (i == 0 ? "" : ", ") + without[i];
  if (without.size() > kMostNamed) list += fmt::format(" and {} more", without.size() - kMostNamed);
  Finding finding = AboutSet(CheckCode::CountedValueNeverOccurs, file, set.GetName(kKeepCase),
                             without.size() == members.size()
                                 ? fmt::format("the counted value {} occurs in no member", QuotedCell(counted))
                                 : fmt::format("the counted value {} does not occur in {}", QuotedCell(counted), list));
  finding.value = counted;
  finding.count = static_cast<std::int64_t>(without.size());
  findings.push_back(std::move(finding));
}

}  // namespace

void CheckSets(const Dictionary& dictionary, const ReadingFacts& reading, const std::string& dataFile,
               const ValuesOfVariable& valuesOf, std::vector<Finding>& findings) {
  const std::string& file = reading.dictionary ? reading.dictionary->origin : dataFile;
  if (reading.dictionary)
    for (const UnknownSetMember& unknown : UnknownSetMembers(reading)) {
      findings.push_back(AboutSet(CheckCode::UnknownSetMember, file, unknown.set,
                                  fmt::format("the member {} is not in the data", QuotedCell(unknown.member))));
      findings.back().value = unknown.member;
    }
  for (const VariableSet& set : dictionary.sets)
    if (set.GetType() == VariableSet::kDichotomySet) CheckCountedValue(set, dictionary, file, valuesOf, findings);
}

void CheckWeight(const Dictionary& dictionary, const ReadingFacts& reading, const std::string& dataFile,
                 const ValuesOfVariable& valuesOf, std::vector<Finding>& findings) {
  if (dictionary.weight < 0) return;
  const auto index = static_cast<std::size_t>(dictionary.weight);
  const VariableRecord& variable = *dictionary.variables[index];
  const DistinctValues& values = valuesOf(dictionary.weight);
  struct Kind {
    CheckCode code;
    const char* words;
    std::int64_t count = 0;
    std::int64_t first = -1;

    void Take(std::int64_t cells, std::int64_t row) {
      count += cells;
      if (first < 0 || (row >= 0 && row < first)) first = row;
    }
  };
  Kind negative{CheckCode::WeightNegative, "negative"};
  Kind missing{CheckCode::WeightMissing, "missing"};
  Kind zero{CheckCode::WeightZero, "0"};
  if (values.systemMissing > 0) missing.Take(values.systemMissing, values.firstSystemMissingRow);
  for (const DistinctValue& value : values.values) {
    if (variable.missing.holds(value.number))
      missing.Take(value.count, value.firstRow);
    else if (value.number < 0)
      negative.Take(value.count, value.firstRow);
    else if (value.number == 0)
      zero.Take(value.count, value.firstRow);
  }
  for (const Kind& kind : {negative, missing, zero}) {
    if (kind.count == 0) continue;
    Finding finding = AboutSet(kind.code, dataFile, variable.name,
                               kind.count == 1 ? fmt::format("the weight of 1 case is {}", kind.words)
                                               : fmt::format("the weights of {} cases are {}", kind.count, kind.words));
    if (const FieldDescriptor* field = reading.FieldOf(index)) finding.variable = field->name;
    finding.column = dictionary.weight + 1;
    finding.row = kind.first + 1;
    finding.count = kind.count;
    findings.push_back(std::move(finding));
  }
}

}  // namespace runtime::data
