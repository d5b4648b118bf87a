// The Variable Information table.
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/tableoutline.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr double kSystemMissing = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> rowsOfV(DatasetBuilder& builder, const std::string& subcommands) {
  return CommandRun(builder.Build(), "CODEBOOK v " + subcommands + ".").rows("v");
}

TEST(VariableInformation, missingLabelShowsNone) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  EXPECT_THAT(rowsOfV(builder, "/VARINFO LABEL /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Label | Value: <none>"));
  DatasetBuilder labelled;
  labelled.AddNumeric("v", {1}).Label("Age in years");
  EXPECT_THAT(rowsOfV(labelled, "/VARINFO LABEL /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Label | Value: Age in years"));
}

TEST(VariableInformation, formatIsTheWriteFormat) {
  const auto shown = [](int type, int width, int decimals) {
    DatasetBuilder builder;
    builder.AddNumeric("v", {1}).Format(kFormatE, 12, 4).WriteFormat(static_cast<FormatType>(type), width, decimals);
    return rowsOfV(builder, "/VARINFO FORMAT /STATISTICS NONE").front();
  };
  EXPECT_EQ(shown(5, 8, 2), "Standard Attributes > Format | Value: F8.2");
  EXPECT_EQ(shown(5, 8, 0), "Standard Attributes > Format | Value: F8");
  EXPECT_EQ(shown(13, 8, 0), "Standard Attributes > Format | Value: badFormat8");
}

TEST(VariableInformation, everyRoleHasItsTextAndAnyOtherIsInput) {
  const std::vector<std::pair<int, std::string>> roles = {{0, "Input"}, {1, "Target"},    {2, "Both"},
                                                          {3, "None"},  {4, "Partition"}, {5, "Split"},
                                                          {7, "Input"}, {6, "Input"},     {-1, "Input"}};
  for (const auto& [role, text] : roles) {
    DatasetBuilder builder;
    builder.AddNumeric("v", {1}).Role(static_cast<Role>(role));
    EXPECT_THAT(rowsOfV(builder, "/VARINFO ROLE /STATISTICS NONE"),
                ElementsAre("Standard Attributes > Role | Value: " + text))
        << role;
  }
}

TEST(VariableInformation, everyLevelHasItsTextAndAnyOtherIsUnknown) {
  const std::vector<std::pair<int, std::string>> levels = {
      {0, "Unknown"}, {1, "Nominal"}, {2, "Ordinal"}, {3, "Scale"}, {4, "Unknown"}};
  for (const auto& [level, text] : levels) {
    DatasetBuilder builder;
    builder.AddNumeric("v", {1}).Level(static_cast<MeasurementLevel>(level));
    EXPECT_THAT(rowsOfV(builder, "/VARINFO MEASURE /STATISTICS NONE"),
                ElementsAre("Standard Attributes > Measurement | Value: " + text))
        << level;
  }
}

TEST(VariableInformation, typeIsNumericOrString) {
  DatasetBuilder numeric;
  numeric.AddNumeric("v", {1});
  EXPECT_THAT(rowsOfV(numeric, "/VARINFO TYPE /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Type | Value: Numeric"));
  DatasetBuilder text;
  text.AddString("v", {"a"});
  EXPECT_THAT(rowsOfV(text, "/VARINFO TYPE /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Type | Value: String"));
}

TEST(VariableInformation, positionAloneWithoutStatisticsIsTheOnlyRow) {
  DatasetBuilder builder;
  builder.AddNumeric("first", {1});
  builder.AddNumeric("v", {1}).ValueLabel(1, "one").Attribute("Note", {"x"});
  EXPECT_THAT(rowsOfV(builder, "/VARINFO POSITION /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Position | Value: 2"));
}

