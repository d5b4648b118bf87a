// The tables of a small survey, built as a procedure builds them, for tests of the renderers.
#pragma once

#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "host/data/datasource.h"
#include "host/output/procedure.h"

#include "runtime/data/builder.h"
#include "runtime/output/binding.h"
#include "runtime/output/model/report.h"

class SurveyReport : public ::testing::Test {
 protected:
  static BpString Fixed(const std::string& text) { return {text, true}; }
  static BpString Data(const std::string& text) { return {text, false}; }

  SurveyReport() {
    runtime::data::DatasetBuilder builder;
    builder.AddNumeric("sex", {1}).Format(kFormatF, 2);
    builder.AddNumeric("income", {1}).Format(kFormatComma, 8, 1);
    source = std::make_unique<MAVO_DataSource>(dataset = builder.Build());
    binding.report = &report;
    binding.dataset = dataset;
    previous = runtime::output::BindOutput(&binding);
    procedure = std::make_unique<BpProcedure>("Codebook", 0);
  }
  ~SurveyReport() override { runtime::output::BindOutput(previous); }

  struct VariableTable {
    BpDimension rows;
    BpCategory value, count, percent;
  };

  VariableTable Open(const std::string& name) {
    BpPivotTable table = procedure->PivotTable(Data(name), Data("Variable Information"), false);
    BpDimension rows = table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder);
    rows.Position(BpDimension::kRows, 1, true, false);
    BpDimension columns = table.Dimension(Fixed("Values"), BpPivotTable::kCreationOrder);
    columns.Position(BpDimension::kColumns, 1, true, false);
    BpCategory value = columns.Category(Fixed("Value"));
    BpCategory count = columns.Category(Fixed("Count"));
    return {rows, value, count, columns.Category(Fixed("Percent"))};
  }

  void AddCategorical() {
    VariableTable table = Open("sex");
    BpGroup standard = table.rows.Group(Fixed("Standard Attributes"), true, BpGroup::kCreationOrder);
    standard.Category(Fixed("Position"));
    table.value.Cell(BpNumber(1, BpProcedure::Count()));
    standard.Category(Fixed("Label"));
    table.value.Cell(Data("Sex of the respondent, as recorded"));
    table.rows.Group(Fixed("Custom Attributes"), true, BpGroup::kCreationOrder);
    BpGroup valid = table.rows.Group(Fixed("Valid Values"), true, BpGroup::kCreationOrder);
    AddValue(table, valid, 1, "Male", 4931, 48.9);
    AddValue(table, valid, 2, "Female", 12, 0.1);
    BpGroup missing = table.rows.Group(Fixed("Missing Values"), true, BpGroup::kCreationOrder);
    AddValue(table, missing, -9, "No answer", 7, 0.7);
    missing.Category(Fixed("System"));
    table.count.Cell(BpNumber(20, BpProcedure::Count()));
    table.percent.Cell(BpNumber(0.2, BpProcedure::Percent()));
  }

  void AddScale() {
    VariableTable table = Open("income");
    BpGroup count = table.rows.Group(Fixed("N"), true, BpGroup::kCreationOrder);
    count.Category(Fixed("Valid"));
    table.value.Cell(BpNumber(9931, BpProcedure::Count()));
    BpGroup center = table.rows.Group(Fixed("Central Tendency and Dispersion"), true, BpGroup::kCreationOrder);
    center.Category(Fixed("Mean"));
    table.value.Cell(BpNumber(12931.5, procedure->Mean(1)));
    center.Category(Fixed("Standard Deviation"));
    table.value.Cell(BpNumber(431.12345, procedure->StdDev(1)));
    center.Category(Fixed("Percentile 25"));
    table.value.Cell(BpNumber(std::numeric_limits<double>::quiet_NaN(), procedure->Mean(1)));
  }

  void AddFile() {
    BpPivotTable table = procedure->PivotTable(Fixed("File Information"), Data("FileInformation"), true);
    BpDimension rows = table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder);
    rows.Category(Fixed("File Name")).Cell(Data("survey.csv"));
    BpCategory documents = rows.Category(Fixed("Documents"));
    documents.Cell(Data("Field work in March.\nWeighted by age.\n"));
    documents.Cell(Data("東京"));
    BpGroup cases = rows.Group(Fixed("Number of Cases"), true, BpGroup::kCreationOrder);
    cases.Category(Fixed("Unweighted")).Cell(BpNumber(12345, BpProcedure::Count()));
    cases.Category(Fixed("Weighted")).Cell(Fixed("<unknown>"));
  }

  std::shared_ptr<const runtime::data::Dataset> dataset;
  std::unique_ptr<MAVO_DataSource> source;
  runtime::output::Report report;
  runtime::output::OutputBinding binding;
  runtime::output::OutputBinding* previous = nullptr;
  std::unique_ptr<BpProcedure> procedure;

 private:
  void AddValue(VariableTable& table, BpGroup& group, double value, const char* label, double count, double percent) {
    OBS cell{};
    cell.number = value;
    group.Category(BpDataValue(source->GetVariable(0), &cell, BpDataValue::kFormattedValue));
    table.value.Cell(Data(label));
    table.count.Cell(BpNumber(count, BpProcedure::Count()));
    table.percent.Cell(BpNumber(percent, BpProcedure::Percent()));
  }
};
