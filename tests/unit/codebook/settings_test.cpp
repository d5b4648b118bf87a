// The settings record: its defaults, its setters, and what a parse writes into it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codebook/parser/cbkparser.h"
#include "codebook/parser/cbksettings.h"
#include "runtime/data/builder.h"
#include "tests/unit/codebook/insession.h"
#include "tests/unit/codebook/parsedcommand.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<const runtime::data::Dataset> oneVariable() {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2});
  return builder.Build();
}

std::vector<bool> varInfoFlags(const CodebookSettings& s) {
  return {s.varInfoPosition(),   s.varInfoLabel(),
          s.varInfoType(),       s.varInfoFormat(),
          s.varInfoMeasure(),    s.varInfoRole(),
          s.varInfoAttributes(), s.varInfoValueLabels(),
          s.varInfoMissing(),    s.varInfoReservedAttributes()};
}

std::vector<bool> fileInfoFlags(const CodebookSettings& s) {
  return {s.fileInfoName(),       s.fileInfoLocation(),  s.fileInfoCaseCount(), s.fileInfoLabel(),
          s.fileInfoAttributes(), s.fileInfoDocuments(), s.fileInfoWeight(),    s.fileInfoReservedAttributes()};
}

std::vector<bool> statisticFlags(const CodebookSettings& s) {
  return {s.statCount(), s.statPercent(), s.statMean(), s.statStdDev(), s.statQuartiles()};
}

std::vector<bool> onlyBit(std::size_t size, std::size_t bit) {
  std::vector<bool> bits(size, false);
  bits[bit] = true;
  return bits;
}

TEST(Settings, freshRecordHoldsTheDefaults) {
  CodebookSettings settings;
  EXPECT_THAT(settings.items(), IsEmpty());
  EXPECT_THAT(settings.listedSetNames(), IsEmpty());
  EXPECT_FALSE(settings.allSetsListed());
  EXPECT_FALSE(settings.varInfoGiven());
  EXPECT_EQ(varInfoFlags(settings), std::vector<bool>(10, false));
  EXPECT_FALSE(settings.fileInfoGiven());
  EXPECT_EQ(fileInfoFlags(settings), std::vector<bool>(8, false));
  EXPECT_FALSE(settings.statisticsGiven());
  EXPECT_FALSE(settings.statisticsNone());
  EXPECT_EQ(settings.maxCats(), 200);
  EXPECT_FALSE(settings.optionsGiven());
  EXPECT_TRUE(settings.sortAscending());
  EXPECT_EQ(settings.varOrder(), kOrderVarList);
  EXPECT_EQ(settings.varOrderAttribute(), "");
  EXPECT_THAT(settings.itemKinds(), IsEmpty());
}

TEST(Settings, freshRecordHasAllStatisticFlagsAndAParsedOneNever) {
  EXPECT_EQ(statisticFlags(CodebookSettings()), std::vector<bool>(5, true));
  EXPECT_EQ(statisticFlags(ParsedCommand(oneVariable(), "CODEBOOK.").settings()), std::vector<bool>(5, false));
}

TEST(Settings, commandWithoutSubcommandsLeavesEveryFlagDown) {
  const ParsedCommand parsed(oneVariable(), "CODEBOOK.");
  const CodebookSettings& settings = parsed.settings();
  EXPECT_TRUE(parsed.accepted());
  EXPECT_FALSE(settings.varInfoGiven());
  EXPECT_FALSE(settings.fileInfoGiven());
  EXPECT_FALSE(settings.statisticsGiven());
  EXPECT_EQ(varInfoFlags(settings), std::vector<bool>(10, false));
  EXPECT_EQ(fileInfoFlags(settings), std::vector<bool>(8, false));
  EXPECT_EQ(statisticFlags(settings), std::vector<bool>(5, false));
  EXPECT_FALSE(settings.statisticsNone());
  EXPECT_EQ(settings.maxCats(), 200);
  EXPECT_FALSE(settings.optionsGiven());
  EXPECT_TRUE(settings.sortAscending());
  EXPECT_EQ(settings.varOrder(), kOrderVarList);
  EXPECT_EQ(settings.varOrderAttribute(), "");
}

TEST(Settings, statisticsNoneIsGivenAndClearsTheFiveFlags) {
  const ParsedCommand parsed(oneVariable(), "CODEBOOK /STATISTICS NONE.");
  EXPECT_TRUE(parsed.settings().statisticsGiven());
  EXPECT_TRUE(parsed.settings().statisticsNone());
  EXPECT_EQ(statisticFlags(parsed.settings()), std::vector<bool>(5, false));
}