TEST(VariableInformation, tooManyDistinctValuesShowNoValueRows) {
  std::vector<double> cells;
  for (int k = 0; k < 201; ++k) cells.push_back(k);
  cells.push_back(
      0);  // the check of the values comes before a case is added, so the last one must not bring a new value
  DatasetBuilder builder;
  builder.AddNumeric("v", cells).Level(kLevelNominal);
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO POSITION VALUELABELS MISSING.");
  EXPECT_THAT(run.rows("v"), ElementsAre("Standard Attributes > Position | Value: 1"));
  EXPECT_THAT(run.messages(), ElementsAre("warning: Value labels, counts, and/or percents not displayed for v."));
}

TEST(VariableInformation, exactlyMaxCatsDistinctValuesAreAllShown) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 1, 2, 3, 1}).Level(kLevelNominal);
  const CommandRun run(builder.Build(), "CODEBOOK v /OPTIONS MAXCATS=3.");
  EXPECT_THAT(run.rowsOf("v", "Valid Values"), ElementsAre("Valid Values > 1.00 | Count: 3 | Percent: 42.9%",
                                                           "Valid Values > 2.00 | Count: 2 | Percent: 28.6%",
                                                           "Valid Values > 3.00 | Count: 2 | Percent: 28.6%"));
  EXPECT_THAT(run.messages(), IsEmpty());
}

// On a few cases nothing is checked, so more values than MAXCATS may be met: the list is then left out without a word.
TEST(VariableInformation, moreValuesThanMaxCatsOnFewCasesAreLeftOut) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4}).Level(kLevelNominal);
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO POSITION /STATISTICS COUNT /OPTIONS MAXCATS=3.");
  EXPECT_THAT(run.rows("v"), ElementsAre("Standard Attributes > Position | Value: 1"));
}

TEST(VariableInformation, onlySystemMissingGivesTheOneSystemRow) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, kSystemMissing, 1, 2}).Level(kLevelNominal);
  EXPECT_THAT(rowsOfV(builder, "/VARINFO MISSING /STATISTICS COUNT PERCENT"),
              ElementsAre("Standard Attributes >", "Valid Values > 1.00 | Count: 2 | Percent: 50.0%",
                          "Valid Values > 2.00 | Count: 1 | Percent: 25.0%",
                          "Missing Values > System | Count: 1 | Percent: 25.0%"));
}

TEST(VariableInformation, userMissingValuesStandUnderMissingBesideTheSystemRow) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 9, 9, kSystemMissing, 1})
      .Level(kLevelNominal)
      .Missing(9)
      .ValueLabel(9, "refused")
      .ValueLabel(1, "yes");
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS /STATISTICS COUNT"),
              ElementsAre("Standard Attributes >", "Valid Values > 1.00 | Value: yes | Count: 2",
                          "Missing Values > 9.00 | Value: refused | Count: 2", "Missing Values > System | Count: 1"));
}

TEST(VariableInformation, percentAloneShowsNoCounts) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, kSystemMissing, 2}).Level(kLevelNominal);
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS /STATISTICS PERCENT"),
              ElementsAre("Standard Attributes >", "Valid Values > 1.00 | Percent: 25.0%",
                          "Valid Values > 2.00 | Percent: 50.0%", "Missing Values > System | Percent: 25.0%"));
}

TEST(VariableInformation, stringValuesAreShownWithTheirLabels) {
  DatasetBuilder builder;
  builder.AddString("v", {"m", "f", "", "f"}).Width(4).ValueLabel("f", "female").Missing("");
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS /STATISTICS COUNT"),
              ElementsAre("Standard Attributes >", "Valid Values > f | Value: female | Count: 2",
                          "Valid Values > m | Count: 1", "Missing Values >  | Count: 1"));
}

TEST(VariableInformation, variableWithNothingToShowIsNamedFollowedByABlankAndAComma) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO VALUELABELS /STATISTICS NONE.");
  EXPECT_THAT(run.rows("v"), ElementsAre("Standard Attributes >"));
  // The comma at the end is cut, the blank before it stays. Meant so.
  EXPECT_THAT(run.messages(), ElementsAre("warning: No Variable Information for v ."));
}

