// The list behind the command name: names, ranges, ALL, sets, and the measurement keywords in brackets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/parsedcommand.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDuplicate = "error: Duplicate variable or MRset name.";
constexpr const char* kInvalidLevel = "warning: Invalid measurement level.";
constexpr const char* kScaleOfString = "warning: Scale (continuous) measurement.";
constexpr const char* kMalformed = "error: Error in < CODEBOOK > command.";
constexpr const char* kMisplacedTo = "error: Keyword TO is misplaced in the variable list.";

/// Kinds by dictionary: a scale, b nominal, c ordinal, s string nominal, u unknown, t string of unknown level, then two
/// sets.
std::shared_ptr<const runtime::data::Dataset> survey() {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  builder.AddNumeric("b", {1}).Level(kLevelNominal);
  builder.AddNumeric("c", {1}).Level(kLevelOrdinal);
  builder.AddString("s", {"x"});
  builder.AddNumeric("u", {1}).Level(kLevelUnknown);
  builder.AddString("t", {"x"}).Level(kLevelUnknown);
  builder.AddCategorySet("$set1", {"a", "b"});
  builder.AddDichotomySet("$Set2", {"a", "b"}, "1");
  return builder.Build();
}

std::shared_ptr<const runtime::data::Dataset> withoutSets() {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  return builder.Build();
}

ParsedCommand parse(const std::string& list) { return ParsedCommand(survey(), "CODEBOOK " + list + "."); }

TEST(ListResolution, absentListTakesEveryVariableThenEverySet) {
  const ParsedCommand parsed(survey(), "CODEBOOK.");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("a", "b", "c", "s", "u", "t", "$set1", "$Set2"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
  EXPECT_FALSE(parsed.settings().allSetsListed());
}

// Without a list a string variable keeps what its level says, also scale; the string rule belongs to listed variables.
TEST(ListResolution, absentListTakesTheTreatmentsFromTheDictionaryAlone) {
  EXPECT_THAT(ParsedCommand(survey(), "CODEBOOK.").kinds(), ElementsAre(1, 2, 2, 2, 1, 1, 2, 2));
}

TEST(ListResolution, allSetsWithoutAnySetFails) {
  const ParsedCommand parsed(withoutSets(), "CODEBOOK $ALL.");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre("error: No MRSet."));
  EXPECT_FALSE(parsed.settings().allSetsListed());
}

TEST(ListResolution, backwardRangeIsWalkedForwards) {
  const ParsedCommand parsed = parse("u TO b");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("b", "c", "s", "u"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(1, 2, 3, 4));
}

// The duplicate at a range's end is an error message that stops nothing. Required so.
TEST(ListResolution, duplicateAtARangeEndIsToldAndDoesNotStop) {
  const ParsedCommand parsed = parse("a b a TO c");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate));
  EXPECT_THAT(parsed.itemNames(), ElementsAre("a", "b", "c"));
}

TEST(ListResolution, duplicateAtBothRangeEndsIsToldTwiceAndDoesNotStop) {
  const ParsedCommand parsed = parse("c a a TO c s");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate, kDuplicate));
  EXPECT_THAT(parsed.itemNames(), ElementsAre("c", "a", "b", "s"));
}

TEST(ListResolution, variableListedBeforeIsSkippedInsideARange) {
  const ParsedCommand parsed = parse("b a TO c");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("b", "a", "c"));
}

TEST(ListResolution, commandGoesOnBehindADuplicateAtARangeEnd) {
  const CommandRun run(survey(), "CODEBOOK a b a TO c /STATISTICS NONE.");
  EXPECT_TRUE(run.done());
  EXPECT_THAT(run.messages(), ElementsAre(kDuplicate));
  EXPECT_THAT(run.titles(), ElementsAre("a", "b", "c"));
}

