#include "host/data/datasource.h"

#include <limits>
#include <utility>

#include "runtime/data/dataset.h"

MAVO_DataSource::MAVO_DataSource(std::shared_ptr<const runtime::data::Dataset> dataset) : fDataset(std::move(dataset)) {
  if (!fDataset) return;
  const auto& records = fDataset->dictionary().variables;
  fVariables.reserve(records.size());
  for (const auto& record : records) fVariables.emplace_back(record);
}

MAVO_DataSource::~MAVO_DataSource() = default;

unsigned int MAVO_DataSource::ColumnCount() const { return static_cast<unsigned int>(fVariables.size()); }

const MAVO_Variable& MAVO_DataSource::GetVariable(int index) const {
  return fVariables[static_cast<std::size_t>(index)];
}

MAVO_Variable& MAVO_DataSource::GetVariable(int index) { return fVariables[static_cast<std::size_t>(index)]; }

int MAVO_DataSource::FindVarIndex(const char* name, int) const {
  return fDataset ? fDataset->dictionary().FindVariable(name) : -1;
}

std::vector<VariableSetImpl> MAVO_DataSource::GetMRSets() const {
  std::vector<VariableSetImpl> names;
  if (!fDataset) return names;
  const std::vector<VariableSet>& sets = fDataset->dictionary().sets;
  names.reserve(sets.size());
  for (const VariableSet& set : sets) names.emplace_back(set.GetName(kKeepCase));
  return names;
}

const char* MAVO_DataSource::GetFileSpec() const {
  return fDataset && fDataset->dictionary().fileSpec ? fDataset->dictionary().fileSpec->c_str() : nullptr;
}

const char* MAVO_DataSource::GetLabel() const {
  return fDataset && fDataset->dictionary().label ? fDataset->dictionary().label->c_str() : nullptr;
}

const DatasourceAttributes& MAVO_DataSource::GetAttributes() const {
  static const DatasourceAttributes none;
  return fDataset ? fDataset->dictionary().attributes : none;
}

int MAVO_DataSource::WeightIndex() const { return fDataset ? fDataset->dictionary().weight : -1; }

MAVO_InputCaseIterator* MAVO_DataSource::NewCaseIterator(int) {
  std::unique_ptr<CaseCursor> cursor = NewCursor();
  return cursor ? new MAVO_InputCaseIterator(*this, std::move(cursor)) : nullptr;
}

int MAVO_DataSource::NumberOfCases() {
  if (!fDataset) return -1;
  const std::int64_t count = fDataset->caseCount();
  if (count < 0 || count > std::numeric_limits<int>::max()) return -1;
  return static_cast<int>(count);
}

std::unique_ptr<CaseCursor> MAVO_DataSource::NewCursor() const { return fDataset ? fDataset->NewCursor() : nullptr; }

std::vector<VariableSet> VariableSets(const MAVO_DataSource& source, VarSetsType type) {
  if (!source.fDataset || type != kMultipleResponseSets) return {};
  return source.fDataset->dictionary().sets;
}

std::vector<DSDocument> GetDocuments(const MAVO_DataSource& source) {
  if (!source.fDataset) return {};
  return source.fDataset->dictionary().documents;
}