/// Two scale variables without value labels: the mean of x is 2, that of y 20.
std::shared_ptr<const runtime::data::Dataset> twoScales() {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3}).Format(kFormatF, 8, 0);
  builder.AddNumeric("y", {10, 20, 30}).Format(kFormatF, 8, 0);
  return builder.Build();
}

// With counts and percents off a scale variable without value labels ends one position below its own, so that the next
// item reads its statistics. Required so; the host tells it.
TEST(VariableInformation, scaleWithoutLabelsAndWithoutCountsEndsOnePositionBelow) {
  const CommandRun run(twoScales(), "CODEBOOK x y /STATISTICS MEAN.");
  EXPECT_THAT(run.rowsOf("x", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 2.00"));
  EXPECT_THAT(run.rowsOf("y", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 2.00"));
  EXPECT_THAT(run.messages(), ElementsAre(StartsWith("host warning: Statistics shown for y are those of x.")));
}

TEST(VariableInformation, scaleWithoutLabelsAndWithCountsKeepsItsPosition) {
  const CommandRun run(twoScales(), "CODEBOOK x y /STATISTICS MEAN COUNT.");
  EXPECT_THAT(run.rowsOf("x", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 2.00"));
  EXPECT_THAT(run.rowsOf("y", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 20.00"));
  EXPECT_THAT(run.messages(), IsEmpty());
}

TEST(VariableInformation, skippedValueSectionLeavesThePositionAlone) {
  const CommandRun run(twoScales(), "CODEBOOK x y /VARINFO LABEL /STATISTICS MEAN.");
  EXPECT_THAT(run.rowsOf("y", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 20.00"));
  EXPECT_THAT(run.messages(), IsEmpty());
}

TEST(VariableInformation, labelledScaleReadsItsValuesFromTheNextEntryAndEndsThere) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 2, 5}).ValueLabel(1, "one").ValueLabel(2, "two").ValueLabel(3, "three");
  builder.AddNumeric("y", {10, 20, 30, 40});
  const CommandRun run(builder.Build(), "CODEBOOK x y /VARINFO VALUELABELS /STATISTICS COUNT PERCENT.");
  EXPECT_THAT(run.rows("x"), ElementsAre("Standard Attributes >", "N > Valid | Value: 4", "N > Missing | Value: 0",
                                         "Central Tendency and Dispersion >",
                                         "Labeled Values > 1.00 | Value: one | Count: 1 | Percent: 25.0%",
                                         "Labeled Values > 2.00 | Value: two | Count: 2 | Percent: 50.0%",
                                         "Labeled Values > 3.00 | Value: three | Count: 0 | Percent: 0.0%"));
  // y reads its own entry: four valid cases, not x's labels.
  EXPECT_THAT(run.rows("y"), ElementsAre("Standard Attributes >", "N > Valid | Value: 4", "N > Missing | Value: 0",
                                         "Central Tendency and Dispersion >"));
}

TEST(VariableInformation, percentOfALabelledScaleValueIsOfAllCases) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 1, kSystemMissing, 9}).ValueLabel(1, "one").ValueLabel(9, "refused").Missing(9);
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS /STATISTICS PERCENT"),
              ElementsAre("Standard Attributes >", "N > Valid | Value: 2", "N > Missing | Value: 2",
                          "Central Tendency and Dispersion >", "Labeled Values > 1.00 | Value: one | Percent: 50.0%",
                          "Labeled Values > 9.00 | Value: refused | Percent: 25.0%"));
}

TEST(VariableInformation, scaleByDefaultShowsAllStatistics) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4, kSystemMissing}).Format(kFormatF, 4, 0);
  EXPECT_THAT(rowsOfV(builder, "/VARINFO POSITION"),
              ElementsAre("Standard Attributes > Position | Value: 1", "N > Valid | Value: 4", "N > Missing | Value: 1",
                          "Central Tendency and Dispersion > Mean | Value: 2.50",
                          "Central Tendency and Dispersion > Standard Deviation | Value: 1.291",
                          "Central Tendency and Dispersion > Percentile 25 | Value: 1.25",
                          "Central Tendency and Dispersion > Percentile 50 | Value: 2.50",
                          "Central Tendency and Dispersion > Percentile 75 | Value: 3.75"));
}

