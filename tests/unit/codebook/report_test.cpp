// The run: order of the work, what is written when, and the warnings behind the tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNotDisplayed = "warning: Value labels, counts, and/or percents not displayed for ";

DatasetBuilder survey() {
  DatasetBuilder builder;
  builder.AddNumeric("age", {31, 40, 55, 40});
  builder.AddNumeric("sex", {1, 2, 1, 2}).Level(kLevelNominal).ValueLabel(1, "male").ValueLabel(2, "female");
  builder.AddNumeric("income", {1, 2, 3, 2}).ValueLabel(1, "low").ValueLabel(3, "high");
  builder.AddDichotomySet("$d", {"sex", "income"}, "1");
  return builder;
}

CommandRun run(DatasetBuilder builder, const std::string& text) { return CommandRun(builder.Build(), text); }

TEST(Report, withoutStatisticsOnlyTheDictionaryIsShown) {
  const CommandRun none = run(survey(), "CODEBOOK /FILEINFO CASECOUNT /STATISTICS NONE.");
  EXPECT_TRUE(none.done());
  EXPECT_THAT(none.titles(), ElementsAre("File Information", "age", "sex", "income", "$d"));
  EXPECT_THAT(none.rows("File Information"),
              ElementsAre("Number of Cases > Unweighted | 4", "Number of Cases > Weighted | <unknown>"));
  // The set is described afresh, the variables by their treatment.
  EXPECT_THAT(none.rowsOf("$d", "Multiple"), ElementsAre("Multiple Response Categories > sex | Value: sex",
                                                         "Multiple Response Categories > income | Value: income"));
  EXPECT_THAT(none.rowsOf("sex", "Valid"),
              ElementsAre("Valid Values > 1.00 | Value: male", "Valid Values > 2.00 | Value: female"));
  EXPECT_THAT(none.rowsOf("income", "Labeled"),
              ElementsAre("Labeled Values > 1.00 | Value: low", "Labeled Values > 3.00 | Value: high"));
  EXPECT_THAT(none.rowsOf("age", "N >"), IsEmpty());
  EXPECT_THAT(none.messages(), IsEmpty());
}

TEST(Report, withoutStatisticsAnEmptyDatasetIsNoError) {
  DatasetBuilder builder;
  builder.AddNumeric("v");
  const CommandRun none = run(builder, "CODEBOOK /FILEINFO NAME /STATISTICS NONE.");
  EXPECT_TRUE(none.done());
  EXPECT_THAT(none.titles(), ElementsAre("File Information", "v"));
}

TEST(Report, labelledScaleVariableTakesTwoEntries) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 2, 9}).ValueLabel(2, "two");
  builder.AddNumeric("y", {1, 1, 1, 2}).Level(kLevelNominal);
  const CommandRun both = run(builder, "CODEBOOK /VARINFO VALUELABELS.");
  EXPECT_THAT(both.rowsOf("x", "N >"), ElementsAre("N > Valid | Value: 4", "N > Missing | Value: 0"));
  EXPECT_THAT(both.rowsOf("x", "Labeled"),
              ElementsAre("Labeled Values > 2.00 | Value: two | Count: 2 | Percent: 50.0%"));
  // The table of x used two entries, so y reads its own.
  EXPECT_THAT(both.rowsOf("y", "Valid"), ElementsAre("Valid Values > 1.00 | Count: 3 | Percent: 75.0%",
                                                     "Valid Values > 2.00 | Count: 1 | Percent: 25.0%"));
}

CommandRun withLabels(int count, const std::string& subcommands, MeasurementLevel level = kLevelScale) {
  DatasetBuilder builder;
  runtime::data::VariableBuilder& variable = builder.AddNumeric("v", {1, 2}).Level(level);
  for (int k = 0; k < count; ++k) variable.ValueLabel(k, "label " + std::to_string(k));
  return run(builder, "CODEBOOK v " + subcommands + ".");
}

TEST(Report, moreLabelsThanMaxCatsAreWarnedOfWithoutCounts) {
  EXPECT_THAT(withLabels(201, "/STATISTICS MEAN").messages(), ElementsAre(std::string(kNotDisplayed) + "v."));
  EXPECT_THAT(withLabels(201, "/STATISTICS MEAN", kLevelNominal).messages(),
              ElementsAre(std::string(kNotDisplayed) + "v."));
  EXPECT_THAT(withLabels(201, "/STATISTICS NONE").messages(), ElementsAre(std::string(kNotDisplayed) + "v."));
  EXPECT_THAT(withLabels(201, "/VARINFO LABEL VALUELABELS /STATISTICS NONE").messages(),
              ElementsAre(std::string(kNotDisplayed) + "v."));
}

TEST(Report, asManyLabelsAsMaxCatsAreNotWarnedOf) {
  EXPECT_THAT(withLabels(200, "/STATISTICS MEAN").messages(), IsEmpty());
  EXPECT_THAT(withLabels(200, "/STATISTICS NONE").messages(), IsEmpty());
}

TEST(Report, labelsThatAreNotToBeShownAreNotWarnedOf) {
  EXPECT_THAT(withLabels(201, "/VARINFO LABEL /STATISTICS MEAN").messages(), IsEmpty());
}

