// What each subcommand sets, and the checks that the grammar cannot make.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codebook/parser/cbkparser.h"
#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/parsedcommand.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNoStatisticsKeyword =
    "warning: < STATISTICS > must be followed by one or more keywords. This subcommand ignored.";
constexpr const char* kNoOptionsKeyword =
    "warning: < OPTIONS > must be followed by one or more keywords. This subcommand ignored.";
constexpr const char* kBadMaxCats = "warning: MAXCATS must be a positive integer.";
constexpr const char* kBadAttribute = "warning: Invalid attribute name specified for VARORDER.";
constexpr const char* kNoneAndOthers =
    "error: Keyword NONE of subcommand STATISTICS cannot be combined with any other keyword.";

std::shared_ptr<const runtime::data::Dataset> attributed() {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2}).Attribute("Block", {"1"}).Attribute("$Reserved", {"x"});
  builder.AddNumeric("b", {1, 2}).Attribute("Section", {"2"});
  builder.AddNumeric("c", {1, 2}).Attribute("@Hidden", {"h"});
  builder.AddCategorySet("$set", {"a", "b"});
  return builder.Build();
}

ParsedCommand parse(const std::string& text) { return ParsedCommand(attributed(), text); }

TEST(Interpretation, emptyStatisticsWarnsAndStaysUngiven) {
  const ParsedCommand parsed = parse("CODEBOOK /STATISTICS.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kNoStatisticsKeyword));
  const CodebookSettings& settings = parsed.settings();
  EXPECT_FALSE(settings.statisticsGiven());
  EXPECT_FALSE(settings.statCount() || settings.statPercent() || settings.statMean() || settings.statStdDev() ||
               settings.statQuartiles());
}

TEST(Interpretation, noneBesideAnotherStatisticStopsTheCommand) {
  const ParsedCommand parsed = parse("CODEBOOK /STATISTICS NONE COUNT.");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kNoneAndOthers));
  for (const char* other : {"PERCENT", "MEAN", "STDDEV", "QUARTILES"})
    EXPECT_FALSE(parse(std::string("CODEBOOK /STATISTICS NONE ") + other + ".").accepted()) << other;

  const CommandRun run(attributed(), "CODEBOOK /FILEINFO NAME /STATISTICS NONE COUNT.");
  EXPECT_FALSE(run.done());
  EXPECT_THAT(run.titles(), IsEmpty());
}

TEST(Interpretation, noneAloneClearsTheFiveFlags) {
  const ParsedCommand parsed = parse("CODEBOOK /STATISTICS NONE.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  const CodebookSettings& settings = parsed.settings();
  EXPECT_TRUE(settings.statisticsNone());
  EXPECT_FALSE(settings.statCount() || settings.statPercent() || settings.statMean() || settings.statStdDev() ||
               settings.statQuartiles());
}

// An invalid MAXCATS does not count as a keyword, so both warnings come. Meant so.
TEST(Interpretation, maxCatsOfZeroAloneWarnsTwice) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS MAXCATS=0.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kBadMaxCats, kNoOptionsKeyword));
  EXPECT_EQ(parsed.settings().maxCats(), 200);
  EXPECT_TRUE(parsed.settings().optionsGiven());
}

TEST(Interpretation, maxCatsOfZeroBesideAnotherOptionWarnsOnce) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS MAXCATS=0 SORT=DESCENDING.");
  EXPECT_THAT(parsed.messages(), ElementsAre(kBadMaxCats));
  EXPECT_EQ(parsed.settings().maxCats(), 200);
  EXPECT_FALSE(parsed.settings().sortAscending());
}

TEST(Interpretation, maxCatsThatIsNoPositiveIntegerGivesTheDefault) {
  for (const char* value : {"-1", "abc", "2.5", "99999999999"}) {
    const ParsedCommand parsed = parse(std::string("CODEBOOK /OPTIONS VARORDER=FILE MAXCATS=") + value + ".");
    EXPECT_TRUE(parsed.accepted()) << value;
    EXPECT_THAT(parsed.messages(), ElementsAre(kBadMaxCats)) << value;
    EXPECT_EQ(parsed.settings().maxCats(), 200) << value;
  }
}

TEST(Interpretation, maxCatsOfOneIsTaken) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS MAXCATS=1.");
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_EQ(parsed.settings().maxCats(), 1);
  EXPECT_TRUE(parsed.settings().optionsGiven());
}

TEST(Interpretation, attributeThatNoListedVariableHasFallsBackToTheListedOrder) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(x).");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kBadAttribute));
  EXPECT_EQ(parsed.settings().varOrder(), kOrderVarList);
  EXPECT_EQ(parsed.settings().varOrderAttribute(), "");
}

TEST(Interpretation, reservedAttributeIsNoneToOrderBy) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE($Reserved).");
  EXPECT_THAT(parsed.messages(), ElementsAre(kBadAttribute));
  EXPECT_EQ(parsed.settings().varOrder(), kOrderVarList);
}