TEST(ListResolution, scaleKeywordMakesANumericVariableScale) {
  EXPECT_THAT(parse("a [S]").kinds()[0], 1);
  EXPECT_THAT(parse("b [S]").kinds()[1], 1);
  EXPECT_THAT(parse("c [s]").kinds()[2], 1);
  EXPECT_THAT(parse("b [S]").messages(), IsEmpty());
}

TEST(ListResolution, scaleKeywordBehindAStringWarnsAndGivesNominal) {
  const ParsedCommand parsed = parse("s [S]");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kScaleOfString));
  EXPECT_EQ(parsed.kinds()[3], 2);
}

TEST(ListResolution, anyOtherKeywordBehindAStringWarnsTheSameWay) {
  const ParsedCommand parsed = parse("s [X]");
  EXPECT_THAT(parsed.messages(), ElementsAre(kScaleOfString));
  EXPECT_EQ(parsed.kinds()[3], 2);
}

TEST(ListResolution, unknownKeywordBehindANumberWarnsAndKeepsTheDictionaryKind) {
  EXPECT_THAT(parse("a [X]").messages(), ElementsAre(kInvalidLevel));
  EXPECT_EQ(parse("a [X]").kinds()[0], 1);
  EXPECT_EQ(parse("b [X]").kinds()[1], 2);
}

TEST(ListResolution, nominalAndOrdinalKeywords) {
  EXPECT_EQ(parse("a [N]").kinds()[0], 2);
  EXPECT_EQ(parse("a [O]").kinds()[0], 3);
  EXPECT_EQ(parse("s [N]").kinds()[3], 2);
  EXPECT_EQ(parse("s [O]").kinds()[3], 3);
}

// A string variable without a categorical level ends as nominal, even behind an ordinal keyword. Kept on purpose.
TEST(ListResolution, stringWithoutACategoricalLevelEndsAsNominal) {
  EXPECT_EQ(parse("t").kinds()[5], 2);
  EXPECT_EQ(parse("t [O]").kinds()[5], 2);
  EXPECT_THAT(parse("t [O]").messages(), IsEmpty());
}

TEST(ListResolution, bracketBehindAllAppliesToEveryVariable) {
  const ParsedCommand parsed = parse("ALL [N]");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("a", "b", "c", "s", "u", "t"));
  EXPECT_THAT(parsed.kinds(), ElementsAre(2, 2, 2, 2, 2, 2, 2, 2));
}

TEST(ListResolution, bracketBehindAllWarnsOnceAVariable) {
  EXPECT_THAT(parse("ALL [X]").messages(),
              ElementsAre(kInvalidLevel, kInvalidLevel, kInvalidLevel, kScaleOfString, kInvalidLevel, kScaleOfString));
}

TEST(ListResolution, allWithoutABracketHasTheDictionaryKinds) {
  const ParsedCommand parsed = parse("ALL $set1");
  EXPECT_THAT(parsed.itemNames(), ElementsAre("a", "b", "c", "s", "u", "t", "$set1"));
  EXPECT_THAT(parsed.kinds(), ElementsAre(1, 2, 2, 2, 1, 2, 2, 2));
}

TEST(ListResolution, allBehindAListedVariableIsADuplicate) {
  const ParsedCommand parsed = parse("b ALL");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate));
  EXPECT_THAT(parsed.itemNames(), IsEmpty());
}

TEST(ListResolution, allWithALoneBracketFails) {
  EXPECT_FALSE(parse("ALL [N").accepted());
  EXPECT_THAT(parse("ALL [N").messages(), ElementsAre(kMalformed));
}

// No duplicate check is made for $ALL; the walk refuses a set only behind it. Kept on purpose.
TEST(ListResolution, setNamedBeforeAllSetsIsListedTwice) {
  const ParsedCommand parsed = parse("$set1 $ALL");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("$set1", "$set1", "$Set2"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(6, 7, 8));
  EXPECT_TRUE(parsed.settings().allSetsListed());
  EXPECT_THAT(parsed.settings().listedSetNames(), ElementsAre("$set1"));
}

