// The table of a multiple response set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/common/check.h"

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/tableoutline.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// Three questions that count 1, and two that hold one of several media.
DatasetBuilder media() {
  DatasetBuilder builder;
  builder.AddNumeric("q1", {1, 1, 0}).Level(kLevelNominal).Label("Radio");
  builder.AddNumeric("q2", {0, 1, 0}).Level(kLevelNominal);
  builder.AddNumeric("q3", {0, 0, 0}).Level(kLevelNominal).Label("Press");
  builder.AddNumeric("first", {1, 2, 1})
      .Level(kLevelNominal)
      .Format(kFormatF, 1, 0)
      .ValueLabel(1, "radio")
      .ValueLabel(2, "press");
  builder.AddNumeric("second", {2, 3, 1}).Level(kLevelNominal).Format(kFormatF, 1, 0).ValueLabel(3, "web");
  builder.AddDichotomySet("$d", {"q1", "q2", "q3"}, "1");
  builder.AddCategorySet("$c", {"first", "second"});
  builder.AddCategorySet("$l", {"first", "second"}, "Media used");
  return builder;
}

std::vector<std::string> rowsOfSet(const std::string& name, const std::string& subcommands) {
  DatasetBuilder builder = media();
  return CommandRun(builder.Build(), "CODEBOOK " + name + " " + subcommands + ".").rows(name);
}

// A set's text is its name where it has no label, so the cell is never empty by the dictionary; a set of unknown type
// has none.
TEST(SetInformation, setWithoutALabelShowsItsName) {
  EXPECT_THAT(rowsOfSet("$c", "/VARINFO LABEL TYPE /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Label | Value: $c",
                          "Standard Attributes > Type | Value: Multiple Category Set"));
  EXPECT_THAT(rowsOfSet("$l", "/VARINFO LABEL /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Label | Value: Media used"));
}

TEST(SetInformation, setWithoutAnyTextShowsNoneAndIsACategorySet) {
  DatasetBuilder builder = media();
  VariableSet set;
  set.SetName("$plain");
  set.SetVariableNames({"q1"});
  builder.AddSet(set);
  EXPECT_THAT(CommandRun(builder.Build(), "CODEBOOK $plain /VARINFO LABEL TYPE /STATISTICS NONE.").rows("$plain"),
              ElementsAre("Standard Attributes > Label | Value: <none>",
                          "Standard Attributes > Type | Value: Multiple Category Set"));
}

TEST(SetInformation, dichotomySetHasOneRowAMemberWhichValueShowsAgain) {
  EXPECT_THAT(rowsOfSet("$d", ""),
              ElementsAre("Standard Attributes > Label | Value: $d",
                          "Standard Attributes > Type | Value: Multiple Dichotomy Set",
                          "Multiple Response Categories > q1 | Value: Radio | Count: 2 | Percent: 66.7%",
                          "Multiple Response Categories > q2 | Value: q2 | Count: 1 | Percent: 33.3%",
                          "Multiple Response Categories > q3 | Value: Press | Count: 0 | Percent: 0.0%"));
}

TEST(SetInformation, moreMembersThanMaxCatsShowOnlyTheFirst) {
  // Three members are more categories than two, so the counts go as well.
  EXPECT_THAT(rowsOfSet("$d", "/VARINFO VALUELABELS /OPTIONS MAXCATS=2"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > q1 | Value: Radio",
                          "Multiple Response Categories > q2 | Value: q2"));
}

TEST(SetInformation, moreCountedCategoriesThanMaxCatsShowOnlyTheFirst) {
  // Two labels of the first member and three cases: nothing drops the set, though it meets three values.
  DatasetBuilder builder;
  builder.AddNumeric("first", {1, 2}).Level(kLevelNominal).Format(kFormatF, 1, 0).ValueLabel(1, "radio");
  builder.AddNumeric("second", {3, 4}).Level(kLevelNominal).Format(kFormatF, 1, 0);
  builder.AddCategorySet("$c", {"first", "second"});
  const CommandRun run(builder.Build(), "CODEBOOK $c /VARINFO VALUELABELS /STATISTICS COUNT /OPTIONS MAXCATS=2.");
  EXPECT_THAT(run.rows("$c"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > 1 | Value: radio | Count: 1",
                          "Multiple Response Categories > 2 | Count: 1"));
  EXPECT_THAT(run.messages(), IsEmpty());
}