TEST(VariableInformation, onlyTheStatisticsAskedForAreShown) {
  const auto shown = [](const std::string& statistics) {
    DatasetBuilder builder;
    builder.AddNumeric("v", {1, 2, 3, 4}).Format(kFormatF, 4, 0);
    return CommandRun(builder.Build(), "CODEBOOK v /VARINFO ROLE /STATISTICS " + statistics + ".")
        .rowsOf("v", "Central");
  };
  EXPECT_THAT(shown("STDDEV"), ElementsAre("Central Tendency and Dispersion > Standard Deviation | Value: 1.291"));
  EXPECT_THAT(shown("QUARTILES"), ElementsAre("Central Tendency and Dispersion > Percentile 25 | Value: 1.25",
                                              "Central Tendency and Dispersion > Percentile 50 | Value: 2.50",
                                              "Central Tendency and Dispersion > Percentile 75 | Value: 3.75"));
  EXPECT_THAT(shown("COUNT"), ElementsAre("Central Tendency and Dispersion >"));
  EXPECT_THAT(shown("NONE"), IsEmpty());
}

TEST(VariableInformation, ordinalTreatmentShowsCategories) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2});
  const CommandRun run(builder.Build(), "CODEBOOK v [O] /VARINFO VALUELABELS.");
  EXPECT_THAT(run.rowsOf("v", "Valid"), ElementsAre("Valid Values > 1.00 | Count: 1 | Percent: 50.0%",
                                                    "Valid Values > 2.00 | Count: 1 | Percent: 50.0%"));
}

/// A nominal variable with one labelled missing value.
DatasetBuilder labelledNominal() {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 9})
      .Level(kLevelNominal)
      .Missing(9)
      .ValueLabel(1, "yes")
      .ValueLabel(2, "no")
      .ValueLabel(9, "refused");
  return builder;
}

TEST(VariableInformation, labelsAloneArePartedIntoValidAndMissing) {
  DatasetBuilder builder = labelledNominal();
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS MISSING /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Labeled Values >", "Valid Values > 1.00 | Value: yes",
                          "Valid Values > 2.00 | Value: no", "Missing Values > 9.00 | Value: refused"));
}

TEST(VariableInformation, labelsAloneOfTheKindNotAskedForAreSkipped) {
  DatasetBuilder valid = labelledNominal();
  EXPECT_THAT(rowsOfV(valid, "/VARINFO VALUELABELS /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Labeled Values >", "Valid Values > 1.00 | Value: yes",
                          "Valid Values > 2.00 | Value: no", "Missing Values >"));
  DatasetBuilder missing = labelledNominal();
  EXPECT_THAT(rowsOfV(missing, "/VARINFO MISSING /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Labeled Values >", "Valid Values >",
                          "Missing Values > 9.00 | Value: refused"));
}

TEST(VariableInformation, labelsAloneOfAScaleVariableStandTogether) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2}).Missing(9).ValueLabel(1, "one").ValueLabel(9, "refused");
  EXPECT_THAT(rowsOfV(builder, "/VARINFO MISSING /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Labeled Values > 1.00 | Value: one",
                          "Labeled Values > 9.00 | Value: refused", "Valid Values >", "Missing Values >"));
}

TEST(VariableInformation, moreLabelsThanMaxCatsAreNotListed) {
  DatasetBuilder builder = labelledNominal();
  EXPECT_THAT(rowsOfV(builder, "/VARINFO VALUELABELS /STATISTICS NONE /OPTIONS MAXCATS=2"),
              ElementsAre("Standard Attributes >"));
  DatasetBuilder fits = labelledNominal();
  EXPECT_THAT(rowsOfV(fits, "/VARINFO VALUELABELS /STATISTICS NONE /OPTIONS MAXCATS=3"),
              Contains("Valid Values > 2.00 | Value: no"));
}

