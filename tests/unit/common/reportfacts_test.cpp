// The facts beside the tables, from a dataset and from a session's commands.
#include "runtime/common/reportfacts.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/aggregation/table.h"
#include "host/output/procedure.h"
#include "host/output/proceduredatasource.h"

#include "runtime/common/session.h"
#include "runtime/data/builder.h"

namespace runtime::common {
namespace {

using data::DatasetBuilder;
using output::ItemFacts;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;

/// a and d are variables, w weights, $S is a set.
std::shared_ptr<const data::Dataset> Survey(const std::string& weight = {}) {
  DatasetBuilder builder;
  builder.FileSpec("/data/of people\\survey.csv").Label("A survey");
  builder.AddNumeric("a", {1, 2, 9}).Label("First").Missing(9.0).Level(MAVO_Variable_Enumerations::kLevelOrdinal);
  builder.AddNumeric("d", {0, 86400, 5}).Format(kFormatSDate, 10).Role(MAVO_Variable_Enumerations::kRoleTarget);
  builder.AddString("s", {"x", "y", ""});
  builder.AddNumeric("w", {0.5, 2, -1}).Label("Weights");
  builder.AddDichotomySet("$S", {"a", "d"}, "1", "Chosen");
  if (!weight.empty()) builder.Weight(weight);
  return builder.Build();
}

void describeFirst() {
  BpProcedure procedure("P", 1);
  for (const char* title : {"$s", "d", "a"})
    procedure.PivotTable(BpString(title, false), BpString("Variable Information", false), true);
  procedure.PivotTable(BpString("s", true), BpString("FileInformation", false), true);
}

/// Counts `variables` as categories and `scale` as scale, and writes a table of each.
void passThrough(const std::vector<int>& variables, const std::vector<int>& scale, int casesLeftOut = 0) {
  BpProcedure procedure("P", 1);
  ProcedureDataSource source;
  const std::unique_ptr<MAVO_InputCaseIterator> cases(source.NewCaseIterator(0));
  std::vector<std::unique_ptr<AggregationTable>> tables;
  for (const int variable : variables) {
    tables.push_back(std::make_unique<AggregationTable>(*cases, false, true, -1));
    auto* dimension = new AggregationVariable(variable, "name");
    dimension->SetIsTotalNo(false);
    tables.back()->CreateCube()->AddCategoricalVariable(dimension, TableEncryptionCodes::kFirstDimension);
    tables.back()->CreateCube()->CreateCubeAggregator();
  }
  for (const int variable : scale) {
    tables.push_back(std::make_unique<AggregationTable>(*cases, false, true, -1));
    tables.back()->CreateCube()->AddScaleStatistics({AggregationStatistic(variable, TableEncryptionCodes::kValid)});
  }
  tables.push_back(std::make_unique<AggregationTable>(*cases, false, true, -1));
  auto* set = new AggregationMCSet({0, 1}, "Chosen");
  tables.back()->CreateCube()->AddCategoricalVariable(set, TableEncryptionCodes::kFirstDimension);
  tables.back()->CreateCube()->CreateCubeAggregator();
  while (cases->NextCase() != 0)
    if (casesLeftOut-- <= 0)
      for (const auto& table : tables) table->AddNewCase();
  for (const auto& table : tables) delete table->GetCubeAggregators().front();
  procedure.PivotTable(BpString("$s", false), BpString("Variable Information", false), true);
}

void countA() { passThrough({0}, {}); }
void countAllBothWays() { passThrough({3, 0, 1}, {0}); }
void leaveTheFirstCaseOut() { passThrough({0}, {}, 1); }
void doNothing() {}

std::vector<std::string> NamesOf(const std::vector<output::Sketch>& sketches) {
  std::vector<std::string> names;
  for (const output::Sketch& sketch : sketches) names.push_back(sketch.item);
  return names;
}

TEST(ReportFacts, areThoseOfTheDataset) {
  const output::ReportFacts facts = FactsOf(*Survey("w"));
  EXPECT_EQ(facts.file, "survey.csv");
  EXPECT_EQ(facts.label, "A survey");
  EXPECT_EQ(facts.cases, 3);
  EXPECT_EQ(facts.weight, "w");
  EXPECT_EQ(facts.weightLabel, "Weights");
  EXPECT_EQ(facts.variables, 4);
  EXPECT_FALSE(facts.weightedCases.has_value());
}

TEST(ReportFacts, areEmptyWhereTheDatasetSaysNothing) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  const output::ReportFacts facts = FactsOf(*builder.Build());
  EXPECT_EQ(facts.file, "");
  EXPECT_EQ(facts.label, "");
  EXPECT_EQ(facts.weight, "");
}

TEST(ReportFacts, aSessionWithoutADatasetHasNone) {
  Session session(nullptr, {{"P", &doNothing}});
  session.Run("P.");
  EXPECT_FALSE(session.report().facts.has_value());
}

TEST(ReportFacts, itemsAreThoseWithATableInTheOrderOfTheDictionary) {
  Session session(Survey(), {{"P", &describeFirst}});
  session.Run("P.");
  const std::vector<ItemFacts>& items = session.report().facts->items;
  ASSERT_THAT(items, SizeIs(3));
  EXPECT_EQ(items[0].name, "a");
  EXPECT_EQ(items[0].label, "First");
  EXPECT_EQ(items[0].type, ItemFacts::Type::Numeric);
  EXPECT_EQ(items[0].level, ItemFacts::Level::Ordinal);
  EXPECT_EQ(items[0].role, ItemFacts::Role::Input);
  EXPECT_EQ(items[0].position, 1);
  EXPECT_EQ(items[1].name, "d");
  EXPECT_EQ(items[1].type, ItemFacts::Type::Date);
  EXPECT_EQ(items[1].level, ItemFacts::Level::Scale);
  EXPECT_EQ(items[1].role, ItemFacts::Role::Target);
  EXPECT_EQ(items[1].position, 2);
  EXPECT_EQ(items[2].name, "$s") << "a set has the name by which it was asked for";
  EXPECT_EQ(items[2].label, "Chosen");
  EXPECT_EQ(items[2].type, ItemFacts::Type::DichotomySet);
  EXPECT_EQ(items[2].level, ItemFacts::Level::Nominal);
  EXPECT_EQ(items[2].position, 0);
  EXPECT_THAT(items[2].items, ElementsAre("a", "d"));
}

TEST(ReportFacts, notesStandWhereThereIsATable) {
  Session session(Survey(), {{"P", &describeFirst}, {"Q", &doNothing}});
  session.Run("Q.");
  EXPECT_THAT(session.report().facts->notes, IsEmpty());
  session.Run("P.");
  EXPECT_THAT(session.report().facts->notes, Not(IsEmpty()));
}

TEST(ReportFacts, weightedCasesAreSummedByEveryPass) {
  Session weighted(Survey("w"), {{"P", &countA}});
  EXPECT_FALSE(weighted.report().facts->weightedCases.has_value());
  weighted.Run("P.");
  EXPECT_THAT(weighted.report().facts->weightedCases, Optional(2.5));
  Session unweighted(Survey(), {{"P", &countA}});
  unweighted.Run("P.");
  EXPECT_THAT(unweighted.report().facts->weightedCases, Optional(3.0));
}

TEST(ReportFacts, weightedCasesAreThoseOfTheFileAlsoWhenTheTablesTakeFewer) {
  Session session(Survey("w"), {{"P", &leaveTheFirstCaseOut}});
  session.Run("P.");
  EXPECT_THAT(session.report().facts->weightedCases, Optional(2.5));
}

TEST(Sketches, areNotGatheredWhereNobodyWantsThem) {
  Session session(Survey(), {{"P", &countA}});
  session.Run("P.");
  EXPECT_THAT(session.report().procedures[0]->sketches, IsEmpty());
}

TEST(Sketches, standByNameWithTheTablesTitleForASet) {
  SessionOptions options;
  options.sketches = true;
  Session session(Survey(), {{"P", &countAllBothWays}}, options);
  session.Run("P.");
  const std::vector<output::Sketch>& sketches = session.report().procedures[0]->sketches;
  ASSERT_THAT(NamesOf(sketches), ElementsAre("$s", "a", "d", "w"));
  EXPECT_EQ(sketches[0].total, 3.0);
  EXPECT_EQ(sketches[0].missing, 0.0);
  EXPECT_EQ(sketches[1].missing, 1.0);
  EXPECT_EQ(sketches[1].mean, 1.5) << "of two tables the one counted as scale";
  EXPECT_THAT(sketches[1].quartiles, SizeIs(3));
  EXPECT_THAT(sketches[1].bins, SizeIs(2));
  EXPECT_THAT(sketches[2].bins, IsEmpty());
}

TEST(Sketches, everyProcedureHasItsOwn) {
  SessionOptions options;
  options.sketches = true;
  Session session(Survey(), {{"P", &countA}, {"Q", &countAllBothWays}, {"R", &describeFirst}}, options);
  session.Run("P.\nR.\nQ.\n");
  EXPECT_THAT(NamesOf(session.report().procedures[0]->sketches), ElementsAre("$s", "a"));
  EXPECT_THAT(session.report().procedures[1]->sketches, IsEmpty());
  EXPECT_THAT(session.report().procedures[2]->sketches, SizeIs(4));
}

TEST(Sketches, aTableThatDidNotTakeEveryCaseHasNone) {
  SessionOptions options;
  options.sketches = true;
  Session session(Survey(), {{"P", &leaveTheFirstCaseOut}}, options);
  session.Run("P.");
  EXPECT_THAT(session.report().procedures[0]->sketches, IsEmpty());
}

}  // namespace
}  // namespace runtime::common