TEST(SetInformation, categorySetShowsItsValuesWithTheLabelsOfTheFirstMember) {
  EXPECT_THAT(rowsOfSet("$c", "/VARINFO VALUELABELS /STATISTICS COUNT PERCENT"),
              ElementsAre("Standard Attributes >",
                          "Multiple Response Categories > 1 | Value: radio | Count: 2 | Percent: 66.7%",
                          "Multiple Response Categories > 2 | Value: press | Count: 2 | Percent: 66.7%",
                          // A value that only the second member labels has no label here.
                          "Multiple Response Categories > 3 | Count: 1 | Percent: 33.3%"));
}

TEST(SetInformation, countAndPercentAreShownAsAskedFor) {
  EXPECT_THAT(rowsOfSet("$d", "/VARINFO MISSING /STATISTICS COUNT"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > q1 | Value: Radio | Count: 2",
                          "Multiple Response Categories > q2 | Value: q2 | Count: 1",
                          "Multiple Response Categories > q3 | Value: Press | Count: 0"));
  EXPECT_THAT(rowsOfSet("$d", "/VARINFO MISSING /STATISTICS PERCENT"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > q1 | Value: Radio | Percent: 66.7%",
                          "Multiple Response Categories > q2 | Value: q2 | Percent: 33.3%",
                          "Multiple Response Categories > q3 | Value: Press | Percent: 0.0%"));
}

