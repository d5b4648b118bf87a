#include "host/output/pivottable.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/data/datasource.h"
#include "host/output/procedure.h"

#include "runtime/data/builder.h"
#include "runtime/output/binding.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/model/report.h"

using runtime::output::BindOutput;
using runtime::output::CellContent;
using runtime::output::Grid;
using runtime::output::OutputBinding;
using runtime::output::Report;

namespace {

BpString Fixed(const std::string& text) { return {text, true}; }

class BoundOutput : public ::testing::Test {
 protected:
  BoundOutput() {
    binding.report = &report;
    previous = BindOutput(&binding);
  }
  ~BoundOutput() override { BindOutput(previous); }

  Report report;
  OutputBinding binding;
  OutputBinding* previous = nullptr;
};

using PivotTable = BoundOutput;
using CellText = BoundOutput;

}  // namespace

TEST_F(PivotTable, standsInTheReportInCallOrder) {
  std::vector<std::string> opened;
  binding.onTableOpened = [&](const std::string& title) { opened.push_back(title); };
  {
    BpProcedure procedure("Codebook", 7);
    procedure.PivotTable(Fixed("first"), BpString("kind", false), true).MinDataColumnWidth(200);
    procedure.PivotTable(BpString("second", false), BpString("kind", false), false);
  }
  ASSERT_EQ(report.procedures.size(), 1u);
  const auto& procedure = *report.procedures[0];
  EXPECT_EQ(procedure.title, "Codebook");
  EXPECT_EQ(procedure.number, 7);
  ASSERT_EQ(procedure.tables.size(), 2u);
  EXPECT_EQ(procedure.tables[0]->title->text, "first");
  EXPECT_TRUE(procedure.tables[0]->title->fixed);
  EXPECT_TRUE(procedure.tables[0]->flag);
  EXPECT_EQ(procedure.tables[0]->minDataColumnWidth, 200);
  EXPECT_FALSE(procedure.tables[1]->title->fixed);
  EXPECT_FALSE(procedure.tables[1]->flag);
  EXPECT_FALSE(procedure.tables[1]->minDataColumnWidth.has_value());
  EXPECT_EQ(opened, (std::vector<std::string>{"first", "second"}));
}

TEST_F(PivotTable, worksWithNothingBound) {
  BindOutput(nullptr);
  BpProcedure procedure("Codebook", 0);
  BpPivotTable table = procedure.PivotTable(Fixed("t"), Fixed("s"), true);
  BpDimension rows = table.Dimension(Fixed("rows"), BpPivotTable::kCreationOrder);
  rows.Category(Fixed("row")).Cell(Fixed("cell"));
  EXPECT_EQ(procedure.Mean(0).type, kFormatF);
  EXPECT_TRUE(report.procedures.empty());
}

TEST_F(PivotTable, putsAColumnsCellIntoTheRowCreatedLast) {
  BpProcedure procedure("p", 0);
  BpPivotTable table = procedure.PivotTable(Fixed("t"), Fixed("s"), false);
  BpDimension rows = table.Dimension(Fixed("Attributes"), BpPivotTable::kCreationOrder);
  rows.Position(BpDimension::kRows, 1, true, false);
  BpDimension columns = table.Dimension(Fixed("Values"), BpPivotTable::kCreationOrder);
  columns.Position(BpDimension::kColumns, 1, true, false);
  BpCategory value = columns.Category(Fixed("Value"));
  BpCategory count = columns.Category(Fixed("Count"));
  EXPECT_THROW(value.Cell(Fixed("too early")), std::logic_error);

  BpGroup group = rows.Group(Fixed("g"), true, BpGroup::kCreationOrder);
  group.Category(Fixed("a"));
  count.Cell(BpNumber(3, BpProcedure::Count()));
  value.Cell(Fixed("x"));
  rows.Category(Fixed("b"));
  value.Cell(Fixed("y"));

  const auto& model = *report.procedures[0]->tables[0];
  const Grid grid(model);
  ASSERT_EQ(grid.rows().size(), 2u);
  ASSERT_EQ(grid.columns().size(), 2u);
  const auto& first = grid.rows()[0];
  ASSERT_EQ(first.groups.size(), 1u);
  EXPECT_EQ(first.groups[0]->label->text, "g");
  EXPECT_TRUE(first.groups[0]->flag);
  ASSERT_EQ(first.category->cells.size(), 2u);
  EXPECT_EQ(grid.ColumnOf(first.category->cells[0]), 1u);
  EXPECT_EQ(grid.ColumnOf(first.category->cells[1]), 0u);
  EXPECT_EQ(grid.rows()[1].category->cells.size(), 1u);
  EXPECT_TRUE(model.dimensions[1]->inColumns);
  EXPECT_TRUE(model.dimensions[1]->positionFlags[0]);
}

