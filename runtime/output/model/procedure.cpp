#include "host/output/procedure.h"

#include <utility>

#include "runtime/output/binding.h"
#include "runtime/output/model/formatspec.h"
#include "runtime/output/model/report.h"

using runtime::output::CurrentOutput;
using runtime::output::OutputBinding;

namespace {

// Without a report the output goes nowhere, but the procedure runs as ever.
std::shared_ptr<runtime::output::Procedure> OpenProcedure(std::string title, int number) {
  auto procedure = std::make_shared<runtime::output::Procedure>();
  procedure->title = std::move(title);
  procedure->number = number;
  const OutputBinding* output = CurrentOutput();
  if (output != nullptr && output->report != nullptr) output->report->procedures.push_back(procedure);
  return procedure;
}

std::unique_ptr<const MAVO_DataSource> ActiveDictionary() {
  const OutputBinding* output = CurrentOutput();
  if (output == nullptr || output->dataset == nullptr) return nullptr;
  return std::make_unique<const MAVO_DataSource>(output->dataset);
}

// Null for an index that the dictionary does not have.
const MAVO_Variable* FindVariable(const MAVO_DataSource* source, int index) {
  if (source == nullptr || index < 0 || static_cast<unsigned int>(index) >= source->ColumnCount()) return nullptr;
  return &source->GetVariable(index);
}

}  // namespace

BpHeading::BpHeading(std::shared_ptr<runtime::output::Procedure> procedure) : fProcedure(std::move(procedure)) {}
BpHeading::~BpHeading() = default;

BpPivotTable BpHeading::PivotTable(const BpString& title, const BpString& subtype, bool flag) {
  auto table = std::make_shared<runtime::output::Table>();
  table->title = title.content();
  table->subtype = subtype.content();
  table->flag = flag;
  fProcedure->tables.push_back(table);
  const OutputBinding* output = CurrentOutput();
  if (output != nullptr && output->onTableOpened) output->onTableOpened(title.content()->text);
  return BpPivotTable(std::move(table));
}

BpProcedure::BpProcedure(std::string title, int number)
    : BpHeading(OpenProcedure(std::move(title), number)), fSource(ActiveDictionary()) {}
BpProcedure::~BpProcedure() = default;

BpFormatSpec BpProcedure::Count() { return {kFormatF, 0, 0}; }
BpFormatSpec BpProcedure::Percent() { return {kFormatPct, 0, 1}; }
BpFormatSpec BpProcedure::Coefficient() { return {kFormatF, 0, 3}; }

BpFormatSpec BpProcedure::Mean(int variable) const {
  return runtime::output::MeanFormat(FindVariable(fSource.get(), variable));
}

BpFormatSpec BpProcedure::StdDev(int variable) const {
  return runtime::output::StdDevFormat(FindVariable(fSource.get(), variable));
}