// What is shown is settled when the value section begins: counts that were asked for and then dropped, because there
// were too many values, leave the labelled values, also where VARINFO names neither VALUELABELS nor MISSING.
TEST(VariableInformation, droppedCountsLeaveTheLabelledValues) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4, 5, 6})
      .Level(kLevelNominal)
      .Missing(9)
      .ValueLabel(1, "one")
      .ValueLabel(9, "refused");
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO POSITION /STATISTICS COUNT /OPTIONS MAXCATS=3.");
  EXPECT_THAT(run.rows("v"), ElementsAre("Standard Attributes > Position | Value: 1", "Labeled Values >",
                                         "Valid Values > 1.00 | Value: one", "Missing Values > 9.00 | Value: refused"));
  EXPECT_THAT(run.messages(), ElementsAre("warning: Value labels, counts, and/or percents not displayed for v."));
}

/// Attributes of every kind.
DatasetBuilder attributed() {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1})
      .Attribute("Note", {"", "y"})
      .Attribute("@x", {"1"})
      .Attribute("$@x", {"2"})
      .Attribute("$x", {"3"})
      .Attribute("none", {});
  return builder;
}

TEST(VariableInformation, hiddenAttributesAreNeverCustomAndReservedOnesAre) {
  DatasetBuilder builder = attributed();
  EXPECT_THAT(rowsOfV(builder, "/VARINFO ATTRIBUTES /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Custom Attributes > Note[1] | Value:  ",
                          "Custom Attributes > Note[2] | Value: y", "Custom Attributes > $x | Value: 3"));
}

// No hidden test is made among a variable's reserved attributes, unlike the file's. Kept on purpose.
TEST(VariableInformation, hiddenReservedAttributesAreListedAmongTheReserved) {
  DatasetBuilder builder = attributed();
  EXPECT_THAT(rowsOfV(builder, "/VARINFO RESERVEDATTRIBUTES /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Reserved Attributes > $@x | Value: 2",
                          "Reserved Attributes > $x | Value: 3"));
}

TEST(VariableInformation, reservedAttributeStandsInBothLists) {
  DatasetBuilder builder = attributed();
  const std::vector<std::string> rows = rowsOfV(builder, "/VARINFO ATTRIBUTES RESERVEDATTRIBUTES /STATISTICS NONE");
  EXPECT_THAT(rows, Contains("Custom Attributes > $x | Value: 3"));
  EXPECT_THAT(rows, Contains("Reserved Attributes > $x | Value: 3"));
}

TEST(VariableInformation, withoutVarInfoEverythingButReservedAttributesIsShown) {
  DatasetBuilder builder = attributed();
  EXPECT_THAT(rowsOfV(builder, "/STATISTICS NONE"),
              ElementsAre("Standard Attributes > Position | Value: 1", "Standard Attributes > Label | Value: <none>",
                          "Standard Attributes > Type | Value: Numeric", "Standard Attributes > Format | Value: F8.2",
                          "Standard Attributes > Measurement | Value: Scale",
                          "Standard Attributes > Role | Value: Input", "Custom Attributes > Note[1] | Value:  ",
                          "Custom Attributes > Note[2] | Value: y", "Custom Attributes > $x | Value: 3"));
}