TEST_F(PivotTable, keepsAllHandlesValidHoweverMuchIsAdded) {
  BpProcedure procedure("p", 0);
  BpPivotTable table = procedure.PivotTable(Fixed("t"), Fixed("s"), false);
  BpDimension rows = table.Dimension(Fixed("rows"), BpPivotTable::kCreationOrder);
  BpCategory first = rows.Category(Fixed("first"));
  BpGroup group = rows.Group(Fixed("group"), true, BpGroup::kCreationOrder);
  for (int i = 0; i < 3000; ++i) {
    procedure.PivotTable(Fixed("other"), Fixed("s"), false);
    table.Dimension(Fixed("more"), BpPivotTable::kCreationOrder);
    rows.Category(Fixed("row"));
    group.Category(Fixed("inner"));
  }
  first.Cell(Fixed("late"));
  EXPECT_EQ(report.procedures[0]->tables[0]->dimensions[0]->root.items[0]->cells.size(), 1u);
  EXPECT_EQ(report.procedures[0]->tables[0]->dimensions[0]->root.items[1]->items.size(), 3000u);
}

TEST_F(PivotTable, gridLeavesEmptyGroupsOutAndKnowsUnusedColumns) {
  BpProcedure procedure("p", 0);
  BpPivotTable table = procedure.PivotTable(Fixed("t"), Fixed("s"), false);
  BpDimension rows = table.Dimension(Fixed("rows"), BpPivotTable::kCreationOrder);
  BpDimension columns = table.Dimension(Fixed("columns"), BpPivotTable::kCreationOrder);
  columns.Position(BpDimension::kColumns, 1, true, false);
  BpCategory used = columns.Category(Fixed("used"));
  columns.Category(Fixed("unused"));
  rows.Group(Fixed("empty"), true, BpGroup::kCreationOrder).Group(Fixed("empty too"), true, BpGroup::kCreationOrder);
  rows.Group(Fixed("outer"), true, BpGroup::kCreationOrder)
      .Group(Fixed("inner"), true, BpGroup::kCreationOrder)
      .Category(Fixed("row"))
      .Cell(Fixed("on the row"));
  used.Cell(Fixed("in the column"));
  const Grid grid(*report.procedures[0]->tables[0]);
  EXPECT_EQ(grid.rows().size(), 1u);
  EXPECT_EQ(grid.rowDepth(), 2u);
  ASSERT_EQ(grid.columns().size(), 3u);
  EXPECT_EQ(grid.columns()[0].category, nullptr);
  EXPECT_TRUE(grid.IsUsed(0));
  EXPECT_TRUE(grid.IsUsed(1));
  EXPECT_FALSE(grid.IsUsed(2));
}

TEST_F(CellText, holdsWhatIsShownAndWhatItStandsFor) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("weight", {1}).Label("Body weight").Format(kFormatComma, 8, 1);
  builder.AddString("city", {"Bonn"}).Width(8);
  builder.AddString("code", {"ab"}).Format(kFormatAHex, 4);
  builder.AddNumeric("day", {1}).Format(kFormatSDate, 10);
  const MAVO_DataSource source(builder.Build());

  OBS number{};
  number.number = 1234.56;
  const BpDataValue value(source.GetVariable(0), &number, BpDataValue::kFormattedValue);
  EXPECT_EQ(value.content()->kind, CellContent::Kind::DataValue);
  EXPECT_EQ(value.content()->text, "1,234.6");
  EXPECT_EQ(value.content()->number, 1234.56);
  EXPECT_EQ(value.content()->origin->variable, "weight");
  EXPECT_EQ(value.content()->format.type, kFormatComma);
  EXPECT_FALSE(value.content()->origin->isString);

  std::string bytes = "Köln    ";
  bytes.resize(8);
  const auto* text = reinterpret_cast<const OBS*>(bytes.data());
  const BpDataValue textValue(source.GetVariable(1), text, BpDataValue::kFormattedValueFromLabels);
  EXPECT_TRUE(textValue.content()->origin->isString);
  EXPECT_EQ(textValue.content()->text, "Köln");
  EXPECT_EQ(textValue.content()->origin->stringValue, "Köln");

  const BpDataValue hexadecimal(source.GetVariable(2), reinterpret_cast<const OBS*>("a "),
                                BpDataValue::kFormattedValue);
  EXPECT_EQ(hexadecimal.content()->text, "61");
  EXPECT_EQ(hexadecimal.content()->origin->stringValue, "a");

  number.number = 86400;
  EXPECT_EQ(BpDataValue(source.GetVariable(3), &number, BpDataValue::kFormattedValue).content()->text, "1970/01/02");

  EXPECT_EQ(BpVariable(source.GetVariable(0), BpVariable::kName).content()->text, "weight");
  EXPECT_EQ(BpVariable(source.GetVariable(0), BpVariable::kLabel).content()->text, "Body weight");
  EXPECT_EQ(BpVariable(source.GetVariable(1), BpVariable::kLabel).content()->text, "city");

  const BpNumber missing(std::numeric_limits<double>::quiet_NaN(), BpProcedure::Count());
  EXPECT_EQ(missing.content()->text, ".");
  EXPECT_TRUE(std::isnan(missing.content()->number));
  EXPECT_EQ(BpNumber(2.5, BpProcedure::Count()).content()->text, "3");
  EXPECT_EQ(BpNumber(12.34, BpProcedure::Percent()).content()->text, "12.3%");
  EXPECT_EQ(BpNumber(0.5, BpProcedure::Coefficient()).content()->text, "0.500");
}
