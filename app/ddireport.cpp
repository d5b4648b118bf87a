#include "app/ddireport.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <utility>

#include "app/unweighteddataset.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/output/model/grid.h"

namespace app {
namespace {

using runtime::data::Dataset;
using runtime::data::DdiStatistics;
using runtime::data::Dictionary;
using runtime::data::SummaryStatistics;
using runtime::data::ValueFrequency;
using runtime::data::VariableStatistics;
using runtime::output::CellContent;
using runtime::output::GridLine;

/// What the tables of one report say, for the weighted or the unweighted half of the statistics.
class Half {
 public:
  Half(bool isWeighted, const Dictionary& dictionary, DdiStatistics& statistics)
      : fIsWeighted(isWeighted), fDictionary(dictionary), fStatistics(statistics) {}

  void Take(const runtime::output::Report& report) {
    for (const auto& procedure : report.procedures) {
      for (const auto& table : procedure->tables)
        if (const int index = fDictionary.FindVariable(table->title->text); index >= 0)
          TakeTable(*table, fStatistics.variables[static_cast<std::size_t>(index)]);
      for (const runtime::output::Sketch& sketch : procedure->sketches)
        if (const int index = fDictionary.FindVariable(sketch.item); index >= 0)
          TakeSketch(sketch, fStatistics.variables[static_cast<std::size_t>(index)]);
    }
  }

 private:
  SummaryStatistics& SummaryOf(VariableStatistics& variable) const {
    return fIsWeighted ? variable.weighted : variable.plain;
  }

  void TakeSketch(const runtime::output::Sketch& sketch, VariableStatistics& variable) const {
    SummaryOf(variable).valid = sketch.total - sketch.missing;
    SummaryOf(variable).invalid = sketch.missing;
  }

  void TakeTable(const runtime::output::Table& table, VariableStatistics& variable) const {
    const runtime::output::Grid grid(table);
    for (const GridLine& row : grid.rows())
      for (const runtime::output::Cell& cell : row.category->cells)
        if (cell.content->kind == CellContent::Kind::Number && std::isfinite(cell.content->number))
          TakeNumber(row, cell, variable);
  }

  void TakeNumber(const GridLine& row, const runtime::output::Cell& cell, VariableStatistics& variable) const {
    const CellContent& label = *row.category->label;
    const double number = cell.content->number;
    if (label.kind == CellContent::Kind::DataValue) {
      if (cell.column != nullptr && cell.column->label->text == "Count") FrequencyOf(label, row, variable) = number;
      return;
    }
    SummaryStatistics& summary = SummaryOf(variable);
    if (label.text == "Mean") summary.mean = number;
    if (label.text == "Standard Deviation") summary.deviation = number;
    if (label.text == "Percentile 50") summary.median = number;
  }

  std::optional<double>& FrequencyOf(const CellContent& value, const GridLine& row,
                                     VariableStatistics& variable) const {
    const bool isString = value.origin && value.origin->isString;
    const std::string text = isString ? value.origin->stringValue : runtime::data::NumberWords(value.number);
    ValueFrequency* found = nullptr;
    for (ValueFrequency& frequency : variable.frequencies)
      if (frequency.value == text) found = &frequency;
    if (found == nullptr) {
      const bool isMissing = !row.groups.empty() && row.groups.back()->label->text == "Missing Values";
      variable.frequencies.push_back({text, isMissing, std::nullopt, std::nullopt});
      found = &variable.frequencies.back();
    }
    return fIsWeighted ? found->weightedCount : found->count;
  }

  bool fIsWeighted;
  const Dictionary& fDictionary;
  DdiStatistics& fStatistics;
};

}  // namespace

std::set<std::string> VariablesWithTables(const runtime::output::Report& report, const Dictionary& dictionary) {
  std::set<std::string> variables;
  for (const auto& procedure : report.procedures)
    for (const auto& table : procedure->tables)
      if (const int index = dictionary.FindVariable(table->title->text); index >= 0)
        variables.insert(dictionary.variables[static_cast<std::size_t>(index)]->name);
  return variables;
}

DdiStatistics GatherDdiStatistics(const std::shared_ptr<const Dataset>& dataset, const std::set<std::string>& variables,
                                  const RunCommand& run) {
  const Dictionary& dictionary = dataset->dictionary();
  DdiStatistics statistics;
  statistics.variables.resize(dictionary.variables.size());
  if (dataset->caseCount() >= 0) statistics.cases = dataset->caseCount();
  std::string command = "CODEBOOK";
  for (const auto& variable : dictionary.variables)
    if (variables.count(variable->name) > 0) command += " " + variable->name;
  if (variables.empty() || dataset->caseCount() == 0) return statistics;
  command += " /VARINFO LABEL /STATISTICS COUNT MEAN STDDEV QUARTILES /OPTIONS MAXCATS=1000.";
  Half(false, dictionary, statistics).Take(*run(std::make_shared<UnweightedDataset>(dataset), command));
  if (dictionary.weight >= 0) Half(true, dictionary, statistics).Take(*run(dataset, command));
  return statistics;
}

}  // namespace app