TEST(Report, droppedCountsAreWarnedOf) {
  EXPECT_THAT(withLabels(201, "").messages(), ElementsAre(std::string(kNotDisplayed) + "v."));
  EXPECT_THAT(withLabels(201, "/VARINFO LABEL /STATISTICS COUNT", kLevelNominal).messages(),
              ElementsAre(std::string(kNotDisplayed) + "v."));
}

TEST(Report, namesInTheMaxCatsWarningAreJoinedByBareCommas) {
  DatasetBuilder builder;
  for (const char* name : {"a", "b", "c"}) builder.AddNumeric(name, {1, 2, 3, 4, 4, 4}).Level(kLevelNominal);
  builder.AddNumeric("few", {1, 1, 1, 1, 1, 1}).Level(kLevelNominal);
  builder.AddCategorySet("$s", {"a", "b"}, "Set of both");
  EXPECT_THAT(run(builder, "CODEBOOK few a b $s c /OPTIONS MAXCATS=3.").messages(),
              ElementsAre(std::string(kNotDisplayed) + "a,b,Set of both,c."));
}

TEST(Report, setsAreNotAskedForTheirLabels) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1}).ValueLabel(1, "x").ValueLabel(2, "y");
  builder.AddCategorySet("$s", {"a"});
  EXPECT_THAT(run(builder, "CODEBOOK $s a /STATISTICS NONE /OPTIONS MAXCATS=1.").messages(),
              ElementsAre(std::string(kNotDisplayed) + "a."));
}

// A blank before each comma and behind the last name: kept as it is.
TEST(Report, namesWithoutInformationKeepABlankBeforeEachComma) {
  DatasetBuilder builder;
  for (const char* name : {"a", "b"}) builder.AddNumeric(name, {1});
  const CommandRun none = run(builder, "CODEBOOK /VARINFO VALUELABELS /STATISTICS NONE.");
  EXPECT_THAT(none.messages(), ElementsAre("warning: No Variable Information for a ,b ."));
}

TEST(Report, bothWarningsComeInOrderBehindTheTables) {
  DatasetBuilder builder;
  builder.AddNumeric("empty", {1});
  builder.AddNumeric("many", {1}).ValueLabel(1, "x").ValueLabel(2, "y");
  const CommandRun both = run(builder, "CODEBOOK /VARINFO VALUELABELS /STATISTICS NONE /OPTIONS MAXCATS=1.");
  EXPECT_THAT(both.messages(),
              ElementsAre("warning: No Variable Information for empty ,many .", std::string(kNotDisplayed) + "many."));
  EXPECT_THAT(both.titles(), ElementsAre("empty", "many"));
  EXPECT_TRUE(both.done());
}

TEST(Report, emptyDatasetGivesTheErrorAndNothingElse) {
  DatasetBuilder builder;
  builder.AddNumeric("v").ValueLabel(1, "one");
  builder.AddNumeric("w").Level(kLevelNominal);
  const CommandRun empty = run(builder, "CODEBOOK /FILEINFO NAME CASECOUNT.");
  EXPECT_THAT(empty.messages(), ElementsAre("error: Empty dataset."));
  EXPECT_THAT(empty.titles(), IsEmpty());
  EXPECT_FALSE(empty.done());
}

TEST(Report, tablesStandInTheOrderThatWasAskedFor) {
  EXPECT_THAT(run(survey(), "CODEBOOK /STATISTICS NONE /OPTIONS VARORDER=ALPHA SORT=DESCENDING.").titles(),
              ElementsAre("sex", "income", "age", "$d"));
  EXPECT_THAT(run(survey(), "CODEBOOK $d sex age /STATISTICS NONE.").titles(), ElementsAre("$d", "sex", "age"));
}

TEST(Report, statisticsFollowTheOrderOfTheTables) {
  const CommandRun sorted = run(survey(), "CODEBOOK /VARINFO VALUELABELS /OPTIONS VARORDER=ALPHA SORT=DESCENDING.");
  EXPECT_THAT(sorted.rowsOf("sex", "Valid"),
              ElementsAre("Valid Values > 1.00 | Value: male | Count: 2 | Percent: 50.0%",
                          "Valid Values > 2.00 | Value: female | Count: 2 | Percent: 50.0%"));
  EXPECT_THAT(sorted.rowsOf("income", "Labeled"),
              ElementsAre("Labeled Values > 1.00 | Value: low | Count: 1 | Percent: 25.0%",
                          "Labeled Values > 3.00 | Value: high | Count: 1 | Percent: 25.0%"));
  EXPECT_THAT(sorted.rowsOf("age", "Central").front(), "Central Tendency and Dispersion > Mean | Value: 41.5000");
  EXPECT_THAT(sorted.rowsOf("$d", "Multiple").front(),
              "Multiple Response Categories > sex | Value: sex | Count: 2 | Percent: 50.0%");
}

TEST(Report, setListedTwiceHasTwoTables) {
  const CommandRun twice = run(survey(), "CODEBOOK $d $ALL /STATISTICS NONE.");
  EXPECT_THAT(twice.titles(), ElementsAre("$d", "$d"));
  EXPECT_EQ(twice.rows("$d", 0), twice.rows("$d", 1));
}

}  // namespace
}  // namespace codebook::test