TEST(VariableInformation, marksOfAScaleVariablesTable) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 2, 3})
      .Label("Label of it")
      .Format(kFormatF, 4, 0)
      .ValueLabel(2, "two")
      .Attribute("$a", {"x"});
  const CommandRun run(builder.Build(),
                       "CODEBOOK v /VARINFO POSITION LABEL TYPE FORMAT MEASURE ROLE ATTRIBUTES RESERVEDATTRIBUTES"
                       " VALUELABELS.");
  // The label of the reserved attributes is marked as data here, unlike in the file's table. Kept as it is.
  EXPECT_THAT(
      outline(run.table("v")),
      ElementsAreArray({"title data:v",
                        "subtype data:Variable Information",
                        "flag false",
                        "rows fixed:Attributes 1 true false",
                        "  group fixed:Standard Attributes",
                        "    fixed:Position | fixed:Value = number:1",
                        "    fixed:Label | fixed:Value = data:Label of it",
                        "    fixed:Type | fixed:Value = fixed:Numeric",
                        "    fixed:Format | fixed:Value = data:F4",
                        "    fixed:Measurement | fixed:Value = fixed:Scale",
                        "    fixed:Role | fixed:Value = fixed:Input",
                        "  group fixed:Custom Attributes",
                        "    data:$a | fixed:Value = data:x",
                        "  group data:Reserved Attributes",
                        "    data:$a | fixed:Value = data:x",
                        "  group fixed:N",
                        "    fixed:Valid | fixed:Value = number:4",
                        "    fixed:Missing | fixed:Value = number:0",
                        "  group fixed:Central Tendency and Dispersion",
                        "    fixed:Mean | fixed:Value = number:2.00",
                        "    fixed:Standard Deviation | fixed:Value = number:0.816",
                        "    fixed:Percentile 25 | fixed:Value = number:1.25",
                        "    fixed:Percentile 50 | fixed:Value = number:2.00",
                        "    fixed:Percentile 75 | fixed:Value = number:2.75",
                        "  group fixed:Labeled Values",
                        "    value:2 | fixed:Value = data:two | fixed:Count = number:2 | fixed:Percent = number:50.0%",
                        "columns fixed:Values 1 true false",
                        "  fixed:Value",
                        "  fixed:Count",
                        "  fixed:Percent"}));
}

TEST(VariableInformation, marksOfACategoricalVariablesTable) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 9, kSystemMissing, 1})
      .Level(kLevelNominal)
      .Format(kFormatF, 1, 0)
      .Missing(9)
      .ValueLabel(9, "no answer");
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO LABEL.");
  EXPECT_THAT(
      outline(run.table("v")),
      ElementsAreArray({"title data:v", "subtype data:Variable Information", "flag false",
                        "rows fixed:Attributes 1 true false", "  group fixed:Standard Attributes",
                        "    fixed:Label | fixed:Value = fixed:<none>", "  group fixed:Valid Values",
                        "    value:1 | fixed:Count = number:2 | fixed:Percent = number:50.0%",
                        "  group fixed:Missing Values",
                        "    value:9 | fixed:Value = data:no answer | fixed:Count = number:1 | fixed:Percent ="
                        " number:25.0%",
                        "    fixed:System | fixed:Count = number:1 | fixed:Percent = number:25.0%",
                        "columns fixed:Values 1 true false", "  fixed:Value", "  fixed:Count", "  fixed:Percent"}));
}

TEST(VariableInformation, marksOfLabelsAlone) {
  DatasetBuilder builder = labelledNominal();
  const CommandRun run(builder.Build(), "CODEBOOK v /VARINFO VALUELABELS MISSING /STATISTICS NONE.");
  EXPECT_THAT(
      outline(run.table("v")),
      ElementsAreArray({"title data:v", "subtype data:Variable Information", "flag false",
                        "rows fixed:Attributes 1 true false", "  group fixed:Standard Attributes",
                        "  group fixed:Labeled Values", "  group fixed:Valid Values",
                        "    value:1.00 | fixed:Value = data:yes", "    value:2.00 | fixed:Value = data:no",
                        "  group fixed:Missing Values", "    value:9.00 | fixed:Value = data:refused",
                        "columns fixed:Values 1 true false", "  fixed:Value", "  fixed:Count", "  fixed:Percent"}));
}

}  // namespace
}  // namespace codebook::test