TEST(ListResolution, setNamedBehindAllSetsIsADuplicate) {
  const ParsedCommand parsed = parse("$ALL $set1");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate));
}

TEST(ListResolution, rangeOfSetsNamesBothAsTyped) {
  const ParsedCommand parsed = parse("$a TO $B");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre("error: $a TO $B keyword used for multiple response sets."));
}

TEST(ListResolution, rangeWithASetOnEitherSideFails) {
  EXPECT_THAT(parse("$set1 TO a").messages(),
              ElementsAre("error: $set1 TO a keyword used for multiple response sets."));
  EXPECT_THAT(parse("a TO $set1").messages(),
              ElementsAre("error: a TO $set1 keyword used for multiple response sets."));
}

TEST(ListResolution, keywordsWorkInLowerCase) {
  EXPECT_THAT(parse("all").itemNames(), ElementsAre("a", "b", "c", "s", "u", "t"));
  EXPECT_THAT(parse("$all").itemNames(), ElementsAre("$set1", "$Set2"));
  EXPECT_THAT(parse("a to c").itemNames(), ElementsAre("a", "b", "c"));
}

// Both messages come, the duplicate first. Meant so.
TEST(ListResolution, setNamedTwiceGivesBothMessages) {
  const ParsedCommand parsed = parse("$set1 $SET1");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate, "error: $SET1 Invalid or non-existent variable name."));
}

TEST(ListResolution, setIsListedAsTypedWithTheNextNumber) {
  const ParsedCommand parsed = parse("$SET2 a $SET1");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("$SET2", "a", "$SET1"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(6, 0, 7));
  EXPECT_THAT(parsed.settings().listedSetNames(), ElementsAre("$SET2", "$SET1"));
}

TEST(ListResolution, unknownSetFailsWithItsNameAsTyped) {
  EXPECT_THAT(parse("$Nobody").messages(), ElementsAre("error: $Nobody Invalid or non-existent variable name."));
  EXPECT_THAT(ParsedCommand(withoutSets(), "CODEBOOK $s.").messages(),
              ElementsAre("error: $s Invalid or non-existent variable name."));
}

TEST(ListResolution, nominalKeywordBehindASetIsSilent) {
  const ParsedCommand parsed = parse("$set1 [N] a");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("$set1", "a"));
}

TEST(ListResolution, anyOtherKeywordBehindASetWarnsAndIsIgnored) {
  for (const char* level : {"O", "S", "X"}) {
    const ParsedCommand parsed = parse(std::string("$set1 [") + level + "] a");
    EXPECT_TRUE(parsed.accepted()) << level;
    EXPECT_THAT(parsed.messages(), ElementsAre(kInvalidLevel)) << level;
    EXPECT_THAT(parsed.itemNames(), ElementsAre("$set1", "a")) << level;
    EXPECT_EQ(parsed.kinds()[6], 2) << level;
  }
}

TEST(ListResolution, loneBracketFails) {
  EXPECT_THAT(parse("a [").messages(), ElementsAre(kMalformed));
  EXPECT_THAT(parse("a [N b").messages(), ElementsAre(kMalformed));
  EXPECT_THAT(parse("a []").messages(), ElementsAre(kMalformed));
  EXPECT_THAT(parse("$set1 [").messages(), ElementsAre(kMalformed));
  EXPECT_THAT(parse("$set1 [N a").messages(), ElementsAre(kMalformed));
  EXPECT_FALSE(parse("a [N b").accepted());
}

TEST(ListResolution, variableListedTwiceStops) {
  const ParsedCommand parsed = parse("a b A");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate));
  EXPECT_THAT(parsed.itemNames(), IsEmpty());
}