TEST(SetInformation, withoutCountsACategorySetListsTheLabelsOfItsFirstMember) {
  EXPECT_THAT(rowsOfSet("$c", "/VARINFO VALUELABELS /STATISTICS NONE"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > 1 | Value: radio",
                          "Multiple Response Categories > 2 | Value: press"));
  EXPECT_THAT(rowsOfSet("$c", "/VARINFO VALUELABELS /STATISTICS NONE /OPTIONS MAXCATS=1"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > 1 | Value: radio"));
}

TEST(SetInformation, withoutCountsADichotomySetListsItsMembers) {
  EXPECT_THAT(
      rowsOfSet("$d", "/VARINFO VALUELABELS /STATISTICS NONE"),
      ElementsAre("Standard Attributes >", "Multiple Response Categories > q1 | Value: Radio",
                  "Multiple Response Categories > q2 | Value: q2", "Multiple Response Categories > q3 | Value: Press"));
}

TEST(SetInformation, categoryPartIsLeftOutWhenNothingOfItIsAskedFor) {
  EXPECT_THAT(rowsOfSet("$d", "/VARINFO TYPE /STATISTICS NONE"),
              ElementsAre("Standard Attributes > Type | Value: Multiple Dichotomy Set"));
  EXPECT_THAT(rowsOfSet("$d", "/VARINFO TYPE MISSING /STATISTICS MEAN"),
              ElementsAre("Standard Attributes > Type | Value: Multiple Dichotomy Set"));
}

TEST(SetInformation, setWithNothingToShowIsNamedFollowedByABlankAndAComma) {
  DatasetBuilder builder;
  builder.AddNumeric("first", {1});
  builder.AddCategorySet("$c", {"first"});
  const CommandRun run(builder.Build(), "CODEBOOK $C first /VARINFO VALUELABELS /STATISTICS NONE.");
  EXPECT_THAT(run.messages(), ElementsAre("warning: No Variable Information for $C ,first ."));
  EXPECT_THAT(run.rows("$C"), ElementsAre("Standard Attributes >", "Multiple Response Categories >"));
}

TEST(SetInformation, stringCategorySetLabelsByText) {
  DatasetBuilder builder;
  builder.AddString("narrow", {"r", "p"}).Width(1).ValueLabel("r", "radio").ValueLabel("p", "press");
  builder.AddString("wide", {"web", "r"}).Width(12);
  builder.AddCategorySet("$c", {"narrow", "wide"});
  const CommandRun run(builder.Build(), "CODEBOOK $c /VARINFO VALUELABELS /STATISTICS COUNT.");
  EXPECT_THAT(run.rows("$c"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > p | Value: press | Count: 1",
                          "Multiple Response Categories > r | Value: radio | Count: 2",
                          "Multiple Response Categories > web | Count: 1"));
}

TEST(SetInformation, stringDichotomySetCountsTheTextOfItsValue) {
  DatasetBuilder builder;
  builder.AddString("narrow", {"yes", "no", "yes"}).Width(3).Label("Narrow");
  builder.AddString("wide", {"yes", "yes", "no"}).Width(12).Label("Wide");
  builder.AddDichotomySet("$d", {"narrow", "wide"}, "yes");
  const CommandRun run(builder.Build(), "CODEBOOK $d /VARINFO VALUELABELS /STATISTICS COUNT.");
  EXPECT_THAT(run.rows("$d"),
              ElementsAre("Standard Attributes >", "Multiple Response Categories > narrow | Value: Narrow | Count: 2",
                          "Multiple Response Categories > wide | Value: Wide | Count: 2"));
}

/// The failure of an internal check that running the text ends in.
InternalCheckFailure failureOf(DatasetBuilder& builder, const std::string& text) {
  try {
    const CommandRun run(builder.Build(), text);
  } catch (const InternalCheckFailure& failure) {
    return failure;
  }
  return {"no check failed", ""};
}

TEST(SetInformation, setWithoutMembersFailsTheInternalCheck) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  builder.AddCategorySet("$c", {"nobody"});
  const InternalCheckFailure failure = failureOf(builder, "CODEBOOK $c /STATISTICS NONE.");
  EXPECT_EQ(failure.condition(), "mdSetVarIndice.size() >0");
  EXPECT_EQ(failure.source(), "backend/codebook/cbkoutput");
}

// Behind a scale variable that ends one position below its own, a set is described by that variable's entry. Required
// so; it has no members, which the check finds.
TEST(SetInformation, setReadAtTheEntryOfAScaleVariableFailsTheInternalCheck) {
  DatasetBuilder builder = media();
  builder.AddNumeric("age", {31, 40, 55});
  const InternalCheckFailure failure = failureOf(builder, "CODEBOOK age $d /STATISTICS MEAN.");
  EXPECT_EQ(failure.condition(), "mdSetVarIndice.size() >0");
  EXPECT_EQ(failure.source(), "backend/codebook/cbkoutput");
}

TEST(SetInformation, marksOfADichotomySetsTable) {
  DatasetBuilder builder = media();
  const CommandRun run(builder.Build(), "CODEBOOK $d.");
  EXPECT_THAT(
      outline(run.table("$d")),
      ElementsAreArray(
          {"title data:$d", "subtype data:Variable Information", "flag true", "rows fixed:Attributes 1 true false",
           "  group fixed:Standard Attributes", "    fixed:Label | fixed:Value = data:$d",
           "    fixed:Type | fixed:Value = fixed:Multiple Dichotomy Set", "  group fixed:Multiple Response Categories",
           "    name:q1 | fixed:Value = label:Radio | fixed:Count = number:2 | fixed:Percent ="
           " number:66.7%",
           "    name:q2 | fixed:Value = label:q2 | fixed:Count = number:1 | fixed:Percent ="
           " number:33.3%",
           "    name:q3 | fixed:Value = label:Press | fixed:Count = number:0 | fixed:Percent ="
           " number:0.0%",
           "columns fixed:Values 1 true false", "  fixed:Value", "  fixed:Count", "  fixed:Percent"}));
}

TEST(SetInformation, marksOfACategorySetsTable) {
  DatasetBuilder builder = media();
  VariableSet set;
  set.SetName("$plain");
  set.SetVariableNames({"first"});
  builder.AddSet(set);
  const CommandRun run(builder.Build(), "CODEBOOK $l $plain /STATISTICS NONE.");
  EXPECT_THAT(
      outline(run.table("$l")),
      ElementsAreArray(
          {"title data:$l", "subtype data:Variable Information", "flag true", "rows fixed:Attributes 1 true false",
           "  group fixed:Standard Attributes", "    fixed:Label | fixed:Value = data:Media used",
           "    fixed:Type | fixed:Value = fixed:Multiple Category Set", "  group fixed:Multiple Response Categories",
           "    value:1 | fixed:Value = data:radio", "    value:2 | fixed:Value = data:press",
           "columns fixed:Values 1 true false", "  fixed:Value", "  fixed:Count", "  fixed:Percent"}));
  EXPECT_EQ(outline(run.table("$plain"))[5], "    fixed:Label | fixed:Value = fixed:<none>");
}

}  // namespace
}  // namespace codebook::test