TEST(Settings, maxCatsOfZeroGivesTheDefaultAndOptionsStayGiven) {
  const ParsedCommand parsed(oneVariable(), "CODEBOOK /OPTIONS MAXCATS=0.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_EQ(parsed.settings().maxCats(), 200);
  EXPECT_TRUE(parsed.settings().optionsGiven());
}

TEST(Settings, statisticsNoneOfFalseLeavesTheFiveFlags) {
  CodebookSettings settings;
  settings.setStatistics(true, false, true, false, true);
  settings.setStatisticsNone(false);
  EXPECT_EQ(statisticFlags(settings), std::vector<bool>({true, false, true, false, true}));
  EXPECT_FALSE(settings.statisticsNone());
}

TEST(Settings, statisticFlagsLeaveTheNoneFlagAlone) {
  CodebookSettings settings;
  settings.setStatisticsNone(true);
  settings.setStatistics(true, true, true, true, true);
  EXPECT_TRUE(settings.statisticsNone());
  EXPECT_EQ(statisticFlags(settings), std::vector<bool>(5, true));
}

TEST(Settings, everyVarInfoKeywordSetsItsOwnFlag) {
  const std::vector<std::string> keywords = {"POSITION", "LABEL",      "TYPE",        "FORMAT",  "MEASURE",
                                             "ROLE",     "ATTRIBUTES", "VALUELABELS", "MISSING", "RESERVEDATTRIBUTES"};
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const ParsedCommand parsed(oneVariable(), "CODEBOOK /VARINFO " + keywords[i] + ".");
    EXPECT_TRUE(parsed.settings().varInfoGiven()) << keywords[i];
    EXPECT_EQ(varInfoFlags(parsed.settings()), onlyBit(keywords.size(), i)) << keywords[i];
    EXPECT_THAT(parsed.messages(), IsEmpty()) << keywords[i];
  }
}

TEST(Settings, everyFileInfoKeywordSetsItsOwnFlag) {
  const std::vector<std::string> keywords = {"NAME",       "LOCATION",  "CASECOUNT", "LABEL",
                                             "ATTRIBUTES", "DOCUMENTS", "WEIGHT",    "RESERVEDATTRIBUTES"};
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const ParsedCommand parsed(oneVariable(), "CODEBOOK /FILEINFO " + keywords[i] + ".");
    EXPECT_TRUE(parsed.settings().fileInfoGiven()) << keywords[i];
    EXPECT_EQ(fileInfoFlags(parsed.settings()), onlyBit(keywords.size(), i)) << keywords[i];
    EXPECT_THAT(parsed.messages(), IsEmpty()) << keywords[i];
  }
}

TEST(Settings, everyStatisticsKeywordSetsItsOwnFlag) {
  const std::vector<std::string> keywords = {"COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"};
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const ParsedCommand parsed(oneVariable(), "CODEBOOK /STATISTICS " + keywords[i] + ".");
    EXPECT_TRUE(parsed.settings().statisticsGiven()) << keywords[i];
    EXPECT_FALSE(parsed.settings().statisticsNone()) << keywords[i];
    EXPECT_EQ(statisticFlags(parsed.settings()), onlyBit(keywords.size(), i)) << keywords[i];
  }
}

TEST(Settings, assigningAFieldToItselfLeavesItAsItIs) {
  CodebookSettings settings;
  settings.setItems({{"a", 0}, {"$s", 1}});
  settings.setItemKinds({1, 2});
  settings.setVarOrderAttribute("Note");
  settings.setItems(settings.items());
  settings.setItemKinds(settings.itemKinds());
  settings.setVarOrderAttribute(settings.varOrderAttribute());
  ASSERT_EQ(settings.items().size(), 2U);
  EXPECT_EQ(settings.items()[1].name, "$s");
  EXPECT_THAT(settings.itemKinds(), ElementsAre(1, 2));
  EXPECT_EQ(settings.varOrderAttribute(), "Note");
}

TEST(Settings, itemIsASetWhenItsNameBeginsWithADollar) {
  EXPECT_TRUE((ListedItem{"$s", 3}).isSet());
  EXPECT_FALSE((ListedItem{"s$", 3}).isSet());
  EXPECT_FALSE((ListedItem{"", 0}).isSet());
}

TEST(Request, seedsOneScaleEntryAVariableThenOneNominalEntryASet) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  builder.AddNumeric("b", {1});
  builder.AddString("c", {"x"});
  builder.AddCategorySet("$s", {"a", "b"});
  builder.AddDichotomySet("$t", {"a", "b"}, "1");
  runInSession(builder.Build(), "CODEBOOK.", [] {
    ProcedureDataSource dataSource;
    ParserMessage parserMessage;
    CodebookRequest request(&dataSource, &parserMessage);
    EXPECT_THAT(request.settings()->itemKinds(), ElementsAre(1, 1, 1, 2, 2));
    EXPECT_THAT(request.settings()->items(), IsEmpty());
  });
}

TEST(Request, settingsAreTheSameObjectThroughoutItsLife) {
  runInSession(oneVariable(), "CODEBOOK a.", [] {
    ProcedureDataSource dataSource;
    ParserMessage parserMessage;
    CodebookRequest request(&dataSource, &parserMessage);
    const CodebookSettings* before = request.settings();
    EXPECT_TRUE(request.parse());
    EXPECT_EQ(request.settings(), before);
  });
}

}  // namespace
}  // namespace codebook::test