TEST(ListResolution, variableIsListedAsTyped) {
  const ParsedCommand parsed = parse("B A");
  EXPECT_THAT(parsed.itemNames(), ElementsAre("B", "A"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(1, 0));
}

TEST(ListResolution, rangeListsTheDictionarysNames) {
  EXPECT_THAT(parse("A TO C").itemNames(), ElementsAre("a", "b", "c"));
}

TEST(ListResolution, unknownOrMalformedNameFails) {
  EXPECT_THAT(parse("nobody").messages(), ElementsAre("error: nobody Invalid or non-existent variable name."));
  EXPECT_THAT(parse("1st").messages(), ElementsAre("error: 1st Invalid or non-existent variable name."));
  EXPECT_THAT(parse("a TO nobody").messages(), ElementsAre("error: nobody Invalid or non-existent variable name."));
  EXPECT_THAT(parse("nobody TO a").messages(), ElementsAre("error: nobody Invalid or non-existent variable name."));
}

TEST(ListResolution, toBetweenTheSameVariableIsMisplaced) {
  EXPECT_THAT(parse("a TO A").messages(), ElementsAre(kMisplacedTo));
  EXPECT_FALSE(parse("a TO A").accepted());
}

TEST(ListResolution, toAtTheEndOfTheListIsMisplaced) {
  EXPECT_THAT(parse("a TO").messages(), ElementsAre(kMisplacedTo));
  EXPECT_THAT(parse("a [N] TO").messages(), ElementsAre(kMisplacedTo));
}

TEST(ListResolution, toAtTheBeginningIsReadAsAName) {
  EXPECT_FALSE(parse("TO a").accepted());
  EXPECT_THAT(parse("TO a").messages(), ElementsAre("error: TO Invalid or non-existent variable name."));
}

TEST(ListResolution, keywordsAttachToTheEndsOfARange) {
  const ParsedCommand parsed = parse("a [O] TO c [S] s");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), IsEmpty());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("a", "b", "c", "s"));
  EXPECT_THAT(parsed.kinds(), ElementsAre(3, 2, 1, 2, 1, 1, 2, 2));
}

TEST(ListResolution, variableInsideARangeGetsItsDictionaryKind) {
  EXPECT_THAT(parse("a TO u").kinds(), ElementsAre(1, 2, 2, 2, 1, 1, 2, 2));
}

TEST(ListResolution, bracketBehindTheFirstNameGoesToTheLowerEnd) {
  const ParsedCommand parsed = parse("c [S] TO a [O]");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_EQ(parsed.kinds()[0], 1);  // a: the bracket behind the first name, S
  EXPECT_EQ(parsed.kinds()[2], 3);  // c: the bracket behind the second name, O
}

TEST(ListResolution, keywordAtADuplicateRangeEndIsIgnoredAndTheDictionaryKindReturns) {
  const ParsedCommand parsed = parse("a [O] a [N] TO c");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.messages(), ElementsAre(kDuplicate));
  EXPECT_EQ(parsed.kinds()[0], 1);
}

TEST(ListResolution, loneBracketAtARangeEndStops) {
  EXPECT_FALSE(parse("a TO c [").accepted());
  EXPECT_THAT(parse("a TO c [").messages(), ElementsAre(kMalformed));
  EXPECT_THAT(parse("a [N TO c").messages(), ElementsAre(kMalformed));
}

TEST(ListResolution, nothingIsStoredWhenTheListFails) {
  const ParsedCommand parsed = parse("a b nobody");
  EXPECT_FALSE(parsed.accepted());
  EXPECT_THAT(parsed.itemNames(), IsEmpty());
}

TEST(ListResolution, unlistedVariablesKeepTheSeededTreatment) {
  EXPECT_THAT(parse("c").kinds(), ElementsAre(1, 1, 2, 1, 1, 1, 2, 2));
}

TEST(ListResolution, allSetsKeepWhatWasListedBefore) {
  const ParsedCommand parsed = parse("b $ALL a");
  EXPECT_TRUE(parsed.accepted());
  EXPECT_THAT(parsed.itemNames(), ElementsAre("b", "$set1", "$Set2", "a"));
  EXPECT_THAT(parsed.itemIndices(), ElementsAre(1, 6, 7, 0));
}

}  // namespace
}  // namespace codebook::test
