#include "host/output/proceduredatasource.h"

#include <utility>

#include "runtime/output/binding.h"

using runtime::output::CurrentOutput;
using runtime::output::OutputBinding;

namespace {

std::shared_ptr<const runtime::data::Dataset> ActiveDataset() {
  const OutputBinding* output = CurrentOutput();
  return output == nullptr ? nullptr : output->dataset;
}

}  // namespace

ProcDSIterator::ProcDSIterator(const MAVO_DataSource& source, std::unique_ptr<CaseCursor> cursor)
    : MAVO_InputCaseIterator(source, std::move(cursor)) {}
ProcDSIterator::~ProcDSIterator() = default;

ProcedureDataSource::ProcedureDataSource() : MAVO_DataSource(ActiveDataset()) {}
ProcedureDataSource::~ProcedureDataSource() = default;

bool ProcedureDataSource::FatalError() const {
  if (dataset() == nullptr) return true;
  const OutputBinding* output = CurrentOutput();
  return output != nullptr && output->datasetUnusable;
}

// The active dataset is drawn from no other.
const MAVO_DataSource* ProcedureDataSource::Parent() const { return nullptr; }

int ProcedureDataSource::GetWeightVarIndex() const { return WeightIndex(); }

MAVO_InputCaseIterator* ProcedureDataSource::NewCaseIterator(int) {
  std::unique_ptr<CaseCursor> cursor = NewCursor();
  const OutputBinding* output = CurrentOutput();
  if (output != nullptr && output->onCursorOpened) output->onCursorOpened(cursor.get());
  if (cursor == nullptr) return nullptr;
  return std::make_unique<ProcDSIterator>(*this, std::move(cursor)).release();
}
