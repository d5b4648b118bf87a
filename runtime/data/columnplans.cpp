#include "runtime/data/columnplans.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

/// What the dialect makes of a cell, and what JSON has no value for, is an empty cell, which then is missing.
void AddEmptyText(std::vector<LabelledValue>& missing) {
  for (const LabelledValue& entry : missing)
    if (entry.value.empty()) return;
  missing.push_back({});
}

void MakeNullsMissing(TableDescriptor& descriptor) {
  if (!descriptor.inlineData && !descriptor.dialect.nullSequence) return;
  AddEmptyText(descriptor.missingValues);
  for (FieldDescriptor& field : descriptor.fields) AddEmptyText(field.missingValues);
}

}  // namespace

std::vector<ColumnPlan> PlanFor(const TableDescriptor* descriptor, const std::vector<const FieldDescriptor*>& fields) {
  std::vector<ColumnPlan> plans;
  plans.reserve(fields.size());
  for (const FieldDescriptor* field : fields) {
    ColumnPlan plan;
    if (field != nullptr)
      plan = {field->dialect, field->missingValues,
              fmt::format("{}: field {}", descriptor->origin, QuotedCell(field->name))};
    else if (descriptor != nullptr)
      plan.missing = descriptor->missingValues;
    else
      plan.missing = {LabelledValue{}};
    plans.push_back(std::move(plan));
  }
  return plans;
}

void InferNothing(std::vector<ColumnPlan>& plans) {
  for (ColumnPlan& plan : plans)
    if (plan.dialect.type == FieldType::Inferred) plan.dialect.type = FieldType::String;
}

std::vector<TypeDecision> TypeDecisions(TypedTable& table, const std::vector<const FieldDescriptor*>& fields,
                                        bool sourceHasTypes) {
  std::vector<TypeDecision> decisions;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const ColumnFacts& facts = table.columns[i].facts;
    TypeDecision& decision = decisions.emplace_back();
    decision.header = facts.header;
    decision.type = facts.type;
    decision.rows = facts.rows;
    decision.blankCells = facts.blankCells;
    if (fields[i] != nullptr && fields[i]->dialect.type != FieldType::Inferred)
      decision.origin = TypeOrigin::Dictionary;
    else if (sourceHasTypes)
      decision.origin = TypeOrigin::DataFile;
    else if (!facts.inferred)
      decision.origin = TypeOrigin::Asked;
    if (decision.origin == TypeOrigin::Cells) decision.steps = std::move(table.steps[i]);
  }
  return decisions;
}

const TableDescriptor* Prepared(TableDescriptor& descriptor, const OpenOptions& options) {
  // The weight that is asked for stands instead of the dictionary's, which may then be as wrong as it likes.
  if (options.weight) descriptor.weight.reset();
  MakeNullsMissing(descriptor);
  return &descriptor;
}

void KeepTextColumns(const InlineTable& data, const std::vector<std::string>& headers, std::vector<ColumnPlan>& plans) {
  for (std::size_t column = 0; column < plans.size(); ++column)
    if (plans[column].dialect.type == FieldType::Inferred &&
        std::find(data.textColumns.begin(), data.textColumns.end(), headers[column]) != data.textColumns.end())
      plans[column].dialect.type = FieldType::String;
}

}  // namespace runtime::data
