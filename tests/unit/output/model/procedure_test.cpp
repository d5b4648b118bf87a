#include "host/output/procedure.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/output/proceduredatasource.h"

#include "runtime/data/builder.h"
#include "runtime/output/binding.h"
#include "runtime/output/format/kinds.h"

using runtime::data::DatasetBuilder;
using runtime::output::BindOutput;
using runtime::output::FormatSpecText;
using runtime::output::OutputBinding;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ActiveDataset : public ::testing::Test {
 protected:
  void Bind(std::shared_ptr<const runtime::data::Dataset> dataset) {
    binding.dataset = std::move(dataset);
    previous = BindOutput(&binding);
    bound = true;
  }
  ~ActiveDataset() override {
    if (bound) BindOutput(previous);
  }

  OutputBinding binding;
  OutputBinding* previous = nullptr;
  bool bound = false;
};

using StatisticFormats = ActiveDataset;
using ProcedureSource = ActiveDataset;

}  // namespace

TEST_F(StatisticFormats, followThePrintFormat) {
  struct Case {
    FormatType type;
    int width;
    int decimals;
    const char* mean;
    const char* stdDev;
  };
  const Case cases[] = {
      {kFormatF, 8, 2, "F.4", "F.5"},
      {kFormatF, 3, 0, "F.2", "F.3"},
      {kFormatF, 40, 16, "F.18", "F.19"},
      {kFormatComma, 8, 2, "COMMA.4", "COMMA.5"},
      {kFormatDot, 8, 1, "DOT.3", "DOT.4"},
      {kFormatDollar, 8, 0, "DOLLAR.2", "DOLLAR.3"},
      {kFormatPct, 8, 1, "PCT.3", "PCT.4"},
      {kFormatCCA, 8, 1, "CCA.3", "CCA.4"},
      {kFormatCCE, 8, 1, "CCE.3", "CCE.4"},
      {kFormatE, 10, 3, "F.5", "F.6"},
      {kFormatN, 5, 0, "F.2", "F.3"},
      {kFormatZ, 5, 1, "F.3", "F.4"},
      {kFormatIB, 4, 0, "F.2", "F.3"},
      {kFormatPIBHex, 4, 0, "F.2", "F.3"},
      {kFormatRBHex, 16, 0, "F.2", "F.3"},
      {kFormatG, 8, 2, "F.4", "F.5"},
      {kFormatWkDay, 3, 0, "F.2", "F.3"},
      {kFormatMonth, 9, 0, "F.2", "F.3"},
      {kFormatSDate, 10, 0, "SDATE10", "DTIME13"},
      {kFormatYMDHMS, 19, 0, "YMDHMS19", "DTIME13"},
      {kFormatYMDHMS, 22, 2, "YMDHMS22.2", "DTIME16.2"},
      {kFormatTime, 8, 0, "TIME8", "DTIME13"},
      {kFormatDTime, 12, 0, "DTIME12", "DTIME13"},
      {kFormatQYr, 8, 0, "QYR8", "DTIME13"},
  };
  DatasetBuilder builder;
  int number = 0;
  for (const Case& c : cases)
    builder.AddNumeric("v" + std::to_string(number++), {1}).Format(c.type, c.width, c.decimals);
  builder.AddString("text", {"a"}).Width(20);
  Bind(builder.Build());
  const BpProcedure procedure("p", 0);
  for (int i = 0; i < number; ++i) {
    EXPECT_EQ(FormatSpecText(procedure.Mean(i)), cases[i].mean) << i;
    EXPECT_EQ(FormatSpecText(procedure.StdDev(i)), cases[i].stdDev) << i;
  }
  EXPECT_EQ(FormatSpecText(procedure.Mean(number)), "F.2");
  EXPECT_EQ(FormatSpecText(procedure.StdDev(number)), "F.3");
  EXPECT_EQ(FormatSpecText(procedure.Mean(-1)), "F.2");
  EXPECT_EQ(FormatSpecText(procedure.StdDev(number + 1)), "F.3");
}

TEST_F(StatisticFormats, ofCountsPercentsAndCoefficientsAreFixed) {
  EXPECT_EQ(FormatSpecText(BpProcedure::Count()), "F.0");
  EXPECT_EQ(FormatSpecText(BpProcedure::Percent()), "PCT.1");
  EXPECT_EQ(FormatSpecText(BpProcedure::Coefficient()), "F.3");
}

TEST_F(ProcedureSource, isUnusableWithoutADatasetOrWhenTheSessionSaysSo) {
  {
    const ProcedureDataSource unbound;
    EXPECT_TRUE(unbound.FatalError());
  }
  Bind(nullptr);
  ProcedureDataSource none;
  EXPECT_TRUE(none.FatalError());
  EXPECT_EQ(none.ColumnCount(), 0u);
  EXPECT_EQ(none.NewCaseIterator(0), nullptr);
  binding.dataset = DatasetBuilder().Build();
  const ProcedureDataSource usable;
  EXPECT_FALSE(usable.FatalError());
  EXPECT_EQ(usable.Parent(), nullptr);
  binding.datasetUnusable = true;
  EXPECT_TRUE(usable.FatalError());
}

TEST_F(ProcedureSource, givesItsOwnIteratorAndTellsOfIt) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3});
  builder.AddNumeric("w", {1, 2, 3});
  builder.Weight("w");
  Bind(builder.Build());
  std::vector<const CaseCursor*> opened;
  binding.onCursorOpened = [&](const CaseCursor* cursor) { opened.push_back(cursor); };
  ProcedureDataSource source;
  EXPECT_EQ(source.GetWeightVarIndex(), 1);
  EXPECT_THAT(opened, IsEmpty());
  const std::unique_ptr<MAVO_InputCaseIterator> cases(source.NewCaseIterator(0));
  ASSERT_NE(cases, nullptr);
  EXPECT_THAT(opened, ElementsAre(&cases->Cursor()));
  auto* iterator = dynamic_cast<ProcDSIterator*>(cases.get());
  ASSERT_NE(iterator, nullptr);
  EXPECT_FALSE(iterator->SplitGroupEnd());
  EXPECT_EQ(&iterator->Source(), &source);
  int passed = 0;
  while (iterator->NextCase() != 0) ++passed;
  EXPECT_EQ(passed, 3);
  EXPECT_EQ(iterator->NextCase(), 0);
}