TEST(Interpretation, attributeNameIsMatchedWithoutRegardToCase) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(sECTION).");
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_EQ(parsed.settings().varOrder(), kOrderAttribute);
  EXPECT_EQ(parsed.settings().varOrderAttribute(), "sECTION");
}

TEST(Interpretation, onlyAttributesOfListedVariablesCount) {
  EXPECT_THAT(parse("CODEBOOK a c /OPTIONS VARORDER=ATTRIBUTE(Section).").messages(), ElementsAre(kBadAttribute));
  EXPECT_THAT(parse("CODEBOOK c b $set /OPTIONS VARORDER=ATTRIBUTE(Section).").messages(), IsEmpty());
  EXPECT_THAT(parse("CODEBOOK $set /OPTIONS VARORDER=ATTRIBUTE(Section).").messages(), ElementsAre(kBadAttribute));
}

// Only a leading "$" is asked for here: a hidden name passes, and then orders nothing.
TEST(Interpretation, hiddenAttributeNamePassesTheCheckOfTheName) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(@Hidden).");
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_EQ(parsed.settings().varOrder(), kOrderAttribute);
}

TEST(Interpretation, badAttributeStillCountsAsAKeyword) {
  EXPECT_THAT(parse("CODEBOOK /OPTIONS MAXCATS=0 VARORDER=ATTRIBUTE(x).").messages(),
              ElementsAre(kBadMaxCats, kBadAttribute));
}

TEST(Interpretation, emptyVarInfoWarnsAndTheOtherSubcommandsAreRead) {
  const ParsedCommand parsed = parse("CODEBOOK /VARINFO /FILEINFO LABEL /STATISTICS MEAN /OPTIONS SORT=DESCENDING.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(),
              ElementsAre("warning: < VARINFO > must be followed by one or more keywords. This subcommand ignored."));
  EXPECT_FALSE(parsed.settings().varInfoGiven());
  EXPECT_TRUE(parsed.settings().fileInfoLabel());
  EXPECT_TRUE(parsed.settings().statMean());
  EXPECT_FALSE(parsed.settings().sortAscending());
}

TEST(Interpretation, emptyFileInfoWarns) {
  const ParsedCommand parsed = parse("CODEBOOK /FILEINFO.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(),
              ElementsAre("warning: < FILEINFO > must be followed by one or more keywords. This subcommand ignored."));
  EXPECT_FALSE(parsed.settings().fileInfoGiven());
}

TEST(Interpretation, emptyOptionsWarnsAndIsGivenAllTheSame) {
  const ParsedCommand parsed = parse("CODEBOOK /OPTIONS.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kNoOptionsKeyword));
  EXPECT_TRUE(parsed.settings().optionsGiven());
}

TEST(Interpretation, stopInStatisticsComesBehindVarInfoAndFileInfo) {
  const ParsedCommand parsed =
      parse("CODEBOOK /STATISTICS NONE MEAN /OPTIONS MAXCATS=5 /FILEINFO NAME /VARINFO LABEL.");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_TRUE(parsed.settings().varInfoGiven());
  EXPECT_TRUE(parsed.settings().varInfoLabel());
  EXPECT_TRUE(parsed.settings().fileInfoGiven());
  EXPECT_TRUE(parsed.settings().fileInfoName());
  EXPECT_FALSE(parsed.settings().statisticsGiven());
  EXPECT_FALSE(parsed.settings().optionsGiven());
}

TEST(Interpretation, failedListStopsBeforeAnySubcommand) {
  const ParsedCommand parsed = parse("CODEBOOK nobody /VARINFO LABEL /STATISTICS.");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_FALSE(parsed.settings().varInfoGiven());
  EXPECT_THAT(parsed.messages(), ElementsAre("error: nobody Invalid or non-existent variable name."));
}

TEST(Interpretation, everyOrderAndDirectionIsTaken) {
  EXPECT_EQ(parse("CODEBOOK /OPTIONS VARORDER=FILE.").settings().varOrder(), kOrderFile);
  EXPECT_EQ(parse("CODEBOOK /OPTIONS VARORDER=ALPHA.").settings().varOrder(), kOrderAlpha);
  EXPECT_EQ(parse("CODEBOOK /OPTIONS VARORDER=VARLIST.").settings().varOrder(), kOrderVarList);
  EXPECT_EQ(parse("CODEBOOK /OPTIONS VARORDER=MEASURE.").settings().varOrder(), kOrderMeasure);
  EXPECT_EQ(parse("CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(Block).").settings().varOrder(), kOrderAttribute);
  EXPECT_TRUE(parse("CODEBOOK /OPTIONS SORT=ASCENDING.").settings().sortAscending());
  EXPECT_FALSE(parse("CODEBOOK /OPTIONS SORT=DESCENDING.").settings().sortAscending());
}

TEST(SameName, isEqualityOfLengthAndOfLettersWithoutRegardToCase) {
  EXPECT_TRUE(sameName("Alter", "aLTER"));
  EXPECT_FALSE(sameName("Alter", "Alter1"));
  EXPECT_FALSE(sameName("Alter", "Elter"));
  EXPECT_TRUE(sameName("", ""));
}

}  // namespace
}  // namespace codebook::test
