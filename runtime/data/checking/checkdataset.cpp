#include "runtime/data/checking/checkdataset.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <set>
#include <utility>

#include "runtime/data/checking/checknames.h"
#include "runtime/data/checking/checksets.h"
#include "runtime/data/checking/variablecheck.h"
#include "runtime/data/dictionary/constraints.h"

namespace runtime::data {
namespace {

std::set<int> SetMembers(const Dictionary& dictionary) {
  std::set<int> members;
  for (const VariableSet& set : dictionary.sets)
    for (const std::string& name : set.GetVariableNames(kKeepCase)) members.insert(dictionary.FindVariable(name));
  return members;
}

/// What reading said, but for what the checks find themselves.
void AddNotes(const std::vector<Note>& notes, const std::string& dataFile, std::vector<Finding>& findings) {
  for (const Note& note : notes) {
    if (note.topic != NoteTopic::Other) continue;
    Finding& finding = findings.emplace_back();
    finding.code = CheckCode::Reading;
    finding.file = dataFile;
    // The file stands before the finding anyway.
    const std::string prefix = dataFile + ": ";
    finding.what = note.text.rfind(prefix, 0) == 0 ? note.text.substr(prefix.size()) : note.text;
  }
}

class DatasetCheck {
 public:
  DatasetCheck(const OpenedDataset& opened, const std::string& dataFile)
      : fDataset(*opened.dataset),
        fReading(*opened.reading),
        fDataFile(dataFile),
        fMembers(SetMembers(fDataset.dictionary())),
        fKept(fDataset.dictionary().variables.size()) {
    if (fReading.dictionary) {
      const std::vector<std::string> key = PrimaryKeyOf(*fReading.dictionary);
      if (key.size() == 1) fKey = key.front();
    }
  }

  /// Checks one variable. May be called by several threads, for different variables.
  std::vector<Finding> Check(std::size_t index) {
    const auto variable = static_cast<int>(index);
    auto values = std::make_unique<DistinctValues>(CollectDistinctValues(fDataset, variable));
    VariableCheck check(*fDataset.dictionary().variables[index], variable, fReading, *values, fDataFile);
    CheckCells(check);
    CheckConstraints(check, !fKey.empty() && check.field != nullptr && check.field->name == fKey);
    CheckLabels(check, fMembers.count(variable) > 0);
    CheckSpread(check);
    std::stable_sort(check.findings.begin(), check.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.code < b.code; });
    if (fMembers.count(variable) > 0 || variable == fDataset.dictionary().weight) fKept[index] = std::move(values);
    return std::move(check.findings);
  }

  /// After every variable was checked.
  void CheckSetsAndWeight(std::vector<Finding>& findings) const {
    const ValuesOfVariable valuesOf = [this](int variable) -> const DistinctValues& {
      return *fKept[static_cast<std::size_t>(variable)];
    };
    CheckWeight(fDataset.dictionary(), fReading, fDataFile, valuesOf, findings);
    CheckSets(fDataset.dictionary(), fReading, fDataFile, valuesOf, findings);
  }

 private:
  const Dataset& fDataset;
  const ReadingFacts& fReading;
  const std::string& fDataFile;
  std::set<int> fMembers;
  std::string fKey;                                    // the primary key of one field; empty: none
  std::vector<std::unique_ptr<DistinctValues>> fKept;  // of set members and the weight
};

}  // namespace

std::vector<Finding> CheckDataset(const OpenedDataset& opened, const std::string& dataFile, machine::ThreadPool* pool) {
  std::vector<Finding> findings;
  AddNotes(opened.notes, dataFile, findings);
  CheckFieldsAndNames(*opened.reading, dataFile, findings);

  DatasetCheck check(opened, dataFile);
  const std::size_t variables = opened.dataset->dictionary().variables.size();
  std::vector<std::vector<Finding>> ofVariable(variables);
  const auto work = [&](std::size_t variable) { ofVariable[variable] = check.Check(variable); };
  if (pool != nullptr)
    pool->ForEach(variables, work);
  else
    for (std::size_t variable = 0; variable < variables; ++variable) work(variable);
  for (std::vector<Finding>& found : ofVariable)
    findings.insert(findings.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));

  check.CheckSetsAndWeight(findings);
  return findings;
}

}  // namespace runtime::data
